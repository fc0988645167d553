// Start of the program, opening and closing a camera, removal, exit, and the message log.

#include "discovery/DiscoveryDlg.h"
#include "display/ImageView.h"
#include "features/FeatureView.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/WindowDriver.h"

#include <QtTest>

#include <QDockWidget>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTextEdit>
#include <QTreeWidget>

namespace {

const QString kNoRates = "[Disp =           fps] , [Cap =           fps]";

QStringList calledSince(const std::vector<std::string>& prefixes)
{
    QStringList texts;
    for (const scripted::Call& call : scripted::calls(prefixes))
        texts << QString::fromStdString(call.text());
    return texts;
}

QStringList names()
{
    QStringList texts;
    for (const std::string& name : scripted::callNames()) {
        if (name.rfind("Nd_", 0) != 0) // the feature browser's business
            texts << QString::fromStdString(name);
    }
    return texts;
}

class CameraTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void startInitialisesTheLibraries();
    void startCentresTheWindow();
    void startFixesTheDockSizes();
    void startWithoutCameraApi();
    void startWithoutConversionTables();

    void openMakesItsCallsInOrder();
    void openShowsViewAndFeatures();
    void openWhileOpenDoesNothing();
    void openIsOffWhileTheDialogIsShown();
    void cancellingTheDialogReturnsToIdle();
    void openTakesTheIndexOfTheChosenRow();
    void openFails();
    void openFailsWithGenICamText();
    void openFailsWithGenICamErrorWithoutText();
    void failedOpenKeepsTheSignalForTheNextAttempt();
    void openWithoutSignal();
    void openFailsOnUnreadableImageParameters_data();
    void openFailsOnUnreadableImageParameters();
    void openOfAnEmptyImageShowsAPlaceholder();
    void waitCursorEndsWithEveryOpening();
    void dialogReportsThroughTheLog();

    void closeMakesItsCallsInOrder();
    void closeGoesOnWhereCallsFail_data();
    void closeGoesOnWhereCallsFail();
    void closeResetsTheZoom();
    void closeAndOpenAgain();

    void exitClosesAndTerminates();
    void exitWithoutCamera();
    void exitReportsAFailedTermination();
    void exitActionClosesTheWindow();

    void errorLineNamesTheStatus();
    void errorLineOfAStatusWithTrailingBlank();
    void logShowsMarkupAndPlaceholdersAsTheyAre();
    void logScrollsToTheNewestLine();
    void clearEmptiesTheLog();
};

// --- Start ----------------------------------------------------------------------------------------------------------

void CameraTest::startInitialisesTheLibraries()
{
    const WindowDriver driver;
    QCOMPARE(calledSince({""}), (QStringList{"Sys_Initialize(65535)", "PrepareLUT()"}));
    QCOMPARE(driver.log(), QStringList());
    QCOMPARE(driver.rates(), kNoRates);
    QVERIFY(driver.enabled("actionOpen"));
    QVERIFY(driver.enabled("action_Menu_Open"));
    QVERIFY(!driver.enabled("actionClose"));
}

void CameraTest::startCentresTheWindow()
{
    // Before it is shown: what a window manager adds does not count.
    const MainWindow mainWindow;
    const QWidget& window = mainWindow;
    const QRect available = QGuiApplication::primaryScreen()->availableGeometry();
    QCOMPARE(window.x(), available.x() + available.width() / 2 - window.width() / 2);
    QCOMPARE(window.y(), available.y() + available.height() / 2 - window.height() / 2);
}

void CameraTest::startFixesTheDockSizes()
{
    const WindowDriver driver;
    QCOMPARE(driver.child<QDockWidget>("dockWidget_Top")->height(), 25);
    QCOMPARE(driver.child<QDockWidget>("dockWidgetRight")->width(), 500);
    QCOMPARE(driver.child<QDockWidget>("dockWidgetBottom")->height(), 170);
}

void CameraTest::startWithoutCameraApi()
{
    scripted::failCall("Sys_Initialize", Orvo::CAM_API_STS_DRIVER_LOAD_ERR);
    const WindowDriver driver;
    QCOMPARE(driver.log(), QStringList{"ERROR: Sys_Initialize error! [CAM_API_STS_DRIVER_LOAD_ERR]"});
    QCOMPARE(scripted::count("PrepareLUT"), 0);
    // The actions are as the form has them, the docks too.
    QVERIFY(driver.enabled("actionOpen"));
    QVERIFY(!driver.enabled("action_Menu_Normal_Size"));
    QVERIFY(driver.child<QDockWidget>("dockWidgetRight")->maximumWidth() > 500);
}

void CameraTest::startWithoutConversionTables()
{
    scripted::failCall("PrepareLUT", Orvo::CAM_API_STS_NO_MEMORY);
    const WindowDriver driver;
    QCOMPARE(driver.log(), QStringList{"ERROR: PrepareLUT error! [CAM_API_STS_NO_MEMORY]"});
    QVERIFY(driver.child<QDockWidget>("dockWidgetRight")->maximumWidth() > 500);
}

// --- Opening --------------------------------------------------------------------------------------------------------

void CameraTest::openMakesItsCallsInOrder()
{
    WindowDriver driver;
    scripted::clearCalls();
    driver.open();
    const QStringList expected{"Sys_GetNumOfCameras", "Cam_GetInformation", "Sys_CreateSignal", "Cam_Open",
                               "GetCamWidth",         "GetCamHeight",       "GetCamPixelFormat"};
    QCOMPARE(names(), expected);
    const auto opened = scripted::calls({"Cam_Open"});
    QCOMPARE(opened.size(), std::size_t(1));
    // Index, handle, signal, option, reserved, access mode.
    QCOMPARE(opened[0].arguments[0], std::string("0"));
    QCOMPARE(opened[0].arguments[1], std::string("out"));
    QVERIFY(opened[0].arguments[2] != "0");
    QCOMPARE(opened[0].arguments[3], std::string("1"));
    QCOMPARE(opened[0].arguments[4], std::string("null"));
    QCOMPARE(opened[0].arguments[5], std::string("1"));
    QCOMPARE(driver.log(), QStringList());
}

void CameraTest::openShowsViewAndFeatures()
{
    WindowDriver driver;
    QVERIFY(!qobject_cast<ImageView*>(driver.window().centralWidget()));
    driver.open();
    QVERIFY(qobject_cast<ImageView*>(driver.window().centralWidget()));
    QVERIFY(qobject_cast<FeatureView*>(driver.child<QDockWidget>("dockWidgetRight")->widget()));
    QVERIFY(!driver.enabled("actionOpen"));
    QVERIFY(!driver.enabled("action_Menu_Open"));
    QVERIFY(driver.enabled("actionClose"));
    QVERIFY(driver.enabled("actionStart"));
    QVERIFY(!driver.enabled("actionStop"));
    QVERIFY(driver.enabled("action_Menu_Stop"));
    QVERIFY(!driver.enabled("actionPause"));
    QVERIFY(driver.enabled("action_Menu_Pause"));
    QVERIFY(!driver.enabled("actionSnapshot"));
}

void CameraTest::openWhileOpenDoesNothing()
{
    WindowDriver driver;
    driver.open();
    scripted::clearCalls();
    driver.trigger("actionOpen");
    driver.trigger("action_Menu_Open");
    QCOMPARE(calledSince({""}), QStringList());
    QVERIFY(driver.enabled("actionClose"));
}

void CameraTest::openIsOffWhileTheDialogIsShown()
{
    WindowDriver driver;
    bool wasEnabled = true;
    driver.open([&](DiscoveryDlg& dialog) {
        wasEnabled = driver.enabled("actionOpen") || driver.enabled("action_Menu_Open");
        dialog.reject();
    });
    QVERIFY(!wasEnabled);
}

void CameraTest::cancellingTheDialogReturnsToIdle()
{
    WindowDriver driver;
    driver.open([](DiscoveryDlg& dialog) { dialog.findChild<QPushButton*>("cancelButton")->click(); });
    QCOMPARE(scripted::count("Cam_Open"), 0);
    QCOMPARE(scripted::count("Sys_CreateSignal"), 0);
    QVERIFY(driver.enabled("actionOpen"));
    QVERIFY(driver.enabled("action_Menu_Open"));
    QVERIFY(!driver.enabled("actionStart"));
    QVERIFY(!driver.window().findChild<DiscoveryDlg*>());
}

void CameraTest::openTakesTheIndexOfTheChosenRow()
{
    scripted::setCameras({{}, {}, {}});
    WindowDriver driver;
    driver.open([](DiscoveryDlg& dialog) {
        auto* const list = dialog.findChild<QTreeWidget*>("discoveryWidget");
        list->setCurrentItem(list->topLevelItem(2));
        dialog.findChild<QPushButton*>("openButton")->click();
    });
    QCOMPARE(scripted::calls({"Cam_Open"}).at(0).arguments.at(0), std::string("2"));
    QVERIFY(!driver.window().findChild<DiscoveryDlg*>());
}

void CameraTest::openFails()
{
    WindowDriver driver;
    scripted::failCall("Cam_Open", Orvo::CAM_API_STS_ACCESS_DENIED);
    driver.open();
    QCOMPARE(driver.log(), QStringList{"ERROR: Error Cam_Open() [CAM_API_STS_ACCESS_DENIED]"});
    QCOMPARE(scripted::count("Misc_GetLastGenICamError"), 0);
    QCOMPARE(scripted::count("GetCamWidth"), 0);
    QVERIFY(driver.enabled("actionOpen"));
    QVERIFY(!driver.enabled("actionClose"));
}

void CameraTest::openFailsWithGenICamText()
{
    WindowDriver driver;
    scripted::failCall("Cam_Open", Orvo::CAM_API_STS_GENICAM_ERR);
    scripted::setGenICamError("node 'Width' has a <b>cycle</b> %1");
    driver.open();
    QCOMPARE(driver.log(), (QStringList{"ERROR: Error Cam_Open() [CAM_API_STS_GENICAM_ERR]",
                                        "  GenICam Error description: node 'Width' has a <b>cycle</b> %1"}));
}

void CameraTest::openFailsWithGenICamErrorWithoutText()
{
    WindowDriver driver;
    scripted::failCall("Cam_Open", Orvo::CAM_API_STS_GENICAM_ERR);
    scripted::failCall("Misc_GetLastGenICamError", Orvo::CAM_API_STS_NOT_FOUND);
    driver.open();
    QCOMPARE(driver.log(), QStringList{"ERROR: Error Cam_Open() [CAM_API_STS_GENICAM_ERR]"});
}

void CameraTest::failedOpenKeepsTheSignalForTheNextAttempt()
{
    WindowDriver driver;
    scripted::failCall("Cam_Open", Orvo::CAM_API_STS_BUSY);
    driver.open();
    QCOMPARE(scripted::count("Sys_CloseSignal"), 0);
    driver.open();
    QCOMPARE(scripted::count("Sys_CreateSignal"), 1);
    const auto opened = scripted::calls({"Cam_Open"});
    QCOMPARE(opened.size(), std::size_t(2));
    QCOMPARE(opened[0].arguments[2], opened[1].arguments[2]);
    QVERIFY(driver.enabled("actionStart"));
}

void CameraTest::openWithoutSignal()
{
    WindowDriver driver;
    scripted::failCall("Sys_CreateSignal", Orvo::CAM_API_STS_NO_MEMORY);
    driver.open();
    QCOMPARE(scripted::calls({"Cam_Open"}).at(0).arguments.at(2), std::string("0"));
    QVERIFY(driver.enabled("actionStart"));
    driver.close();
    QCOMPARE(scripted::count("Sys_CloseSignal"), 0);
    QCOMPARE(driver.log(), QStringList());
}

void CameraTest::openFailsOnUnreadableImageParameters_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("GetCamWidth") << "ERROR: Error image width. [CAM_API_STS_TIMEOUT]";
    QTest::newRow("GetCamHeight") << "ERROR: Error image height. [CAM_API_STS_TIMEOUT]";
    QTest::newRow("GetCamPixelFormat") << "ERROR: Error image pixel format. [CAM_API_STS_TIMEOUT]";
}

void CameraTest::openFailsOnUnreadableImageParameters()
{
    QFETCH(QString, line);
    WindowDriver driver;
    scripted::failCall(QTest::currentDataTag(), Orvo::CAM_API_STS_TIMEOUT);
    driver.open();
    QCOMPARE(driver.log(), (QStringList{line, "ERROR: Error Cam_Open() [CAM_API_STS_SUCCESS]"}));
    QCOMPARE(scripted::count("Cam_Close"), 1);
    QCOMPARE(scripted::count("Sys_CloseSignal"), 1);
    QVERIFY(!driver.window().findChild<FeatureView*>());
    QVERIFY(driver.enabled("actionOpen"));
    QVERIFY(!driver.enabled("actionStart"));
}

void CameraTest::openOfAnEmptyImageShowsAPlaceholder()
{
    scripted::setImageFormat(0, 48, 0x01080001);
    WindowDriver driver;
    driver.open();
    QVERIFY(!qobject_cast<ImageView*>(driver.window().centralWidget()));
    QVERIFY(driver.window().centralWidget());
    QVERIFY(driver.enabled("actionStart"));
}

void CameraTest::waitCursorEndsWithEveryOpening()
{
    WindowDriver driver;
    bool waited = false;
    scripted::onCall("Cam_Open", [&] {
        waited = QGuiApplication::overrideCursor() && QGuiApplication::overrideCursor()->shape() == Qt::WaitCursor;
    });
    scripted::failCall("Cam_Open", Orvo::CAM_API_STS_BUSY);
    driver.open();
    QVERIFY(waited);
    QVERIFY(!QGuiApplication::overrideCursor());
    scripted::failCall("GetCamHeight", Orvo::CAM_API_STS_BUSY);
    driver.open();
    QVERIFY(!QGuiApplication::overrideCursor());
    driver.open();
    QVERIFY(!QGuiApplication::overrideCursor());
}

void CameraTest::dialogReportsThroughTheLog()
{
    WindowDriver driver;
    scripted::failCall("Cam_GetInformation", Orvo::CAM_API_STS_CAMERA_NOT_RESPONDING);
    driver.open([](DiscoveryDlg& dialog) {
        emit dialog.writeLog("said by the dialog");
        dialog.reject();
    });
    QCOMPARE(driver.log(),
             (QStringList{"ERROR: Cam_GetInformation() [CAM_API_STS_CAMERA_NOT_RESPONDING]", "said by the dialog"}));
}

// --- Closing --------------------------------------------------------------------------------------------------------

void CameraTest::closeMakesItsCallsInOrder()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    scripted::clearCalls();
    driver.trigger("action_Menu_Close");
    QCOMPARE(names(), (QStringList{"Strm_Stop", "Strm_Close", "Cam_Close", "Sys_CloseSignal"}));
    QVERIFY(!driver.window().findChild<ImageView*>());
    QVERIFY(driver.window().centralWidget());
    QVERIFY(!driver.window().findChild<FeatureView*>());
    QVERIFY(driver.enabled("actionOpen"));
    QVERIFY(driver.enabled("action_Menu_Open"));
    for (const char* off : {"actionClose", "actionStart", "actionPause", "actionStop", "actionSnapshot", "actionZoomIn",
                            "actionZoomOut", "action_Menu_Close", "action_Menu_Start", "action_Menu_Pause",
                            "action_Menu_Stop", "action_Menu_Snapshot", "action_Menu_Normal_Size"}) {
        QVERIFY2(!driver.enabled(off), off);
    }
}

void CameraTest::closeGoesOnWhereCallsFail_data()
{
    QTest::addColumn<QStringList>("log");
    QTest::newRow("Strm_Stop") << QStringList{"ERROR: Error stop acquisition. [CAM_API_STS_UNSUCCESSFUL]"};
    QTest::newRow("Strm_Close") << QStringList();
    QTest::newRow("Cam_Close") << QStringList();
    QTest::newRow("Sys_CloseSignal") << QStringList();
}

void CameraTest::closeGoesOnWhereCallsFail()
{
    QFETCH(QStringList, log);
    WindowDriver driver;
    driver.open();
    driver.start();
    scripted::clearCalls();
    scripted::failCall(QTest::currentDataTag(), Orvo::CAM_API_STS_UNSUCCESSFUL);
    driver.close();
    QCOMPARE(names(), (QStringList{"Strm_Stop", "Strm_Close", "Cam_Close", "Sys_CloseSignal"}));
    QCOMPARE(driver.log(), log);
    QVERIFY(driver.enabled("actionOpen"));
}

void CameraTest::closeResetsTheZoom()
{
    WindowDriver driver;
    driver.open();
    driver.trigger("actionZoomIn");
    driver.trigger("actionZoomIn");
    driver.close();
    driver.open();
    QVERIFY(driver.enabled("actionZoomIn")); // 1.0 again: it would be off at 4.0
    QVERIFY(!driver.enabled("actionNormalSize"));
}

void CameraTest::closeAndOpenAgain()
{
    WindowDriver driver;
    driver.open();
    driver.close();
    scripted::clearCalls();
    driver.open();
    QCOMPARE(scripted::count("Sys_CreateSignal"), 1);
    QVERIFY(qobject_cast<ImageView*>(driver.window().centralWidget()));
    QVERIFY(driver.enabled("actionStart"));
}

// --- Exit -----------------------------------------------------------------------------------------------------------

void CameraTest::exitClosesAndTerminates()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    scripted::clearCalls();
    driver.exit();
    QCOMPARE(names(), (QStringList{"Strm_Stop", "Strm_Close", "Cam_Close", "Sys_CloseSignal", "Sys_Terminate"}));
}

void CameraTest::exitWithoutCamera()
{
    WindowDriver driver;
    scripted::clearCalls();
    driver.exit();
    QCOMPARE(names(), QStringList{"Sys_Terminate"});
}

void CameraTest::exitReportsAFailedTermination()
{
    QStringList log;
    {
        MainWindow window;
        const auto* const edit = window.findChild<QTextEdit*>("messageLogEdit");
        connect(edit, &QTextEdit::textChanged, edit, [&] { log << edit->toPlainText(); });
        scripted::failCall("Sys_Terminate", Orvo::CAM_API_STS_BUSY);
    }
    QVERIFY(!log.isEmpty());
    QCOMPARE(log.last(), QString("ERROR: Sys_Terminate error! [CAM_API_STS_BUSY]"));
}

void CameraTest::exitActionClosesTheWindow()
{
    WindowDriver driver;
    QVERIFY(driver.window().isVisible());
    driver.trigger("action_Menu_Exit");
    QVERIFY(!driver.window().isVisible());
}

// --- Message log ----------------------------------------------------------------------------------------------------

void CameraTest::errorLineNamesTheStatus()
{
    WindowDriver driver;
    const auto report = [&](CAM_API_STATUS status, const QString& title) {
        QVERIFY(QMetaObject::invokeMethod(&driver.window(), "set_error", Q_ARG(CAM_API_STATUS, status),
                                          Q_ARG(QString, title)));
    };
    report(0, "nothing");
    report(0x17, "a gap");
    report(0xFFFFFFFF, "%2 of a camera");
    QCOMPARE(driver.log(), (QStringList{"ERROR: nothing [CAM_API_STS_SUCCESS]", "ERROR: a gap [UNKNOWN]",
                                        "ERROR: %2 of a camera [CAM_API_STS_UNSUCCESSFUL]"}));
}

void CameraTest::errorLineOfAStatusWithTrailingBlank()
{
    WindowDriver driver;
    scripted::failCall("Cam_Open", Orvo::CAM_API_STS_MISSING_PACKETS);
    driver.open();
    QCOMPARE(driver.log(), QStringList{"ERROR: Error Cam_Open() [CAM_API_STS_MISSING_PACKETS ]"});
}

void CameraTest::logShowsMarkupAndPlaceholdersAsTheyAre()
{
    WindowDriver driver;
    const QString text = "<b>bold</b> &amp; %1 <img src='x'>";
    QVERIFY(QMetaObject::invokeMethod(&driver.window(), "write_log", Q_ARG(QString, text)));
    QVERIFY(QMetaObject::invokeMethod(&driver.window(), "write_log", Q_ARG(QString, text)));
    QCOMPARE(driver.log(), (QStringList{text, text}));
}

void CameraTest::logScrollsToTheNewestLine()
{
    WindowDriver driver;
    for (int i = 0; i < 100; ++i)
        QMetaObject::invokeMethod(&driver.window(), "write_log", Q_ARG(QString, QString::number(i)));
    const auto* const edit = driver.child<QTextEdit>("messageLogEdit");
    QCOMPARE(driver.log().size(), 100);
    QVERIFY(edit->textCursor().atEnd());
    QVERIFY(edit->verticalScrollBar()->maximum() > edit->viewport()->height());
    QVERIFY(edit->viewport()->rect().contains(edit->cursorRect()));
}

void CameraTest::clearEmptiesTheLog()
{
    WindowDriver driver;
    QMetaObject::invokeMethod(&driver.window(), "write_log", Q_ARG(QString, QString("line")));
    driver.child<QPushButton>("pushButtonClear")->click();
    QCOMPARE(driver.log(), QStringList());
    QMetaObject::invokeMethod(&driver.window(), "write_log", Q_ARG(QString, QString("next")));
    QCOMPARE(driver.log(), QStringList{"next"});
}

} // namespace

QTEST_MAIN(CameraTest)
#include "CameraTest.moc"

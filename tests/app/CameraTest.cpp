// Opening and closing a camera.

#include "discovery/DiscoveryDlg.h"
#include "display/DispThread.h"
#include "display/GraphicsView.h"
#include "display/ImageView.h"
#include "features/view/FeatureView.h"
#include "tests/support/Recorded.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/TestProgram.h"
#include "tests/support/WindowDriver.h"

#include <QtTest>

#include <QDockWidget>
#include <QGraphicsItem>
#include <QPushButton>
#include <QTreeWidget>

namespace {

class CameraTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void openCallsInOrder_data();
    void openCallsInOrder();
    void openReadsTheFeaturesLast();
    void openShowsViewAndFeatures();
    void openShowsAViewOfTheImageSize();
    void openWhileOpenDoesNothing();
    void openIsDisabledWhileTheDialogIsShown();
    void cancellingTheDialogReturnsToIdle();
    void openTakesTheIndexOfTheChosenRow();
    void openFails();
    void openFailsWithGenICamText();
    void openFailsWithGenICamErrorWithoutText();
    void failedOpenKeepsTheSignalForTheNextAttempt();
    void openWithoutSignal();
    void openFailsOnUnreadableImageParameters_data();
    void openFailsOnUnreadableImageParameters();
    void openOfAnEmptyImageShowsAPlaceholder_data();
    void openOfAnEmptyImageShowsAPlaceholder();
    void waitCursorIsSetAfterTheDialog();
    void waitCursorIsRestoredAfterEveryOpening();
    void dialogIsAChildOfTheWindow();
    void dialogErrorsAreLogged();

    void closeCallsInOrder();
    void closeStopsTheDisplayThreadFirst();
    void closeRemovesTheFeaturesFromTheirDock();
    void closeContinuesAfterFailingCalls_data();
    void closeContinuesAfterFailingCalls();
    void closeResetsTheZoom();
    void closeAndOpenAgain();
};

// --- Opening --------------------------------------------------------------------------------------------------------

void CameraTest::openCallsInOrder_data()
{
    QTest::addColumn<QByteArray>("action");
    QTest::newRow("tool bar") << QByteArray("actionOpen");
    QTest::newRow("menu") << QByteArray("action_Menu_Open");
}

void CameraTest::openCallsInOrder()
{
    QFETCH(const QByteArray, action);
    WindowDriver driver;
    scripted::clearCalls();
    driver.open(action);
    const QStringList expected{"Sys_GetNumOfCameras", "Cam_GetInformation", "Sys_CreateSignal", "Cam_Open",
                               "GetCamWidth",         "GetCamHeight",       "GetCamPixelFormat"};
    QCOMPARE(recorded::windowOperations(), expected);
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

void CameraTest::openReadsTheFeaturesLast()
{
    WindowDriver driver;
    driver.open();
    const QStringList made = recorded::operations();
    QVERIFY(made.indexOf(QRegularExpression("^Nd_.*")) > made.indexOf("GetCamPixelFormat"));
}

void CameraTest::openShowsViewAndFeatures()
{
    WindowDriver driver;
    QVERIFY(!driver.imageView());
    driver.open();
    QVERIFY(driver.imageView());
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

void CameraTest::openShowsAViewOfTheImageSize()
{
    WindowDriver driver;
    driver.open();
    QVERIFY(driver.imageView());
    QVERIFY(driver.imageView()->isVisible());
    QCOMPARE(driver.imageArea(), QRectF(0, 0, 64, 48));
}

void CameraTest::openWhileOpenDoesNothing()
{
    WindowDriver driver;
    driver.open();
    scripted::clearCalls();
    driver.triggerDisabled("actionOpen");
    driver.triggerDisabled("action_Menu_Open");
    QCOMPARE(recorded::texts({""}), QStringList());
    QVERIFY(driver.enabled("actionClose"));
}

void CameraTest::openIsDisabledWhileTheDialogIsShown()
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

void CameraTest::openOfAnEmptyImageShowsAPlaceholder_data()
{
    QTest::addColumn<quint32>("width");
    QTest::addColumn<quint32>("height");
    QTest::newRow("no width") << 0U << 48U;
    QTest::newRow("no height") << 64U << 0U;
}

void CameraTest::openOfAnEmptyImageShowsAPlaceholder()
{
    QFETCH(const quint32, width);
    QFETCH(const quint32, height);
    scripted::setImageFormat(width, height, scripted::kMono8);
    WindowDriver driver;
    driver.open();
    QVERIFY(!driver.imageView());
    QVERIFY(driver.window().centralWidget());
    QVERIFY(driver.enabled("actionStart"));
}

bool isWaitCursor()
{
    const QCursor* const cursor = QGuiApplication::overrideCursor();
    return cursor && cursor->shape() == Qt::WaitCursor;
}

void CameraTest::waitCursorIsSetAfterTheDialog()
{
    bool inTheDialog = true;
    bool whileFeaturesAreRead = false;
    WindowDriver driver;
    scripted::onCall("Nd_GetNode", [&] { whileFeaturesAreRead = isWaitCursor(); });
    driver.open([&](DiscoveryDlg& dialog) {
        inTheDialog = QGuiApplication::overrideCursor() != nullptr;
        dialog.findChild<QPushButton*>("openButton")->click();
    });
    QVERIFY(!inTheDialog);
    QVERIFY(whileFeaturesAreRead);
}

void CameraTest::waitCursorIsRestoredAfterEveryOpening()
{
    bool waited = false;
    WindowDriver driver;
    scripted::onCall("Cam_Open", [&] { waited = isWaitCursor(); });
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

void CameraTest::dialogIsAChildOfTheWindow()
{
    WindowDriver driver;
    const QWidget* parent = nullptr;
    driver.open([&](DiscoveryDlg& dialog) {
        parent = dialog.parentWidget();
        dialog.reject();
    });
    QCOMPARE(parent, &driver.window());
}

void CameraTest::dialogErrorsAreLogged()
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

void CameraTest::closeCallsInOrder()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    scripted::clearCalls();
    driver.trigger("action_Menu_Close");
    QCOMPARE(recorded::windowOperations(), (QStringList{"Strm_Stop", "Strm_Close", "Cam_Close", "Sys_CloseSignal"}));
    QCOMPARE(recorded::texts({"Strm_Stop", "Strm_Close", "Cam_Close", "Sys_CloseSignal"}),
             (QStringList{"Strm_Stop(3001)", "Strm_Close(3001)", "Cam_Close(2001)", "Sys_CloseSignal(1001)"}));
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

void CameraTest::closeStopsTheDisplayThreadFirst()
{
    bool ended = false;
    WindowDriver driver;
    driver.open();
    driver.start();
    auto* const thread = driver.window().findChild<DispThread*>();
    QVERIFY(thread);
    scripted::onCall("Strm_Stop", [&ended, thread] { ended = thread->wait(kPatienceMs); });
    driver.close();
    QVERIFY(ended);
}

void CameraTest::closeRemovesTheFeaturesFromTheirDock()
{
    QPointer<FeatureView> features;
    bool gone = false;
    WindowDriver driver;
    driver.open();
    features = driver.window().findChild<FeatureView*>();
    QVERIFY(features);
    const auto* const dock = driver.child<QDockWidget>("dockWidgetRight");
    scripted::onCall("Cam_Close", [&features, &gone, dock] { gone = !features && !dock->widget(); });
    driver.close();
    QVERIFY(gone);
}

void CameraTest::closeContinuesAfterFailingCalls_data()
{
    QTest::addColumn<QStringList>("log");
    QTest::newRow("Strm_Stop") << QStringList{"ERROR: Error stop acquisition. [CAM_API_STS_UNSUCCESSFUL]"};
    QTest::newRow("Strm_Close") << QStringList();
    QTest::newRow("Cam_Close") << QStringList();
    QTest::newRow("Sys_CloseSignal") << QStringList();
}

void CameraTest::closeContinuesAfterFailingCalls()
{
    QFETCH(QStringList, log);
    WindowDriver driver;
    driver.open();
    driver.start();
    scripted::clearCalls();
    scripted::failCall(QTest::currentDataTag(), Orvo::CAM_API_STS_UNSUCCESSFUL);
    driver.close();
    QCOMPARE(recorded::windowOperations(), (QStringList{"Strm_Stop", "Strm_Close", "Cam_Close", "Sys_CloseSignal"}));
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
    QVERIFY(driver.enabled("actionZoomIn")); // back at 1.0; disabled at 4.0
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
    QVERIFY(driver.imageView());
    QVERIFY(driver.enabled("actionStart"));
}

} // namespace

ORVO_TEST_CLASS(CameraTest)
#include "CameraTest.moc"

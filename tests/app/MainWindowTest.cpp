// The main window from program start to exit, and its message log.

#include "tests/support/Recorded.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/TestProgram.h"
#include "tests/support/WindowDriver.h"

#include <QtTest>

#include <QContextMenuEvent>
#include <QDockWidget>
#include <QMetaMethod>
#include <QProxyStyle>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTextEdit>
#include <QToolBar>

#include <algorithm>

namespace {

class MainWindowTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void signalsAndSlotsAreKnownByName();

    void startInitialisesTheLibraries();
    void startCentresTheWindow();
    void startFixesTheDockSizes();
    void frameRatesHaveTheHeightOfTheirDock();
    void startWithoutCameraApi();
    void startWithoutConversionTables();

    void exitClosesAndTerminates();
    void exitContinuesAfterFailingCalls_data();
    void exitContinuesAfterFailingCalls();
    void exitWithoutCamera();
    void exitReportsAFailedTermination();
    void exitActionClosesTheWindow();
    void noMenuHidesTheToolBar();

    void errorLineNamesTheStatus();
    void errorLineOfAStatusWithTrailingBlank();
    void logShowsMarkupAndPlaceholdersVerbatim();
    void logScrollsToTheNewestLine();
    void clearEmptiesTheLog();
};

/// `name(type parameter, ...)` of the methods of the window's own class.
QStringList ownMethods(QMetaMethod::MethodType type)
{
    const QMetaObject& meta = MainWindow::staticMetaObject;
    QStringList own;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        if (method.methodType() != type)
            continue;
        QStringList parameters;
        for (int parameter = 0; parameter < method.parameterCount(); ++parameter)
            parameters << method.parameterTypes().at(parameter) + ' ' + method.parameterNames().at(parameter);
        own << method.name() + '(' + parameters.join(", ") + ')';
    }
    return own;
}

/// Height of the top dock, width of the right one, height of the bottom one.
QVector<int> dockSizes(const WindowDriver& driver, QSize (QWidget::*size)() const)
{
    const auto sizeOf = [&](const char* name) { return (driver.child<QDockWidget>(name)->*size)(); };
    return {sizeOf("dockWidget_Top").height(), sizeOf("dockWidgetRight").width(), sizeOf("dockWidgetBottom").height()};
}

const QVector<int> kFixedDocks{25, 500, 170};

bool areDocksFree(const WindowDriver& driver)
{
    const QVector<int> sizes = dockSizes(driver, &QWidget::maximumSize);
    return std::all_of(sizes.begin(), sizes.end(), [](int size) { return size > 10000; });
}

void MainWindowTest::signalsAndSlotsAreKnownByName()
{
    QCOMPARE(ownMethods(QMetaMethod::Signal),
             (QStringList{"Set_Image_Size(int width, int height)", "Update_Image(QImage pimage)", "Clear_Image()",
                          "Zoom_In()", "Zoom_Out()", "Zoom_Reset()", "writeLog(QString wstring)"}));
    // The operations that they call are not slots.
    QCOMPARE(ownMethods(QMetaMethod::Slot), (QStringList{"on_actionOpen_triggered()",
                                                         "on_actionClose_triggered()",
                                                         "on_actionStart_triggered()",
                                                         "on_actionStop_triggered()",
                                                         "on_actionZoomIn_triggered()",
                                                         "on_actionSoftwareTrigger_triggered()",
                                                         "on_actionNormalSize_triggered()",
                                                         "on_actionZoomOut_triggered()",
                                                         "on_actionPause_triggered(bool checked)",
                                                         "on_action_Menu_Open_triggered()",
                                                         "on_action_Menu_Close_triggered()",
                                                         "on_action_Menu_Exit_triggered()",
                                                         "on_action_Menu_Start_triggered()",
                                                         "on_action_Menu_Stop_triggered()",
                                                         "on_action_Menu_Pause_triggered(bool checked)",
                                                         "on_action_Menu_One_Shot_triggered()",
                                                         "on_action_Menu_Zoom_In_triggered()",
                                                         "on_action_Menu_Normal_Size_triggered()",
                                                         "on_action_Menu_Zoom_Out_triggered()",
                                                         "on_action_Menu_About_triggered()",
                                                         "on_pushButtonClear_clicked()",
                                                         "on_actionSnapshot_triggered()",
                                                         "on_action_Menu_Snapshot_triggered()",
                                                         "disp_fps(double capFps, double dispFps)",
                                                         "disp_image(QImage image)",
                                                         "removed_camera()",
                                                         "set_error(CAM_API_STATUS status, QString title_str)",
                                                         "write_log(QString text)",
                                                         "check_software_trigger_mode()"}));
}

// --- Start ----------------------------------------------------------------------------------------------------------

void MainWindowTest::startInitialisesTheLibraries()
{
    const WindowDriver driver;
    QCOMPARE(recorded::texts({""}), (QStringList{"Sys_Initialize(65535)", "PrepareLUT()"}));
    QCOMPARE(driver.log(), QStringList());
    QCOMPARE(driver.rates(), WindowDriver::noRates());
    QVERIFY(driver.enabled("actionOpen"));
    QVERIFY(driver.enabled("action_Menu_Open"));
    QVERIFY(!driver.enabled("actionClose"));
}

void MainWindowTest::startCentresTheWindow()
{
    // Checked before it is shown, because a window manager may move it.
    const MainWindow mainWindow;
    const QWidget& window = mainWindow;
    const QRect available = QGuiApplication::primaryScreen()->availableGeometry();
    QCOMPARE(window.x(), available.x() + available.width() / 2 - window.width() / 2);
    QCOMPARE(window.y(), available.y() + available.height() / 2 - window.height() / 2);
}

void MainWindowTest::startFixesTheDockSizes()
{
    const WindowDriver driver;
    QCOMPARE(dockSizes(driver, &QWidget::size), kFixedDocks);
    QCOMPARE(dockSizes(driver, &QWidget::minimumSize), kFixedDocks);
    QCOMPARE(dockSizes(driver, &QWidget::maximumSize), kFixedDocks);
}

/// Leaves room for a frame around docks, as the styles of some desktops do.
class FramedDocks : public QProxyStyle {
public:
    using QProxyStyle::polish;
    void polish(QWidget* widget) override
    {
        QProxyStyle::polish(widget);
        if (qobject_cast<QDockWidget*>(widget) != nullptr)
            widget->setContentsMargins(6, 6, 6, 6);
    }
};

void MainWindowTest::frameRatesHaveTheHeightOfTheirDock()
{
    const auto fusion = qScopeGuard([] { QApplication::setStyle("Fusion"); });
    QApplication::setStyle(new FramedDocks);
    const WindowDriver driver;
    const int height = driver.child<QDockWidget>("dockWidget_Top")->height();
    QCOMPARE(driver.child<QWidget>("dockWidgetContents_11")->height(), height);
}

void MainWindowTest::startWithoutCameraApi()
{
    scripted::failCall("Sys_Initialize", Orvo::CAM_API_STS_DRIVER_LOAD_ERR);
    const WindowDriver driver;
    QCOMPARE(driver.log(), QStringList{"ERROR: Sys_Initialize error! [CAM_API_STS_DRIVER_LOAD_ERR]"});
    QCOMPARE(scripted::count("PrepareLUT"), 0);
    // Actions and docks keep the state that the form gives them.
    QVERIFY(driver.enabled("actionOpen"));
    QVERIFY(!driver.enabled("action_Menu_Normal_Size"));
    QVERIFY(areDocksFree(driver));
}

void MainWindowTest::startWithoutConversionTables()
{
    scripted::failCall("PrepareLUT", Orvo::CAM_API_STS_NO_MEMORY);
    const WindowDriver driver;
    QCOMPARE(driver.log(), QStringList{"ERROR: PrepareLUT error! [CAM_API_STS_NO_MEMORY]"});
    QVERIFY(areDocksFree(driver));
}

// --- Exit -----------------------------------------------------------------------------------------------------------

void MainWindowTest::exitClosesAndTerminates()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    scripted::clearCalls();
    driver.exit();
    QCOMPARE(recorded::windowOperations(),
             (QStringList{"Strm_Stop", "Strm_Close", "Cam_Close", "Sys_CloseSignal", "Sys_Terminate"}));
}

void MainWindowTest::exitContinuesAfterFailingCalls_data()
{
    QTest::addColumn<QByteArray>("operation");
    for (const char* operation : {"Strm_Stop", "Strm_Close", "Cam_Close", "Sys_CloseSignal", "Sys_Terminate"})
        QTest::newRow(operation) << QByteArray(operation);
}

void MainWindowTest::exitContinuesAfterFailingCalls()
{
    QFETCH(const QByteArray, operation);
    WindowDriver driver;
    driver.open();
    driver.start();
    scripted::clearCalls();
    scripted::failCall(operation.toStdString(), Orvo::CAM_API_STS_UNSUCCESSFUL);
    driver.exit();
    QCOMPARE(recorded::windowOperations(),
             (QStringList{"Strm_Stop", "Strm_Close", "Cam_Close", "Sys_CloseSignal", "Sys_Terminate"}));
}

void MainWindowTest::exitWithoutCamera()
{
    WindowDriver driver;
    scripted::clearCalls();
    driver.exit();
    QCOMPARE(recorded::windowOperations(), QStringList{"Sys_Terminate"});
}

void MainWindowTest::exitReportsAFailedTermination()
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

void MainWindowTest::exitActionClosesTheWindow()
{
    WindowDriver driver;
    QVERIFY(driver.window().isVisible());
    driver.trigger("action_Menu_Exit");
    QVERIFY(!driver.window().isVisible());
}

// --- Message log ----------------------------------------------------------------------------------------------------

void MainWindowTest::noMenuHidesTheToolBar()
{
    WindowDriver driver;
    driver.window().show();
    auto* const toolBar = driver.child<QToolBar>("mainToolBar");
    const QPoint free(toolBar->width() - 5, toolBar->height() / 2);
    QVERIFY(!toolBar->childAt(free));
    QContextMenuEvent event(QContextMenuEvent::Mouse, free, toolBar->mapToGlobal(free));
    QCoreApplication::sendEvent(toolBar, &event);
    QVERIFY(!QApplication::activePopupWidget());
}

void MainWindowTest::errorLineNamesTheStatus()
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

void MainWindowTest::errorLineOfAStatusWithTrailingBlank()
{
    WindowDriver driver;
    scripted::failCall("Cam_Open", Orvo::CAM_API_STS_MISSING_PACKETS);
    driver.open();
    QCOMPARE(driver.log(), QStringList{"ERROR: Error Cam_Open() [CAM_API_STS_MISSING_PACKETS ]"});
}

void MainWindowTest::logShowsMarkupAndPlaceholdersVerbatim()
{
    WindowDriver driver;
    const QString text = "<b>bold</b> &amp; %1 <img src='x'>";
    QVERIFY(QMetaObject::invokeMethod(&driver.window(), "write_log", Q_ARG(QString, text)));
    QVERIFY(QMetaObject::invokeMethod(&driver.window(), "write_log", Q_ARG(QString, text)));
    QCOMPARE(driver.log(), (QStringList{text, text}));
}

void MainWindowTest::logScrollsToTheNewestLine()
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

void MainWindowTest::clearEmptiesTheLog()
{
    WindowDriver driver;
    QMetaObject::invokeMethod(&driver.window(), "write_log", Q_ARG(QString, QString("line")));
    driver.child<QPushButton>("pushButtonClear")->click();
    QCOMPARE(driver.log(), QStringList());
    QMetaObject::invokeMethod(&driver.window(), "write_log", Q_ARG(QString, QString("next")));
    QCOMPARE(driver.log(), QStringList{"next"});
}

} // namespace

ORVO_TEST_CLASS(MainWindowTest)
#include "MainWindowTest.moc"

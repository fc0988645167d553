// The zoom commands: their limits, and what they do with the image.

#include "display/GraphicsView.h"
#include "display/ImageView.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/WindowDriver.h"

#include <QtTest>

namespace {

class ZoomTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void limits();
    void goesToEightWithoutAChangeOfState();
    void menuNormalSizeFollowsTheStateOnly();
    void menuTwins();
    void resendsTheImage();
    void resendsTheImageOfAnEarlierCamera();
};

void ZoomTest::limits()
{
    WindowDriver driver;
    driver.open();
    QVERIFY(driver.enabled("actionZoomIn"));
    QVERIFY(driver.enabled("actionZoomOut"));
    QVERIFY(driver.enabled("action_Menu_Zoom_Out"));
    QVERIFY(!driver.enabled("actionNormalSize"));

    driver.trigger("actionZoomIn"); // 2.0
    QVERIFY(driver.enabled("actionZoomIn") && driver.enabled("action_Menu_Zoom_In"));
    QVERIFY(driver.enabled("actionNormalSize"));
    driver.trigger("actionZoomIn"); // 4.0
    QVERIFY(driver.enabled("actionZoomIn") && driver.enabled("action_Menu_Zoom_In"));
    driver.start(); // a change of state allows less
    QVERIFY(!driver.enabled("actionZoomIn") && !driver.enabled("action_Menu_Zoom_In"));
    driver.triggerDisabled("actionZoomIn"); // 8.0
    QVERIFY(!driver.enabled("actionZoomIn") && !driver.enabled("action_Menu_Zoom_In"));
    auto* const view = qobject_cast<ImageView*>(driver.window().centralWidget());
    QCOMPARE(view->view()->transform().m11(), 8.0);

    driver.trigger("actionNormalSize");
    QCOMPARE(view->view()->transform().m11(), 1.0);
    QVERIFY(driver.enabled("actionZoomOut"));
    QVERIFY(!driver.enabled("action_Menu_Zoom_Out")); // off at 1.0, unlike the tool bar's
    QVERIFY(!driver.enabled("actionNormalSize"));

    driver.trigger("actionZoomOut"); // 0.5
    QVERIFY(driver.enabled("actionZoomOut") && driver.enabled("action_Menu_Zoom_Out"));
    driver.trigger("actionZoomOut"); // 0.25
    QVERIFY(!driver.enabled("actionZoomOut"));
    QVERIFY(driver.enabled("action_Menu_Zoom_Out"));
    QVERIFY(driver.enabled("actionNormalSize"));
    QCOMPARE(view->view()->transform().m11(), 0.25);
}

void ZoomTest::goesToEightWithoutAChangeOfState()
{
    WindowDriver driver;
    driver.open();
    driver.trigger("actionZoomIn");        // 2.0
    driver.trigger("action_Menu_Zoom_In"); // 4.0
    driver.trigger("actionZoomIn");        // 8.0
    QVERIFY(!driver.enabled("actionZoomIn"));
    QVERIFY(!driver.enabled("action_Menu_Zoom_In"));
    driver.trigger("actionNormalSize");
    QVERIFY(driver.enabled("actionZoomIn"));
    QVERIFY(driver.enabled("action_Menu_Zoom_In"));
}

void ZoomTest::menuNormalSizeFollowsTheStateOnly()
{
    WindowDriver driver;
    driver.triggerDisabled("actionZoomIn");
    QVERIFY(!driver.enabled("action_Menu_Normal_Size"));
    driver.triggerDisabled("action_Menu_Normal_Size");
    driver.open();
    driver.trigger("actionZoomIn");
    QVERIFY(driver.enabled("action_Menu_Normal_Size"));
    driver.trigger("action_Menu_Normal_Size");
    QVERIFY(driver.enabled("action_Menu_Normal_Size"));
}

void ZoomTest::menuTwins()
{
    WindowDriver driver;
    driver.open();
    auto* const view = qobject_cast<ImageView*>(driver.window().centralWidget())->view();
    driver.trigger("action_Menu_Zoom_In");
    QCOMPARE(view->transform().m11(), 2.0);
    driver.trigger("action_Menu_Normal_Size");
    QCOMPARE(view->transform().m11(), 1.0);
    driver.start(); // enables the menu's Zoom Out again
    driver.trigger("action_Menu_Zoom_Out");
    QCOMPARE(view->transform().m11(), 0.5);
}

void ZoomTest::resendsTheImage()
{
    QVector<QImage> shown;
    WindowDriver driver;
    driver.open();
    driver.start();
    connect(&driver.window(), &MainWindow::Update_Image, &driver.window(),
            [&](const QImage& image) { shown << image; });
    driver.trigger("actionZoomIn");
    QCOMPARE(shown.size(), 0); // nothing to send yet
    QVERIFY(scripted::deliverImage(1, 7));
    QTRY_COMPARE(shown.size(), 1);
    driver.trigger("actionZoomIn");
    QCOMPARE(shown.size(), 2);
    QCOMPARE(shown[1], shown[0]);
}

void ZoomTest::resendsTheImageOfAnEarlierCamera()
{
    QVector<QImage> shown;
    WindowDriver driver;
    driver.open();
    driver.start();
    connect(&driver.window(), &MainWindow::Update_Image, &driver.window(),
            [&](const QImage& image) { shown << image; });
    QVERIFY(scripted::deliverImage(1, 7));
    QTRY_COMPARE(shown.size(), 1);
    driver.close();
    driver.open();
    shown.clear();
    driver.trigger("actionZoomIn");
    QCOMPARE(shown.size(), 1);
    QCOMPARE(shown[0].size(), QSize(64, 48));
    QCOMPARE(shown[0].pixel(63, 47), qRgb(7, 7, 7));
}

} // namespace

QTEST_MAIN(ZoomTest)
#include "ZoomTest.moc"

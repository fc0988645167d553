// The zoom commands: their limits, and what they do with the image.

#include "display/GraphicsView.h"
#include "display/ImageView.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/ShownImages.h"
#include "tests/support/TestProgram.h"
#include "tests/support/WindowDriver.h"

#include <QtTest>

namespace {

class ZoomTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void limits();
    void reachesEightWithoutAStateChange();
    void menuNormalSizeDependsOnTheStateOnly();
    void menuActionsZoom();
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
    driver.start(); // a state change applies the lower limit
    QVERIFY(!driver.enabled("actionZoomIn") && !driver.enabled("action_Menu_Zoom_In"));
    driver.triggerDisabled("actionZoomIn"); // 8.0
    QVERIFY(!driver.enabled("actionZoomIn") && !driver.enabled("action_Menu_Zoom_In"));
    ImageView* const view = driver.imageView();
    QCOMPARE(view->view()->transform().m11(), 8.0);

    driver.trigger("actionNormalSize");
    QCOMPARE(view->view()->transform().m11(), 1.0);
    QVERIFY(driver.enabled("actionZoomOut"));
    QVERIFY(!driver.enabled("action_Menu_Zoom_Out")); // disabled at 1.0, unlike that of the tool bar
    QVERIFY(!driver.enabled("actionNormalSize"));

    driver.trigger("actionZoomOut"); // 0.5
    QVERIFY(driver.enabled("actionZoomOut") && driver.enabled("action_Menu_Zoom_Out"));
    driver.trigger("actionZoomOut"); // 0.25
    QVERIFY(!driver.enabled("actionZoomOut"));
    QVERIFY(driver.enabled("action_Menu_Zoom_Out"));
    QVERIFY(driver.enabled("actionNormalSize"));
    QCOMPARE(view->view()->transform().m11(), 0.25);

    driver.trigger("action_Menu_Zoom_Out"); // the menu action has no such limit
    QCOMPARE(view->view()->transform().m11(), 0.125);
    driver.trigger("action_Menu_Normal_Size");
    QCOMPARE(view->view()->transform().m11(), 1.0);
}

void ZoomTest::reachesEightWithoutAStateChange()
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

void ZoomTest::menuNormalSizeDependsOnTheStateOnly()
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

void ZoomTest::menuActionsZoom()
{
    WindowDriver driver;
    driver.open();
    const GraphicsView* const view = driver.imageView()->view();
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
    WindowDriver driver;
    driver.open();
    driver.start();
    const ShownImages shown(driver.window(), ShownImages::Keep::All);
    driver.trigger("actionZoomIn");
    QCOMPARE(shown.count(), 0); // no image yet
    QVERIFY(scripted::deliverImage(1, 7));
    QTRY_COMPARE(shown.count(), 1);
    driver.trigger("actionZoomIn");
    QCOMPARE(shown.count(), 2);
    QCOMPARE(shown.images()[1], shown.images()[0]);
}

void ZoomTest::resendsTheImageOfAnEarlierCamera()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    ShownImages shown(driver.window(), ShownImages::Keep::All);
    QVERIFY(scripted::deliverImage(1, 7));
    QTRY_COMPARE(shown.count(), 1);
    driver.close();
    driver.open();
    shown.forget();
    driver.trigger("actionZoomIn");
    QCOMPARE(shown.count(), 1);
    QCOMPARE(shown.last().size(), QSize(64, 48));
    QCOMPARE(shown.last().pixel(63, 47), qRgb(7, 7, 7));
}

} // namespace

ORVO_TEST_CLASS(ZoomTest)
#include "ZoomTest.moc"

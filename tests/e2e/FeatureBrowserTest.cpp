// The real window with the real camera libraries: features are changed in the table, and image and table follow.

#include "discovery/DiscoveryDlg.h"
#include "display/GraphicsView.h"
#include "display/ImageView.h"
#include "tests/support/FeatureHand.h"
#include "tests/support/WindowDriver.h"

#include <QtTest>

#include <QGraphicsItem>
#include <QPushButton>
#include <QTreeWidget>

namespace {

constexpr int kPatienceMs = 20000;

class FeatureBrowserTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void pixelFormat();
    void width();
    void exposureTimeAndGain();
    void softwareTriggerFromTheToolBar();
    void userSet();
    void everyFeatureOfADescriptionFileCanBeClicked();

private:
    void open(const QString& model);
    [[nodiscard]] QSizeF shownSize();
    /// The mean grey of the next image.
    [[nodiscard]] double nextBrightness();

    std::unique_ptr<WindowDriver> driver;
    std::unique_ptr<FeatureHand> hand;
    int images = 0;
    QImage last;
};

void FeatureBrowserTest::init()
{
    qputenv("ORVO_SIMULATED_CAMERAS", "3," DESCRIPTION_FILE);
    driver = std::make_unique<WindowDriver>();
    images = 0;
    connect(&driver->window(), &MainWindow::Update_Image, &driver->window(), [this](const QImage& image) {
        last = image.copy();
        ++images;
    });
    hand = std::make_unique<FeatureHand>(driver->window());
}

void FeatureBrowserTest::cleanup()
{
    hand.reset();
    driver.reset();
}

void FeatureBrowserTest::open(const QString& model)
{
    driver->open([&](DiscoveryDlg& dialog) {
        auto* const list = dialog.findChild<QTreeWidget*>("discoveryWidget");
        const auto found = list->findItems(model, Qt::MatchExactly, 1);
        if (!found.isEmpty())
            list->setCurrentItem(found.first());
        dialog.findChild<QPushButton*>(found.isEmpty() ? "cancelButton" : "openButton")->click();
    });
    QVERIFY2(driver->enabled("actionStart"), qPrintable(driver->log().join('\n')));
    QVERIFY(QTest::qWaitForWindowActive(&driver->window()));
    hand->clickTool("&levelGuru");
}

QSizeF FeatureBrowserTest::shownSize()
{
    auto* const view = qobject_cast<ImageView*>(driver->window().centralWidget());
    return view ? view->view()->scene()->items().first()->boundingRect().size() : QSizeF();
}

double FeatureBrowserTest::nextBrightness()
{
    const int before = images;
    // The second one: the first may have been on its way already.
    if (!QTest::qWaitFor([&] { return images >= before + 2; }, kPatienceMs))
        return -1;
    double sum = 0;
    int count = 0;
    for (int y = 0; y < last.height(); y += 16) {
        for (int x = 0; x < last.width(); x += 16, ++count)
            sum += qGray(last.pixel(x, y));
    }
    return sum / count;
}

void FeatureBrowserTest::pixelFormat()
{
    open("SIM-C1920");
    hand->choose("PixelFormat", "RGB8");
    QCOMPARE(hand->shown("PixelFormat"), QString("RGB8"));
    driver->start();
    QVERIFY(nextBrightness() > 5);
    // Locked while the stream runs.
    QVERIFY(!hand->clickValue("PixelFormat"));
    driver->stop();
    hand->choose("PixelFormat", "BayerRG12p");
    driver->start();
    QVERIFY(nextBrightness() > 5);
    QCOMPARE(driver->log(), QStringList());
}

void FeatureBrowserTest::width()
{
    open("SIM-C1920");
    hand->type("Width", "640");
    QCOMPARE(hand->shown("Width"), QString("640 px"));
    driver->start();
    QCOMPARE(shownSize(), QSizeF(640, 1200));
    QTRY_COMPARE_WITH_TIMEOUT(last.size(), QSize(640, 1200), kPatienceMs);
    driver->stop();
    hand->type("Width", "800");
    driver->start();
    QTRY_COMPARE_WITH_TIMEOUT(last.size(), QSize(800, 1200), kPatienceMs);
    QCOMPARE(shownSize(), QSizeF(800, 1200));
}

void FeatureBrowserTest::exposureTimeAndGain()
{
    open("SIM-C1920");
    driver->start();
    const double normal = nextBrightness();
    hand->type("ExposureTime", "1000");
    // A busy machine shows images of before the change for a while.
    QTRY_VERIFY_WITH_TIMEOUT(nextBrightness() < normal / 2, kPatienceMs);
    const double dark = nextBrightness();
    hand->type("Gain", "12");
    QTRY_VERIFY_WITH_TIMEOUT(nextBrightness() > dark * 1.5, kPatienceMs);
}

void FeatureBrowserTest::softwareTriggerFromTheToolBar()
{
    open("SIM-C1920");
    driver->start();
    QVERIFY(!driver->enabled("actionSoftwareTrigger"));
    hand->choose("TriggerSource", "Software");
    hand->choose("TriggerMode", "On");
    QVERIFY(driver->enabled("actionSoftwareTrigger"));
    QVERIFY(driver->enabled("action_Menu_One_Shot"));

    // What was on its way arrives, then nothing comes by itself.
    int before = -1;
    QTRY_VERIFY_WITH_TIMEOUT(std::exchange(before, images) == images, kPatienceMs);
    QTest::qWait(300);
    const int still = images;
    QTest::qWait(300);
    QCOMPARE(images, still);
    driver->trigger("actionSoftwareTrigger");
    QTRY_COMPARE_WITH_TIMEOUT(images, still + 1, kPatienceMs);

    hand->choose("TriggerMode", "Off");
    QVERIFY(!driver->enabled("actionSoftwareTrigger"));
}

void FeatureBrowserTest::userSet()
{
    open("SIM-C1920");
    const QString gain = hand->shown("Gain");
    hand->type("Gain", "6");
    QVERIFY(hand->shown("Gain") != gain);
    hand->choose("UserSetSelector", "Default");
    hand->execute("UserSetLoad");
    QCOMPARE(hand->shown("Gain"), gain);
}

void FeatureBrowserTest::everyFeatureOfADescriptionFileCanBeClicked()
{
    open(DESCRIPTION_MODEL);
    const QStringList names = hand->names();
    QVERIFY(names.size() >= 5);
    for (const QString& name : names) {
        hand->clickName(name);
        hand->clickValue(name);
    }
    driver->close();
    QVERIFY(driver->enabled("actionOpen"));
    QCOMPARE(driver->log(), QStringList());
}

} // namespace

QTEST_MAIN(FeatureBrowserTest)
#include "FeatureBrowserTest.moc"

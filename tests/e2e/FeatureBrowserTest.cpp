// The real window with the real camera libraries: changes in the feature table affect image and table.

#include "features/description/DescBox.h"
#include "features/view/FeatureView.h"
#include "tests/support/FeatureHand.h"
#include "tests/support/Patience.h"
#include "tests/support/ShownImages.h"
#include "tests/support/WindowDriver.h"

#include <QtTest>

#include <QLabel>
#include <QSet>
#include <QToolTip>

#include <algorithm>
#include <cmath>

namespace {

// The colours of the test pattern, from left to right.
constexpr QRgb kBars[] = {0xffffffff, 0xffffff00, 0xff00ffff, 0xff00ff00,
                          0xffff00ff, 0xffff0000, 0xff0000ff, 0xff000000};
constexpr int kBarCount = std::size(kBars);

/// The largest error of a colour channel in the middle of the bars.
int worstBar(const QImage& image)
{
    int worst = 0;
    for (int bar = 0; bar < kBarCount; ++bar) {
        const QRgb is = image.pixel((2 * bar + 1) * image.width() / (2 * kBarCount), image.height() / 2);
        const QRgb wanted = kBars[bar];
        worst = std::max({worst, std::abs(qRed(is) - qRed(wanted)), std::abs(qGreen(is) - qGreen(wanted)),
                          std::abs(qBlue(is) - qBlue(wanted))});
    }
    return worst;
}

/// The number of colours in the middle row.
int coloursOf(const QImage& image)
{
    QSet<QRgb> colours;
    for (int x = 0; x < image.width(); ++x)
        colours.insert(image.pixel(x, image.height() / 2));
    return colours.size();
}

bool isGrey(const QImage& image)
{
    for (int y = 0; y < image.height(); y += 7) {
        for (int x = 0; x < image.width(); x += 7) {
            const QRgb pixel = image.pixel(x, y);
            if (qRed(pixel) != qGreen(pixel) || qGreen(pixel) != qBlue(pixel))
                return false;
        }
    }
    return true;
}

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
    void lineScanImage();
    void everyFeatureCanBeClicked_data();
    void everyFeatureCanBeClicked();
    void toolTipIsNoEditor();

private:
    void open(const QString& model);
    /// Waits for an image captured after this call.
    [[nodiscard]] bool nextImage();
    /// The mean grey value of the next image.
    [[nodiscard]] double nextBrightness();
    /// The message log without the lines about busy buffers, which appear if the machine is slower than the camera.
    [[nodiscard]] QStringList errors() const;
    /// Clicks the name and the value of each feature in the table; returns the editors that opened.
    [[nodiscard]] QStringList clickEveryFeature();

    std::unique_ptr<WindowDriver> driver;
    std::unique_ptr<FeatureHand> hand;
    std::unique_ptr<ShownImages> images;
};

void FeatureBrowserTest::init()
{
    qputenv("ORVO_SIMULATED_CAMERAS",
            "3," DESCRIPTIONS "/bench-lamp.xml," DESCRIPTIONS "/line-scan.xml," DESCRIPTIONS "/every-element.xml");
    driver = std::make_unique<WindowDriver>();
    images = std::make_unique<ShownImages>(driver->window(), ShownImages::Keep::Last);
    hand = std::make_unique<FeatureHand>(driver->window());
}

void FeatureBrowserTest::cleanup()
{
    hand.reset();
    images.reset();
    driver.reset();
}

void FeatureBrowserTest::open(const QString& model)
{
    QVERIFY2(driver->openModel(model), qPrintable(driver->log().join('\n')));
    // When the dialog closes, the window manager does not always return to the window of its own accord.
    QVERIFY(QTest::qWaitFor(
        [this] {
            driver->window().activateWindow();
            return driver->window().isActiveWindow();
        },
        kPatienceMs));
    hand->clickTool("&levelGuru");
}

bool FeatureBrowserTest::nextImage()
{
    return images->waitForMore(2); // the first may have been captured before the call
}

double FeatureBrowserTest::nextBrightness()
{
    if (!nextImage())
        return -1;
    const QImage last = images->last();
    double sum = 0;
    int count = 0;
    for (int y = 0; y < last.height(); y += 16) {
        for (int x = 0; x < last.width(); x += 16, ++count)
            sum += qGray(last.pixel(x, y));
    }
    return sum / count;
}

QStringList FeatureBrowserTest::errors() const
{
    QStringList lines = driver->log();
    lines.erase(std::remove_if(lines.begin(), lines.end(),
                               [](const QString& line) { return line.startsWith("CallbackBufferBusy."); }),
                lines.end());
    return lines;
}

void FeatureBrowserTest::pixelFormat()
{
    open("SIM-C1920");
    hand->choose("TestPattern", "ColorBar");
    struct Row {
        const char* format;
        int bits;
        bool sharp; ///< every pixel has all channels: no interpolation where two bars meet
    };
    for (const Row& row : {Row{"RGB8", 24, true}, Row{"BayerRG12p", 12, false}, Row{"BayerRG8", 8, false}}) {
        hand->choose("PixelFormat", row.format);
        QCOMPARE(hand->shown("PixelFormat"), QString(row.format));
        QCOMPARE(hand->shown("PayloadSize").section(' ', 0, 0), QString::number(1920 * 1200 * row.bits / 8));
        driver->start();
        QVERIFY(nextImage());
        QVERIFY2(worstBar(images->last()) <= 2, row.format);
        QCOMPARE(coloursOf(images->last()) == kBarCount, row.sharp);
        // Read-only while the stream runs.
        QVERIFY(!hand->clickValue("PixelFormat"));
        driver->stop();
    }
    QCOMPARE(errors(), QStringList());
}

void FeatureBrowserTest::width()
{
    open("SIM-C1920");
    hand->type("Width", "640");
    QCOMPARE(hand->shown("Width"), QString("640 px"));
    driver->start();
    QCOMPARE(driver->imageArea().size(), QSizeF(640, 1200));
    QTRY_COMPARE_WITH_TIMEOUT(images->last().size(), QSize(640, 1200), kPatienceMs);
    driver->stop();
    hand->type("Width", "800");
    driver->start();
    QTRY_COMPARE_WITH_TIMEOUT(images->last().size(), QSize(800, 1200), kPatienceMs);
    QCOMPARE(driver->imageArea().size(), QSizeF(800, 1200));
}

void FeatureBrowserTest::exposureTimeAndGain()
{
    open("SIM-C1920");
    QCOMPARE(hand->shown("ExposureTime"), QString::fromUtf8("10000.0 µs"));
    driver->start();
    const double normal = nextBrightness();
    // A busy machine may show images from before the change for a while.
    const auto becomes = [this](double wanted) {
        return QTest::qWaitFor([&] { return std::abs(nextBrightness() - wanted) < wanted / 20; }, kPatienceMs);
    };
    hand->type("ExposureTime", "1000"); // a tenth of the previous value
    QCOMPARE(hand->shown("ExposureTime"), QString::fromUtf8("1000.0 µs"));
    QVERIFY(becomes(normal / 10));
    hand->type("Gain", "12"); // in dB: four times brighter
    QCOMPARE(hand->shown("Gain"), QString("12.0 dB"));
    QVERIFY(becomes(normal / 10 * 4));
    hand->type("Gain", "0 dB");
    QCOMPARE(hand->shown("Gain"), QString("0.0 dB"));
    QVERIFY(becomes(normal / 10));
    hand->type("ExposureTime", "4000 us");
    QCOMPARE(hand->shown("ExposureTime"), QString::fromUtf8("4000.0 µs"));
    QVERIFY(becomes(normal / 10 * 4));
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

    // After the images in transit none arrives without a trigger: a complete report shows zero.
    QTRY_COMPARE_WITH_TIMEOUT(driver->rates(), QString("[Disp =   0.00 fps] , [Cap =   0.00 fps]"), kPatienceMs);
    const int still = images->count();
    driver->trigger("actionSoftwareTrigger");
    QTRY_COMPARE_WITH_TIMEOUT(images->count(), still + 1, kPatienceMs);

    hand->choose("TriggerMode", "Off");
    QVERIFY(!driver->enabled("actionSoftwareTrigger"));
}

void FeatureBrowserTest::userSet()
{
    open("SIM-C1920");
    const QString gain = hand->shown("Gain");
    const auto brightness = [this] {
        driver->start();
        const double is = nextBrightness();
        driver->stop();
        return is;
    };
    const double normal = brightness();

    hand->type("Gain", "6");
    QCOMPARE(hand->shown("Gain"), QString("6.0 dB"));
    hand->choose("UserSetSelector", "UserSet1");
    hand->execute("UserSetSave");
    const double brighter = brightness();
    QVERIFY(brighter > normal * 1.3);

    hand->choose("UserSetSelector", "Default");
    hand->execute("UserSetLoad");
    QCOMPARE(hand->shown("Gain"), gain);
    const double loaded = brightness();
    QVERIFY2(std::abs(loaded - normal) < normal / 20, qPrintable(QString::number(loaded)));

    hand->choose("UserSetSelector", "UserSet1");
    hand->execute("UserSetLoad");
    QCOMPARE(hand->shown("Gain"), QString("6.0 dB"));
    const double again = brightness();
    QVERIFY2(std::abs(again - brighter) < brighter / 20, qPrintable(QString::number(again)));
}

void FeatureBrowserTest::lineScanImage()
{
    open("LineScan");
    hand->type("Height", "64");
    QCOMPARE(hand->shown("Height"), QString("64 lines"));
    for (const char* format : {"Mono8", "Mono12p"}) {
        hand->choose("PixelFormat", format);
        driver->start();
        QVERIFY2(nextImage(), qPrintable(driver->log().join('\n')));
        QCOMPARE(images->last().size(), QSize(2048, 64));
        QCOMPARE(driver->imageArea().size(), QSizeF(2048, 64));
        QVERIFY(isGrey(images->last()));
        QVERIFY(coloursOf(images->last()) > 1);
        driver->stop();
    }
    QCOMPARE(errors(), QStringList());
}

QStringList FeatureBrowserTest::clickEveryFeature()
{
    QStringList editors;
    for (const QString& name : hand->names()) {
        hand->clickName(name);
        const QString heading = hand->view().descBox()->findChild<QLabel*>()->text();
        if (!heading.startsWith("Description: " + name + " ("))
            QTest::qFail(qPrintable(name + " is described as " + heading), __FILE__, __LINE__);
        const QWidget* const editor = hand->clickValue(name);
        editors << name + ": " + (editor ? editor->metaObject()->className() : "none");
    }
    return editors;
}

void FeatureBrowserTest::everyFeatureCanBeClicked_data()
{
    // Each feature with its editor; a star marks those of the Invisible level.
    QTest::addColumn<QStringList>("features");
    QTest::newRow("BenchLamp") << QStringList{
        "Width: LineEditWithSlider",
        "Height: LineEditWithSlider",
        "PixelFormat: QComboBox",
        "Brightness: LineEditWithSlider",
        "Warmth: LineEditWithSlider",
        "Switch: QComboBox",
        "Program: QComboBox",
        "NoProgram: QComboBox",
        "Flash: QPushButton",
        "Label: QLineEdit",
        "Raw: none",
        "*Broken: none",
    };
    QTest::newRow("LineScan") << QStringList{
        "Width: LineEditWithSlider",  "Height: LineEditWithSlider", "PixelFormat: QComboBox",
        "PayloadSize: QLineEdit",     "LineRate: QLineEdit",        "*Service: QLineEdit",
        "Encoder: QComboBox",         "StepsPerLine: none",         "Position: none",
        "ResetPosition: QPushButton",
    };
    QTest::newRow("EveryElement") << QStringList{
        "Width: LineEditWithSlider",
        "Height: LineEditWithSlider",
        "PixelFormat: QComboBox",
        "AnInteger: QLineEdit",
        "AnIntReg: QLineEdit",
        "AMaskedIntReg: QLineEdit",
        "*AStructEntry: QLineEdit",
        "AnIntConverter: QLineEdit",
        "AnIntSwissKnife: none",
        "AFloat: LineEditWithSlider",
        "AFloatReg: QLineEdit",
        "AConverter: QLineEdit",
        "ASwissKnife: none",
        "ABoolean: QComboBox",
        "ACommand: QPushButton",
        "AString: QLineEdit",
        "AStringReg: QLineEdit",
        "ARegister: none",
        "AnEnumeration: QComboBox",
        "*ANode: none",
        "Device: none",
        "*Deep: QLineEdit",
    };
}

void FeatureBrowserTest::everyFeatureCanBeClicked()
{
    QFETCH(QStringList, features);
    open(QTest::currentDataTag());

    QStringList everyday = features;
    everyday.erase(std::remove_if(everyday.begin(), everyday.end(), [](const QString& f) { return f.startsWith('*'); }),
                   everyday.end());
    QCOMPARE(clickEveryFeature(), everyday);

    hand->view().selectInvisible(); // it has no visible button
    QCOMPARE(clickEveryFeature(), features.replaceInStrings("*", ""));

    driver->close();
    QVERIFY(driver->enabled("actionOpen"));
    QCOMPARE(errors(), QStringList());
}

// On a busy machine, one shows while other tests look for editors.
void FeatureBrowserTest::toolTipIsNoEditor()
{
    open("SIM-C1920");
    QWidget* const viewport = hand->table().viewport();
    QToolTip::showText(viewport->mapToGlobal(viewport->rect().center()), "PixelFormat", viewport);
    QTRY_VERIFY_WITH_TIMEOUT(QToolTip::isVisible(), kPatienceMs);
    QVERIFY(!openEditor(hand->table()));
}

} // namespace

QTEST_MAIN(FeatureBrowserTest)
#include "FeatureBrowserTest.moc"

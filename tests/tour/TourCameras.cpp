// Each simulated camera, its test patterns, and the effect of each simulated fault.

#include "tests/tour/Tour.h"

#include "tests/support/FeatureHand.h"
#include "tests/support/OpenedCamera.h"

#include <QTest>

namespace {

QStringList entriesOf(const char* enumeration)
{
    QStringList names;
    Orvo::CAM_NODE_HANDLE node = 0;
    std::uint32_t count = 0;
    const Orvo::CAM_HANDLE camera = opened::camera();
    if (Orvo::Nd_GetNode(camera, enumeration, &node) != 0 || Orvo::Nd_GetNumOfEnumEntries(camera, node, &count) != 0)
        endTour(QString("no %1").arg(enumeration));
    for (std::uint32_t i = 0; i < count; ++i) {
        Orvo::CAM_NODE_HANDLE entry = 0;
        char name[256];
        std::uint32_t size = sizeof name;
        if (Orvo::Nd_GetEnumEntryByIndex(camera, node, i, &entry) != 0 ||
            Orvo::Nd_GetEnumEntryStrValue(camera, entry, name, &size) != 0) {
            endTour(QString("no entry %1 of %2").arg(i).arg(enumeration));
        }
        names << name;
    }
    return names;
}

void set(const char* integer, std::int64_t value)
{
    if (opened::set(integer, value) != 0)
        endTour(QString("%1 does not become %2").arg(integer).arg(value));
}

} // namespace

void Tour::camerasChapter()
{
    for (const char* model : {"SIM-M1280", "SIM-C5472", "SIM-C1920"}) {
        if (m_driver->enabled("actionClose"))
            m_driver->close();
        openCamera(model);
        m_driver->start();
        m_driver->trigger("actionZoomOut");
        m_driver->trigger("actionZoomOut");
        waitForImages(3);
        picture(QString("camera-%1").arg(model));
    }
    testPatterns();
}

void Tour::testPatterns()
{
    // A complete small image at 100 %: lines of one pixel would vanish at smaller zoom factors.
    m_driver->stop();
    set("Width", 640);
    set("Height", 480);
    m_driver->trigger("actionNormalSize");
    m_driver->start();
    for (const QString& pattern : entriesOf("TestPattern")) {
        if (opened::set("TestPattern", pattern.toUtf8().constData()) != 0)
            endTour("no pattern " + pattern);
        waitForImages(3);
        picture("pattern-" + pattern);
    }
    if (opened::set("TestPattern", "Off") != 0)
        endTour("the pattern stays on");
}

void Tour::lostImages()
{
    FeatureHand hand(m_driver->window());
    hand.type("AcquisitionFrameRate", "2");
    hand.type("SimulationLoseEvery", "2");
    // Only the second report covers nothing but the slow stream.
    waitForRates();
    waitForRates();
    for (const char* number : {"1", "2"}) {
        waitForImages(1);
        picture(QString("fault-images-lost-%1").arg(number));
    }
    hand.type("SimulationLoseEvery", "0");
    hand.type("AcquisitionFrameRate", "60");
}

void Tour::faultsChapter()
{
    const auto waitForLine = [this](const char* part) {
        waitFor(part, [&] { return !m_driver->log().filter(part).isEmpty(); });
    };

    lostImages();

    m_driver->clearLog();
    set("SimulationIncompleteEvery", 20);
    waitForLine("CallBackErrorImage.");
    picture("fault-images-incomplete");
    set("SimulationIncompleteEvery", 0);

    m_driver->clearLog();
    set("SimulationErrorBurst", 5);
    waitFor("the burst", [&] { return m_driver->log().filter("CallBackErrorImage.").size() >= 5; });
    picture("fault-error-burst");

    m_driver->clearLog();
    set("SimulationReplugAfter", 2);
    if (opened::execute("SimulationUnplug") != 0)
        endTour("the camera does not let itself be unplugged");
    waitForLine("A camera has been Removed.");
    picture("fault-unplugged");
    waitFor("the camera to come back", [this] { return m_driver->openModel("SIM-C1920"); });
    m_driver->start();
    waitForImages(3);
    picture("fault-plugged-in-again");
}

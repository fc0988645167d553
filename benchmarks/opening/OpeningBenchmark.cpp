// What does it take to open a camera with a maker's description, to show its features, and to close it?
//
// Every round measures each step once, in turn; printed are medians and quartiles. It is the processor time of the
// whole process that counts, so that other programs do not, and nothing is hidden on another thread. Two steps are told
// as multiples of arv_gc_new of the same text in the same round. Ends with status 1 where a goal is missed.
//
//     QT_QPA_PLATFORM=offscreen build/release/bin/opening [--rounds N] [--features N] [--write FILE]
//
// With --write the description goes to that file, and nothing is measured.

#include "benchmarks/Report.h"
#include "benchmarks/opening/MakerDescription.h"
#include "camera/OrvoCamApi.h"
#include "cameralibs/genicam/nodes/NodeMap.h"
#include "features/view/FeatureView.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>
#include <QTemporaryDir>

#include <arv.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <exception>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

void require(bool met, const char* what)
{
    if (!met)
        throw std::runtime_error(std::string(what) + " failed");
}

double milliseconds(const std::function<void()>& step)
{
    const std::clock_t start = std::clock();
    step();
    return 1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

/// What every round tells.
struct Figures {
    std::vector<double> map;
    std::vector<double> open;
    std::vector<double> shown;
    std::vector<double> close;
    std::vector<double> read;

    void print() const
    {
        using report::atMost;
        using report::figureOf;
        report::print("description and node map, times arv_gc_new", figureOf(map), "", atMost(2.5));
        report::print("Cam_Open of a camera made from a file, times arv_gc_new", figureOf(open), "", atMost(2.5));
        report::print("Cam_Open to the painted table", figureOf(shown), "ms", atMost(150));
        report::print("Cam_Close", figureOf(close), "ms", atMost(10));
        report::print("every feature read again, each", figureOf(read), "us", atMost(5));
    }
};

double timeOfPeer(const std::string& xml)
{
    ArvGc* gc = nullptr;
    const double time = milliseconds([&] { gc = arv_gc_new(nullptr, xml.data(), xml.size()); });
    require(gc != nullptr, "arv_gc_new");
    g_object_unref(gc);
    return time;
}

/// What any camera takes once its description was fetched.
double timeOfMap(const std::string& xml)
{
    std::unique_ptr<cameralibs::NodeMap> map;
    return milliseconds(
        [&] { map = std::make_unique<cameralibs::NodeMap>(cameralibs::readDescription(xml), nullptr); });
}

void measure(const std::string& xml, Figures& figures)
{
    const double peer = timeOfPeer(xml);
    figures.map.push_back(timeOfMap(xml) / peer);

    auto view = std::make_unique<FeatureView>();
    view->selectGuru();
    view->resize(420, 800);
    view->show();
    QCoreApplication::processEvents();
    Orvo::CAM_HANDLE camera = 0;
    const double opening =
        milliseconds([&] { require(Orvo::Cam_Open(0, &camera, 0, 0, nullptr, 0) == 0, "Cam_Open"); });
    const double showing = milliseconds([&] {
        require(view->SetCam(camera) == 0, "SetCam");
        view->tableView()->viewport()->repaint();
    });
    QCoreApplication::processEvents();
    const double reading = milliseconds([&] { view->updateAllFeatures(); });
    const auto items = static_cast<double>(view->items().size());
    view.reset();
    const double closing = milliseconds([&] { require(Orvo::Cam_Close(camera) == 0, "Cam_Close"); });

    figures.open.push_back(opening / peer);
    figures.shown.push_back(opening + showing);
    figures.read.push_back(1000 * reading / items);
    figures.close.push_back(closing);
}

void write(const QString& path, const std::string& xml)
{
    QFile file(path);
    const auto size = static_cast<qint64>(xml.size());
    require(file.open(QIODevice::WriteOnly) && file.write(xml.data(), size) == size && file.flush(), "writing");
}

/// The status of the process.
int run(int rounds, const std::string& xml)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("maker.xml"));
    write(path, xml);
    qputenv("ORVO_SIMULATED_CAMERAS", "0," + QFile::encodeName(path));
    std::uint32_t cameras = 0;
    require(Orvo::Sys_Initialize(Orvo::CAM_LAYER_SIMULATED) == 0, "Sys_Initialize");
    require(Orvo::Sys_GetNumOfCameras(&cameras) == 0 && cameras == 1, "finding the camera");
    Figures warmUp;
    measure(xml, warmUp);
    Figures figures;
    for (int round = 0; round < rounds; ++round)
        measure(xml, figures);
    figures.print();
    return report::exitStatus();
}

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    const QCommandLineOption rounds(QStringLiteral("rounds"), {}, QStringLiteral("number"), QStringLiteral("15"));
    const QCommandLineOption features(QStringLiteral("features"), {}, QStringLiteral("number"), QStringLiteral("820"));
    const QCommandLineOption target(QStringLiteral("write"), {}, QStringLiteral("file"));
    QCommandLineParser parser;
    parser.addOptions({rounds, features, target});
    parser.process(application);
    try {
        const std::string xml = makerDescription(parser.value(features).toUInt());
        if (parser.isSet(target)) {
            write(parser.value(target), xml);
            return 0;
        }
        return run(std::max(parser.value(rounds).toInt(), 1), xml);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 2;
    }
}

// Measures how long it takes to open a camera with a maker's description, to show its features, and to close it.
//
// Every round measures each step once, in turn; printed are medians and quartiles. It is the processor time of the
// whole process that counts, so that other programs do not, and nothing is hidden on another thread. Steps with a peer
// in Aravis are also told as multiples of its time in the same round: opening of arv_gc_new of the same text, closing
// of g_object_unref of its result, reading of Aravis' calls for the same features. Ends with status 1 where a goal is
// missed.
//
//     QT_QPA_PLATFORM=offscreen build/release/bin/opening [--rounds N] [--features N] [--write FILE]
//
// With --write it only writes the description to the file.

#include "benchmarks/Report.h"
#include "benchmarks/opening/MakerDescription.h"
#include "camera/OrvoCamApi.h"
#include "cameralibs/base/GlibOwners.h"
#include "cameralibs/genicam/nodes/NodeMap.h"
#include "features/view/FeatureView.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>
#include <QTemporaryDir>

#include <arv.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
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

/// The results of all rounds.
struct Figures {
    std::vector<double> map;
    std::vector<double> open;
    std::vector<double> shown;
    std::vector<double> close;
    std::vector<double> closeTimes;
    std::vector<double> read;
    std::vector<double> readTimes;

    void print() const
    {
        using report::atMost;
        using report::figureOf;
        report::print("description and node map, times arv_gc_new", figureOf(map), "", atMost(2.5));
        report::print("Cam_Open of a camera made from a file, times arv_gc_new", figureOf(open), "", atMost(2.5));
        report::print("Cam_Open to the painted table", figureOf(shown), "ms", atMost(150));
        report::print("Cam_Close", figureOf(close), "ms", atMost(10));
        report::print("Cam_Close, times g_object_unref of what arv_gc_new returned", figureOf(closeTimes));
        report::print("every feature read again, each", figureOf(read), "us", atMost(5));
        report::print("every feature read again, times the same with bare Aravis calls", figureOf(readTimes));
    }
};

// A device whose registers are zero, like those of a camera made from a file.

struct ZeroDevice {
    ArvDevice parent;
};

struct ZeroDeviceClass {
    ArvDeviceClass parent;
};

GType zero_device_get_type();

G_DEFINE_TYPE(ZeroDevice, zero_device, ARV_TYPE_DEVICE)

gboolean readZeros(ArvDevice*, guint64, guint32 size, void* buffer, GError**)
{
    std::memset(buffer, 0, size);
    return TRUE;
}

gboolean readZero(ArvDevice*, guint64, guint32* value, GError**)
{
    *value = 0;
    return TRUE;
}

void zero_device_class_init(ZeroDeviceClass* type)
{
    type->parent.read_memory = readZeros;
    type->parent.read_register = readZero;
}

void zero_device_init(ZeroDevice*) {}

/// The peer: a description in Aravis alone.
class Bare {
public:
    explicit Bare(const std::string& xml)
        : m_device(static_cast<ArvDevice*>(g_object_new(zero_device_get_type(), nullptr)))
    {
        opening = milliseconds([&] { m_gc.reset(arv_gc_new(m_device.get(), xml.data(), xml.size())); });
        require(m_gc != nullptr, "arv_gc_new");
    }

    /// What the feature table reads: access modes, values and maxima.
    void readFeatures() { readFeatures("Root"); }

    void close() { m_gc.reset(); }

    double opening = 0;

private:
    void readFeatures(const char* category)
    {
        for (const GSList* name = arv_gc_category_get_features(ARV_GC_CATEGORY(arv_gc_get_node(m_gc.get(), category)));
             name != nullptr; name = name->next) {
            const auto* const text = static_cast<const char*>(name->data);
            ArvGcNode* const node = arv_gc_get_node(m_gc.get(), text);
            if (ARV_IS_GC_CATEGORY(node)) {
                readFeatures(text);
            } else {
                read(node);
            }
        }
    }

    static void read(ArvGcNode* node)
    {
        cameralibs::GErrorPointer error;
        auto* const feature = ARV_GC_FEATURE_NODE(node);
        if (arv_gc_feature_node_is_implemented(feature, error.out()) == FALSE ||
            arv_gc_feature_node_is_available(feature, error.out()) == FALSE) {
            return;
        }
        arv_gc_feature_node_is_locked(feature, error.out());
        if (ARV_IS_GC_ENUMERATION(node)) {
            arv_gc_enumeration_get_string_value(ARV_GC_ENUMERATION(node), error.out());
        } else if (ARV_IS_GC_BOOLEAN(node)) {
            arv_gc_boolean_get_value(ARV_GC_BOOLEAN(node), error.out());
        } else if (ARV_IS_GC_STRING(node)) {
            arv_gc_string_get_value(ARV_GC_STRING(node), error.out());
        } else if (ARV_IS_GC_FLOAT(node)) {
            arv_gc_float_get_value(ARV_GC_FLOAT(node), error.out());
            arv_gc_float_get_max(ARV_GC_FLOAT(node), error.out());
        } else if (ARV_IS_GC_INTEGER(node)) {
            arv_gc_integer_get_value(ARV_GC_INTEGER(node), error.out());
            arv_gc_integer_get_max(ARV_GC_INTEGER(node), error.out());
        }
    }

    cameralibs::GObjectPointer<ArvDevice> m_device;
    cameralibs::GObjectPointer<ArvGc> m_gc;
};

/// The work for any camera after its description has been read.
double timeOfMap(const std::string& xml)
{
    std::unique_ptr<cameralibs::NodeMap> map;
    return milliseconds(
        [&] { map = std::make_unique<cameralibs::NodeMap>(cameralibs::readDescription(xml), nullptr); });
}

void measure(const std::string& xml, Figures& figures)
{
    Bare bare(xml);
    bare.readFeatures(); // Aravis resolves names when they are first used
    const double bareReading = milliseconds([&] { bare.readFeatures(); });
    const double bareClosing = milliseconds([&] { bare.close(); });
    figures.map.push_back(timeOfMap(xml) / bare.opening);

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

    figures.open.push_back(opening / bare.opening);
    figures.shown.push_back(opening + showing);
    figures.read.push_back(1000 * reading / items);
    figures.readTimes.push_back(reading / bareReading);
    figures.close.push_back(closing);
    figures.closeTimes.push_back(closing / bareClosing);
}

void write(const QString& path, const std::string& xml)
{
    QFile file(path);
    const auto size = static_cast<qint64>(xml.size());
    require(file.open(QIODevice::WriteOnly) && file.write(xml.data(), size) == size && file.flush(), "writing");
}

/// Returns the exit status.
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

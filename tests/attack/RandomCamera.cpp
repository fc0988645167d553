#include "tests/attack/RandomCamera.h"

#include "tests/attack/ScriptedSession.h"
#include "tests/support/ScriptedCamera.h"

#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace {

using scripted::NodeSpec;

std::uint32_t draw(std::minstd_rand& random, std::uint32_t below)
{
    return static_cast<std::uint32_t>(random() % below);
}

template <typename T, std::size_t n> const T& pick(std::minstd_rand& random, const T (&from)[n])
{
    return from[draw(random, n)];
}

constexpr std::int64_t kIntegers[] = {0,   1,    -1,        2,         7,         64,        255,
                                      256, 4096, INT32_MAX, INT32_MIN, INT64_MAX, INT64_MIN, 0xC0A80002};
constexpr double kReals[] = {0,
                             1,
                             -1,
                             0.5,
                             1e-300,
                             1e300,
                             -1e300,
                             12345.678,
                             std::numeric_limits<double>::infinity(),
                             -std::numeric_limits<double>::infinity(),
                             std::numeric_limits<double>::quiet_NaN()};
const char* const kTexts[] = {"",
                              "1",
                              "0",
                              "-5",
                              "32",
                              "0x1F",
                              "0X1F",
                              "1e3",
                              "-1e400",
                              "nan",
                              "99999999999999999999",
                              "192.168.0.1",
                              "1.2.3",
                              "0-17-34-51-68-171",
                              "true",
                              "Execute",
                              " 12 us",
                              "<b>bold</b>",
                              "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80",
                              "%1 %2 %n",
                              "a very long text a very long text a very long text a very long text a very long text"};

NodeSpec randomNode(std::minstd_rand& random, std::string name)
{
    NodeSpec spec;
    spec.name = std::move(name);
    spec.type = static_cast<Orvo::NodeType>(draw(random, 13));
    spec.access = static_cast<Orvo::NodeAccessMode>(draw(random, 3) == 0 ? draw(random, 5) : 4);
    spec.visibility = static_cast<Orvo::TC_NODE_VISIBILITY>(draw(random, 2) == 0 ? 0 : draw(random, 4));
    spec.representation = static_cast<Orvo::NodeRepresentation>(draw(random, 7));
    spec.notation = static_cast<Orvo::FloatDisplayNotation>(draw(random, 3));
    spec.precision = static_cast<std::int64_t>(draw(random, 20)) - 2;
    spec.description = pick(random, kTexts);
    spec.toolTip = pick(random, kTexts);
    spec.unit = draw(random, 3) == 0 ? pick(random, kTexts) : "";
    spec.intValue = pick(random, kIntegers);
    spec.intMin = pick(random, kIntegers);
    spec.intMax = pick(random, kIntegers);
    spec.intInc = pick(random, kIntegers);
    spec.floatValue = pick(random, kReals);
    spec.floatMin = pick(random, kReals);
    spec.floatMax = pick(random, kReals);
    spec.floatInc = pick(random, kReals);
    spec.floatHasInc = static_cast<std::uint8_t>(draw(random, 3));
    spec.boolValue = static_cast<std::uint8_t>(draw(random, 256));
    spec.strValue = pick(random, kTexts);
    if (spec.type == Orvo::NODE_TYPE_ENUMERATION) {
        for (std::uint32_t entry = 0; entry < draw(random, 5); ++entry) {
            spec.entries.push_back(scripted::enumEntry("Entry" + std::to_string(entry), entry,
                                                       static_cast<Orvo::NodeAccessMode>(draw(random, 5))));
        }
    }
    return spec;
}

/// A tree without loops; every category lists only nodes behind itself, and some that do not exist.
std::vector<NodeSpec> randomNodes(std::minstd_rand& random)
{
    static const char* const names[] = {"OffsetX",     "ExposureTime",  "Gain",
                                        "TriggerMode", "TriggerSource", "<i>Node</i>"};
    const std::uint32_t count = draw(random, 60) + 1;
    std::vector<NodeSpec> nodes = {scripted::category("Root", {})};
    for (std::uint32_t i = 0; i < count; ++i) {
        const bool known = i < std::size(names);
        nodes.push_back(randomNode(random, known ? names[i] : "Node" + std::to_string(i)));
    }
    std::size_t parent = 0;
    for (std::size_t i = 1; i < nodes.size(); ++i) {
        nodes[parent].features.push_back(draw(random, 200) == 0 ? "Missing" : nodes[i].name);
        if (nodes[i].type == Orvo::NODE_TYPE_CATEGORY)
            parent = i;
    }
    return nodes;
}

} // namespace

QString randomFeature(std::minstd_rand& random)
{
    const std::vector<std::string> names = scripted::nodeNames();
    return QString::fromStdString(names[draw(random, static_cast<std::uint32_t>(names.size()))]);
}

QString randomText(std::minstd_rand& random)
{
    if (draw(random, 3) == 0)
        return QString::number(draw(random, 5000));
    return QString::fromUtf8(pick(random, kTexts));
}

QString changeRandomly(std::minstd_rand& random)
{
    const std::uint32_t kind = draw(random, 10);
    if (kind == 0) {
        scripted::setNodes(randomNodes(random));
        return "random nodes";
    }
    if (kind == 1) {
        scripted::setNodes(smallCamera());
        return "the small camera";
    }
    if (kind == 2) {
        constexpr std::uint32_t kSizes[] = {1, 2, 16, 63, 640, 1000};
        const std::uint32_t width = pick(random, kSizes);
        const std::uint32_t height = pick(random, kSizes);
        scripted::setImageFormat(width, height, draw(random, 2) == 0 ? scripted::kMono8 : scripted::kBayerRG8);
        return QString("images of %1 x %2").arg(width).arg(height);
    }
    if (kind == 3) {
        const auto flag = static_cast<std::uint8_t>(draw(random, 3));
        const std::uint32_t source = draw(random, 3) == 0 ? 0 : Orvo::CAM_TRIGGER_SOURCE_SOFTWARE;
        scripted::setTrigger(flag, source);
        return QString("trigger %1 from %2").arg(flag).arg(source);
    }
    const QString name = randomFeature(random);
    // Whose values the images of the scripted camera follow: a size of 2^63 would only exhaust the memory of the test.
    if (name == "Width" || name == "Height" || name == "PixelFormat")
        return "nothing";
    const NodeSpec other = randomNode(random, {});
    scripted::changeNode(name.toStdString(), [&](NodeSpec& spec) {
        switch (kind) {
        case 4:
        case 5:
            spec.access = other.access;
            break;
        case 6:
            spec.intMin = other.intMin;
            spec.intMax = other.intMax;
            spec.intInc = other.intInc;
            spec.floatMin = other.floatMin;
            spec.floatMax = other.floatMax;
            spec.floatInc = other.floatInc;
            spec.floatHasInc = other.floatHasInc;
            break;
        default:
            spec.intValue = other.intValue;
            spec.floatValue = other.floatValue;
            spec.boolValue = other.boolValue;
            spec.strValue = other.strValue;
        }
    });
    return name + " changes";
}

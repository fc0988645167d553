#include "cameralibs/devices/simulated/file/FileNodes.h"

#include "cameralibs/base/GlibOwners.h"
#include "cameralibs/base/Outcome.h"
#include "cameralibs/base/PixelFormat.h"
#include "cameralibs/devices/simulated/images/ImageMaker.h"
#include "cameralibs/genicam/EvaluationBudget.h"

#include <arv.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace cameralibs::simulated {

namespace {

constexpr std::int64_t kDefaultWidth = 1280;
constexpr std::int64_t kDefaultHeight = 960;
constexpr std::int64_t kMaxPixels = 1 << 27;
constexpr double kDefaultRate = 30;
constexpr double kMaxRate = 200;

// Errors of Aravis are ignored: a feature that cannot be read or set keeps its value.

void clampInteger(ArvGcInteger* node)
{
    GErrorPointer error;
    const gint64 value = arv_gc_integer_get_value(node, error.out());
    const gint64 low = error ? value : arv_gc_integer_get_min(node, error.out());
    const gint64 high = error ? value : arv_gc_integer_get_max(node, error.out());
    if (!error && low <= high && (value < low || value > high))
        arv_gc_integer_set_value(node, std::clamp(value, low, high), error.out());
}

void clampFloat(ArvGcFloat* node)
{
    GErrorPointer error;
    const double value = arv_gc_float_get_value(node, error.out());
    const double low = error ? value : arv_gc_float_get_min(node, error.out());
    const double high = error ? value : arv_gc_float_get_max(node, error.out());
    if (!error && low <= high && !(value >= low && value <= high))
        arv_gc_float_set_value(node, low, error.out());
}

void chooseAvailableEntry(ArvGcEnumeration* node)
{
    GErrorPointer error;
    const gint64 value = arv_gc_enumeration_get_int_value(node, error.out());
    guint count = 0;
    gint64* const values = error ? nullptr : arv_gc_enumeration_dup_available_int_values(node, &count, error.out());
    if (!error && count > 0 && std::find(values, values + count, value) == values + count)
        arv_gc_enumeration_set_int_value(node, values[0], error.out());
    g_free(values);
}

// The packing of the format itself. For an unsupported format, one with the same bits per pixel that does not pad its
// rows, so that its image is not larger.
const PixelPacking* packingFor(std::uint32_t format)
{
    if (const PixelPacking* const known = findPacking(format))
        return known;
    for (const std::string_view name : {"Mono8", "Mono10p", "Mono12p", "Mono16", "RGB8"}) {
        const std::uint32_t value = findPixelFormat(name)->value;
        if (bitsPerPixel(value) == bitsPerPixel(format))
            return findPacking(value);
    }
    return nullptr;
}

} // namespace

void FileNodes::powerUp(const std::string& model, const std::string& serial)
{
    for (const char* const name : {"SensorWidth", "WidthMax", "Width"})
        setInteger(name, kDefaultWidth);
    for (const char* const name : {"SensorHeight", "HeightMax", "Height"})
        setInteger(name, kDefaultHeight);
    setText("DeviceModelName", model);
    setText("DeviceSerialNumber", serial);
    setText("DeviceVendorName", "Simulated");
    clampFeatures(m_nodes.description().find("Root"));
    m_fillsPayloadSize = integer("PayloadSize").value_or(1) == 0;
    updatePayloadSize();
    EvaluationBudget::check(); // a feature that exceeded the budget kept its value
}

std::optional<FrameSettings> FileNodes::settings() const
{
    auto settings = readSettings();
    EvaluationBudget::check();
    return settings;
}

std::optional<FrameSettings> FileNodes::readSettings() const
{
    const std::int64_t width = integer("Width").value_or(0);
    const std::int64_t height = integer("Height").value_or(0);
    const std::int64_t format = integer("PixelFormat").value_or(findPixelFormat("Mono8")->value);
    const PixelPacking* const packing = packingFor(static_cast<std::uint32_t>(format));
    if (packing == nullptr || width < 1 || height < 1 || width > kMaxPixels || height > kMaxPixels / width)
        return std::nullopt;

    FrameSettings settings;
    settings.image.format = static_cast<std::uint32_t>(format);
    settings.image.packing = packing;
    settings.image.width = settings.image.sensorWidth = static_cast<std::uint32_t>(width);
    settings.image.height = settings.image.sensorHeight = static_cast<std::uint32_t>(height);
    settings.image.colour = true;
    double rate = 0;
    if (ArvGcFeatureNode* const node = feature("AcquisitionFrameRate"); ARV_IS_GC_FLOAT(node)) {
        GErrorPointer error;
        rate = arv_gc_float_get_value(ARV_GC_FLOAT(node), error.out());
    }
    settings.period = 1 / (rate >= 1 && rate <= kMaxRate ? rate : kDefaultRate);
    return settings;
}

void FileNodes::updatePayloadSize()
{
    // Setting PayloadSize writes a register, which calls this function again.
    if (!std::exchange(m_fillsPayloadSize, false))
        return;
    if (const auto wanted = readSettings())
        setInteger("PayloadSize", static_cast<std::int64_t>(ImageMaker::sizeOf(wanted->image)));
    m_fillsPayloadSize = true;
}

std::optional<std::int64_t> FileNodes::integer(const char* name) const
{
    ArvGcFeatureNode* const node = feature(name);
    if (!ARV_IS_GC_INTEGER(node))
        return std::nullopt;
    GErrorPointer error;
    const gint64 value = arv_gc_integer_get_value(ARV_GC_INTEGER(node), error.out());
    return error ? std::nullopt : std::optional<std::int64_t>(value);
}

void FileNodes::setInteger(const char* name, std::int64_t value)
{
    ArvGcFeatureNode* const node = feature(name);
    if (!ARV_IS_GC_INTEGER(node) || isConstant(m_nodes.description().find(name)))
        return;
    GErrorPointer error;
    arv_gc_integer_set_value(ARV_GC_INTEGER(node), value, error.out());
}

void FileNodes::setText(const char* name, const std::string& value)
{
    ArvGcFeatureNode* const node = feature(name);
    if (!ARV_IS_GC_STRING(node) || isConstant(m_nodes.description().find(name)))
        return;
    GErrorPointer error;
    arv_gc_string_set_value(ARV_GC_STRING(node), value.c_str(), error.out());
}

void FileNodes::clampFeatures(NodeId category)
{
    for (const NodeId id : m_nodes.node(category).features)
        clampFeature(id);
}

void FileNodes::clampFeature(NodeId id)
{
    if (m_nodes.node(id).type == Orvo::NODE_TYPE_CATEGORY) {
        clampFeatures(id);
        return;
    }
    ArvGcFeatureNode* const node = feature(id);
    if (isConstant(id))
        return;
    // Aravis' enumerations also implement the integer interface, so they are checked first.
    if (ARV_IS_GC_ENUMERATION(node)) {
        chooseAvailableEntry(ARV_GC_ENUMERATION(node));
    } else if (ARV_IS_GC_INTEGER(node)) {
        clampInteger(ARV_GC_INTEGER(node));
    } else if (ARV_IS_GC_FLOAT(node)) {
        clampFloat(ARV_GC_FLOAT(node));
    }
}

bool FileNodes::isConstant(NodeId id) const
{
    NodeId holder = id;
    while (m_nodes.node(holder).link("pValue") != kNoNode)
        holder = m_nodes.node(holder).link("pValue");
    const DescribedNode& node = m_nodes.node(holder);
    return node.link("pPort") == kNoNode && node.link("pIndex") == kNoNode;
}

ArvGcFeatureNode* FileNodes::feature(const char* name) const
{
    const NodeId id = m_nodes.description().find(name);
    return id == kNoNode ? nullptr : feature(id);
}

// Null for a feature that is not safe to evaluate.
ArvGcFeatureNode* FileNodes::feature(NodeId id) const
{
    try {
        m_nodes.check(id, Question::value);
        m_nodes.check(id, Question::range);
        for (const NodeId entry : m_nodes.node(id).entries) {
            m_nodes.check(entry, Question::value);
            m_nodes.check(entry, Question::access);
        }
        return m_nodes.feature(id);
    } catch (const Failure&) {
        return nullptr;
    }
}

} // namespace cameralibs::simulated

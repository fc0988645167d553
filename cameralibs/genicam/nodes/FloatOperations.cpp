#include "cameralibs/genicam/nodes/NodeOperations.h"

#include "cameralibs/genicam/nodes/AccessRule.h"
#include "cameralibs/genicam/nodes/ArvCall.h"

#include <cmath>
#include <limits>

namespace cameralibs {

using namespace Orvo;

namespace {

constexpr double kHighest = std::numeric_limits<double>::max();
constexpr double kNoIncrement = 0.0;

ArvGcFloat* floatNode(const NodeMap& nodes, NodeId id)
{
    throwUnless(nodes.node(id).type == NODE_TYPE_FLOAT, CAM_API_STS_INVALID_PARAMETER);
    return ARV_GC_FLOAT(nodes.feature(id));
}

double minimum(ArvGcFloat* node)
{
    return arvReadOr(-kHighest, [&](GError** error) { return arv_gc_float_get_min(node, error); });
}

double maximum(ArvGcFloat* node)
{
    return arvReadOr(kHighest, [&](GError** error) { return arv_gc_float_get_max(node, error); });
}

double increment(ArvGcFloat* node)
{
    const double step = arvReadOr(kNoIncrement, [&](GError** error) { return arv_gc_float_get_inc(node, error); });
    // Aravis returns the smallest positive number if there is no increment.
    return step > std::numeric_limits<double>::min() ? step : kNoIncrement;
}

/// Increments count from the minimum, or from 0 if it is so far away that doubles near it cannot tell increments apart:
/// without a minimum of its own, a float has that of its register. Tolerates rounding errors.
bool onIncrement(double value, double lowest, double step)
{
    const double base = lowest + step == lowest ? 0.0 : lowest;
    const double nearest = base + std::round((value - base) / step) * step;
    return std::abs(value - nearest) <= 1e-6 * step + 1e-12 * std::abs(value);
}

void verifyValue(ArvGcFloat* node, double value)
{
    const double lowest = minimum(node);
    throwUnless(value >= lowest && value <= maximum(node), CAM_API_STS_INVALID_PARAMETER);
    const double step = increment(node);
    throwUnless(step == kNoIncrement || onIncrement(value, lowest, step), CAM_API_STS_INVALID_PARAMETER);
}

} // namespace

double readFloat(const NodeMap& nodes, NodeId id)
{
    ArvGcFloat* node = floatNode(nodes, id);
    requireReadable(nodes, id);
    nodes.check(id, Question::value);
    return arvRead([&](GError** error) { return arv_gc_float_get_value(node, error); });
}

double floatMinimum(const NodeMap& nodes, NodeId id)
{
    ArvGcFloat* node = floatNode(nodes, id);
    return limitOf(nodes, id, [&] { return minimum(node); });
}

double floatMaximum(const NodeMap& nodes, NodeId id)
{
    ArvGcFloat* node = floatNode(nodes, id);
    return limitOf(nodes, id, [&] { return maximum(node); });
}

bool floatHasIncrement(const NodeMap& nodes, NodeId id)
{
    ArvGcFloat* node = floatNode(nodes, id);
    return limitOf(nodes, id, [&] { return increment(node); }) != kNoIncrement;
}

double floatIncrement(const NodeMap& nodes, NodeId id)
{
    ArvGcFloat* node = floatNode(nodes, id);
    const double step = limitOf(nodes, id, [&] { return increment(node); });
    throwUnless(step != kNoIncrement, CAM_API_STS_INVALID_PARAMETER);
    return step;
}

void writeFloat(NodeMap& nodes, NodeId id, double value, bool verify)
{
    ArvGcFloat* node = floatNode(nodes, id);
    requireWritable(nodes, id);
    throwUnless(!std::isnan(value), CAM_API_STS_INVALID_PARAMETER);
    if (verify) {
        nodes.check(id, Question::range);
        verifyValue(node, value);
    }
    nodes.check(id, Question::value);
    nodes.checkConversion(id, value);
    arvWrite([&](GError** error) { arv_gc_float_set_value(node, value, error); });
}

} // namespace cameralibs

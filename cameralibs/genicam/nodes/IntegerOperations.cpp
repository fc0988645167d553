#include "cameralibs/genicam/nodes/NodeOperations.h"

#include "cameralibs/genicam/nodes/AccessRule.h"
#include "cameralibs/genicam/nodes/ArvCall.h"

#include <limits>

namespace cameralibs {

using namespace Orvo;

namespace {

constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();

ArvGcInteger* integerNode(const NodeMap& nodes, NodeId id)
{
    throwUnless(nodes.node(id).type == NODE_TYPE_INTEGER, CAM_API_STS_INVALID_PARAMETER);
    return ARV_GC_INTEGER(nodes.feature(id));
}

std::int64_t minimum(ArvGcInteger* node)
{
    return arvReadOr(kLowest, [&](GError** error) -> std::int64_t { return arv_gc_integer_get_min(node, error); });
}

std::int64_t maximum(ArvGcInteger* node)
{
    return arvReadOr(kHighest, [&](GError** error) -> std::int64_t { return arv_gc_integer_get_max(node, error); });
}

std::int64_t increment(ArvGcInteger* node)
{
    return arvReadOr(std::int64_t{1},
                     [&](GError** error) -> std::int64_t { return arv_gc_integer_get_inc(node, error); });
}

/// Increments count from the minimum, or from 0 if there is none.
bool onIncrement(std::int64_t value, std::int64_t lowest, std::int64_t step)
{
    if (step <= 1)
        return true;
    if (lowest == kLowest)
        return value % step == 0;
    // Unsigned, because the difference may exceed the signed range.
    const auto distance = static_cast<std::uint64_t>(value) - static_cast<std::uint64_t>(lowest);
    return distance % static_cast<std::uint64_t>(step) == 0;
}

void verifyValue(ArvGcInteger* node, std::int64_t value)
{
    const std::int64_t lowest = minimum(node);
    throwUnless(value >= lowest && value <= maximum(node), CAM_API_STS_INVALID_PARAMETER);
    throwUnless(onIncrement(value, lowest, increment(node)), CAM_API_STS_INVALID_PARAMETER);
}

} // namespace

std::int64_t readInteger(const NodeMap& nodes, NodeId id)
{
    ArvGcInteger* node = integerNode(nodes, id);
    requireReadable(nodes, id);
    nodes.check(id, Question::value);
    return arvRead([&](GError** error) { return arv_gc_integer_get_value(node, error); });
}

std::int64_t integerMinimum(const NodeMap& nodes, NodeId id)
{
    ArvGcInteger* node = integerNode(nodes, id);
    return limitOf(nodes, id, [&] { return minimum(node); });
}

std::int64_t integerMaximum(const NodeMap& nodes, NodeId id)
{
    ArvGcInteger* node = integerNode(nodes, id);
    return limitOf(nodes, id, [&] { return maximum(node); });
}

std::int64_t integerIncrement(const NodeMap& nodes, NodeId id)
{
    ArvGcInteger* node = integerNode(nodes, id);
    return limitOf(nodes, id, [&] { return increment(node); });
}

void writeInteger(NodeMap& nodes, NodeId id, std::int64_t value, bool verify)
{
    ArvGcInteger* node = integerNode(nodes, id);
    requireWritable(nodes, id);
    if (verify) {
        nodes.check(id, Question::range);
        verifyValue(node, value);
    }
    nodes.check(id, Question::value);
    nodes.checkConversion(id, static_cast<double>(value));
    arvWrite([&](GError** error) { arv_gc_integer_set_value(node, value, error); });
}

} // namespace cameralibs

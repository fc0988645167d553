#include "cameralibs/base/Outcome.h"
#include "cameralibs/genicam/description/Validator.h"
#include "cameralibs/genicam/description/XmlDocument.h"

#include <algorithm>
#include <optional>
#include <string>

namespace cameralibs {

using namespace Orvo;

namespace {

constexpr long long kMaxLength = 65536;
constexpr long long kMaxIntegerLength = 8;

bool isRegister(Element element)
{
    switch (element) {
    case Element::intReg:
    case Element::maskedIntReg:
    case Element::structEntry:
    case Element::floatReg:
    case Element::stringReg:
    case Element::reg:
        return true;
    default:
        return false;
    }
}

[[noreturn]] void refuse(const DescribedNode& node, const std::string& property, const char* reason)
{
    throw Failure(CAM_API_STS_GENICAM_ERR, "[" + node.name + "] <" + property + ">" + node.numbers.at(property) + "</" +
                                               property + "> " + reason);
}

/// Reads a number and checks its limits. nullopt if the node does not have the element.
std::optional<long long> number(const DescribedNode& node, const char* property, long long lowest, long long highest)
{
    const auto found = node.numbers.find(property);
    if (found == node.numbers.end())
        return std::nullopt;
    long long value = 0;
    if (!toInteger(found->second, value))
        refuse(node, property, "is no number");
    if (value < lowest || value > highest)
        refuse(node, property, "is out of range");
    return value;
}

void checkBits(DescribedNode& node, std::optional<long long> length)
{
    const long long highest = 8 * std::min(length.value_or(kMaxIntegerLength), kMaxIntegerLength) - 1;
    const auto bit = number(node, "Bit", 0, highest);
    const auto lsb = number(node, "LSB", 0, highest);
    const auto msb = number(node, "MSB", 0, highest);
    if (!bit && !(lsb && msb))
        node.setFault("The bit range is missing");
}

} // namespace

void checkRegisters(Description& description)
{
    for (NodeId id = 0; id < description.size(); ++id) {
        DescribedNode& node = description.node(id);
        if (!isRegister(node.element))
            continue;
        const auto length = number(node, "Length", 1, kMaxLength);
        if (!length && node.link("pLength") == kNoNode)
            node.setFault("The length is missing");
        if (node.type == NODE_TYPE_INTEGER && length && *length > kMaxIntegerLength)
            node.setFault("An integer has at most 8 bytes");
        if (node.element == Element::floatReg && length && *length != 4 && *length != 8)
            node.setFault("A float has 4 or 8 bytes");
        if (node.element == Element::maskedIntReg || node.element == Element::structEntry)
            checkBits(node, length);
    }
}

} // namespace cameralibs

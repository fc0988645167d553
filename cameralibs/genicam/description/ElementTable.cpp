#include "cameralibs/genicam/description/ElementTable.h"

#include <algorithm>
#include <iterator>

namespace cameralibs {

using namespace Orvo;

namespace {

constexpr ElementRow kElements[] = {
    {"Category", Element::category, NODE_TYPE_CATEGORY, NODE_ACCESS_MODE_RO},
    {"Integer", Element::integer, NODE_TYPE_INTEGER, NODE_ACCESS_MODE_RW},
    {"IntReg", Element::intReg, NODE_TYPE_INTEGER, NODE_ACCESS_MODE_RO},
    {"MaskedIntReg", Element::maskedIntReg, NODE_TYPE_INTEGER, NODE_ACCESS_MODE_RO},
    {"StructEntry", Element::structEntry, NODE_TYPE_INTEGER, NODE_ACCESS_MODE_RO},
    {"IntConverter", Element::intConverter, NODE_TYPE_INTEGER, NODE_ACCESS_MODE_RW},
    {"IntSwissKnife", Element::intSwissKnife, NODE_TYPE_INTEGER, NODE_ACCESS_MODE_RO},
    {"Boolean", Element::boolean, NODE_TYPE_BOOLEAN, NODE_ACCESS_MODE_RW},
    {"Command", Element::command, NODE_TYPE_COMMAND, NODE_ACCESS_MODE_RW},
    {"Float", Element::floating, NODE_TYPE_FLOAT, NODE_ACCESS_MODE_RW},
    {"FloatReg", Element::floatReg, NODE_TYPE_FLOAT, NODE_ACCESS_MODE_RO},
    {"Converter", Element::converter, NODE_TYPE_FLOAT, NODE_ACCESS_MODE_RW},
    {"SwissKnife", Element::swissKnife, NODE_TYPE_FLOAT, NODE_ACCESS_MODE_RO},
    {"String", Element::string, NODE_TYPE_STRING, NODE_ACCESS_MODE_RW},
    {"StringReg", Element::stringReg, NODE_TYPE_STRING, NODE_ACCESS_MODE_RO},
    {"Register", Element::reg, NODE_TYPE_REGISTER, NODE_ACCESS_MODE_RO},
    {"Enumeration", Element::enumeration, NODE_TYPE_ENUMERATION, NODE_ACCESS_MODE_RW},
    {"EnumEntry", Element::enumEntry, NODE_TYPE_ENUM_ENTRY, NODE_ACCESS_MODE_RO},
    {"Port", Element::port, NODE_TYPE_PORT, NODE_ACCESS_MODE_RW},
    {"Node", Element::node, NODE_TYPE_BASE, NODE_ACCESS_MODE_RO},
};

constexpr ElementRow kUnknown{"", Element::unknown, NODE_TYPE_UNKNOWN, NODE_ACCESS_MODE_RO};

} // namespace

const ElementRow& elementRow(std::string_view name)
{
    const auto* row = std::find_if(std::begin(kElements), std::end(kElements),
                                   [&](const ElementRow& candidate) { return name == candidate.name; });
    return row == std::end(kElements) ? kUnknown : *row;
}

} // namespace cameralibs

#pragma once

#include "cameralibs/genicam/description/Description.h"

#include <string_view>

namespace cameralibs {

/// The node type and default access mode of an element.
struct ElementRow {
    std::string_view name;
    Element element;
    Orvo::NodeType type;
    Orvo::NodeAccessMode access; ///< if the element does not specify one
};

/// The row of Element::unknown if the element is not a node.
[[nodiscard]] const ElementRow& elementRow(std::string_view name);

} // namespace cameralibs

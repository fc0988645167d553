#pragma once

#include "cameralibs/genicam/description/Description.h"

#include <string_view>

namespace cameralibs {

/// What an element of a description is as a node.
struct ElementRow {
    std::string_view name;
    Element element;
    Orvo::NodeType type;
    Orvo::NodeAccessMode access; ///< where the element says nothing of it
};

/// Element::unknown for an element that is no node.
[[nodiscard]] const ElementRow& elementRow(std::string_view name);

} // namespace cameralibs

#pragma once

#include "cameralibs/genicam/description/Description.h"

#include <string>

namespace cameralibs {

/// What an element of a description is as a node.
struct ElementRow {
    const char* name;
    Element element;
    Orvo::NodeType type;
    Orvo::NodeAccessMode access; ///< where the element says nothing of it
};

/// Element::unknown for an element that is no node.
[[nodiscard]] const ElementRow& elementRow(const std::string& name);

} // namespace cameralibs

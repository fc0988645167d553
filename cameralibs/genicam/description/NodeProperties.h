#pragma once

#include "cameralibs/genicam/description/Description.h"

#include <libxml/tree.h>

namespace cameralibs {

/// Reads what the children of a node's element say into the node. Names and numbers lose the white space around them in
/// the element itself too, so that Aravis reads the same.
void readProperties(xmlNode* element, DescribedNode& node);

} // namespace cameralibs

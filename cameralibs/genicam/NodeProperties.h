#pragma once

#include "cameralibs/genicam/Description.h"

#include <libxml/tree.h>

namespace orvo {

/// Reads what the children of a node's element say into the node. Names and numbers lose the white space around them in
/// the element itself too, so that Aravis reads the same.
void readProperties(xmlNode* element, DescribedNode& node);

} // namespace orvo

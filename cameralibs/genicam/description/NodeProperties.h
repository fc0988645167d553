#pragma once

#include "cameralibs/genicam/description/Description.h"
#include "cameralibs/genicam/description/XmlDocument.h"

namespace cameralibs {

/// Reads what the children of a node's element say into the node. Names and numbers lose the white space around them in
/// the element itself too, so that Aravis reads the same.
void readProperties(XmlElement element, DescribedNode& node);

} // namespace cameralibs

#pragma once

#include "cameralibs/genicam/description/Description.h"
#include "cameralibs/genicam/description/XmlDocument.h"

namespace cameralibs {

/// Reads the children of a node's element into `node`. Also strips the white space around names and numbers from the
/// elements themselves, so that Aravis reads the same.
void readProperties(XmlElement element, DescribedNode& node);

} // namespace cameralibs

#pragma once

#include "camera/OrvoCamApi.h"

// The viewer's signals and slots spell these types without their namespace: the meta-object system and name-based
// connections compare signatures as text.
using Orvo::CAM_API_STATUS;
using Orvo::CAM_SIGNAL_HANDLE;
using Orvo::CAM_STRM_HANDLE;

#pragma once

#include "camera/OrvoCamApi.h"

// Signals and slots of the viewer spell these types without their namespace: their signatures are read as text by the
// meta-object system, by name-based connections and by people.
using Orvo::CAM_API_STATUS;
using Orvo::CAM_SIGNAL_HANDLE;
using Orvo::CAM_STRM_HANDLE;

#pragma once

#include "cameralibs/base/GlibOwners.h"

#include <arv.h>

#include <string_view>

namespace cameralibs::simulated {

class RegisterSpace;

/// Wraps a register space as an ArvDevice for Aravis' node map. `space` and `description` must outlive it.
[[nodiscard]] GObjectPointer<ArvDevice> makeRegisterDevice(RegisterSpace& space, std::string_view description);

} // namespace cameralibs::simulated

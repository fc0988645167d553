#pragma once

#include <arv.h>

#include <memory>
#include <string_view>

namespace cameralibs::simulated {

class RegisterSpace;

struct UnrefDevice {
    void operator()(ArvDevice* device) const;
};
using ArvDevicePtr = std::unique_ptr<ArvDevice, UnrefDevice>;

/// Wraps a register space as an ArvDevice for Aravis' node map. `space` and `description` must outlive it.
[[nodiscard]] ArvDevicePtr makeRegisterDevice(RegisterSpace& space, std::string_view description);

} // namespace cameralibs::simulated

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

/// A register space in the form that a node map of Aravis reads and writes. Space and description outlive it.
[[nodiscard]] ArvDevicePtr makeRegisterDevice(RegisterSpace& space, std::string_view description);

} // namespace cameralibs::simulated

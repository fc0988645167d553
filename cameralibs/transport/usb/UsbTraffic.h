#pragma once

#include <cstdint>
#include <optional>

namespace cameralibs::transport {

/// What Aravis transfers from and to a USB3 Vision camera, seen and mended where it calls libusb, as AravisHooks.h
/// does. Checked against Aravis 0.8.26 and libusb 1.0.26.
///
/// Mended is what Aravis leaves to chance: an endpoint that stalls is set going again, and an answer that is shorter
/// than what was asked for counts as none.

/// What the trailer of an image says that Aravis does not look at.
struct UsbTrailer {
    std::uint16_t status; ///< 0: the camera has sent all of it
    std::uint64_t size;   ///< bytes that it has sent
};

/// That of an image which came lately; empty for any other.
[[nodiscard]] std::optional<UsbTrailer> trailerOf(std::uint64_t blockId);

/// Whether another program or driver has claimed the camera.
[[nodiscard]] bool claimRefused();

/// Whether the camera has answered the last command, in whatever way.
[[nodiscard]] bool answersUsbCommands();

} // namespace cameralibs::transport

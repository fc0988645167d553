#pragma once

#include <cstdint>
#include <optional>

namespace cameralibs::transport {

/// Follows the transfers between Aravis and a USB3 Vision camera by replacing functions of libusb. It also clears
/// halted endpoints and rejects truncated answers, which Aravis does not. Checked against Aravis 0.8.26 and
/// libusb 1.0.26.

/// What Aravis ignores in the trailer of an image.
struct UsbTrailer {
    std::uint16_t status; ///< 0: the camera has sent all of it
    std::uint64_t size;   ///< bytes that it has sent
};

/// The trailer of a recent image; empty if none is known.
[[nodiscard]] std::optional<UsbTrailer> trailerOf(std::uint64_t blockId);

/// Whether another program or driver has claimed the camera.
[[nodiscard]] bool claimRefused();

/// Whether the camera has answered the last command, even with an error.
[[nodiscard]] bool answersUsbCommands();

} // namespace cameralibs::transport

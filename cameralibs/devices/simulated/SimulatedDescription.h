#pragma once

#include <string>

namespace cameralibs::simulated {

struct CameraModel;

/// The GenICam description of a built-in camera: the fragments in description/ with the register nodes of the table.
///
/// A fragment may say @Name@ for the address of a register, @Name.min@ and @Name.max@ for its limits, and
/// @PixelFormatEntries@ for the entries of the camera's pixel formats.
[[nodiscard]] std::string describe(const CameraModel& model);

} // namespace cameralibs::simulated

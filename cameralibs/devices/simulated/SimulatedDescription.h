#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace cameralibs::simulated {

struct CameraModel;

/// The GenICam description of a built-in camera: the fragments in description/ with the register nodes of the table.
///
/// A fragment may say @Name@ for the address of a register, @Name.min@ and @Name.max@ for its limits, and
/// @PixelFormatEntries@ for the entries of the camera's pixel formats.
[[nodiscard]] std::string describe(const CameraModel& model);

/// The files description/*.xml, compiled in: each is a Group of nodes.
[[nodiscard]] const std::vector<std::string_view>& descriptionFragments();

} // namespace cameralibs::simulated

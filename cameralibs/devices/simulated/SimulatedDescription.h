#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace cameralibs::simulated {

struct CameraModel;

/// The GenICam description of a built-in camera: the fragments in description/ and a register node for each row of
/// RegisterTable.h.
///
/// Placeholders in a fragment: @Name@ is the address of a register, @Name.min@ and @Name.max@ are its limits, and
/// @PixelFormatEntries@ expands to the enumeration entries of the camera's pixel formats.
[[nodiscard]] std::string describe(const CameraModel& model);

/// The compiled-in files description/*.xml. Each contains one <Group> of nodes.
[[nodiscard]] const std::vector<std::string_view>& descriptionFragments();

} // namespace cameralibs::simulated

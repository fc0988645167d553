#pragma once

/// A camera of integer features that answers at once: what is measured over it is the table, not the camera. It takes
/// the place of the camera library's node operations in the program that links it.
namespace instant {

/// One category for each twelve features.
constexpr int rowsPerCategory = 13;

/// Makes a camera whose table has so many rows. Levels go round Beginner, Expert, Guru.
void setRows(int rows);

/// Changes the value of every feature, and its access mode between read-write and read-only.
void changeEverything();

} // namespace instant

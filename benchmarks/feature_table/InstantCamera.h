#pragma once

/// A camera with integer features and no delay, so that the table is measured and not the camera. Replaces the node
/// operations of the camera library in the program that links it.
namespace instant {

/// There is one category per twelve features.
constexpr int kRowsPerCategory = 13;

/// Makes a camera whose table has this many rows. The levels alternate between Beginner, Expert and Guru.
void setRows(int rows);

/// Changes the value of every feature, and its access mode between read-write and read-only.
void changeEverything();

} // namespace instant

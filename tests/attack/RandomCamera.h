#pragma once

#include <QString>

#include <random>

/// Name of a feature of the scripted camera.
[[nodiscard]] QString randomFeature(std::minstd_rand& random);

/// What a user may type: numbers in every form, extremes, nonsense.
[[nodiscard]] QString randomText(std::minstd_rand& random);

/// Changes something about the scripted camera behind the viewer's back: a value, an access mode, a range, the format
/// of the images, or, from the next opening on, all nodes. Returns a description.
QString changeRandomly(std::minstd_rand& random);

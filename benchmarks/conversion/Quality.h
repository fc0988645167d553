#pragma once

/// Prints how close colours come to the truth that a Bayer image was taken from: peak signal-to-noise ratios of ours
/// and of OpenCV's demosaicing.
void printQuality();

#pragma once

/// Prints the peak signal-to-noise ratios between an image and its reconstruction from a Bayer mosaic, for our
/// demosaicing and for OpenCV's.
void printQuality();

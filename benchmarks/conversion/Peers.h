#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// An image to convert, and the destination of B, G, R, alpha.
struct Work {
    std::uint8_t* source;
    int width;
    int height;
    std::uint8_t* bgra;
};

/// The goals for the measured sizes; 0 if there is none.
using Goals = std::array<double, 4>;

/// Another implementation of the conversion, and the goals for its time divided by ours, with AVX-512 and AVX2.
struct Peer {
    std::string name;
    std::function<void(const Work&)> convert;
    Goals goalsAvx512;
    Goals goalsAvx2;
};

struct Contest {
    std::string format;
    std::uint32_t pfnc;
    std::size_t bitsPerPixel;
    double copiesAvx512; ///< goal for our time divided by that of memcpy, for the second and third size
    double copiesAvx2;
    std::vector<Peer> peers;
};

/// The peers: OpenCV, libyuv, and a plain loop for formats that neither supports. OpenCV's demosaicing is bilinear or
/// edge-aware, and both use limited-range chroma. This is as much work as ConvImage does, or less.
[[nodiscard]] std::vector<Contest> contests();

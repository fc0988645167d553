#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// An image to convert, and where B, G, R, alpha go.
struct Work {
    std::uint8_t* source;
    int width;
    int height;
    std::uint8_t* bgra;
};

/// A goal for each of the sizes that the benchmark measures; 0 where there is none.
using Goals = std::array<double, 4>;

/// Somebody else's way of doing the same, and how many times as long it is to take as ours, with AVX-512 and AVX2.
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
    double copiesAvx512; ///< of the result that ours may take as long as, from the second to the third size
    double copiesAvx2;
    std::vector<Peer> peers;
};

/// The peers: OpenCV, libyuv, and for what neither has a plain loop. Demosaicing with OpenCV is bilinear or follows
/// edges; chroma is of limited range in both: as much work as ConvImage does, or less.
[[nodiscard]] std::vector<Contest> contests();

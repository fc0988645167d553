#pragma once

#include <opencv2/core.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// One format, and the fastest way from an image of it to B, G, R, alpha that OpenCV's functions give. What OpenCV has
/// no function for (runs of bits) is unpacked by a plain loop first. Its demosaicing is bilinear and its YCbCr of
/// limited range: as much work or less than what ConvImage does.
struct OpenCvRoute {
    std::string format;
    std::uint32_t pfnc;
    std::size_t bitsPerPixel;
    std::function<void(std::uint8_t* source, int width, int height, cv::Mat& bgra)> convert;
};

[[nodiscard]] std::vector<OpenCvRoute> openCvRoutes();

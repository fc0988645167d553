#include "ImageSize.h"

#include "cameralibs/genicam/EnumerationOperations.h"
#include "cameralibs/genicam/Failure.h"
#include "cameralibs/genicam/IntegerOperations.h"

#include <limits>
#include <optional>
#include <string>

namespace orvo {

using namespace Orvo;

namespace {

constexpr std::uint64_t kLargest = std::numeric_limits<std::uint32_t>::max();

[[noreturn]] void refuse(const std::string& feature, const std::string& bytes)
{
    throw Failure(CAM_API_STS_GENICAM_ERR, "[" + feature + "] No image has " + bytes + " bytes");
}

std::size_t readPayload(const NodeMap& nodes)
{
    const NodeId node = nodes.description().find("PayloadSize");
    throwUnless(node != kNoNode, CAM_API_STS_NOT_IMPLEMENTED);
    const std::int64_t payload = readInteger(nodes, node);
    // A size of zero makes some transports divide by it.
    if (payload <= 0 || static_cast<std::uint64_t>(payload) > kLargest)
        refuse("PayloadSize", std::to_string(payload));
    return static_cast<std::size_t>(payload);
}

/// Nothing where the feature does not tell a number that an image could go by.
std::optional<std::uint64_t> readNumber(const NodeMap& nodes, const char* feature)
{
    const NodeId node = nodes.description().find(feature);
    if (node == kNoNode)
        return {};
    try {
        const bool enumeration = nodes.node(node).type == NODE_TYPE_ENUMERATION;
        const std::int64_t number = enumeration ? readEnumerationNumber(nodes, node) : readInteger(nodes, node);
        if (number > 0 && static_cast<std::uint64_t>(number) <= kLargest)
            return static_cast<std::uint64_t>(number);
    } catch (const Failure& failure) {
        if (failure.status() == CAM_API_STS_CAMERA_NOT_RESPONDING)
            throw;
    }
    return {};
}

/// The bytes of Width x Height pixels; 0 where the camera does not tell.
std::size_t readPixels(const NodeMap& nodes)
{
    const auto width = readNumber(nodes, "Width");
    const auto height = readNumber(nodes, "Height");
    const auto format = readNumber(nodes, "PixelFormat");
    if (!width || !height || !format)
        return 0;
    const std::uint64_t bitsPerPixel = *format >> 16 & 0xff;
    // Neither product wraps: the first is checked before the second is made.
    const std::uint64_t pixels = *width * *height;
    const std::uint64_t bytes = pixels > kLargest * 8 ? pixels : (pixels * bitsPerPixel + 7) / 8;
    if (bytes > kLargest)
        refuse("Width", std::to_string(bytes));
    return static_cast<std::size_t>(bytes);
}

} // namespace

SlotRing::ImageSize readImageSize(const NodeMap& nodes)
{
    return {readPayload(nodes), readPixels(nodes)};
}

} // namespace orvo

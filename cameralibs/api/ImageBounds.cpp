#include "cameralibs/api/ImageBounds.h"

#include "cameralibs/base/Outcome.h"
#include "cameralibs/base/PixelFormat.h"
#include "cameralibs/genicam/nodes/NodeOperations.h"

#include <algorithm>
#include <limits>
#include <string>

namespace cameralibs {

using namespace Orvo;

namespace {

constexpr std::uint64_t kTotalLimit = std::uint64_t{1} << 32;

std::uint64_t readPayload(const NodeMap& nodes)
{
    const NodeId node = nodes.description().find("PayloadSize");
    throwUnless(node != kNoNode, CAM_API_STS_NOT_IMPLEMENTED);
    const std::int64_t payload = readInteger(nodes, node);
    // Some transports divide by the payload size.
    if (payload <= 0)
        throw Failure(CAM_API_STS_GENICAM_ERR, "[PayloadSize] No image has " + std::to_string(payload) + " bytes");
    return static_cast<std::uint64_t>(payload);
}

} // namespace

ImageBounds::ImageBounds(const Description& description)
    : m_widthNode(description.find("Width"))
    , m_heightNode(description.find("Height"))
    , m_formatNode(description.find("PixelFormat"))
{
}

void ImageBounds::note(NodeId node, std::int64_t value)
{
    // The conversion functions take 32-bit values, so no reader can use a larger one.
    if (value <= 0 || value > std::numeric_limits<std::uint32_t>::max())
        return;
    const auto number = static_cast<std::uint32_t>(value);
    if (node == m_widthNode)
        m_width = std::max(m_width, number);
    if (node == m_heightNode)
        m_height = std::max(m_height, number);
    // Only the bits per pixel matter for an unknown format. This bounds the set even if a camera invents values.
    if (node == m_formatNode)
        m_formats.insert(findPixelFormat(number) != nullptr ? number : bitsPerPixel(number) << 16);
}

void ImageBounds::note(NodeId node, std::string_view entry)
{
    if (node != m_formatNode)
        return;
    if (const PixelFormat* const format = findPixelFormat(entry))
        note(node, format->value);
}

void ImageBounds::noteFeatures(const NodeMap& nodes)
{
    for (const NodeId node : {m_widthNode, m_heightNode, m_formatNode}) {
        if (node == kNoNode)
            continue;
        try {
            const bool enumeration = nodes.node(node).type == NODE_TYPE_ENUMERATION;
            note(node, enumeration ? readEnumerationNumber(nodes, node) : readInteger(nodes, node));
        } catch (const Failure& failure) {
            if (failure.status() == CAM_API_STS_CAMERA_NOT_RESPONDING)
                throw;
        }
    }
}

std::uint64_t ImageBounds::bytes() const
{
    std::uint64_t most = 0;
    if (m_width != 0 && m_height != 0) {
        for (const std::uint32_t format : m_formats)
            most = std::max(most, imageBytes(format, m_width, m_height));
    }
    return most;
}

SlotRing::ImageSize readImageSize(const NodeMap& nodes, const ImageBounds& reported, std::uint32_t buffers)
{
    const std::uint64_t payload = readPayload(nodes);
    ImageBounds bounds = reported;
    bounds.noteFeatures(nodes);
    const std::uint64_t image = bounds.bytes();
    const std::uint64_t room = std::max(payload, image);
    if (room > (kTotalLimit - 1) / buffers) {
        throw Failure(CAM_API_STS_INVALID_PARAMETER, std::to_string(buffers) + " buffers of " + std::to_string(room) +
                                                         " bytes each would take 4 GiB or more");
    }
    return {static_cast<std::size_t>(payload), static_cast<std::size_t>(image)};
}

} // namespace cameralibs

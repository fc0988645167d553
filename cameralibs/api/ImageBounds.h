#pragma once

#include "cameralibs/api/SlotRing.h"
#include "cameralibs/genicam/nodes/NodeMap.h"

#include <cstdint>
#include <set>
#include <string_view>

namespace cameralibs {

/// The largest width, the largest height and all pixel formats that a program has seen. A program may read an image by
/// any combination of them, however old, so every buffer must be large enough for all.
class ImageBounds {
public:
    explicit ImageBounds(const Description& description);

    /// Notes the value of a feature if it is one of the three. Ignores values that no image can have.
    void note(NodeId node, std::int64_t value);

    /// The same for an enumeration entry given by name.
    void note(NodeId node, std::string_view entry);

    /// Notes the camera's current values as far as they can be read. Throws Failure if the camera is gone.
    void noteFeatures(const NodeMap& nodes);

    /// Size of the largest image in the format that needs the most bytes. 0 if one of the three features is unknown.
    [[nodiscard]] std::uint64_t bytes() const;

private:
    NodeId m_widthNode;
    NodeId m_heightNode;
    NodeId m_formatNode;
    std::uint32_t m_width = 0;
    std::uint32_t m_height = 0;
    std::set<std::uint32_t> m_formats; ///< PFNC values; for a format outside the table only its bits per pixel
};

/// The image size for a stream with `buffers` buffers, from `reported` and the camera's current values. Throws Failure
/// if the camera has no payload size, and Failure(CAM_API_STS_INVALID_PARAMETER) if the buffers would take 4 GiB or
/// more.
[[nodiscard]] SlotRing::ImageSize readImageSize(const NodeMap& nodes, const ImageBounds& reported,
                                                std::uint32_t buffers);

} // namespace cameralibs

#pragma once

#include "cameralibs/api/SlotRing.h"
#include "cameralibs/genicam/nodes/NodeMap.h"

#include <cstdint>
#include <set>
#include <string_view>

namespace cameralibs {

/// The largest width, the largest height and the pixel formats of a camera's images, noted one by one. Who reads an
/// image may go by any of them, whenever he was told.
class ImageBounds {
public:
    explicit ImageBounds(const Description& description);

    /// Notes the value of a feature if it is one of the three. What no image can go by changes nothing.
    void note(NodeId node, std::int64_t value);

    /// The same with the name of an entry.
    void note(NodeId node, std::string_view entry);

    /// Notes what the camera says now, as far as it can be read. Throws Failure where the camera is gone.
    void noteFeatures(const NodeMap& nodes);

    /// Of the largest image, in whichever of the formats it takes most; 0 as long as one of the three is unknown.
    [[nodiscard]] std::uint64_t bytes() const;

private:
    NodeId m_widthNode;
    NodeId m_heightNode;
    NodeId m_formatNode;
    std::uint32_t m_width = 0;
    std::uint32_t m_height = 0;
    std::set<std::uint32_t>
        m_formats; ///< values of the PFNC; of one that is not in our table, only what tells its bits
};

/// How large the images of a stream with so many buffers are: `told` and what the camera says now. Throws Failure:
/// without a payload size there are no images, and of 4 GiB or more in all CAM_API_STS_INVALID_PARAMETER.
[[nodiscard]] SlotRing::ImageSize readImageSize(const NodeMap& nodes, const ImageBounds& told, std::uint32_t buffers);

} // namespace cameralibs

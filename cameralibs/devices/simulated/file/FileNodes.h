#pragma once

#include "cameralibs/devices/simulated/images/FrameSettings.h"
#include "cameralibs/genicam/nodes/NodeMap.h"

#include <arv.h>

#include <cstdint>
#include <optional>
#include <string>

namespace cameralibs::simulated {

/// What the camera itself knows of the description it was made from: it gives the registers values to begin with, and
/// finds out what its images are to be like. It shares the node map with the program that opened the camera, and is
/// called only while it has that to itself.
class FileNodes {
public:
    /// The map outlives its use here.
    explicit FileNodes(NodeMap& nodes)
        : m_nodes(nodes)
    {
    }

    /// Puts every feature that is out of its range into it, and the image at a useful size.
    void powerUp(const std::string& model, const std::string& serial);

    /// Nothing where the description has no size of an image, a pixel format of which none is known here, or rows that
    /// the format does not fill with whole groups of pixels.
    [[nodiscard]] std::optional<FrameSettings> settings() const;

    /// Keeps PayloadSize right where it is a register that the camera is expected to fill.
    void updatePayloadSize();

private:
    [[nodiscard]] std::optional<std::int64_t> integer(const char* name) const;
    void setInteger(const char* name, std::int64_t value);
    void setText(const char* name, const std::string& value);
    [[nodiscard]] std::optional<FrameSettings> readSettings() const;
    void settle(NodeId category);
    void settleFeature(NodeId id);
    /// Whether the description itself holds the value, and not a register. It stays what the description says.
    [[nodiscard]] bool isConstant(NodeId id) const;
    [[nodiscard]] ArvGcFeatureNode* feature(const char* name) const;
    [[nodiscard]] ArvGcFeatureNode* feature(NodeId id) const;

    NodeMap& m_nodes;
    bool m_fillsPayloadSize = false;
};

} // namespace cameralibs::simulated

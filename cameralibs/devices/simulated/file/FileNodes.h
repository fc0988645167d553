#pragma once

#include "cameralibs/devices/simulated/images/FrameSettings.h"
#include "cameralibs/genicam/nodes/NodeMap.h"

#include <arv.h>

#include <cstdint>
#include <optional>
#include <string>

namespace cameralibs::simulated {

/// Initialises the registers of a camera made from a description file, and reads the image settings from them. Shares
/// the node map with the program that opened the camera, and is called only with exclusive access to it.
class FileNodes {
public:
    /// `nodes` must outlive this object.
    explicit FileNodes(NodeMap& nodes)
        : m_nodes(nodes)
    {
    }

    /// Sets a usable image size and clamps every feature to its range.
    void powerUp(const std::string& model, const std::string& serial);

    /// nullopt if the description has no valid image size, or if no packing has the bits per pixel of its pixel format.
    [[nodiscard]] std::optional<FrameSettings> settings() const;

    /// Updates PayloadSize if it is a register that the camera has to fill.
    void updatePayloadSize();

private:
    [[nodiscard]] std::optional<std::int64_t> integer(const char* name) const;
    void setInteger(const char* name, std::int64_t value);
    void setText(const char* name, const std::string& value);
    [[nodiscard]] std::optional<FrameSettings> readSettings() const;
    void clampFeatures(NodeId category);
    void clampFeature(NodeId id);
    /// Whether the description itself contains the value. Such a value never changes.
    [[nodiscard]] bool isConstant(NodeId id) const;
    [[nodiscard]] ArvGcFeatureNode* feature(const char* name) const;
    [[nodiscard]] ArvGcFeatureNode* feature(NodeId id) const;

    NodeMap& m_nodes;
    bool m_fillsPayloadSize = false;
};

} // namespace cameralibs::simulated

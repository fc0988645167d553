#pragma once

#include "cameralibs/api/Description.h"

#include <memory>
#include <vector>

typedef struct _ArvDevice ArvDevice;
typedef struct _ArvGc ArvGc;
typedef struct _ArvGcFeatureNode ArvGcFeatureNode;

namespace orvo {

/// The nodes of an opened camera, ready to be evaluated on its device. One thread at a time: Aravis keeps results
/// within its nodes.
class NodeMap {
public:
    /// The device outlives the map. Construct one at a time per process. Throws Failure(CAM_API_STS_GENICAM_ERR).
    NodeMap(std::shared_ptr<const Description> description, ArvDevice* device);
    ~NodeMap();
    NodeMap(const NodeMap&) = delete;
    NodeMap& operator=(const NodeMap&) = delete;

    [[nodiscard]] const Description& description() const noexcept { return *m_description; }
    [[nodiscard]] const DescribedNode& node(NodeId id) const { return m_description->node(id); }

    /// Throws Failure(CAM_API_STS_GENICAM_ERR) for a node that cannot be evaluated.
    [[nodiscard]] ArvGcFeatureNode* evaluable(NodeId id) const;

    /// The number behind an Integer, Boolean, Enumeration or Float, whatever the access mode. For flags and selectors.
    [[nodiscard]] std::int64_t rawNumber(NodeId id) const;

private:
    void bind(NodeId id);

    const std::shared_ptr<const Description> m_description;
    ArvGc* m_gc = nullptr;
    std::vector<ArvGcFeatureNode*> m_nodes; ///< by NodeId; they belong to m_gc
};

} // namespace orvo

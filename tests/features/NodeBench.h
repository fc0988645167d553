#pragma once

#include "features/item/GenAPINodeItem.h"
#include "features/view/FeatureView.h"
#include "tests/support/ScriptedCamera.h"

#include <QMetaType>
#include <QStringList>

#include <memory>
#include <string>
#include <vector>

/// An open scripted camera with a few nodes, and a view without rows: every camera call comes from the item under
/// test.
class NodeBench {
public:
    explicit NodeBench(std::vector<scripted::NodeSpec> nodes, int opeLogLevel = OpeLogOff);

    [[nodiscard]] Orvo::CAM_HANDLE camera() const { return m_camera; }
    [[nodiscard]] Orvo::CAM_NODE_HANDLE handle(const std::string& name) const;

    /// An item of the named node, or of the first one. Clears the calls and the log of its construction.
    [[nodiscard]] std::unique_ptr<GenAPINodeItem> item(const std::string& name = {});

    /// The recorded calls as "Operation(arguments)", without camera and node handles.
    [[nodiscard]] static QStringList calls();

    FeatureView view;
    QStringList log;       ///< the entries of the view's operation log
    int triggerChecks = 0; ///< emissions of the view's checkSoftwareTriggerMode

private:
    std::string m_first;
    Orvo::CAM_HANDLE m_camera = 0;
};

/// Typical camera nodes, read-write.
[[nodiscard]] scripted::NodeSpec nodeOf(Orvo::NodeType type, const std::string& name = "Node");
[[nodiscard]] scripted::NodeSpec integerNode(std::int64_t value, const std::string& name = "Node");
[[nodiscard]] scripted::NodeSpec floatNode(double value, const std::string& name = "Node");
[[nodiscard]] scripted::NodeSpec stringNode(const std::string& value, const std::string& name = "Node");
/// Entries "First", "Second" and so on down the list, their numbers 10, 20, 30; the first is chosen.
[[nodiscard]] scripted::NodeSpec enumNode(const std::vector<Orvo::NodeAccessMode>& entries,
                                          const std::string& name = "Node");

/// 12.3456 us, from 1.5 to 1000000 in steps of 0.5.
[[nodiscard]] scripted::NodeSpec exposure();

/// The node with another access mode.
[[nodiscard]] scripted::NodeSpec with(Orvo::NodeAccessMode access, scripted::NodeSpec spec);
[[nodiscard]] scripted::NodeSpec with(Orvo::NodeRepresentation representation, scripted::NodeSpec spec);

Q_DECLARE_METATYPE(scripted::NodeSpec)

#pragma once

#include "camera/OrvoCamApi.h"

#include <QString>

/// Item data role of a value cell: an EditorWidgetType as int. TreeViewItemDelegate expects a name instead.
constexpr int EditorKindRole = Qt::UserRole + 3;

/// The editor of a feature's value.
enum EditorWidgetType : int {
    EditorNone = 0, ///< the cell is not editable
    EditorLineEdit = 1,
    EditorComboBox = 2,
    EditorSlider = 3, ///< LineEditWithSlider
    EditorButton = 4,
    EditorSpinBox = 5, ///< never chosen for a node
};

/// How a node is displayed and edited.
struct NodeEditor {
    EditorWidgetType editor;
    Orvo::NodeRepresentation representation;

    /// The editor for a node of this type, name and representation. With `useNameOverrides` a few well-known features
    /// get a slider whatever their representation. An unknown type gives EditorNone.
    [[nodiscard]] static NodeEditor choose(Orvo::NodeType type, const QString& name,
                                           Orvo::NodeRepresentation representation, bool useNameOverrides);

    /// The name of the type for the user.
    [[nodiscard]] static QString typeText(Orvo::NodeType type);
};

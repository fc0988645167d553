#pragma once

#include "camera/OrvoCamApi.h"

#include <QString>

/// Item data of a value cell: an EditorWidgetType as int. TreeViewItemDelegate takes a name.
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

/// What a node is shown as.
struct NodeEditor {
    EditorWidgetType editor;
    Orvo::NodeRepresentation representation;

    /// The editor for a node of this type, name and representation. With `useNameOverrides` a few well-known features
    /// get a slider whatever their representation. An unknown type gives EditorNone.
    [[nodiscard]] static NodeEditor choose(Orvo::NodeType type, const QString& name,
                                           Orvo::NodeRepresentation representation, bool useNameOverrides);

    /// The type as the user reads it.
    [[nodiscard]] static QString typeText(Orvo::NodeType type);
};

#include "features/item/NodeEditor.h"

#include <QLatin1String>

namespace {

using namespace Orvo;

struct TypeRow {
    NodeType type;
    const char* text;
    EditorWidgetType editor;
    bool sliderPossible; ///< whether some representations get EditorSlider instead
};

constexpr TypeRow kTypeRows[] = {
    {NODE_TYPE_VALUE, "Value", EditorNone, false},
    {NODE_TYPE_BASE, "Base", EditorNone, false},
    {NODE_TYPE_INTEGER, "Integer", EditorLineEdit, true},
    {NODE_TYPE_BOOLEAN, "Boolean", EditorComboBox, false},
    {NODE_TYPE_COMMAND, "Command", EditorButton, false},
    {NODE_TYPE_FLOAT, "Float", EditorLineEdit, true},
    {NODE_TYPE_STRING, "String", EditorLineEdit, false},
    {NODE_TYPE_REGISTER, "Register", EditorNone, false},
    {NODE_TYPE_CATEGORY, "Category", EditorNone, false},
    {NODE_TYPE_ENUMERATION, "Enumeration", EditorComboBox, false},
    {NODE_TYPE_ENUM_ENTRY, "EnumEntry", EditorNone, false},
    {NODE_TYPE_PORT, "Port", EditorNone, false},
    {NODE_TYPE_UNKNOWN, "Unknown", EditorNone, false},
};

/// Features that users drag much more often than they type. They get a slider whatever their representation.
struct NameOverride {
    const char* name;
    NodeType type;
    NodeRepresentation representation;
};

constexpr NameOverride kNameOverrides[] = {
    {"Width", NODE_TYPE_INTEGER, NODE_REPRESENTATION_LINEAR},
    {"Height", NODE_TYPE_INTEGER, NODE_REPRESENTATION_LINEAR},
    {"OffsetX", NODE_TYPE_INTEGER, NODE_REPRESENTATION_LINEAR},
    {"OffsetY", NODE_TYPE_INTEGER, NODE_REPRESENTATION_LINEAR},
    {"ExposureTime", NODE_TYPE_FLOAT, NODE_REPRESENTATION_LOGARITHMIC},
    {"Gain", NODE_TYPE_FLOAT, NODE_REPRESENTATION_LINEAR},
};

const TypeRow* rowOf(NodeType type)
{
    for (const TypeRow& row : kTypeRows) {
        if (row.type == type)
            return &row;
    }
    return nullptr;
}

bool hasSlider(NodeType type, NodeRepresentation representation)
{
    // A number below the defined representations gives a slider for a float, but not for an integer.
    return representation <= NODE_REPRESENTATION_LOGARITHMIC &&
           (type == NODE_TYPE_FLOAT || representation >= NODE_REPRESENTATION_LINEAR);
}

} // namespace

NodeEditor NodeEditor::choose(NodeType type, const QString& name, NodeRepresentation representation,
                              bool useNameOverrides)
{
    if (useNameOverrides) {
        for (const NameOverride& feature : kNameOverrides) {
            if (feature.type == type && name == QLatin1String(feature.name))
                return {EditorSlider, feature.representation};
        }
    }
    const TypeRow* row = rowOf(type);
    if (row == nullptr)
        return {EditorNone, representation};
    if (row->sliderPossible && hasSlider(type, representation))
        return {EditorSlider, representation};
    return {row->editor, representation};
}

QString NodeEditor::typeText(NodeType type)
{
    const TypeRow* row = rowOf(type);
    return QLatin1String(row != nullptr ? row->text : "Not definded");
}

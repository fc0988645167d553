// Sample rows for developing the feature view without a camera. The viewer never shows them.

#include "features/item/NodeEditor.h"
#include "features/view/FeatureView.h"

#include <QColor>

namespace {

constexpr char kCategory[] = "Category";

struct DemonstrationRow {
    const char* level;
    const char* name;
    const char* type;
    const char* value;
    EditorWidgetType editor;
};

constexpr DemonstrationRow kRows[] = {
    {"C", "Scalable", kCategory, "", EditorNone},        //
    {"B", "Width", "Integer", "640", EditorSlider},      //
    {"B", "Height", "Integer", "480", EditorLineEdit},   //
    {"B", "OffsetX", "Integer", "0", EditorSpinBox},     //
    {"B", "OffsetY", "Integer", "0", EditorComboBox},    //
    {"C", "Analog", kCategory, "", EditorNone},          //
    {"B", "Exposure", "Float", "1200.00", EditorSlider}, //
    {"B", "Gain", "Float", "", EditorSpinBox},           //
    {"B", "Gamma", "Float", "", EditorLineEdit},         //
};

} // namespace

void FeatureView::setFeatureDataDebug(QStandardItemModel* model)
{
    int row = 0;
    for (const DemonstrationRow& entry : kRows) {
        addFeature(model, row, QString::fromLatin1(entry.level), QString::fromLatin1(entry.name),
                   QString::fromLatin1(entry.type), QString::fromLatin1(entry.value), entry.editor);
        ++row;
    }
}

void FeatureView::addFeature(QStandardItemModel* model, int row, const QString& level, const QString& name,
                             const QString& type, const QString& value, EditorWidgetType editor)
{
    auto* const nameItem = new QStandardItem;
    if (type == QLatin1String(kCategory)) {
        nameItem->setText(name);
        nameItem->setData(QColor(196, 255, 255), Qt::BackgroundRole);
        nameItem->setData(false, ExpandedRole);
        nameItem->setIcon(m_foldedIcon);
    } else {
        nameItem->setText("  " + name);
    }
    nameItem->setData(row, ItemIndexRole);
    nameItem->setData(level, LevelRole);

    auto* const valueItem = new QStandardItem(value);
    valueItem->setData(static_cast<int>(editor), EditorKindRole);
    model->appendRow({nameItem, new QStandardItem(type), valueItem});
}

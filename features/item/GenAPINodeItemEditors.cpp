#include "features/item/GenAPINodeItem.h"

#include "features/item/NodeItemListener.h"

#include <QComboBox>
#include <QLineEdit>
#include <QSignalBlocker>

using namespace Orvo;
using OperationLog::Fragment;

void GenAPINodeItem::setEditor(QWidget* widget)
{
    m_editor = widget;
    const auto* combo = qobject_cast<QComboBox*>(widget);
    if (m_node.editor == EditorComboBox && combo != nullptr)
        m_comboIndex = combo->currentIndex();
}

void GenAPINodeItem::lineEdit_EditingFinished()
{
    if (const auto* lineEdit = qobject_cast<QLineEdit*>(m_editor))
        m_lastStatus = static_cast<CAM_API_STATUS>(setNodeValue(lineEdit->text()));
}

void GenAPINodeItem::combo_CurrentIndexChanged(int)
{
    const auto* combo = qobject_cast<QComboBox*>(m_editor);
    // Filling the combo box also emits this signal, with its current index.
    if (combo == nullptr || combo->currentIndex() == m_comboIndex)
        return;
    m_comboIndex = combo->currentIndex();
    m_lastStatus = static_cast<CAM_API_STATUS>(setNodeValue(combo->currentText()));
    if (m_lastStatus != CAM_API_STS_SUCCESS) {
        showChosenEntry();
    } else if (m_listener != nullptr) {
        m_listener->updateAllFeatures(false);
    }
}

/// After the camera has refused a choice: the combo box shows the camera's entry, and the refused one can be chosen
/// again.
void GenAPINodeItem::showChosenEntry()
{
    auto* const combo = qobject_cast<QComboBox*>(m_editor); // the write may have destroyed it
    if (combo == nullptr)
        return;
    const QSignalBlocker quiet(combo);
    combo->setCurrentIndex(combo->findText(m_node.valueText));
    m_comboIndex = combo->currentIndex();
}

// The two slots below deliberately log only the call, never its failure.

void GenAPINodeItem::spinBox_ValueChanged(int value)
{
    m_lastStatus = Nd_SetIntValue(m_camHandle, m_node.handle, value, true);
    if (m_lastStatus == CAM_API_STS_SUCCESS) {
        m_node.valueText = QString::number(value);
        showValueText();
    }
    QString log;
    appendOpeLog(log, OperationLog::text(Fragment::IntegerWrite, QString::number(value)), OpeLogWrite,
                 CAM_API_STS_SUCCESS);
    sendOpeLog(log);
}

void GenAPINodeItem::button_Clicked()
{
    m_lastStatus = Nd_CmdExecute(m_camHandle, m_node.handle, true);
    if (m_lastStatus == CAM_API_STS_SUCCESS && m_listener != nullptr) {
        m_listener->setValuesWritten();
        m_listener->updateAllFeatures(true);
    }
    QString log;
    appendOpeLog(log, OperationLog::text(Fragment::CommandExecution), OpeLogWrite, CAM_API_STS_SUCCESS);
    sendOpeLog(log);
}

void GenAPINodeItem::slider_EditingFinished() {}

void GenAPINodeItem::slider_sliderMoved() {}

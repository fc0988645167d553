#pragma once

#include "features/editors/LineEditWithSlider.h"
#include "features/item/GenAPINodeItem.h"
#include "tests/support/ScriptedCamera.h"

#include <QLineEdit>
#include <QPointer>
#include <QSlider>
#include <QStandardItemModel>
#include <QStringList>
#include <QWidget>

#include <functional>
#include <memory>

/// Test base: a slider editor on its own in a window, for an item without a view.
class SliderBench {
public:
    Q_DISABLE_COPY_MOVE(SliderBench)

protected:
    SliderBench() = default;
    ~SliderBench() = default;

    /// Around each test function.
    void open();
    void close();

    /// Opens the camera with this single feature and returns its item, with the range already read.
    GenAPINodeItem* itemOf(const scripted::NodeSpec& spec);
    /// Changes the camera's feature and reloads the editor.
    void changeRange(const std::function<void(scripted::NodeSpec&)>& change);
    /// Shows the editor and gives it the focus.
    void showEditor();
    /// The values written since the item was created or the calls were cleared.
    [[nodiscard]] static QStringList written();

    [[nodiscard]] QLineEdit& lineEdit() { return *m_editor->findChild<QLineEdit*>(); }
    [[nodiscard]] QSlider& slider() { return *m_editor->findChild<QSlider*>(); }
    [[nodiscard]] QString position() { return QString::number(slider().value()); }

    Orvo::CAM_HANDLE m_camera = 0;
    std::unique_ptr<QStandardItemModel> m_model;
    QPointer<GenAPINodeItem> m_item;
    std::unique_ptr<QWidget> m_window;
    QPointer<QLineEdit> m_other; // beside the editor
    QPointer<LineEditWithSlider> m_editor;
};

#pragma once

#include "features/editors/LineEditWithSlider.h"
#include "tests/features/FeatureTable.h"
#include "tests/support/FeatureHand.h"

#include <QEvent>
#include <QMetaType>
#include <QPointer>
#include <QSlider>
#include <QStringList>

#include <string>
#include <vector>

Q_DECLARE_METATYPE(scripted::NodeSpec) // for the columns of test data

/// Features for setNodes(), each with a value of its own.
namespace features {

[[nodiscard]] scripted::NodeSpec integer(std::string name, std::int64_t value, std::int64_t minimum,
                                         std::int64_t maximum, std::int64_t increment = 1);
[[nodiscard]] scripted::NodeSpec real(std::string name, double value, double minimum, double maximum);
[[nodiscard]] scripted::NodeSpec boolean(std::string name, bool value);
[[nodiscard]] scripted::NodeSpec text(std::string name, std::string value);
[[nodiscard]] scripted::NodeSpec command(std::string name);
[[nodiscard]] scripted::NodeSpec enumeration(std::string name, std::int64_t value,
                                             const std::vector<std::string>& entries);

[[nodiscard]] scripted::NodeSpec linear(scripted::NodeSpec spec);
[[nodiscard]] scripted::NodeSpec logarithmic(scripted::NodeSpec spec);
[[nodiscard]] scripted::NodeSpec withUnit(scripted::NodeSpec spec, std::string unit);
[[nodiscard]] scripted::NodeSpec withAccess(scripted::NodeSpec spec, Orvo::NodeAccessMode access);

/// The value 37 in a range of 0 to 100, with a linear slider.
[[nodiscard]] scripted::NodeSpec percent();
/// The feature and a second one, "Other", to click on when leaving an editor; it opens no editor itself.
[[nodiscard]] std::vector<scripted::NodeSpec> beside(const scripted::NodeSpec& spec);

} // namespace features

/// A feature view on screen with every row unfolded, and simulated user input in its value cells.
class EditorBench {
public:
    explicit EditorBench(std::vector<scripted::NodeSpec> features);

    [[nodiscard]] FeatureTable& features() { return m_table; }
    [[nodiscard]] FeatureView& view() { return m_table.view(); }
    [[nodiscard]] QTableView& table() { return m_table.table(); }
    [[nodiscard]] GenAPINodeItem* item(const QString& name) { return m_table.item(name); }
    [[nodiscard]] QModelIndex valueCell(const QString& name) { return m_table.cell(name, 2); }

    /// Clicks the feature's value cell and returns the editor that opens, or null. Clears the recorded calls.
    QWidget* open(const QString& name);
    void click(const QString& name, int column = 2);
    /// The open editor, or null.
    [[nodiscard]] QWidget* editor() { return openEditor(table()); }
    template <typename Editor> Editor* openAs(const QString& name)
    {
        auto* found = qobject_cast<Editor*>(open(name));
        if (found == nullptr)
            qFatal("%s opens another editor", qPrintable(name));
        return found;
    }

    /// Data rows with a column "how": each way to leave an editor other than the keys that close it.
    static void waysToLeave();
    /// Leaves the editor in one of these ways, or by "enter" or "escape". Needs the feature "Other".
    void leave(const QString& how);

    /// Sent to the widget that has the focus.
    static void type(const QString& text);
    static void press(Qt::Key key);

    /// The text of the value cell.
    [[nodiscard]] QString shown(const QString& name) { return valueCell(name).data().toString(); }
    /// Writes and commands since the editor was opened, such as "Width = 64" or "Reset executed".
    [[nodiscard]] QStringList written();
    /// How often each value was read since the editor was opened.
    [[nodiscard]] static int reads();

private:
    FeatureTable m_table;
};

/// The parts of a slider editor.
[[nodiscard]] QLineEdit* lineEditOf(LineEditWithSlider* editor);
[[nodiscard]] QSlider* sliderOf(LineEditWithSlider* editor);

/// Drags the handle of a slider with the mouse.
class SliderDrag {
public:
    explicit SliderDrag(QSlider* slider);
    ~SliderDrag() { release(); }
    Q_DISABLE_COPY_MOVE(SliderDrag)

    /// Moves the handle to a fraction of the slider's range.
    void to(double fraction);
    void release();

private:
    void send(QEvent::Type type, QPoint position, Qt::MouseButtons buttons);

    QPointer<QSlider> m_slider;
    QPoint m_position;
    bool m_pressed = false;
};

#pragma once

#include "features/editors/LineEditWithSliderMapping.h"

#include <QLineEdit>
#include <QPointer>
#include <QSlider>
#include <QWidget>

class GenAPINodeItem;

/// The editor of an Integer or Float node with a range: a line edit and a slider side by side. Typed text is written
/// when the line edit is left; while the slider is dragged its value is shown at once and written every 50 ms. Loading
/// writes nothing. Lives on the GUI thread.
///
/// When the focus leaves either part, the editor itself receives a focus-out event, so that a delegate commits and
/// closes it like a simple editor.
class LineEditWithSlider : public QWidget {
    Q_OBJECT

public:
    explicit LineEditWithSlider(QWidget* parent = nullptr);
    ~LineEditWithSlider() override;

    /// Shows range and value of the item. May be called again at any time, which ends a drag of the slider. If the item
    /// is null or its node is neither Integer nor Float, clears and disables the editor, which keeps its previous item.
    void setValue(GenAPINodeItem* item);

    /// Load a node, which must have the matching type and not be null. A range of one value or none disables the line
    /// edit; the slider is neither enabled nor disabled. The logarithmic ones position the slider with calcSliderVal(),
    /// so linearly if the node is not logarithmic.
    void setValIntLinear(GenAPINodeItem* item);
    void setValFloatLinear(GenAPINodeItem* item);
    void setValIntLog(GenAPINodeItem* item);
    void setValFloatLog(GenAPINodeItem* item);

    /// Conversions between values and slider positions, according to the node's representation; 0 without a node.
    [[nodiscard]] int calcSliderVal(long value) const;
    [[nodiscard]] int calcSliderVal(double value) const;
    [[nodiscard]] long convSliderValToInt(int position) const;
    [[nodiscard]] double convSliderValToFloat(int position) const;
    /// The value clamped to the range and snapped to a step; unchanged without a node.
    [[nodiscard]] long getValidNodeValue(long value) const;
    [[nodiscard]] double getValidNodeValue(double value) const;

    /// Writes the slider's value if the slider has the focus, otherwise the line edit's text; then shows the node's
    /// value.
    void getValue();
    /// The same, but only if the slider has moved since the last call.
    void getSliderValue();

    [[nodiscard]] bool hasTracking() const;
    void setTracking(bool tracking);

signals:
    /// Part of the interface, but never emitted: the delegate commits with getValue().
    void editingFinished();
    void sliderMoved();

public slots:
    void lineEdit_EditingFinished();
    void slider_Pressed();
    void slider_Released();
    void slider_Moved(int position);
    void timeElapsed();

protected:
    void timerEvent(QTimerEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    template <typename Load> void loadInt(GenAPINodeItem& item, Load load);
    template <typename Load> void loadFloat(GenAPINodeItem& item, Load load);
    void fill(const SliderPositions& positions, bool isFixed);
    void writeText();
    void writePosition();
    [[nodiscard]] bool isFloat() const;
    [[nodiscard]] bool isLogarithmic() const;
    void focusMoved(QWidget* from, QWidget* to);

    QLineEdit m_lineEdit;
    QSlider m_slider{Qt::Horizontal};
    QPointer<GenAPINodeItem> m_item;
    SliderMapping m_mapping;
    int m_timerId = 0;
    int m_lastSliderValue = -1; ///< last value written while dragging
    bool m_sliderPressed = false;
};

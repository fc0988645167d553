#pragma once

#include "features/LineEditWithSliderMapping.h"

#include <QLineEdit>
#include <QPointer>
#include <QSlider>
#include <QWidget>

class GenAPINodeItem;

/// The editor of an Integer or Float node with a range: a line edit and a slider side by side. Typed text is written
/// when the line edit is left; while the slider is dragged its value is shown at once and written every 50 ms. Loading
/// writes nothing. Lives on the GUI thread.
class LineEditWithSlider : public QWidget {
    Q_OBJECT

public:
    explicit LineEditWithSlider(QWidget* parent = nullptr);
    ~LineEditWithSlider() override;

    /// Shows range and value of the item, which may be loaded again at any time; a drag that is under way ends.
    /// Anything but an Integer or Float node, null too, leaves an empty, disabled editor.
    void setValue(GenAPINodeItem* item);

    void setValIntLinear(GenAPINodeItem* item);
    void setValFloatLinear(GenAPINodeItem* item);
    void setValIntLog(GenAPINodeItem* item);
    void setValFloatLog(GenAPINodeItem* item);

    [[nodiscard]] int calcSliderVal(long value) const;
    [[nodiscard]] int calcSliderVal(double value) const;
    [[nodiscard]] long convSliderValToInt(int position) const;
    [[nodiscard]] double convSliderValToFloat(int position) const;
    [[nodiscard]] long getValidNodeValue(long value) const;
    [[nodiscard]] double getValidNodeValue(double value) const;

    /// Writes the slider's value where the slider has the focus, the line edit's text otherwise; then shows what the
    /// node holds.
    void getValue();

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

public:
    /// Writes the slider's value if it moved since it was last written.
    void getSliderValue();

protected:
    void timerEvent(QTimerEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

private:
    QLineEdit m_lineEdit;
    QSlider m_slider{Qt::Horizontal};
    QPointer<GenAPINodeItem> m_item;
    SliderMapping m_mapping;
    int m_timerId = 0;
    int m_lastSliderValue = -1;
    bool m_sliderPressed = false;
};

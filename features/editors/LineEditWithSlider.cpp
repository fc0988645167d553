#include "features/editors/LineEditWithSlider.h"

#include "features/item/GenAPINodeItem.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QFocusEvent>
#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QTimerEvent>

#include <cstdint>

namespace {

constexpr int kDragInterval = 50; // ms between two writes while the slider is dragged
constexpr int kLeastPartWidth = 50;

} // namespace

LineEditWithSlider::LineEditWithSlider(QWidget* parent)
    : QWidget(parent)
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_slider.setTracking(true);
    for (QWidget* part : {static_cast<QWidget*>(&m_lineEdit), static_cast<QWidget*>(&m_slider)}) {
        part->setGeometry(0, 0, width() / 2, height());
        part->setMinimumWidth(kLeastPartWidth);
        layout->addWidget(part, 0);
    }

    connect(&m_lineEdit, &QLineEdit::editingFinished, this, &LineEditWithSlider::lineEdit_EditingFinished);
    connect(&m_slider, &QSlider::sliderPressed, this, &LineEditWithSlider::slider_Pressed);
    connect(&m_slider, &QSlider::sliderReleased, this, &LineEditWithSlider::slider_Released);
    connect(&m_slider, &QSlider::valueChanged, this, &LineEditWithSlider::slider_Moved);
    connect(qApp, &QApplication::focusChanged, this, &LineEditWithSlider::focusMoved);
}

LineEditWithSlider::~LineEditWithSlider()
{
    // The children lose the focus while they are destroyed; that event must no longer arrive here.
    disconnect(qApp, nullptr, this, nullptr);
}

// --- Loading --------------------------------------------------------------------------------------------------------

void LineEditWithSlider::setValue(GenAPINodeItem* item)
{
    if (item != nullptr) {
        m_sliderPressed = false;
        const bool logarithmic = item->getRepresentation() == Orvo::NODE_REPRESENTATION_LOGARITHMIC;
        if (item->getNodeType() == Orvo::NODE_TYPE_INTEGER) {
            logarithmic ? setValIntLog(item) : setValIntLinear(item);
            return;
        }
        if (item->getNodeType() == Orvo::NODE_TYPE_FLOAT) {
            logarithmic ? setValFloatLog(item) : setValFloatLinear(item);
            return;
        }
    }
    m_slider.setValue(m_slider.minimum()); // before the text is set: a pressed slider would overwrite it
    m_slider.setEnabled(false);
    m_lineEdit.clear();
    m_lineEdit.setToolTip(QString());
    m_lineEdit.setEnabled(false);
}

void LineEditWithSlider::setValIntLinear(GenAPINodeItem* item)
{
    loadInt(*item, loadIntLinear);
}

void LineEditWithSlider::setValFloatLinear(GenAPINodeItem* item)
{
    loadFloat(*item, loadFloatLinear);
}

void LineEditWithSlider::setValIntLog(GenAPINodeItem* item)
{
    loadInt(*item, [this](SliderMapping& mapping, long value) { return loadIntLog(mapping, isLogarithmic(), value); });
}

void LineEditWithSlider::setValFloatLog(GenAPINodeItem* item)
{
    loadFloat(*item,
              [this](SliderMapping& mapping, double value) { return loadFloatLog(mapping, isLogarithmic(), value); });
}

template <typename Load> void LineEditWithSlider::loadInt(GenAPINodeItem& item, Load load)
{
    m_item = &item;
    m_mapping.minInt = item.getMinInt();
    m_mapping.maxInt = item.getMaxInt();
    m_mapping.incInt = item.getIncInt();
    const long value = item.getValInt(false);
    fill(load(m_mapping, value), m_mapping.minInt >= m_mapping.maxInt);
}

template <typename Load> void LineEditWithSlider::loadFloat(GenAPINodeItem& item, Load load)
{
    m_item = &item;
    m_mapping.minFloat = item.getMinFloat();
    m_mapping.maxFloat = item.getMaxFloat();
    m_mapping.hasIncFloat = item.getHasIncFloat();
    m_mapping.incFloat = item.getIncFloat();
    const double value = item.getValFloat(false);
    fill(load(m_mapping, value), !(m_mapping.minFloat < m_mapping.maxFloat));
}

void LineEditWithSlider::fill(const SliderPositions& positions, bool isFixed)
{
    // The style divides by twice the span in 32 bits. For a span of 2^31 that is 0 and would end the program, so the
    // slider does without its lowest position.
    constexpr std::int64_t kUndrawableSpan = 0x80000000;
    const bool drawable = std::int64_t{positions.maximum} - positions.minimum != kUndrawableSpan;
    m_slider.setMinimum(drawable ? positions.minimum : positions.minimum + 1);
    m_slider.setMaximum(positions.maximum);
    m_slider.setValue(positions.position);
    m_lineEdit.setText(m_item->getNodeValue(false, false));
    m_lineEdit.setEnabled(!isFixed);
    m_lineEdit.setToolTip(isFixed ? tr("This value is fixed value.") : QString());
}

// --- Values and positions -------------------------------------------------------------------------------------------

int LineEditWithSlider::calcSliderVal(long value) const
{
    return m_item ? intToPosition(m_mapping, isLogarithmic(), value) : 0;
}

int LineEditWithSlider::calcSliderVal(double value) const
{
    return m_item ? floatToPosition(m_mapping, isLogarithmic(), value) : 0;
}

long LineEditWithSlider::convSliderValToInt(int position) const
{
    return m_item ? positionToInt(m_mapping, isLogarithmic(), position) : 0;
}

double LineEditWithSlider::convSliderValToFloat(int position) const
{
    return m_item ? positionToFloat(m_mapping, isLogarithmic(), position) : 0.0;
}

long LineEditWithSlider::getValidNodeValue(long value) const
{
    return m_item ? validInt(m_mapping, value) : value;
}

double LineEditWithSlider::getValidNodeValue(double value) const
{
    return m_item ? validFloat(m_mapping, value) : value;
}

bool LineEditWithSlider::isFloat() const
{
    return m_item->getNodeType() == Orvo::NODE_TYPE_FLOAT;
}

bool LineEditWithSlider::isLogarithmic() const
{
    return m_item->getRepresentation() == Orvo::NODE_REPRESENTATION_LOGARITHMIC;
}

// --- Writing --------------------------------------------------------------------------------------------------------

void LineEditWithSlider::getValue()
{
    if (m_item.isNull())
        return;
    if (!m_slider.hasFocus()) {
        writeText();
    } else {
        writePosition();
    }
    if (m_item)
        m_lineEdit.setText(m_item->getNodeValue(true, false));
}

void LineEditWithSlider::writeText()
{
    // A refused write needs no handling here: the value that is shown afterwards is the camera's.
    static_cast<void>(m_item->setNodeValue(m_lineEdit.text()));
    if (m_item.isNull())
        return;
    // The numbers read last are good enough: after a commit the view reads everything again and reloads the editor.
    const int position =
        isFloat() ? calcSliderVal(m_item->getValFloat(false)) : calcSliderVal(m_item->getValInt(false));
    m_slider.setValue(position);
}

void LineEditWithSlider::writePosition()
{
    const int position = m_slider.value();
    // As in writeText(), the status does not matter.
    static_cast<void>(isFloat() ? m_item->setNodeValue(convSliderValToFloat(position))
                                : m_item->setNodeValue(convSliderValToInt(position)));
}

void LineEditWithSlider::getSliderValue()
{
    if (m_slider.value() == m_lastSliderValue)
        return;
    m_lastSliderValue = m_slider.value();
    getValue();
}

bool LineEditWithSlider::hasTracking() const
{
    return m_slider.hasTracking();
}

void LineEditWithSlider::setTracking(bool tracking)
{
    m_slider.setTracking(tracking);
}

void LineEditWithSlider::lineEdit_EditingFinished()
{
    if (m_item.isNull())
        return;
    writeText();
    if (m_item)
        m_lineEdit.setText(m_item->getNodeValue(true, false));
}

void LineEditWithSlider::slider_Pressed()
{
    m_sliderPressed = true;
    if (m_timerId != 0)
        killTimer(m_timerId);
    m_timerId = startTimer(kDragInterval);
}

void LineEditWithSlider::slider_Released()
{
    // The delegate's commit writes the position reached since the last write.
    m_sliderPressed = false;
    if (m_timerId != 0)
        killTimer(m_timerId);
    m_timerId = 0;
}

void LineEditWithSlider::slider_Moved(int position)
{
    if (!m_sliderPressed || m_item.isNull())
        return;
    if (isFloat()) {
        m_lineEdit.setText(m_item->getValueStr(convSliderValToFloat(position)));
    } else {
        m_lineEdit.setText(m_item->getValueStr(convSliderValToInt(position)));
    }
}

void LineEditWithSlider::timeElapsed()
{
    getValue();
}

void LineEditWithSlider::timerEvent(QTimerEvent* event)
{
    if (event->timerId() == m_timerId) {
        getSliderValue();
    } else {
        QWidget::timerEvent(event);
    }
}

// --- Keyboard focus -------------------------------------------------------------------------------------------------

void LineEditWithSlider::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    // Not a focus proxy: when an editor is closed the view takes the focus back, and the line edit would mistake Escape
    // for being left, and write. If the line edit is not editable, the focus stays here.
    if (!m_lineEdit.isEnabled())
        return;
    m_lineEdit.setFocus(event->reason());
    m_lineEdit.selectAll();
}

void LineEditWithSlider::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    const QWidget* focus = QApplication::focusWidget();
    if (!isHidden() || parentWidget() == nullptr || (focus != &m_lineEdit && focus != &m_slider))
        return;
    // Qt would move the focus on like Tab, which takes a table to its next cell; and the line edit would mistake that
    // for being left, and write.
    {
        const QSignalBlocker notLeft(m_lineEdit);
        parentWidget()->setFocus();
    }
    // A reset view closes its editors without notifying the delegate. What was typed is committed anyway.
    const auto* view = qobject_cast<QAbstractItemView*>(parentWidget()->parentWidget());
    if (view != nullptr && view->indexWidget(view->currentIndex()) == this)
        emit view->itemDelegate()->commitData(this);
}

void LineEditWithSlider::focusMoved(QWidget* from, QWidget* to)
{
    if ((from != &m_lineEdit && from != &m_slider) || (to != nullptr && (to == this || isAncestorOf(to))))
        return;
    QFocusEvent left(QEvent::FocusOut, isActiveWindow() ? Qt::OtherFocusReason : Qt::ActiveWindowFocusReason);
    QApplication::sendEvent(this, &left);
}

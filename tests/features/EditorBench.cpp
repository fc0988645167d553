#include "tests/features/EditorBench.h"

#include "tests/support/Patience.h"

#include <QtTest>

#include <QApplication>
#include <QComboBox>
#include <QPushButton>
#include <QSpinBox>
#include <QStyle>
#include <QStyleOptionSlider>

#include <utility>

using scripted::NodeSpec;

namespace features {

namespace {

NodeSpec ofType(std::string name, Orvo::NodeType type)
{
    NodeSpec spec = feature(std::move(name));
    spec.type = type;
    return spec;
}

} // namespace

NodeSpec integer(std::string name, std::int64_t value, std::int64_t minimum, std::int64_t maximum,
                 std::int64_t increment)
{
    NodeSpec spec = ofType(std::move(name), Orvo::NODE_TYPE_INTEGER);
    spec.intValue = value;
    spec.intMin = minimum;
    spec.intMax = maximum;
    spec.intInc = increment;
    return spec;
}

NodeSpec real(std::string name, double value, double minimum, double maximum)
{
    NodeSpec spec = ofType(std::move(name), Orvo::NODE_TYPE_FLOAT);
    spec.floatValue = value;
    spec.floatMin = minimum;
    spec.floatMax = maximum;
    return spec;
}

NodeSpec boolean(std::string name, bool value)
{
    NodeSpec spec = ofType(std::move(name), Orvo::NODE_TYPE_BOOLEAN);
    spec.boolValue = value ? 1 : 0;
    return spec;
}

NodeSpec text(std::string name, std::string value)
{
    NodeSpec spec = ofType(std::move(name), Orvo::NODE_TYPE_STRING);
    spec.strValue = std::move(value);
    return spec;
}

NodeSpec command(std::string name)
{
    return ofType(std::move(name), Orvo::NODE_TYPE_COMMAND);
}

NodeSpec enumeration(std::string name, std::int64_t value, const std::vector<std::string>& entries)
{
    NodeSpec spec = ofType(std::move(name), Orvo::NODE_TYPE_ENUMERATION);
    spec.intValue = value;
    for (const std::string& entry : entries)
        spec.entries.push_back(scripted::enumEntry(entry, static_cast<std::int64_t>(spec.entries.size())));
    return spec;
}

NodeSpec linear(NodeSpec spec)
{
    spec.representation = Orvo::NODE_REPRESENTATION_LINEAR;
    return spec;
}

NodeSpec logarithmic(NodeSpec spec)
{
    spec.representation = Orvo::NODE_REPRESENTATION_LOGARITHMIC;
    return spec;
}

NodeSpec withUnit(NodeSpec spec, std::string unit)
{
    spec.unit = std::move(unit);
    return spec;
}

NodeSpec withAccess(NodeSpec spec, Orvo::NodeAccessMode access)
{
    spec.access = access;
    return spec;
}

NodeSpec percent()
{
    return linear(integer("Percent", 37, 0, 100));
}

std::vector<NodeSpec> beside(const NodeSpec& spec)
{
    return {spec, withAccess(integer("Other", 1, 0, 10), Orvo::NODE_ACCESS_MODE_RO)};
}

} // namespace features

// --- The table ------------------------------------------------------------------------------------------------------

namespace {

std::vector<NodeSpec> inOneCategory(std::vector<NodeSpec> features)
{
    NodeSpec category = scripted::category("Features", {});
    for (const NodeSpec& spec : features)
        category.features.push_back(spec.name);
    features.insert(features.begin(), {scripted::category("Root", {"Features"}), std::move(category)});
    return features;
}

} // namespace

EditorBench::EditorBench(std::vector<NodeSpec> features)
    : m_table(inOneCategory(std::move(features)))
{
    view().changeCollapsedState(m_table.cell("Features"));
    m_table.show();
    scripted::clearCalls();
}

void EditorBench::click(const QString& name, int column)
{
    QTest::mouseClick(table().viewport(), Qt::LeftButton, {}, table().visualRect(m_table.cell(name, column)).center());
}

QWidget* EditorBench::open(const QString& name)
{
    // In the current cell the table first waits for a possible double click.
    const bool waits = table().currentIndex() == valueCell(name);
    click(name);
    if (waits && !QTest::qWaitFor([this] { return editor() != nullptr; }))
        return nullptr;
    scripted::clearCalls();
    return editor();
}

void EditorBench::waysToLeave()
{
    QTest::addColumn<QString>("how");
    for (const char* how : {"click", "tab", "backtab", "other widget", "other window"})
        QTest::newRow(how) << how;
}

void EditorBench::leave(const QString& how)
{
    if (how == "click") {
        click("Other");
    } else if (how == "tab") {
        press(Qt::Key_Tab);
    } else if (how == "backtab") {
        press(Qt::Key_Backtab);
    } else if (how == "enter") {
        press(Qt::Key_Return);
    } else if (how == "escape") {
        press(Qt::Key_Escape);
    } else if (how == "other widget") {
        QLineEdit beside(&view());
        beside.show();
        beside.setFocus(Qt::MouseFocusReason);
    } else {
        QLineEdit window;
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window, kPatienceMs));
    }
    QCoreApplication::processEvents();
}

void EditorBench::type(const QString& text)
{
    QVERIFY2(QApplication::focusWidget() != nullptr, "nothing has the keyboard");
    QTest::keyClicks(QApplication::focusWidget(), text);
}

void EditorBench::press(Qt::Key key)
{
    QVERIFY2(QApplication::focusWidget() != nullptr, "nothing has the keyboard");
    QTest::keyClick(QApplication::focusWidget(), key);
    // A delegate commits on Enter only after the editor has handled the key.
    QCoreApplication::processEvents();
}

QStringList EditorBench::written()
{
    QStringList texts;
    for (const scripted::Call& call : scripted::calls({"Nd_Set", "Nd_CmdExecute"})) {
        QString name;
        for (const GenAPINodeItem* item : view().items()) {
            if (std::to_string(item->getNodeHandle()) == call.arguments.at(1))
                name = item->getNodeName();
        }
        if (call.operation == "Nd_CmdExecute") {
            texts << name + " executed";
        } else {
            texts << name + " = " + QString::fromStdString(call.arguments.at(2)).remove('"');
        }
    }
    return texts;
}

int EditorBench::reads()
{
    int reads = 0;
    for (const char* operation :
         {"Nd_GetIntValue", "Nd_GetFloatValue", "Nd_GetBoolValue", "Nd_GetStrValue", "Nd_GetEnumStrValue"})
        reads += scripted::count(operation);
    return reads;
}

QLineEdit* lineEditOf(LineEditWithSlider* editor)
{
    return editor->findChild<QLineEdit*>();
}

QSlider* sliderOf(LineEditWithSlider* editor)
{
    return editor->findChild<QSlider*>();
}

// --- The slider -----------------------------------------------------------------------------------------------------

namespace {

struct SliderGeometry {
    QRect groove;
    QRect handle;

    explicit SliderGeometry(const QSlider& slider)
    {
        QStyleOptionSlider option;
        option.initFrom(&slider);
        option.orientation = slider.orientation();
        option.minimum = slider.minimum();
        option.maximum = slider.maximum();
        option.sliderPosition = slider.sliderPosition();
        option.sliderValue = slider.value();
        option.subControls = QStyle::SC_All;
        const auto part = [&](QStyle::SubControl control) {
            return slider.style()->subControlRect(QStyle::CC_Slider, &option, control, &slider);
        };
        groove = part(QStyle::SC_SliderGroove);
        handle = part(QStyle::SC_SliderHandle);
    }
};

} // namespace

SliderDrag::SliderDrag(QSlider* slider)
    : m_slider(slider)
    , m_position(SliderGeometry(*slider).handle.center())
    , m_pressed(true)
{
    slider->setFocus(Qt::MouseFocusReason); // as a click does
    send(QEvent::MouseButtonPress, m_position, Qt::LeftButton);
}

void SliderDrag::to(double fraction)
{
    const SliderGeometry geometry(*m_slider);
    const double way = geometry.groove.width() - geometry.handle.width();
    m_position.setX(geometry.groove.x() + geometry.handle.width() / 2 + qRound(fraction * way));
    send(QEvent::MouseMove, m_position, Qt::LeftButton);
}

void SliderDrag::release()
{
    if (m_pressed && m_slider)
        send(QEvent::MouseButtonRelease, m_position, Qt::NoButton);
    m_pressed = false;
}

void SliderDrag::send(QEvent::Type type, QPoint position, Qt::MouseButtons buttons)
{
    QMouseEvent event(type, position, m_slider->mapToGlobal(position),
                      type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, buttons, Qt::NoModifier);
    QCoreApplication::sendEvent(m_slider, &event);
}

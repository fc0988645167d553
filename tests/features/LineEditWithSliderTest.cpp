// The slider editor by itself, over items without a view.

#include "features/LineEditWithSlider.h"

#include "features/GenAPINodeItem.h"
#include "tests/features/EditorBench.h"

#include <QtTest>

#include <QHBoxLayout>
#include <QMetaMethod>
#include <QSignalSpy>
#include <QStandardItemModel>

#include <cmath>
#include <limits>

using scripted::NodeSpec;

namespace {

const QString kFixed = "This value is fixed value.";

class LineEditWithSliderTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void constructed();
    void signalsAndSlotsInTheirOrder();
    void trackingIsTheSliders();

    void integerRange0To100Linear();
    void integerRange0To2Pow30Linear();
    void integerRange0To2Pow40Linear();
    void floatRange0To1Linear();
    void floatRange0To1Logarithmic();
    void integerLogRange1To1000000();
    void floatIncrementIsSquared();
    void emptyRangeIsFixed_data();
    void emptyRangeIsFixed();
    void extremes_data();
    void extremes();

    void withoutItem();
    void otherNodeTypes_data();
    void otherNodeTypes();
    void loaderLeavesTheSliderDisabled();
    void loadingWritesNothing();
    void loadingReadsOnlyWhereNoValueIsKnown();
    void loadedAgainTakesTheNewRange();
    void textWithoutUnitWhenLoadedWithUnitWhenWritten();

    void editingFinishedWritesTheText();
    void editingFinishedWithNonsense();
    void getValueWithoutSliderFocusWritesTheText();
    void getValueWithSliderFocusWritesThePosition_data();
    void getValueWithSliderFocusWritesThePosition();
    void sixtyFourBitsReachTheCamera();
    void timeElapsedCommits();
    void ownSignalsAreNeverEmitted();

    void movingIsShownOnlyWhilePressed();
    void draggingWritesEvery50Milliseconds();
    void pressingAloneWritesThePosition();
    void unmovedSliderIsWrittenOnce();
    void releaseWritesNothing();
    void reloadEndsThePress();
    void floatIsDragged();

    void focusGoesToTheLineEdit();
    void focusStaysWhereTheValueIsFixed();
    void coversWhatIsBeneath();
    void leavingIsTold_data();
    void leavingIsTold();
    void movingInsideIsNotLeaving();
    void itemDiesFirst();
    void destroyedWithFocus();

private:
    /// Opens the camera with this one feature and gives its item, with its range read.
    GenAPINodeItem* itemOf(const NodeSpec& spec);
    void changeRange(const std::function<void(NodeSpec&)>& change);
    void showEditor();
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

void LineEditWithSliderTest::init()
{
    scripted::reset();
    m_window = std::make_unique<QWidget>();
    auto* layout = new QHBoxLayout(m_window.get());
    m_editor = new LineEditWithSlider(m_window.get());
    m_other = new QLineEdit;
    layout->addWidget(m_editor);
    layout->addWidget(m_other);
    m_window->resize(600, 60);
}

void LineEditWithSliderTest::cleanup()
{
    m_window.reset();
    m_model.reset();
    if (m_camera != 0)
        QCOMPARE(Orvo::Cam_Close(std::exchange(m_camera, 0)), 0U);
}

GenAPINodeItem* LineEditWithSliderTest::itemOf(const NodeSpec& spec)
{
    if (m_camera != 0)
        Orvo::Cam_Close(m_camera);
    scripted::setNodes({scripted::category("Root", {spec.name}), spec});
    m_camera = openScriptedCamera();
    Orvo::CAM_NODE_HANDLE node = 0;
    Orvo::Nd_GetNode(m_camera, spec.name.c_str(), &node);
    m_model = std::make_unique<QStandardItemModel>(1, 3);
    m_item = new GenAPINodeItem(m_camera, node, 0, nullptr, nullptr);
    m_model->setItem(0, 2, m_item);
    m_item->updateVals(true);
    scripted::clearCalls();
    return m_item;
}

void LineEditWithSliderTest::changeRange(const std::function<void(NodeSpec&)>& change)
{
    scripted::changeNode(m_item->getNodeName().toStdString(), change);
    m_item->updateVals(true);
    m_editor->setValue(m_item);
}

void LineEditWithSliderTest::showEditor()
{
    m_window->show();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    m_editor->setFocus();
}

QStringList LineEditWithSliderTest::written()
{
    QStringList values;
    for (const scripted::Call& call : scripted::calls({"Nd_Set"}))
        values << QString::fromStdString(call.arguments.at(2));
    return values;
}

// --- Construction ---------------------------------------------------------------------------------------------------

void LineEditWithSliderTest::constructed()
{
    QCOMPARE(slider().orientation(), Qt::Horizontal);
    QVERIFY(slider().hasTracking());
    QCOMPARE(lineEdit().minimumWidth(), 50);
    QCOMPARE(slider().minimumWidth(), 50);
    const auto* layout = qobject_cast<QHBoxLayout*>(m_editor->layout());
    QVERIFY(layout != nullptr);
    QCOMPARE(layout->contentsMargins(), QMargins());
    QCOMPARE(layout->count(), 2);
    QCOMPARE(layout->itemAt(0)->widget(), &lineEdit());
    QCOMPARE(layout->itemAt(1)->widget(), &slider());
    QCOMPARE(layout->stretch(0), 0);
    QCOMPARE(layout->stretch(1), 0);
    QVERIFY(m_editor->focusProxy() == nullptr);
}

void LineEditWithSliderTest::signalsAndSlotsInTheirOrder()
{
    const QMetaObject& meta = LineEditWithSlider::staticMetaObject;
    QStringList names;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        names << meta.method(i).methodSignature();
    const QStringList expected{"editingFinished()", "sliderMoved()",     "lineEdit_EditingFinished()",
                               "slider_Pressed()",  "slider_Released()", "slider_Moved(int)",
                               "timeElapsed()"};
    QCOMPARE(names, expected);
    QCOMPARE(meta.method(meta.methodOffset()).methodType(), QMetaMethod::Signal);
    QCOMPARE(meta.method(meta.methodOffset() + 1).methodType(), QMetaMethod::Signal);
}

void LineEditWithSliderTest::trackingIsTheSliders()
{
    QVERIFY(m_editor->hasTracking());
    m_editor->setTracking(false);
    QVERIFY(!m_editor->hasTracking());
    QVERIFY(!slider().hasTracking());
}

// --- Loading --------------------------------------------------------------------------------------------------------

void LineEditWithSliderTest::integerRange0To100Linear()
{
    m_editor->setValue(itemOf(features::linear(features::integer("Percent", 37, 0, 100))));
    QCOMPARE(slider().minimum(), 0);
    QCOMPARE(slider().maximum(), 100);
    QCOMPARE(slider().value(), 37);
    QCOMPARE(lineEdit().text(), QString("37"));
    QCOMPARE(m_editor->calcSliderVal(37L), 37);
    QCOMPARE(m_editor->convSliderValToInt(37), 37L);
    QVERIFY(lineEdit().isEnabled());
}

void LineEditWithSliderTest::integerRange0To2Pow30Linear()
{
    m_editor->setValue(itemOf(features::linear(features::integer("Wide", 536870912, 0, 1073741824))));
    QCOMPARE(slider().minimum(), 0);
    QCOMPARE(slider().maximum(), 10737418);
    QCOMPARE(slider().value(), 5368709);
    QCOMPARE(m_editor->convSliderValToInt(5368709), 536870900L);
}

void LineEditWithSliderTest::integerRange0To2Pow40Linear()
{
    m_editor->setValue(itemOf(features::linear(features::integer("Wider", 5, 0, std::int64_t{1} << 40))));
    QCOMPARE(m_editor->calcSliderVal(1000L), 1000);                    // scale 1
    QCOMPARE(m_editor->calcSliderVal(std::int64_t{1} << 40), INT_MIN); // beyond 32 bits
    QCOMPARE(slider().maximum(), INT_MIN);
    QCOMPARE(lineEdit().text(), QString("5"));
}

void LineEditWithSliderTest::floatRange0To1Linear()
{
    m_editor->setValue(itemOf(features::linear(features::real("Fraction", 0.5, 0, 1))));
    QCOMPARE(slider().minimum(), 0);
    QCOMPARE(slider().maximum(), 1000);
    QCOMPARE(slider().value(), 500);
    QCOMPARE(lineEdit().text(), QString("0.50"));
    QCOMPARE(m_editor->convSliderValToFloat(250), 0.25);
}

void LineEditWithSliderTest::floatRange0To1Logarithmic()
{
    m_editor->setValue(itemOf(features::logarithmic(features::real("Fraction", 1, 0, 1))));
    QCOMPARE(slider().minimum(), 0);
    QCOMPARE(slider().maximum(), 10000);
    QCOMPARE(slider().value(), 10000);
    // ln(0.5 x 10^7 + 1) / ln(10^7 + 1) x 10000
    QCOMPARE(m_editor->calcSliderVal(0.5), 9569);
    QCOMPARE(m_editor->convSliderValToFloat(0), 0.0);
    QCOMPARE(m_editor->convSliderValToFloat(10000), 1.0);
}

void LineEditWithSliderTest::integerLogRange1To1000000()
{
    m_editor->setValue(itemOf(features::logarithmic(features::integer("Counter", 1000000, 1, 1000000))));
    QCOMPARE(slider().maximum(), 10000);
    QCOMPARE(slider().value(), 10000);
    QCOMPARE(m_editor->calcSliderVal(1L), 0);
    QCOMPARE(m_editor->calcSliderVal(1000000L), 10000);
    QCOMPARE(m_editor->convSliderValToInt(0), 1L);
}

// 1.0 is two steps of 0.5, and two steps are 2 x 0.25.
void LineEditWithSliderTest::floatIncrementIsSquared()
{
    NodeSpec spec = features::linear(features::real("Stepped", 0, 0, 1));
    spec.floatHasInc = true;
    spec.floatInc = 0.5;
    m_editor->setValue(itemOf(spec));
    QCOMPARE(m_editor->getValidNodeValue(1.0), 0.5);
    QCOMPARE(m_editor->convSliderValToFloat(1000), 0.5);
}

void LineEditWithSliderTest::emptyRangeIsFixed_data()
{
    QTest::addColumn<bool>("isFloat");
    QTest::addColumn<bool>("isLogarithmic");
    QTest::addColumn<int>("position");
    QTest::newRow("integer, linear") << false << false << 7;
    QTest::newRow("integer, logarithmic") << false << true << 0;
    QTest::newRow("float, linear") << true << false << 7;
    QTest::newRow("float, logarithmic") << true << true << 0;
}

void LineEditWithSliderTest::emptyRangeIsFixed()
{
    QFETCH(const bool, isFloat);
    QFETCH(const bool, isLogarithmic);
    QFETCH(const int, position);
    const NodeSpec spec = isFloat ? features::real("Fixed", 7, 7, 7) : features::integer("Fixed", 7, 7, 7);
    m_editor->setValue(itemOf(isLogarithmic ? features::logarithmic(spec) : features::linear(spec)));
    QVERIFY(!lineEdit().isEnabled());
    QCOMPARE(lineEdit().toolTip(), kFixed);
    QCOMPARE(lineEdit().text(), QString(isFloat ? "7.00" : "7"));
    QCOMPARE(slider().minimum(), position);
    QCOMPARE(slider().maximum(), position);
    QVERIFY(slider().isEnabled());

    changeRange([](NodeSpec& node) {
        node.intMax = 100;
        node.floatMax = 100;
    });
    QVERIFY(lineEdit().isEnabled());
    QCOMPARE(lineEdit().toolTip(), QString());

    changeRange([](NodeSpec& node) {
        node.intMax = 3;
        node.floatMax = 3;
    });
    QVERIFY(!lineEdit().isEnabled());
    QCOMPARE(lineEdit().toolTip(), kFixed);
}

void LineEditWithSliderTest::extremes_data()
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
    QTest::addColumn<NodeSpec>("spec");
    const auto row = [](const char* name, const NodeSpec& spec) {
        QTest::newRow(name) << features::linear(spec);
        QTest::addRow("%s, logarithmic", name) << features::logarithmic(spec);
    };
    row("all of 64 bits", features::integer("Extreme", 0, INT64_MIN, INT64_MAX));
    row("64 bits, largest", features::integer("Extreme", INT64_MAX, INT64_MIN, INT64_MAX, INT64_MAX));
    row("64 bits upside down", features::integer("Extreme", 0, INT64_MAX, INT64_MIN));
    row("increment 0", features::integer("Extreme", 5, 0, 100, 0));
    row("negative increment", features::integer("Extreme", 5, 0, 100, -3));
    row("smallest increment", features::integer("Extreme", 5, INT64_MIN, INT64_MAX, INT64_MIN));
    row("infinite", features::real("Extreme", infinity, -infinity, infinity));
    row("widest", features::real("Extreme", 1, -1.7e308, 1.7e308));
    row("no number", features::real("Extreme", notANumber, notANumber, notANumber));
    row("no number as value", features::real("Extreme", notANumber, 0, 1));
    NodeSpec stepped = features::real("Extreme", 1, 0, 100);
    stepped.floatHasInc = true;
    for (const double increment : {0.0, -0.5, infinity, notANumber, 1e-300}) {
        stepped.floatInc = increment;
        row(qPrintable(QString("float increment %1").arg(increment)), stepped);
    }
}

// No crash and no hang, whatever is done with it.
void LineEditWithSliderTest::extremes()
{
    QFETCH(const NodeSpec, spec);
    showEditor();
    m_editor->setValue(itemOf(spec));
    const QString shown = lineEdit().text();
    QCOMPARE(shown, m_item->getNodeValue(false, false));
    for (const int position : {INT_MIN, -1, 0, 1, 5000, 10000, INT_MAX}) {
        slider().setValue(position);
        slider().setFocus();
        m_editor->slider_Pressed();
        m_editor->slider_Moved(position);
        m_editor->getSliderValue();
        m_editor->getValue();
        m_editor->slider_Released();
    }
    QVERIFY(!written().isEmpty());
    QVERIFY(slider().minimum() <= slider().maximum());
}

void LineEditWithSliderTest::withoutItem()
{
    QCOMPARE(m_editor->calcSliderVal(37L), 0);
    QCOMPARE(m_editor->calcSliderVal(37.0), 0);
    QCOMPARE(m_editor->convSliderValToInt(37), 0L);
    QCOMPARE(m_editor->convSliderValToFloat(37), 0.0);
    QCOMPARE(m_editor->getValidNodeValue(37L), 37L);
    QCOMPARE(m_editor->getValidNodeValue(37.5), 37.5);
    m_editor->getValue();
    m_editor->lineEdit_EditingFinished();
    m_editor->slider_Pressed();
    slider().setValue(7);
    m_editor->getSliderValue();
    m_editor->slider_Released();
    QVERIFY(scripted::calls().empty());

    slider().setRange(-5, 50);
    m_editor->setValue(nullptr);
    QCOMPARE(lineEdit().text(), QString());
    QCOMPARE(lineEdit().toolTip(), QString());
    QVERIFY(!lineEdit().isEnabled());
    QCOMPARE(slider().value(), -5);
    QVERIFY(!slider().isEnabled());
}

void LineEditWithSliderTest::otherNodeTypes_data()
{
    QTest::addColumn<NodeSpec>("spec");
    QTest::newRow("boolean") << features::boolean("Other", true);
    QTest::newRow("string") << features::text("Other", "text");
    QTest::newRow("enumeration") << features::enumeration("Other", 0, {"A", "B"});
    QTest::newRow("command") << features::command("Other");
}

void LineEditWithSliderTest::otherNodeTypes()
{
    QFETCH(const NodeSpec, spec);
    m_editor->setValue(itemOf(spec));
    QCOMPARE(lineEdit().text(), QString());
    QVERIFY(!lineEdit().isEnabled());
    QVERIFY(!slider().isEnabled());
    m_editor->getValue();
    m_editor->lineEdit_EditingFinished();
    QCOMPARE(written(), QStringList());
}

// A loader enables the line edit, never the slider.
void LineEditWithSliderTest::loaderLeavesTheSliderDisabled()
{
    m_editor->setValue(nullptr);
    m_editor->setValue(itemOf(features::linear(features::integer("Percent", 37, 0, 100))));
    QVERIFY(lineEdit().isEnabled());
    QVERIFY(!slider().isEnabled());
    QCOMPARE(slider().value(), 37);
}

void LineEditWithSliderTest::loadingWritesNothing()
{
    GenAPINodeItem* item = itemOf(features::linear(features::integer("Percent", 37, 0, 100)));
    m_editor->setValue(item);
    m_editor->setValue(item);
    changeRange([](NodeSpec& node) { node.intValue = node.intMin = 50; });
    QCOMPARE(slider().value(), 50);
    m_editor->setValue(nullptr);
    QCOMPARE(written(), QStringList());
}

void LineEditWithSliderTest::loadingReadsOnlyWhereNoValueIsKnown()
{
    GenAPINodeItem* item = itemOf(features::linear(features::real("Fraction", 0.5, 0, 1)));
    m_editor->setValue(item);
    QCOMPARE(scripted::calls().size(), std::size_t{0});
    scripted::failCall("Nd_GetFloatValue", 258);
    item->getNodeValue(false, true);
    scripted::clearCalls();
    m_editor->setValue(item);
    QCOMPARE(scripted::count("Nd_GetFloatValue"), 1);
}

void LineEditWithSliderTest::loadedAgainTakesTheNewRange()
{
    m_editor->setValue(itemOf(features::linear(features::integer("Percent", 37, 0, 1073741824))));
    QCOMPARE(slider().maximum(), 10737418);
    changeRange([](NodeSpec& node) { node.intMax = 100; });
    QCOMPARE(slider().maximum(), 100);
    QCOMPARE(slider().value(), 37);
    QCOMPARE(m_editor->convSliderValToInt(37), 37L);
}

void LineEditWithSliderTest::textWithoutUnitWhenLoadedWithUnitWhenWritten()
{
    m_editor->setValue(itemOf(features::withUnit(features::linear(features::integer("Percent", 37, 0, 100)), "%")));
    QCOMPARE(lineEdit().text(), QString("37"));
    m_editor->getValue();
    QCOMPARE(lineEdit().text(), QString("37 %"));
}

// --- Writing --------------------------------------------------------------------------------------------------------

void LineEditWithSliderTest::editingFinishedWritesTheText()
{
    m_editor->setValue(itemOf(features::withUnit(features::linear(features::integer("Percent", 37, 0, 100)), "%")));
    lineEdit().setText("42");
    emit lineEdit().editingFinished();
    QCOMPARE(written(), QStringList{"42"});
    QCOMPARE(lineEdit().text(), QString("42 %"));
    // The number read last, which is from before the write.
    QCOMPARE(slider().value(), 37);
}

void LineEditWithSliderTest::editingFinishedWithNonsense()
{
    m_editor->setValue(itemOf(features::withUnit(features::linear(features::integer("Percent", 37, 0, 100)), "%")));
    lineEdit().setText("many");
    emit lineEdit().editingFinished();
    QCOMPARE(written(), QStringList());
    QCOMPARE(lineEdit().text(), QString("37 %"));
    lineEdit().setText("101"); // the camera refuses
    emit lineEdit().editingFinished();
    QCOMPARE(written(), QStringList{"101"});
    QCOMPARE(lineEdit().text(), QString("37 %"));
}

void LineEditWithSliderTest::getValueWithoutSliderFocusWritesTheText()
{
    showEditor();
    m_editor->setValue(itemOf(features::linear(features::real("Fraction", 0.5, 0, 1))));
    slider().setValue(900);
    m_editor->getValue();
    QCOMPARE(written(), QStringList{"0.5"});
    QCOMPARE(slider().value(), 500);
    lineEdit().setText("0.25");
    m_editor->getValue();
    QCOMPARE(written().last(), QString("0.25"));
    QCOMPARE(lineEdit().text(), QString("0.25"));
}

void LineEditWithSliderTest::getValueWithSliderFocusWritesThePosition_data()
{
    QTest::addColumn<NodeSpec>("spec");
    QTest::addColumn<int>("position");
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("shown");
    QTest::newRow("integer, linear") << features::linear(features::integer("Number", 0, 0, 100)) << 42 << 42.0
                                     << "42 mm";
    QTest::newRow("integer, on a step") << features::linear(features::integer("Number", 0, 0, 100, 16)) << 42 << 48.0
                                        << "48 mm";
    QTest::newRow("integer, logarithmic")
        << features::logarithmic(features::integer("Number", 1, 1, 1000000)) << 5000 << 999.0 << "999 mm";
    QTest::newRow("float, linear") << features::linear(features::real("Number", 0, 0, 1)) << 250 << 0.25 << "0.25 mm";
    QTest::newRow("float, logarithmic") << features::logarithmic(features::real("Number", 0, 0, 1)) << 10000 << 1.0
                                        << "1.00 mm";
}

void LineEditWithSliderTest::getValueWithSliderFocusWritesThePosition()
{
    QFETCH(const NodeSpec, spec);
    QFETCH(const int, position);
    showEditor();
    m_editor->setValue(itemOf(features::withUnit(spec, "mm")));
    slider().setFocus();
    scripted::clearCalls(); // the line edit was left
    slider().setValue(position);
    lineEdit().setText("typed before");
    m_editor->getValue();
    QCOMPARE(written().size(), 1);
    const double value = written().first().toDouble();
    QTEST(value, "value");
    QTEST(lineEdit().text(), "shown");
}

void LineEditWithSliderTest::sixtyFourBitsReachTheCamera()
{
    m_editor->setValue(itemOf(features::linear(features::integer("Huge", 0, INT64_MIN, INT64_MAX))));
    for (const char* number : {"9223372036854775807", "-9223372036854775808", "4294967297"}) {
        lineEdit().setText(number);
        m_editor->getValue();
        QCOMPARE(written().last(), QString(number));
        QCOMPARE(lineEdit().text(), QString(number));
    }
}

void LineEditWithSliderTest::timeElapsedCommits()
{
    m_editor->setValue(itemOf(features::linear(features::integer("Percent", 37, 0, 100))));
    lineEdit().setText("42");
    m_editor->timeElapsed();
    QCOMPARE(written(), QStringList{"42"});
}

void LineEditWithSliderTest::ownSignalsAreNeverEmitted()
{
    const QSignalSpy finished(m_editor, &LineEditWithSlider::editingFinished);
    const QSignalSpy moved(m_editor, &LineEditWithSlider::sliderMoved);
    showEditor();
    m_editor->setValue(itemOf(features::linear(features::integer("Percent", 37, 0, 100))));
    EditorBench::type("42");
    EditorBench::press(Qt::Key_Return);
    {
        SliderDrag drag(&slider());
        drag.to(0.5);
        QTRY_COMPARE(written().last(), position());
    }
    m_other->setFocus();
    QCOMPARE(finished.count(), 0);
    QCOMPARE(moved.count(), 0);
}

// --- Dragging -------------------------------------------------------------------------------------------------------

void LineEditWithSliderTest::movingIsShownOnlyWhilePressed()
{
    m_editor->setValue(itemOf(features::withUnit(features::linear(features::integer("Percent", 37, 0, 100, 5)), "%")));
    slider().setValue(63);
    QCOMPARE(lineEdit().text(), QString("37"));
    m_editor->slider_Pressed();
    slider().setValue(64);
    QCOMPARE(lineEdit().text(), QString("65")); // on a step, without unit
    m_editor->slider_Released();
    slider().setValue(80);
    QCOMPARE(lineEdit().text(), QString("65"));
    QCOMPARE(written(), QStringList());
}

void LineEditWithSliderTest::draggingWritesEvery50Milliseconds()
{
    showEditor();
    m_editor->setValue(itemOf(features::withUnit(features::linear(features::integer("Percent", 37, 0, 100)), "%")));
    SliderDrag drag(&slider());
    scripted::clearCalls(); // the line edit was left
    drag.to(0.5);
    QVERIFY(qAbs(slider().value() - 50) < 5);
    QCOMPARE(lineEdit().text(), position());
    drag.to(0.75);
    const QString second = position();
    QCOMPARE(lineEdit().text(), second);
    QCOMPARE(written(), QStringList()); // moves write nothing by themselves
    QTRY_COMPARE(written(), QStringList{second});
    QCOMPARE(lineEdit().text(), second + " %");
    drag.to(1);
    QTRY_COMPARE(written(), (QStringList{second, "100"}));
    QCOMPARE(scripted::node("Percent").intValue, std::int64_t{100});
}

// No position was written yet, so that of the press is new.
void LineEditWithSliderTest::pressingAloneWritesThePosition()
{
    showEditor();
    m_editor->setValue(itemOf(features::linear(features::integer("Percent", 37, 0, 100))));
    const SliderDrag drag(&slider());
    scripted::clearCalls();
    QTRY_COMPARE(written(), QStringList{"37"});
}

void LineEditWithSliderTest::unmovedSliderIsWrittenOnce()
{
    m_editor->setValue(itemOf(features::linear(features::integer("Percent", 37, 0, 100))));
    m_editor->getSliderValue();
    m_editor->getSliderValue();
    QCOMPARE(written(), QStringList{"37"});
    slider().setValue(-1);
    slider().setValue(38);
    lineEdit().setText("38");
    m_editor->getSliderValue();
    QCOMPARE(written(), (QStringList{"37", "38"}));
}

void LineEditWithSliderTest::releaseWritesNothing()
{
    showEditor();
    m_editor->setValue(itemOf(features::linear(features::integer("Percent", 37, 0, 100))));
    SliderDrag drag(&slider());
    QTRY_COMPARE(written().last(), QString("37"));
    scripted::clearCalls();
    drag.to(0.5);
    drag.release();
    QCOMPARE(written(), QStringList());
    QCOMPARE(lineEdit().text(), position());
    // A timer that starts now and takes longer ends after the next shot of the drag's would have come.
    bool elapsed = false;
    QTimer::singleShot(100, m_editor, [&] { elapsed = true; });
    QTRY_VERIFY(elapsed);
    QCOMPARE(written(), QStringList());
    m_editor->getValue(); // the delegate's commit
    QCOMPARE(written(), QStringList{position()});
}

void LineEditWithSliderTest::reloadEndsThePress()
{
    showEditor();
    m_editor->setValue(itemOf(features::linear(features::integer("Percent", 37, 0, 100))));
    SliderDrag drag(&slider());
    drag.to(0.5);
    QCOMPARE(lineEdit().text(), position());
    m_editor->setValue(m_item);
    QCOMPARE(lineEdit().text(), QString("37"));
    scripted::clearCalls();
    drag.to(0.75);
    const QString moved = position();
    QCOMPARE(lineEdit().text(), QString("37"));  // no longer shown at once
    QTRY_COMPARE(written(), QStringList{moved}); // but written, and shown then
    QCOMPARE(lineEdit().text(), moved);
}

void LineEditWithSliderTest::floatIsDragged()
{
    showEditor();
    m_editor->setValue(itemOf(features::withUnit(features::linear(features::real("Gain", 6, 0, 25.6)), "dB")));
    SliderDrag drag(&slider());
    scripted::clearCalls();
    drag.to(0.5);
    const QString gain = QString::number(slider().value() / 10.0, 'f', 2);
    QCOMPARE(lineEdit().text(), gain);
    QTRY_COMPARE(written().size(), 1);
    QCOMPARE(written().first().toDouble(), gain.toDouble());
    QCOMPARE(lineEdit().text(), gain + " dB");
}

// --- Focus and life -------------------------------------------------------------------------------------------------

void LineEditWithSliderTest::focusGoesToTheLineEdit()
{
    m_editor->setValue(itemOf(features::linear(features::integer("Percent", 37, 0, 100))));
    showEditor();
    QVERIFY(lineEdit().hasFocus());
    QCOMPARE(lineEdit().selectedText(), QString("37"));
    EditorBench::type("4");
    QCOMPARE(lineEdit().text(), QString("4"));
}

void LineEditWithSliderTest::focusStaysWhereTheValueIsFixed()
{
    m_editor->setValue(itemOf(features::linear(features::integer("Fixed", 7, 7, 7))));
    showEditor();
    QVERIFY(m_editor->hasFocus());
    QVERIFY(!lineEdit().hasSelectedText());
}

void LineEditWithSliderTest::coversWhatIsBeneath()
{
    showEditor();
    QImage image(m_editor->size(), QImage::Format_RGB32);
    image.fill(Qt::magenta);
    m_editor->render(&image);
    for (const QPoint corner : {image.rect().topRight(), image.rect().bottomRight()})
        QCOMPARE(image.pixelColor(corner), m_editor->palette().color(QPalette::Base));
}

/// Counts the focus-out events of the editor that are not those of its parts.
class LeavingCounter : public QObject {
public:
    int count = 0;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::FocusOut &&
            !static_cast<QWidget*>(watched)->isAncestorOf(QApplication::focusWidget()))
            ++count;
        return false;
    }
};

void LineEditWithSliderTest::leavingIsTold_data()
{
    QTest::addColumn<bool>("fromSlider");
    QTest::newRow("line edit") << false;
    QTest::newRow("slider") << true;
}

void LineEditWithSliderTest::leavingIsTold()
{
    QFETCH(const bool, fromSlider);
    m_editor->setValue(itemOf(features::linear(features::integer("Percent", 37, 0, 100))));
    showEditor();
    if (fromSlider)
        slider().setFocus();
    LeavingCounter counter;
    m_editor->installEventFilter(&counter);
    m_other->setFocus();
    QCOMPARE(counter.count, 1);
    QVERIFY(m_other->hasFocus());
}

void LineEditWithSliderTest::movingInsideIsNotLeaving()
{
    m_editor->setValue(itemOf(features::linear(features::integer("Percent", 37, 0, 100))));
    showEditor();
    LeavingCounter counter;
    m_editor->installEventFilter(&counter);
    slider().setFocus();
    lineEdit().setFocus();
    QCOMPARE(counter.count, 0);
    QCOMPARE(written(), QStringList{"37"}); // the line edit was left
}

void LineEditWithSliderTest::itemDiesFirst()
{
    m_editor->setValue(itemOf(features::linear(features::integer("Percent", 37, 0, 100))));
    showEditor();
    scripted::clearCalls();
    m_editor->slider_Pressed();
    m_model.reset();
    QVERIFY(m_item.isNull());
    slider().setValue(50);
    m_editor->getSliderValue();
    m_editor->getValue();
    m_editor->lineEdit_EditingFinished();
    m_editor->slider_Released();
    QCOMPARE(m_editor->calcSliderVal(5L), 0);
    QCOMPARE(m_editor->getValidNodeValue(500L), 500L);
    m_other->setFocus();
    QCOMPARE(written(), QStringList());
}

void LineEditWithSliderTest::destroyedWithFocus()
{
    for (const bool atSlider : {false, true}) {
        m_editor->setValue(itemOf(features::linear(features::integer("Percent", 37, 0, 100))));
        showEditor();
        if (atSlider)
            slider().setFocus();
        scripted::clearCalls();
        delete m_editor;
        QCOMPARE(written(), QStringList());
        m_editor = new LineEditWithSlider(m_window.get());
    }
}

} // namespace

QTEST_MAIN(LineEditWithSliderTest)
#include "LineEditWithSliderTest.moc"

// The slider editor on its own: construction and loading.

#include "tests/features/EditorBench.h"
#include "tests/features/SliderBench.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <QHBoxLayout>
#include <QMetaMethod>

#include <limits>

using scripted::NodeSpec;

namespace {

const QString kFixed = "This value is fixed value.";

class LineEditWithSliderLoadTest : public QObject, private SliderBench {
    Q_OBJECT

private slots:
    void init() { open(); }
    void cleanup() { close(); }

    void constructed();
    void eachPartStartsAtHalfTheWidth();
    void signalsAndSlotsAreDeclaredInOrder();
    void trackingIsForwardedToTheSlider();

    void integerRange0To100Linear();
    void integerRange0To2Pow30Linear();
    void integerRange0To2Pow40Linear();
    void floatRange0To1Linear();
    void floatRange0To1Logarithmic();
    void integerLogRange1To1000000();
    void logLoadersCheckTheRepresentation();
    void floatIncrementIsSquared();
    void emptyRangeIsFixed_data();
    void emptyRangeIsFixed();
    void extremes_data();
    void extremes();

    void withoutItem();
    void loadingNullKeepsTheStoredItem();
    void loadingNullWhileTheSliderIsPressedClearsTheText();
    void otherNodeTypes_data();
    void otherNodeTypes();
    void loaderLeavesTheSliderDisabled();
    void loadingWritesNothing();
    void loadingReadsOnlyUnknownValues_data();
    void loadingReadsOnlyUnknownValues();
    void reloadingTakesTheNewRange();
    void textHasItsUnitOnlyAfterAWrite();
    void sliderOfHalfThe32BitNumbersIsDrawn_data();
    void sliderOfHalfThe32BitNumbersIsDrawn();
};

// --- Construction ---------------------------------------------------------------------------------------------------

void LineEditWithSliderLoadTest::constructed()
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

void LineEditWithSliderLoadTest::eachPartStartsAtHalfTheWidth()
{
    const LineEditWithSlider editor(nullptr);
    QVERIFY(editor.width() > 2 * 50); // minimum width of a part
    for (const QWidget* part :
         {static_cast<QWidget*>(editor.findChild<QLineEdit*>()), static_cast<QWidget*>(editor.findChild<QSlider*>())})
        QCOMPARE(part->geometry(), QRect(0, 0, editor.width() / 2, editor.height()));
}

void LineEditWithSliderLoadTest::signalsAndSlotsAreDeclaredInOrder()
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

void LineEditWithSliderLoadTest::trackingIsForwardedToTheSlider()
{
    QVERIFY(m_editor->hasTracking());
    m_editor->setTracking(false);
    QVERIFY(!m_editor->hasTracking());
    QVERIFY(!slider().hasTracking());
}

// --- Loading --------------------------------------------------------------------------------------------------------

void LineEditWithSliderLoadTest::integerRange0To100Linear()
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

void LineEditWithSliderLoadTest::integerRange0To2Pow30Linear()
{
    m_editor->setValue(itemOf(features::linear(features::integer("Wide", 536870912, 0, 1073741824))));
    QCOMPARE(slider().minimum(), 0);
    QCOMPARE(slider().maximum(), 10737418);
    QCOMPARE(slider().value(), 5368709);
    QCOMPARE(m_editor->convSliderValToInt(5368709), 536870900L);
}

void LineEditWithSliderLoadTest::integerRange0To2Pow40Linear()
{
    m_editor->setValue(itemOf(features::linear(features::integer("Wider", 5, 0, std::int64_t{1} << 40))));
    QCOMPARE(m_editor->calcSliderVal(1000L), 1000);                    // scale 1
    QCOMPARE(m_editor->calcSliderVal(std::int64_t{1} << 40), INT_MIN); // beyond 32 bits
    QCOMPARE(slider().maximum(), INT_MIN);
    QCOMPARE(lineEdit().text(), QString("5"));
}

void LineEditWithSliderLoadTest::floatRange0To1Linear()
{
    m_editor->setValue(itemOf(features::linear(features::real("Fraction", 0.5, 0, 1))));
    QCOMPARE(slider().minimum(), 0);
    QCOMPARE(slider().maximum(), 1000);
    QCOMPARE(slider().value(), 500);
    QCOMPARE(lineEdit().text(), QString("0.50"));
    QCOMPARE(m_editor->convSliderValToFloat(250), 0.25);
}

void LineEditWithSliderLoadTest::floatRange0To1Logarithmic()
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

void LineEditWithSliderLoadTest::integerLogRange1To1000000()
{
    m_editor->setValue(itemOf(features::logarithmic(features::integer("Counter", 1000000, 1, 1000000))));
    QCOMPARE(slider().maximum(), 10000);
    QCOMPARE(slider().value(), 10000);
    QCOMPARE(m_editor->calcSliderVal(1L), 0);
    QCOMPARE(m_editor->calcSliderVal(1000000L), 10000);
    QCOMPARE(m_editor->convSliderValToInt(0), 1L);
}

void LineEditWithSliderLoadTest::logLoadersCheckTheRepresentation()
{
    m_editor->setValIntLog(itemOf(features::linear(features::integer("Linear", 37, 0, 100))));
    QCOMPARE(slider().maximum(), 10000);
    QCOMPARE(slider().value(), 37);
    m_editor->setValFloatLog(itemOf(features::linear(features::real("Linear", 500, 0, 1000))));
    QCOMPARE(slider().maximum(), 10000);
    QCOMPARE(slider().value(), 500);
}

// 1.0 is two steps of 0.5, and two steps are 2 x 0.25.
void LineEditWithSliderLoadTest::floatIncrementIsSquared()
{
    NodeSpec spec = features::linear(features::real("Stepped", 0, 0, 1));
    spec.floatHasInc = 1;
    spec.floatInc = 0.5;
    m_editor->setValue(itemOf(spec));
    QCOMPARE(m_editor->getValidNodeValue(1.0), 0.5);
    QCOMPARE(m_editor->convSliderValToFloat(1000), 0.5);
}

void LineEditWithSliderLoadTest::emptyRangeIsFixed_data()
{
    QTest::addColumn<bool>("isFloat");
    QTest::addColumn<bool>("isLogarithmic");
    QTest::addColumn<int>("position");
    QTest::newRow("integer, linear") << false << false << 7;
    QTest::newRow("integer, logarithmic") << false << true << 0;
    QTest::newRow("float, linear") << true << false << 7;
    QTest::newRow("float, logarithmic") << true << true << 0;
}

void LineEditWithSliderLoadTest::emptyRangeIsFixed()
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

void LineEditWithSliderLoadTest::extremes_data()
{
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
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
    row("infinite", features::real("Extreme", kInfinity, -kInfinity, kInfinity));
    row("widest", features::real("Extreme", 1, -1.7e308, 1.7e308));
    row("no number", features::real("Extreme", kNotANumber, kNotANumber, kNotANumber));
    row("no number as value", features::real("Extreme", kNotANumber, 0, 1));
    NodeSpec stepped = features::real("Extreme", 1, 0, 100);
    stepped.floatHasInc = 1;
    for (const double increment : {0.0, -0.5, kInfinity, kNotANumber, 1e-300}) {
        stepped.floatInc = increment;
        row(qPrintable(QString("float increment %1").arg(increment)), stepped);
    }
}

/// Accepts anything for a NaN range, and only the maximum for an inverted one.
bool isWithin(const NodeSpec& spec, const QString& value)
{
    if (spec.type == Orvo::NODE_TYPE_FLOAT) {
        bool isNumber = false;
        const double number = value.toDouble(&isNumber); // fails for "-nan"
        return qIsNaN(spec.floatMin) || (isNumber && number >= spec.floatMin && number <= spec.floatMax);
    }
    const std::int64_t number = value.toLongLong();
    return spec.intMin < spec.intMax ? number >= spec.intMin && number <= spec.intMax : number == spec.intMax;
}

// Extreme ranges neither crash nor hang the editor, and it writes nothing out of range.
void LineEditWithSliderLoadTest::extremes()
{
    QFETCH(const NodeSpec, spec);
    showEditor();
    m_editor->setValue(itemOf(spec));
    const QString shown = lineEdit().text();
    QCOMPARE(shown, m_item->getNodeValue(false, false));
    slider().setFocus();
    scripted::clearCalls(); // the line edit wrote its text when it lost the focus
    for (const int position : {INT_MIN, -1, 0, 1, 5000, 10000, INT_MAX}) {
        slider().setValue(position);
        m_editor->slider_Pressed();
        m_editor->slider_Moved(position);
        m_editor->getSliderValue();
        m_editor->getValue();
        m_editor->slider_Released();
    }
    QVERIFY(!written().isEmpty());
    for (const QString& value : written())
        QVERIFY2(isWithin(spec, value), qPrintable(value));
}

void LineEditWithSliderLoadTest::withoutItem()
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

void LineEditWithSliderLoadTest::loadingNullKeepsTheStoredItem()
{
    m_editor->setValue(itemOf(features::percent()));
    m_editor->setValue(nullptr);
    QCOMPARE(lineEdit().text(), QString());
    QVERIFY(!lineEdit().isEnabled());
    QCOMPARE(slider().value(), 0);
    QVERIFY(!slider().isEnabled());
    QCOMPARE(m_editor->calcSliderVal(37L), 37);
    m_editor->getValue(); // the empty text is not a number
    QCOMPARE(written(), QStringList());
    QCOMPARE(lineEdit().text(), QString("37"));
}

void LineEditWithSliderLoadTest::loadingNullWhileTheSliderIsPressedClearsTheText()
{
    m_editor->setValue(itemOf(features::percent()));
    m_editor->slider_Pressed();
    m_editor->setValue(nullptr);
    QCOMPARE(lineEdit().text(), QString());
    m_editor->slider_Released();
}

void LineEditWithSliderLoadTest::otherNodeTypes_data()
{
    QTest::addColumn<NodeSpec>("spec");
    QTest::newRow("boolean") << features::boolean("Other", true);
    QTest::newRow("string") << features::text("Other", "text");
    QTest::newRow("enumeration") << features::enumeration("Other", 0, {"A", "B"});
    QTest::newRow("command") << features::command("Other");
}

void LineEditWithSliderLoadTest::otherNodeTypes()
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
void LineEditWithSliderLoadTest::loaderLeavesTheSliderDisabled()
{
    m_editor->setValue(nullptr);
    m_editor->setValue(itemOf(features::linear(features::integer("Percent", 37, 0, 100))));
    QVERIFY(lineEdit().isEnabled());
    QVERIFY(!slider().isEnabled());
    QCOMPARE(slider().value(), 37);
}

void LineEditWithSliderLoadTest::loadingWritesNothing()
{
    GenAPINodeItem* item = itemOf(features::linear(features::integer("Percent", 37, 0, 100)));
    m_editor->setValue(item);
    m_editor->setValue(item);
    changeRange([](NodeSpec& node) { node.intValue = node.intMin = 50; });
    QCOMPARE(slider().value(), 50);
    m_editor->setValue(nullptr);
    QCOMPARE(written(), QStringList());
}

void LineEditWithSliderLoadTest::loadingReadsOnlyUnknownValues_data()
{
    QTest::addColumn<NodeSpec>("spec");
    QTest::addColumn<QString>("read");
    const NodeSpec integer = features::integer("Number", 37, 0, 100);
    const NodeSpec real = features::real("Fraction", 0.5, 0, 1);
    QTest::newRow("integer, linear") << features::linear(integer) << "Nd_GetIntValue";
    QTest::newRow("integer, logarithmic") << features::logarithmic(integer) << "Nd_GetIntValue";
    QTest::newRow("float, linear") << features::linear(real) << "Nd_GetFloatValue";
    QTest::newRow("float, logarithmic") << features::logarithmic(real) << "Nd_GetFloatValue";
}

void LineEditWithSliderLoadTest::loadingReadsOnlyUnknownValues()
{
    QFETCH(const NodeSpec, spec);
    QFETCH(const QString, read);
    GenAPINodeItem* item = itemOf(spec);
    m_editor->setValue(item);
    QCOMPARE(scripted::calls().size(), std::size_t{0});
    scripted::failCall(read.toStdString(), 258);
    item->getNodeValue(false, true);
    scripted::clearCalls();
    m_editor->setValue(item);
    QCOMPARE(scripted::count(read.toStdString()), 1);
}

void LineEditWithSliderLoadTest::reloadingTakesTheNewRange()
{
    m_editor->setValue(itemOf(features::linear(features::integer("Percent", 37, 0, 1073741824))));
    QCOMPARE(slider().maximum(), 10737418);
    changeRange([](NodeSpec& node) { node.intMax = 100; });
    QCOMPARE(slider().maximum(), 100);
    QCOMPARE(slider().value(), 37);
    QCOMPARE(m_editor->convSliderValToInt(37), 37L);
}

void LineEditWithSliderLoadTest::textHasItsUnitOnlyAfterAWrite()
{
    m_editor->setValue(itemOf(features::withUnit(features::linear(features::integer("Percent", 37, 0, 100)), "%")));
    QCOMPARE(lineEdit().text(), QString("37"));
    m_editor->getValue();
    QCOMPARE(lineEdit().text(), QString("37 %"));
}

void LineEditWithSliderLoadTest::sliderOfHalfThe32BitNumbersIsDrawn_data()
{
    QTest::addColumn<qint64>("minimum");
    QTest::addColumn<qint64>("maximum");
    QTest::newRow("negative") << qint64{INT64_MIN} << qint64{0};
    QTest::newRow("around 0") << qint64{INT64_MIN} << qint64{1};
}

void LineEditWithSliderLoadTest::sliderOfHalfThe32BitNumbersIsDrawn()
{
    // The style divides by twice the span in 32 bits, which is 0 for a span of 2^31.
    QFETCH(qint64, minimum);
    QFETCH(qint64, maximum);
    m_editor->setValue(itemOf(features::linear(features::integer("Offset", 0, minimum, maximum))));
    showEditor();
    QVERIFY(!m_editor->grab().isNull());
    QCOMPARE(slider().value(), 0);
}

} // namespace

ORVO_TEST_CLASS(LineEditWithSliderLoadTest)
#include "LineEditWithSliderLoadTest.moc"

// The slider editor in the table, operated by mouse and keyboard: what is written and what is shown.

#include "tests/features/EditorBench.h"
#include "tests/support/TestProgram.h"
#include "tests/support/Wheel.h"

#include <QtTest>

#include <QApplication>

namespace {

class SliderByHandTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void typingReplacesTheSelectedText();
    void escapeWritesNothing_data();
    void escapeWritesNothing();
    void leavingItUnchangedWritesItsText();
    void leavingWritesTheValue_data();
    void leavingWritesTheValue();
    void dragged();
    void commitWritesTheLastMoveOfADrag();
    void byArrowKeys();
    void byWheel();
    void byPage();
    void invalidTextIsRejected();
    void fixedValueCannotBeEdited();
    void ofAllOf64Bits();
};

// Enter finishes the line edit and then commits the editor; each of the two writes.
void SliderByHandTest::typingReplacesTheSelectedText()
{
    EditorBench bench({features::withUnit(features::percent(), "%")});
    auto* editor = bench.openAs<LineEditWithSlider>("Percent");
    QVERIFY(lineEditOf(editor)->hasFocus());
    EditorBench::type("42");
    QCOMPARE(lineEditOf(editor)->text(), QString("42"));
    QCOMPARE(bench.written(), QStringList());
    const QModelIndex current = bench.table().currentIndex();
    EditorBench::press(Qt::Key_Return);
    QCOMPARE(bench.written(), (QStringList{"Percent = 42", "Percent = 42"}));
    QCOMPARE(bench.shown("Percent"), QString("42 %"));
    QVERIFY(bench.editor() == nullptr);
    QVERIFY(bench.table().hasFocus());
    QCOMPARE(bench.table().currentIndex(), current);
}

void SliderByHandTest::escapeWritesNothing_data()
{
    QTest::addColumn<bool>("fromSlider");
    QTest::newRow("line edit") << false;
    QTest::newRow("slider") << true;
}

void SliderByHandTest::escapeWritesNothing()
{
    QFETCH(const bool, fromSlider);
    EditorBench bench(features::beside(features::percent()));
    auto* editor = bench.openAs<LineEditWithSlider>("Percent");
    if (fromSlider) {
        QTest::mouseClick(sliderOf(editor), Qt::LeftButton, {}, QPoint(1, 1)); // leaves the line edit
        QVERIFY(sliderOf(editor)->hasFocus());
    }
    lineEditOf(editor)->setText("42");
    scripted::clearCalls();
    const QModelIndex current = bench.table().currentIndex();
    EditorBench::press(Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(bench.written(), QStringList());
    QCOMPARE(bench.shown("Percent"), QString("37"));
    QVERIFY(bench.editor() == nullptr);
    QVERIFY(bench.table().hasFocus());
    QCOMPARE(bench.table().currentIndex(), current);
}

void SliderByHandTest::leavingItUnchangedWritesItsText()
{
    EditorBench bench(features::beside(features::linear(features::real("Gain", 1.23456, 0, 24))));
    bench.openAs<LineEditWithSlider>("Gain");
    bench.click("Other");
    QCOMPARE(bench.written().first(), QString("Gain = 1.23"));
    QCOMPARE(bench.written().last(), QString("Gain = 1.23"));
}

void SliderByHandTest::leavingWritesTheValue_data()
{
    QTest::addColumn<bool>("fromSlider");
    QTest::addColumn<QString>("how");
    for (const bool fromSlider : {false, true}) {
        for (const char* how : {"click", "tab", "backtab", "other widget", "other window"})
            QTest::addRow("%s, %s", fromSlider ? "slider" : "line edit", how) << fromSlider << how;
    }
}

void SliderByHandTest::leavingWritesTheValue()
{
    QFETCH(const bool, fromSlider);
    QFETCH(const QString, how);
    EditorBench bench(features::beside(features::percent()));
    auto* editor = bench.openAs<LineEditWithSlider>("Percent");
    if (fromSlider) {
        sliderOf(editor)->setFocus(Qt::MouseFocusReason);
    } else {
        EditorBench::type("42");
    }
    scripted::clearCalls();
    bench.leave(how);
    const QString value = fromSlider ? "37" : "42";
    QVERIFY(!bench.written().isEmpty());
    QCOMPARE(bench.written().last(), "Percent = " + value);
    QCOMPARE(bench.shown("Percent"), value);
    QVERIFY(bench.editor() == nullptr);
    const int writes = bench.written().size();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(bench.written().size(), writes); // destroying the editor writes nothing more
}

void SliderByHandTest::dragged()
{
    EditorBench bench(features::beside(features::withUnit(features::percent(), "%")));
    auto* editor = bench.openAs<LineEditWithSlider>("Percent");
    SliderDrag drag(sliderOf(editor));
    scripted::clearCalls(); // the line edit was left
    drag.to(0.5);
    const QString first = QString::number(sliderOf(editor)->value());
    QCOMPARE(lineEditOf(editor)->text(), first);
    QCOMPARE(bench.written(), QStringList());
    QTRY_COMPARE(bench.written(), QStringList{"Percent = " + first});
    QCOMPARE(bench.shown("Percent"), first + " %");
    QCOMPARE(bench.editor(), editor);
    // The write reloaded the editor, which ended the press: moves are still written, but shown only then.
    drag.to(0.75);
    const QString second = QString::number(sliderOf(editor)->value());
    QTRY_COMPARE(bench.written().last(), "Percent = " + second);
    QCOMPARE(lineEditOf(editor)->text(), second + " %");
    drag.release();
    EditorBench::press(Qt::Key_Return);
    QCOMPARE(bench.written().last(), "Percent = " + second);
    QCOMPARE(bench.shown("Percent"), second + " %");
    QVERIFY(bench.editor() == nullptr);
}

void SliderByHandTest::commitWritesTheLastMoveOfADrag()
{
    for (const bool byEnter : {true, false}) {
        EditorBench bench(features::beside(features::percent()));
        auto* editor = bench.openAs<LineEditWithSlider>("Percent");
        SliderDrag drag(sliderOf(editor));
        drag.to(1);
        drag.release();
        scripted::clearCalls();
        QCOMPARE(lineEditOf(editor)->text(), QString("100"));
        byEnter ? EditorBench::press(Qt::Key_Return) : bench.click("Other");
        QCOMPARE(bench.written(), QStringList{"Percent = 100"});
        QCOMPARE(bench.shown("Percent"), QString("100"));
    }
}

// Keys, wheel and page steps move the slider without showing or writing its value; Enter writes the value, leaving
// the editor writes the text.
void SliderByHandTest::byArrowKeys()
{
    for (const bool byEnter : {true, false}) {
        EditorBench bench(features::beside(features::percent()));
        auto* editor = bench.openAs<LineEditWithSlider>("Percent");
        sliderOf(editor)->setFocus(Qt::MouseFocusReason);
        scripted::clearCalls();
        EditorBench::press(Qt::Key_Right);
        EditorBench::press(Qt::Key_Right);
        QCOMPARE(sliderOf(editor)->value(), 39);
        QCOMPARE(lineEditOf(editor)->text(), QString("37"));
        QCOMPARE(bench.written(), QStringList());
        byEnter ? EditorBench::press(Qt::Key_Return) : bench.click("Other");
        QCOMPARE(bench.written(), QStringList{byEnter ? "Percent = 39" : "Percent = 37"});
        QCOMPARE(bench.shown("Percent"), QString(byEnter ? "39" : "37"));
    }
}

void SliderByHandTest::byWheel()
{
    EditorBench bench(features::beside(features::percent()));
    auto* editor = bench.openAs<LineEditWithSlider>("Percent");
    turnWheel(*sliderOf(editor), 1);
    QVERIFY(sliderOf(editor)->value() > 37);
    QCOMPARE(lineEditOf(editor)->text(), QString("37"));
    QCOMPARE(bench.written(), QStringList());
    bench.click("Other"); // the line edit has the focus
    QCOMPARE(scripted::node("Percent").intValue, std::int64_t{37});
}

void SliderByHandTest::byPage()
{
    EditorBench bench(features::beside(features::percent()));
    auto* editor = bench.openAs<LineEditWithSlider>("Percent");
    QSlider* slider = sliderOf(editor);
    slider->setFocus(Qt::MouseFocusReason);
    scripted::clearCalls();
    EditorBench::press(Qt::Key_PageUp);
    QCOMPARE(slider->value(), 47);
    QCOMPARE(bench.written(), QStringList());
    EditorBench::press(Qt::Key_Return);
    QCOMPARE(bench.written(), QStringList{"Percent = 47"});
}

void SliderByHandTest::invalidTextIsRejected()
{
    EditorBench bench({features::withUnit(features::percent(), "%")});
    bench.openAs<LineEditWithSlider>("Percent");
    EditorBench::type("much");
    EditorBench::press(Qt::Key_Return);
    QCOMPARE(scripted::node("Percent").intValue, std::int64_t{37});
    QCOMPARE(bench.shown("Percent"), QString("37 %"));
}

void SliderByHandTest::fixedValueCannotBeEdited()
{
    EditorBench bench(features::beside(features::linear(features::integer("Fixed", 7, 7, 7))));
    auto* editor = bench.openAs<LineEditWithSlider>("Fixed");
    QVERIFY(!lineEditOf(editor)->isEnabled());
    QCOMPARE(lineEditOf(editor)->toolTip(), QString("This value is fixed value."));
    QVERIFY(QApplication::focusWidget() == editor); // the editor itself receives the keys
    EditorBench::press(Qt::Key_Escape);
    QVERIFY(bench.editor() == nullptr);
    QVERIFY(bench.table().hasFocus());
    QCOMPARE(bench.written(), QStringList());
}

void SliderByHandTest::ofAllOf64Bits()
{
    EditorBench bench({features::linear(features::integer("Huge", 5, INT64_MIN, INT64_MAX))});
    for (const char* number : {"9223372036854775807", "-9223372036854775808", "4294967297"}) {
        bench.openAs<LineEditWithSlider>("Huge");
        EditorBench::type(number);
        EditorBench::press(Qt::Key_Return);
        QCOMPARE(bench.written().first(), QString("Huge = ") + number);
        QCOMPARE(bench.shown("Huge"), QString(number));
    }
}

} // namespace

ORVO_TEST_CLASS(SliderByHandTest)
#include "SliderByHandTest.moc"

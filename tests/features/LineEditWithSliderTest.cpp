// The slider editor on its own: writing, dragging and focus.

#include "tests/features/EditorBench.h"
#include "tests/features/SliderBench.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <QAbstractEventDispatcher>
#include <QSignalSpy>

using scripted::NodeSpec;

namespace {

class LineEditWithSliderTest : public QObject, private SliderBench {
    Q_OBJECT

private slots:
    void init() { open(); }
    void cleanup() { close(); }

    void editingFinishedWritesTheText();
    void editingFinishedRejectsInvalidText();
    void getValueWithoutSliderFocusWritesTheText();
    void getValueWithSliderFocusWritesThePosition_data();
    void getValueWithSliderFocusWritesThePosition();
    void sixtyFourBitsReachTheCamera();
    void timeElapsedWritesThePosition();
    void ownSignalsAreNeverEmitted();

    void movingIsShownOnlyWhilePressed();
    void draggingWritesEvery50Milliseconds();
    void pressingAloneWritesThePosition();
    void unmovedSliderIsWrittenOnce();
    void reloadingKeepsTheLastWrittenPosition();
    void theTimerRunsFromPressToRelease();
    void releaseWritesNothing();
    void reloadEndsThePress();
    void floatIsDragged();

    void focusGoesToTheLineEdit();
    void focusStaysWhereTheValueIsFixed();
    void focusOutIsReported_data();
    void focusOutIsReported();
    void focusMovesInsideTheEditorAreNotReported();
    void itemIsDestroyedFirst();
    void destroyedWithFocus();
};

// --- Writing --------------------------------------------------------------------------------------------------------

void LineEditWithSliderTest::editingFinishedWritesTheText()
{
    m_editor->setValue(itemOf(features::withUnit(features::linear(features::integer("Percent", 37, 0, 100)), "%")));
    lineEdit().setText("42");
    emit lineEdit().editingFinished();
    QCOMPARE(written(), QStringList{"42"});
    QCOMPARE(lineEdit().text(), QString("42 %"));
    // The number read last, which predates the write.
    QCOMPARE(slider().value(), 37);
}

void LineEditWithSliderTest::editingFinishedRejectsInvalidText()
{
    m_editor->setValue(itemOf(features::withUnit(features::linear(features::integer("Percent", 37, 0, 100)), "%")));
    lineEdit().setText("many");
    emit lineEdit().editingFinished();
    QCOMPARE(written(), QStringList());
    QCOMPARE(lineEdit().text(), QString("37 %"));
    lineEdit().setText("101"); // out of range: the camera refuses it
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

void LineEditWithSliderTest::timeElapsedWritesThePosition()
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
    QCOMPARE(written(), QStringList()); // moves alone write nothing
    QTRY_COMPARE(written(), QStringList{second});
    QCOMPARE(lineEdit().text(), second + " %");
    drag.to(1);
    QTRY_COMPARE(written(), (QStringList{second, "100"}));
    QCOMPARE(scripted::node("Percent").intValue, std::int64_t{100});
}

// No position has been written yet, so the press alone writes one.
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

void LineEditWithSliderTest::reloadingKeepsTheLastWrittenPosition()
{
    m_editor->setValue(itemOf(features::linear(features::integer("Percent", 37, 0, 100))));
    m_editor->getSliderValue();
    m_editor->setValue(m_item);
    m_editor->getSliderValue();
    QCOMPARE(written(), QStringList{"37"});
}

void LineEditWithSliderTest::theTimerRunsFromPressToRelease()
{
    m_editor->setValue(itemOf(features::linear(features::integer("Percent", 37, 0, 100))));
    const auto timers = [&] { return QAbstractEventDispatcher::instance()->registeredTimers(m_editor); };
    QVERIFY(timers().isEmpty());
    for (int press = 0; press < 2; ++press) { // the second press follows without a release
        m_editor->slider_Pressed();
        QCOMPARE(timers().size(), 1);
        QCOMPARE(timers().first().interval, 50);
        QVERIFY(timers().first().timerType == Qt::CoarseTimer);
    }
    m_editor->slider_Released();
    QVERIFY(timers().isEmpty());
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
    // This timer is longer than that of the drag: when it fires, a running drag timer would have fired, too.
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
    QCOMPARE(lineEdit().text(), QString("37"));  // not shown while moving
    QTRY_COMPARE(written(), QStringList{moved}); // shown once it is written
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

// --- Focus and lifetime ---------------------------------------------------------------------------------------------

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

/// Counts the focus-out events that move the focus out of the editor.
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

void LineEditWithSliderTest::focusOutIsReported_data()
{
    QTest::addColumn<bool>("fromSlider");
    QTest::newRow("line edit") << false;
    QTest::newRow("slider") << true;
}

void LineEditWithSliderTest::focusOutIsReported()
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

void LineEditWithSliderTest::focusMovesInsideTheEditorAreNotReported()
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

void LineEditWithSliderTest::itemIsDestroyedFirst()
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

ORVO_TEST_CLASS(LineEditWithSliderTest)
#include "LineEditWithSliderTest.moc"

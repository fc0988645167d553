// The editors in the table, used as a user uses them: what the camera gets, and what is shown.

#include "tests/features/EditorBench.h"

#include <QtTest>

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QPushButton>
#include <QSpinBox>
#include <QToolBar>

#include <memory>

using scripted::NodeSpec;

namespace {

class EditorsByHandTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void lineEditTypedAndEnter();
    void lineEditEscapeWritesNothing();
    void lineEditLeftUnchangedWritesItsText();
    void lineEditLeft_data();
    void lineEditLeft();
    void lineEditNonsense_data();
    void lineEditNonsense();
    void lineEditOfAWriteOnlyFeature();
    void lineEditOfALongText();

    void comboBoxByKey();
    void comboBoxByMouse();
    void comboBoxByWheel();
    void comboBoxLeftWritesNothing_data();
    void comboBoxLeftWritesNothing();
    void comboBoxOfABoolean();
    void comboBoxOfAnEmptyEnumeration();
    void comboBoxWhoseEntriesCannotBeTold();
    void comboBoxWhoseEntryVanishes();
    void comboBoxListsWhatCanBeChosen();

    void buttonByMouse();
    void buttonByKey();
    void buttonLeftDoesNothing_data();
    void buttonLeftDoesNothing();
    void buttonWhoseCommandFails();

    void spinBoxByKeyAndWheel();
    void spinBoxTyped();
    void spinBoxLeftWritesNothing_data();
    void spinBoxLeftWritesNothing();

    void sliderTypedAtOnce();
    void sliderEscapeWritesNothing_data();
    void sliderEscapeWritesNothing();
    void sliderLeftUnchangedWritesItsText();
    void sliderLeft_data();
    void sliderLeft();
    void sliderDragged();
    void sliderDraggedLastMoveIsWrittenByTheCommit();
    void sliderByArrowKeys();
    void sliderByWheel();
    void sliderByPage();
    void sliderTypedNonsense();
    void sliderOfAFixedValue();
    void sliderOfAllOf64Bits();

    void valueChangesWhileItIsEdited_data();
    void valueChangesWhileItIsEdited();
    void unpluggedWhileOpen_data();
    void unpluggedWhileOpen();
    void unpluggedWhileDragging();
    void viewIsDeletedWhileOpen_data();
    void viewIsDeletedWhileOpen();
    void otherCameraWhileOpen_data();
    void otherCameraWhileOpen();
    void closeEditOperationCommitsAndOpensAgain_data();
    void closeEditOperationCommitsAndOpensAgain();
    void rowIsFilteredOutWhileOpen_data();
    void rowIsFilteredOutWhileOpen();
    void refreshWhileOpen_data();
    void refreshWhileOpen();

private:
    static std::vector<NodeSpec> oneOfEach();
    /// Columns "name" (in oneOfEach) and "kind" (0: its own), a row for each editor.
    static void everyEditor();
    static QWidget* openKind(EditorBench& bench);
};

/// Next to "Other", to which a user goes when he leaves an editor.
std::vector<NodeSpec> beside(const NodeSpec& spec)
{
    return {spec, features::withAccess(features::integer("Other", 1, 0, 10), Orvo::NODE_ACCESS_MODE_RO)};
}

void leaveRows()
{
    QTest::addColumn<QString>("how");
    for (const char* how : {"click", "tab", "backtab", "other widget", "other window"})
        QTest::newRow(how) << how;
}

void leave(EditorBench& bench, const QString& how)
{
    if (how == "click") {
        bench.click("Other");
    } else if (how == "tab") {
        EditorBench::press(Qt::Key_Tab);
    } else if (how == "backtab") {
        EditorBench::press(Qt::Key_Backtab);
    } else if (how == "other widget") {
        QLineEdit beside(&bench.view());
        beside.show();
        beside.setFocus(Qt::MouseFocusReason);
    } else {
        QLineEdit window;
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
    }
    QCoreApplication::processEvents();
}

// --- Line edit ------------------------------------------------------------------------------------------------------

void EditorsByHandTest::lineEditTypedAndEnter()
{
    EditorBench bench({features::withUnit(features::integer("Number", 37, 0, 100), "mm")});
    auto* lineEdit = bench.openAs<QLineEdit>("Number");
    QVERIFY(lineEdit->hasFocus());
    QCOMPARE(lineEdit->text(), QString("37 mm"));
    EditorBench::type("42"); // all is selected
    QCOMPARE(lineEdit->text(), QString("42"));
    QCOMPARE(bench.written(), QStringList());
    EditorBench::press(Qt::Key_Return);
    QCOMPARE(bench.written(), QStringList{"Number = 42"});
    QCOMPARE(bench.shown("Number"), QString("42 mm"));
    QVERIFY(bench.editor() == nullptr);
    QVERIFY(bench.table().hasFocus());
}

void EditorsByHandTest::lineEditEscapeWritesNothing()
{
    EditorBench bench({features::integer("Number", 37, 0, 100)});
    bench.openAs<QLineEdit>("Number");
    EditorBench::type("42");
    EditorBench::press(Qt::Key_Escape);
    QCOMPARE(bench.written(), QStringList());
    QCOMPARE(bench.shown("Number"), QString("37"));
    QVERIFY(bench.editor() == nullptr);
    QVERIFY(bench.table().hasFocus());
}

void EditorsByHandTest::lineEditLeftUnchangedWritesItsText()
{
    EditorBench bench(beside(features::withUnit(features::real("Time", 1.23456, 0, 100), "us")));
    bench.openAs<QLineEdit>("Time");
    bench.click("Other");
    QCOMPARE(bench.written(), QStringList{"Time = 1.23"});
}

void EditorsByHandTest::lineEditLeft_data()
{
    leaveRows();
}

void EditorsByHandTest::lineEditLeft()
{
    QFETCH(const QString, how);
    EditorBench bench(beside(features::integer("Number", 37, 0, 100)));
    bench.openAs<QLineEdit>("Number");
    EditorBench::type("42");
    leave(bench, how);
    QCOMPARE(bench.written(), QStringList{"Number = 42"});
    QCOMPARE(bench.shown("Number"), QString("42"));
    QVERIFY(bench.editor() == nullptr);
}

void EditorsByHandTest::lineEditNonsense_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("no number") << "many";
    QTest::newRow("beyond the range") << "101";
    QTest::newRow("beyond 64 bits") << "9223372036854775808";
    QTest::newRow("markup") << "<b>5</b>";
    QTest::newRow("place holder") << "%1";
}

void EditorsByHandTest::lineEditNonsense()
{
    QFETCH(const QString, text);
    EditorBench bench({features::integer("Number", 37, 0, 100)});
    bench.openAs<QLineEdit>("Number");
    EditorBench::type(text);
    EditorBench::press(Qt::Key_Enter);
    QCOMPARE(bench.shown("Number"), QString("37"));
    QCOMPARE(scripted::node("Number").intValue, std::int64_t{37});
    QVERIFY(bench.editor() == nullptr);
}

void EditorsByHandTest::lineEditOfAWriteOnlyFeature()
{
    EditorBench bench({features::withAccess(features::integer("Key", 0, 0, 100), Orvo::NODE_ACCESS_MODE_WO)});
    QCOMPARE(bench.openAs<QLineEdit>("Key")->text(), QString("== Write-Only =="));
    EditorBench::type("42");
    EditorBench::press(Qt::Key_Return);
    QCOMPARE(bench.written(), QStringList{"Key = 42"});
    QCOMPARE(bench.shown("Key"), QString("== Write-Only ==")); // read anew
}

// A line edit cuts at 32767 characters, so what it shows is not what the camera holds; leaving it writes that all the
// same, as with any other text.
void EditorsByHandTest::lineEditOfALongText()
{
    const std::string longText(65535, 'x');
    EditorBench bench({features::text("Text", longText)});
    auto* lineEdit = bench.openAs<QLineEdit>("Text");
    QCOMPARE(lineEdit->text().size(), 32767);
    EditorBench::press(Qt::Key_Escape);
    QCOMPARE(scripted::node("Text").strValue.size(), longText.size());
    bench.openAs<QLineEdit>("Text");
    EditorBench::type("short");
    EditorBench::press(Qt::Key_Return);
    QCOMPARE(scripted::node("Text").strValue, std::string("short"));
}

// --- Combo box ------------------------------------------------------------------------------------------------------

NodeSpec choice()
{
    return features::enumeration("Choice", 1, {"One", "Two", "Three"});
}

void EditorsByHandTest::comboBoxByKey()
{
    EditorBench bench({choice(), features::integer("Number", 37, 0, 100)});
    auto* comboBox = bench.openAs<QComboBox>("Choice");
    QVERIFY(comboBox->hasFocus());
    QCOMPARE(comboBox->currentText(), QString("Two"));
    EditorBench::press(Qt::Key_Down);
    QCOMPARE(bench.written(), QStringList{"Choice = Three"});
    QCOMPARE(bench.shown("Choice"), QString("Three"));
    QVERIFY(scripted::count("Nd_GetIntValue") > 0); // the other features are read anew
    QCOMPARE(bench.editor(), comboBox);
    EditorBench::press(Qt::Key_Down); // the last one
    QCOMPARE(bench.written(), QStringList{"Choice = Three"});
    EditorBench::press(Qt::Key_Home);
    QCOMPARE(bench.written(), (QStringList{"Choice = Three", "Choice = One"}));
    EditorBench::press(Qt::Key_Return);
    QVERIFY(bench.editor() == nullptr);
    QCOMPARE(bench.shown("Choice"), QString("One"));
    QCOMPARE(bench.written().size(), 2);
}

void EditorsByHandTest::comboBoxByMouse()
{
    EditorBench bench({choice()});
    auto* comboBox = bench.openAs<QComboBox>("Choice");
    QTest::mouseClick(comboBox, Qt::LeftButton);
    QTRY_VERIFY(comboBox->view()->isVisible());
    // For a moment the list takes a click for the second half of the one that opened it.
    QVERIFY(QTest::qWaitFor([&] {
        QAbstractItemView* list = comboBox->view();
        if (list->isVisible())
            QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                              list->visualRect(list->model()->index(0, 0)).center());
        return !list->isVisible();
    }));
    QCOMPARE(bench.editor(), comboBox);
    QCOMPARE(bench.written(), QStringList{"Choice = One"});
    QCOMPARE(bench.shown("Choice"), QString("One"));

    // The entry that is chosen already.
    QTest::mouseClick(comboBox, Qt::LeftButton);
    QTRY_VERIFY(comboBox->view()->isVisible());
    QTest::keyClick(comboBox->view(), Qt::Key_Return);
    QTRY_VERIFY(!comboBox->view()->isVisible());
    QCOMPARE(bench.written(), QStringList{"Choice = One"});
}

void EditorsByHandTest::comboBoxByWheel()
{
    EditorBench bench({choice()});
    auto* comboBox = bench.openAs<QComboBox>("Choice");
    EditorBench::turnWheel(comboBox, -1);
    QCOMPARE(bench.written(), QStringList{"Choice = Three"});
    EditorBench::turnWheel(comboBox, 2);
    QCOMPARE(bench.written(), (QStringList{"Choice = Three", "Choice = Two", "Choice = One"}));
}

void EditorsByHandTest::comboBoxLeftWritesNothing_data()
{
    leaveRows();
    QTest::newRow("escape") << "escape";
    QTest::newRow("enter") << "enter";
}

void leaveOrPress(EditorBench& bench, const QString& how)
{
    if (how == "escape") {
        EditorBench::press(Qt::Key_Escape);
    } else if (how == "enter") {
        EditorBench::press(Qt::Key_Return);
    } else {
        leave(bench, how);
    }
}

void EditorsByHandTest::comboBoxLeftWritesNothing()
{
    QFETCH(const QString, how);
    EditorBench bench(beside(choice()));
    bench.openAs<QComboBox>("Choice");
    leaveOrPress(bench, how);
    QVERIFY(bench.editor() == nullptr);
    QCOMPARE(bench.written(), QStringList());
    QCOMPARE(bench.shown("Choice"), QString("Two"));
}

void EditorsByHandTest::comboBoxOfABoolean()
{
    EditorBench bench({features::boolean("Flag", true)});
    auto* comboBox = bench.openAs<QComboBox>("Flag");
    QCOMPARE(comboBox->itemText(0), QString("false"));
    QCOMPARE(comboBox->itemText(1), QString("true"));
    QCOMPARE(comboBox->currentText(), QString("true"));
    EditorBench::press(Qt::Key_Up);
    QCOMPARE(bench.written(), QStringList{"Flag = false"});
    QCOMPARE(bench.shown("Flag"), QString("false"));
}

void EditorsByHandTest::comboBoxOfAnEmptyEnumeration()
{
    EditorBench bench({features::enumeration("Empty", 0, {})});
    auto* comboBox = bench.openAs<QComboBox>("Empty");
    QCOMPARE(comboBox->count(), 0);
    EditorBench::press(Qt::Key_Down);
    EditorBench::press(Qt::Key_End);
    EditorBench::press(Qt::Key_Space);
    EditorBench::turnWheel(comboBox, -3);
    QTest::mouseClick(comboBox, Qt::LeftButton);
    EditorBench::press(Qt::Key_Return);
    QCOMPARE(bench.written(), QStringList());
}

void EditorsByHandTest::comboBoxWhoseEntriesCannotBeTold()
{
    EditorBench bench({choice()});
    scripted::failCall("Nd_GetEnumEntryStrValue", 258, 3);
    auto* comboBox = bench.openAs<QComboBox>("Choice");
    QCOMPARE(comboBox->count(), 0);
    EditorBench::press(Qt::Key_Down);
    EditorBench::press(Qt::Key_Return);
    QCOMPARE(bench.written(), QStringList());
    QCOMPARE(bench.shown("Choice"), QString("Two"));
}

void EditorsByHandTest::comboBoxWhoseEntryVanishes()
{
    EditorBench bench({choice()});
    auto* comboBox = bench.openAs<QComboBox>("Choice");
    scripted::changeNode("EnumEntry_Choice_Three", [](NodeSpec& entry) { entry.access = Orvo::NODE_ACCESS_MODE_NA; });
    EditorBench::press(Qt::Key_Down);
    QCOMPARE(bench.written(), QStringList{"Choice = Three"}); // and refused
    QCOMPARE(bench.shown("Choice"), QString("Two"));
    QCOMPARE(bench.editor(), comboBox);
    EditorBench::press(Qt::Key_Return);
    QCOMPARE(bench.shown("Choice"), QString("Two"));
    QCOMPARE(scripted::node("Choice").intValue, std::int64_t{1});
    QCOMPARE(bench.openAs<QComboBox>("Choice")->count(), 2);
}

void EditorsByHandTest::comboBoxListsWhatCanBeChosen()
{
    NodeSpec spec = choice();
    spec.entries[0].access = Orvo::NODE_ACCESS_MODE_NA;
    EditorBench bench({spec});
    auto* comboBox = bench.openAs<QComboBox>("Choice");
    QCOMPARE(comboBox->count(), 2);
    QCOMPARE(comboBox->itemText(0), QString("Two"));
    EditorBench::press(Qt::Key_Down);
    QCOMPARE(bench.written(), QStringList{"Choice = Three"});
}

// --- Button ---------------------------------------------------------------------------------------------------------

void EditorsByHandTest::buttonByMouse()
{
    EditorBench bench({features::command("Reset"), features::integer("Number", 37, 0, 100)});
    auto* button = bench.openAs<QPushButton>("Reset");
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(bench.written(), QStringList{"Reset executed"});
    QVERIFY(scripted::count("Nd_GetIntValue") > 0); // the features are read anew
    QCOMPARE(bench.editor(), button);
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(bench.written(), (QStringList{"Reset executed", "Reset executed"}));
    QCOMPARE(scripted::node("Reset").executed, 2);
}

void EditorsByHandTest::buttonByKey()
{
    EditorBench bench({features::withAccess(features::command("Reset"), Orvo::NODE_ACCESS_MODE_WO)});
    auto* button = bench.openAs<QPushButton>("Reset");
    QVERIFY(button->hasFocus());
    EditorBench::press(Qt::Key_Space);
    QCOMPARE(bench.written(), QStringList{"Reset executed"});
    QCOMPARE(bench.shown("Reset"), QString("== Write-Only =="));
}

void EditorsByHandTest::buttonLeftDoesNothing_data()
{
    comboBoxLeftWritesNothing_data();
}

void EditorsByHandTest::buttonLeftDoesNothing()
{
    QFETCH(const QString, how);
    EditorBench bench(beside(features::command("Reset")));
    bench.openAs<QPushButton>("Reset");
    leaveOrPress(bench, how);
    QVERIFY(bench.editor() == nullptr);
    QCOMPARE(bench.written(), QStringList());
}

void EditorsByHandTest::buttonWhoseCommandFails()
{
    EditorBench bench({features::command("Reset"), features::integer("Number", 37, 0, 100)});
    auto* button = bench.openAs<QPushButton>("Reset");
    scripted::failAlways("Nd_CmdExecute", 258);
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(scripted::node("Reset").executed, 0);
    QCOMPARE(scripted::count("Nd_GetIntValue"), 0);
    QCOMPARE(bench.editor(), button);
}

// --- Spin box -------------------------------------------------------------------------------------------------------

QSpinBox* openSpinBox(EditorBench& bench, const QString& name)
{
    bench.item(name)->setData(EditorSpinBox, EditorKindRole);
    return bench.openAs<QSpinBox>(name);
}

void EditorsByHandTest::spinBoxByKeyAndWheel()
{
    EditorBench bench({features::integer("Number", 36, 0, 100, 4)});
    QSpinBox* spinBox = openSpinBox(bench, "Number");
    QVERIFY(spinBox->hasFocus());
    EditorBench::press(Qt::Key_Up);
    QCOMPARE(bench.written(), QStringList{"Number = 40"});
    QCOMPARE(bench.shown("Number"), QString("40"));
    EditorBench::press(Qt::Key_Down);
    EditorBench::turnWheel(spinBox, 1);
    QCOMPARE(bench.written(), (QStringList{"Number = 40", "Number = 36", "Number = 40"}));
    QCOMPARE(scripted::node("Number").intValue, std::int64_t{40});
}

void EditorsByHandTest::spinBoxTyped()
{
    EditorBench bench({features::integer("Number", 37, 0, 100)});
    openSpinBox(bench, "Number");
    EditorBench::type("8"); // all is selected
    QCOMPARE(bench.written(), QStringList{"Number = 8"});
    QCOMPARE(bench.shown("Number"), QString("8"));
    EditorBench::press(Qt::Key_Return); // makes a spin box tell its value once more
    QCOMPARE(bench.written(), (QStringList{"Number = 8", "Number = 8"}));
    QVERIFY(bench.editor() == nullptr);
}

void EditorsByHandTest::spinBoxLeftWritesNothing_data()
{
    leaveRows();
    QTest::newRow("escape") << "escape";
}

void EditorsByHandTest::spinBoxLeftWritesNothing()
{
    QFETCH(const QString, how);
    EditorBench bench(beside(features::integer("Number", 37, 0, 100)));
    openSpinBox(bench, "Number");
    leaveOrPress(bench, how);
    QVERIFY(bench.editor() == nullptr);
    QCOMPARE(bench.written(), QStringList());
    QCOMPARE(bench.shown("Number"), QString("37"));
}

// --- Slider ---------------------------------------------------------------------------------------------------------

NodeSpec percent(int value = 37)
{
    return features::linear(features::integer("Percent", value, 0, 100));
}

QLineEdit* lineEditOf(LineEditWithSlider* editor)
{
    return editor->findChild<QLineEdit*>();
}
QSlider* sliderOf(LineEditWithSlider* editor)
{
    return editor->findChild<QSlider*>();
}

// Enter finishes the line edit and then commits the editor, and each of the two writes.
void EditorsByHandTest::sliderTypedAtOnce()
{
    EditorBench bench({features::withUnit(percent(), "%")});
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

void EditorsByHandTest::sliderEscapeWritesNothing_data()
{
    QTest::addColumn<bool>("fromSlider");
    QTest::newRow("line edit") << false;
    QTest::newRow("slider") << true;
}

void EditorsByHandTest::sliderEscapeWritesNothing()
{
    QFETCH(const bool, fromSlider);
    EditorBench bench(beside(percent()));
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

void EditorsByHandTest::sliderLeftUnchangedWritesItsText()
{
    EditorBench bench(beside(features::linear(features::real("Gain", 1.23456, 0, 24))));
    bench.openAs<LineEditWithSlider>("Gain");
    bench.click("Other");
    QCOMPARE(bench.written().first(), QString("Gain = 1.23"));
    QCOMPARE(bench.written().last(), QString("Gain = 1.23"));
}

void EditorsByHandTest::sliderLeft_data()
{
    QTest::addColumn<bool>("fromSlider");
    QTest::addColumn<QString>("how");
    for (const bool fromSlider : {false, true}) {
        for (const char* how : {"click", "tab", "backtab", "other widget", "other window"})
            QTest::addRow("%s, %s", fromSlider ? "slider" : "line edit", how) << fromSlider << how;
    }
}

void EditorsByHandTest::sliderLeft()
{
    QFETCH(const bool, fromSlider);
    QFETCH(const QString, how);
    EditorBench bench(beside(percent()));
    auto* editor = bench.openAs<LineEditWithSlider>("Percent");
    if (fromSlider) {
        sliderOf(editor)->setFocus(Qt::MouseFocusReason);
    } else {
        EditorBench::type("42");
    }
    scripted::clearCalls();
    leave(bench, how);
    const QString value = fromSlider ? "37" : "42";
    QVERIFY(!bench.written().isEmpty());
    QCOMPARE(bench.written().last(), "Percent = " + value);
    QCOMPARE(bench.shown("Percent"), value);
    QVERIFY(bench.editor() == nullptr);
    const int writes = bench.written().size();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(bench.written().size(), writes); // nothing comes after it
}

void EditorsByHandTest::sliderDragged()
{
    EditorBench bench(beside(features::withUnit(percent(), "%")));
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
    // The write loaded the editor again, which ended the press: written as before, shown when it is written.
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

void EditorsByHandTest::sliderDraggedLastMoveIsWrittenByTheCommit()
{
    for (const bool byEnter : {true, false}) {
        EditorBench bench(beside(percent()));
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

// Keys, wheel and page steps move the slider without showing or writing its value; Enter writes it, going elsewhere
// writes the text.
void EditorsByHandTest::sliderByArrowKeys()
{
    for (const bool byEnter : {true, false}) {
        EditorBench bench(beside(percent()));
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

void EditorsByHandTest::sliderByWheel()
{
    EditorBench bench(beside(percent()));
    auto* editor = bench.openAs<LineEditWithSlider>("Percent");
    EditorBench::turnWheel(sliderOf(editor), 1);
    QVERIFY(sliderOf(editor)->value() > 37);
    QCOMPARE(lineEditOf(editor)->text(), QString("37"));
    QCOMPARE(bench.written(), QStringList());
    bench.click("Other"); // the line edit has the focus
    QCOMPARE(scripted::node("Percent").intValue, std::int64_t{37});
}

void EditorsByHandTest::sliderByPage()
{
    EditorBench bench(beside(percent()));
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

void EditorsByHandTest::sliderTypedNonsense()
{
    EditorBench bench({features::withUnit(percent(), "%")});
    bench.openAs<LineEditWithSlider>("Percent");
    EditorBench::type("much");
    EditorBench::press(Qt::Key_Return);
    QCOMPARE(scripted::node("Percent").intValue, std::int64_t{37});
    QCOMPARE(bench.shown("Percent"), QString("37 %"));
}

void EditorsByHandTest::sliderOfAFixedValue()
{
    EditorBench bench(beside(features::linear(features::integer("Fixed", 7, 7, 7))));
    auto* editor = bench.openAs<LineEditWithSlider>("Fixed");
    QVERIFY(!lineEditOf(editor)->isEnabled());
    QCOMPARE(lineEditOf(editor)->toolTip(), QString("This value is fixed value."));
    QVERIFY(QApplication::focusWidget() == editor); // so that keys reach it
    EditorBench::press(Qt::Key_Escape);
    QVERIFY(bench.editor() == nullptr);
    QVERIFY(bench.table().hasFocus());
    QCOMPARE(bench.written(), QStringList());
}

void EditorsByHandTest::sliderOfAllOf64Bits()
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

// --- What happens around them ---------------------------------------------------------------------------------------

std::vector<NodeSpec> EditorsByHandTest::oneOfEach()
{
    return {features::integer("Number", 37, 0, 100),
            features::enumeration("Choice", 1, {"One", "Two", "Three"}),
            features::command("Reset"),
            percent(),
            features::logarithmic(features::real("Time", 100, 1, 1000)),
            features::withAccess(features::integer("Other", 1, 0, 10), Orvo::NODE_ACCESS_MODE_RO)};
}

void EditorsByHandTest::everyEditor()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("kind");
    QTest::newRow("line edit") << "Number" << 0;
    QTest::newRow("combo box") << "Choice" << 0;
    QTest::newRow("button") << "Reset" << 0;
    QTest::newRow("spin box") << "Number" << int{EditorSpinBox};
    QTest::newRow("slider") << "Percent" << 0;
    QTest::newRow("logarithmic slider") << "Time" << 0;
}

QWidget* EditorsByHandTest::openKind(EditorBench& bench)
{
    const QString name = *static_cast<QString*>(QTest::qData("name", qMetaTypeId<QString>()));
    const int kind = *static_cast<int*>(QTest::qData("kind", qMetaTypeId<int>()));
    if (kind != 0)
        bench.item(name)->setData(kind, EditorKindRole);
    return bench.open(name);
}

/// Uses an editor as far as its kind allows.
void use(QWidget* editor)
{
    if (auto* button = qobject_cast<QPushButton*>(editor)) {
        QTest::mouseClick(button, Qt::LeftButton);
    } else if (qobject_cast<QComboBox*>(editor) != nullptr) {
        EditorBench::press(Qt::Key_Down);
    } else {
        EditorBench::type("42");
        EditorBench::press(Qt::Key_Return);
    }
}

void EditorsByHandTest::valueChangesWhileItIsEdited_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("shown");
    QTest::newRow("line edit") << "Number"
                               << "99";
    QTest::newRow("combo box") << "Choice"
                               << "Three";
    QTest::newRow("slider") << "Percent"
                            << "99";
}

void EditorsByHandTest::valueChangesWhileItIsEdited()
{
    QFETCH(const QString, name);
    QFETCH(const QString, shown);
    EditorBench bench(oneOfEach());
    QWidget* editor = bench.open(name);
    scripted::changeNode(name.toStdString(), [](NodeSpec& node) { node.intValue = node.intValue == 1 ? 2 : 99; });
    bench.view().updateAllFeatures();
    QCOMPARE(bench.editor(), editor);
    if (auto* lineEdit = qobject_cast<QLineEdit*>(editor)) {
        QCOMPARE(lineEdit->text(), shown);
    } else if (auto* comboBox = qobject_cast<QComboBox*>(editor)) {
        QCOMPARE(comboBox->currentText(), shown);
    } else {
        QCOMPARE(editor->findChild<QLineEdit*>()->text(), shown);
    }
    QCOMPARE(bench.written(), QStringList());
}

void EditorsByHandTest::unpluggedWhileOpen_data()
{
    everyEditor();
}

void EditorsByHandTest::unpluggedWhileOpen()
{
    QFETCH(const QString, name);
    EditorBench bench(oneOfEach());
    QWidget* editor = openKind(bench);
    const QString before = bench.shown(name);
    scripted::unplug();
    use(editor);
    bench.click("Other");
    bench.click(name);
    bench.view().closeEditOperation();
    bench.view().updateAllFeatures();
    for (const scripted::Call& call : scripted::calls())
        QCOMPARE(call.result, 19U);
    QCOMPARE(bench.shown(name), before);
}

void EditorsByHandTest::unpluggedWhileDragging()
{
    EditorBench bench(beside(percent()));
    auto* editor = bench.openAs<LineEditWithSlider>("Percent");
    SliderDrag drag(sliderOf(editor));
    drag.to(0.75);
    QTRY_VERIFY(scripted::node("Percent").intValue > 50);
    const std::int64_t last = scripted::node("Percent").intValue;
    scripted::unplug();
    scripted::clearCalls();
    drag.to(0.9);
    QTRY_VERIFY(!bench.written().isEmpty());
    drag.to(0.2);
    drag.release();
    bench.click("Other");
    QCOMPARE(scripted::node("Percent").intValue, last);
    QCOMPARE(bench.shown("Percent"), QString::number(last));
}

void EditorsByHandTest::viewIsDeletedWhileOpen_data()
{
    everyEditor();
}

void EditorsByHandTest::viewIsDeletedWhileOpen()
{
    EditorBench bench(oneOfEach());
    const QPointer<QWidget> editor = openKind(bench);
    bench.features().destroyView();
    QVERIFY(editor.isNull());
    QVERIFY(scripted::calls({"Nd_Set", "Nd_CmdExecute"}).empty());
}

void EditorsByHandTest::otherCameraWhileOpen_data()
{
    everyEditor();
}

void EditorsByHandTest::otherCameraWhileOpen()
{
    EditorBench bench(oneOfEach());
    QVERIFY(openKind(bench) != nullptr);
    bench.view().SetCam(bench.features().camera());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(bench.editor() == nullptr);
    QVERIFY(scripted::calls({"Nd_Set", "Nd_CmdExecute"}).empty());
    bench.view().changeCollapsedState(bench.features().cell("Features"));
    QVERIFY(openKind(bench) != nullptr);
}

void EditorsByHandTest::closeEditOperationCommitsAndOpensAgain_data()
{
    everyEditor();
}

void EditorsByHandTest::closeEditOperationCommitsAndOpensAgain()
{
    QFETCH(const QString, name);
    EditorBench bench(oneOfEach());
    const QPointer<QWidget> editor = openKind(bench);
    const bool hasText =
        qobject_cast<QLineEdit*>(editor) != nullptr || qobject_cast<LineEditWithSlider*>(editor) != nullptr;
    if (hasText)
        EditorBench::type("42");
    bench.view().closeEditOperation();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(editor.isNull());
    QCOMPARE(bench.written(), hasText ? QStringList{name + " = 42"} : QStringList());
    QCOMPARE(bench.table().currentIndex(), bench.valueCell(name));
    QVERIFY(bench.editor() != nullptr);
}

void EditorsByHandTest::rowIsFilteredOutWhileOpen_data()
{
    everyEditor();
}

void EditorsByHandTest::rowIsFilteredOutWhileOpen()
{
    std::vector<NodeSpec> nodes = oneOfEach();
    for (NodeSpec& node : nodes)
        node.visibility = node.name == "Other" ? Orvo::NODE_VISIBILITY_BEGINNER : Orvo::NODE_VISIBILITY_GURU;
    EditorBench bench(nodes);
    bench.view().selectGuru();
    QVERIFY(openKind(bench) != nullptr);
    bench.view().selectBeginner();
    QTRY_VERIFY(bench.editor() == nullptr);
    bench.view().selectGuru();
    QVERIFY(openKind(bench) != nullptr);
}

void EditorsByHandTest::refreshWhileOpen_data()
{
    everyEditor();
}

void EditorsByHandTest::refreshWhileOpen()
{
    EditorBench bench(oneOfEach());
    QWidget* editor = openKind(bench);
    bench.view().updateAllFeatures();
    QCOMPARE(bench.editor(), editor);
    QCOMPARE(bench.written(), QStringList());
}

} // namespace

QTEST_MAIN(EditorsByHandTest)
#include "EditorsByHandTest.moc"

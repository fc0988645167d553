// The combo box and the button in the table, operated by mouse and keyboard: what is written and what is shown.

#include "tests/features/EditorBench.h"
#include "tests/support/TestProgram.h"
#include "tests/support/Wheel.h"

#include <QtTest>

#include <QAbstractItemView>
#include <QComboBox>
#include <QPushButton>

using scripted::NodeSpec;

namespace {

class ChoicesByHandTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void comboBoxByKey();
    void comboBoxByMouse();
    void comboBoxByWheel();
    void leavingTheComboBoxWritesNothing_data();
    void leavingTheComboBoxWritesNothing();
    void comboBoxOfABoolean();
    void comboBoxOfAnEmptyEnumeration();
    void comboBoxWhoseEntriesCannotBeRead();
    void comboBoxWhoseEntryVanishes();
    void comboBoxListsSelectableEntries();
    void comboBoxAfterARefusal();
    void comboBoxWithAValueOutsideItsEntries_data();
    void comboBoxWithAValueOutsideItsEntries();

    void buttonByMouse();
    void buttonByKey();
    void leavingTheButtonDoesNothing_data();
    void leavingTheButtonDoesNothing();
    void buttonWhoseCommandFails();
};

// --- Combo box -------------------------------------------------------------------------------------------------------

NodeSpec choice()
{
    return features::enumeration("Choice", 1, {"One", "Two", "Three"});
}

void ChoicesByHandTest::comboBoxByKey()
{
    EditorBench bench({choice(), features::integer("Number", 37, 0, 100)});
    auto* comboBox = bench.openAs<QComboBox>("Choice");
    QVERIFY(comboBox->hasFocus());
    QCOMPARE(comboBox->currentText(), QString("Two"));
    EditorBench::press(Qt::Key_Down);
    QCOMPARE(bench.written(), QStringList{"Choice = Three"});
    QCOMPARE(bench.shown("Choice"), QString("Three"));
    QVERIFY(scripted::count("Nd_GetIntValue") > 0); // the other features are read again
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

void ChoicesByHandTest::comboBoxByMouse()
{
    EditorBench bench({choice()});
    auto* comboBox = bench.openAs<QComboBox>("Choice");
    QTest::mouseClick(comboBox, Qt::LeftButton);
    QTRY_VERIFY(comboBox->view()->isVisible());
    // Right after opening, the popup treats a click as part of the click that opened it.
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

    // The current entry.
    QTest::mouseClick(comboBox, Qt::LeftButton);
    QTRY_VERIFY(comboBox->view()->isVisible());
    QTest::keyClick(comboBox->view(), Qt::Key_Return);
    QTRY_VERIFY(!comboBox->view()->isVisible());
    QCOMPARE(bench.written(), QStringList{"Choice = One"});
}

void ChoicesByHandTest::comboBoxByWheel()
{
    EditorBench bench({choice()});
    auto* comboBox = bench.openAs<QComboBox>("Choice");
    turnWheel(*comboBox, -1);
    QCOMPARE(bench.written(), QStringList{"Choice = Three"});
    turnWheel(*comboBox, 2);
    QCOMPARE(bench.written(), (QStringList{"Choice = Three", "Choice = Two", "Choice = One"}));
}

void ChoicesByHandTest::leavingTheComboBoxWritesNothing_data()
{
    EditorBench::waysToLeave();
    QTest::newRow("escape") << "escape";
    QTest::newRow("enter") << "enter";
}

void ChoicesByHandTest::leavingTheComboBoxWritesNothing()
{
    QFETCH(const QString, how);
    EditorBench bench(features::beside(choice()));
    bench.openAs<QComboBox>("Choice");
    bench.leave(how);
    QVERIFY(bench.editor() == nullptr);
    QCOMPARE(bench.written(), QStringList());
    QCOMPARE(bench.shown("Choice"), QString("Two"));
}

void ChoicesByHandTest::comboBoxOfABoolean()
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

void ChoicesByHandTest::comboBoxOfAnEmptyEnumeration()
{
    EditorBench bench({features::enumeration("Empty", 0, {})});
    auto* comboBox = bench.openAs<QComboBox>("Empty");
    QCOMPARE(comboBox->count(), 0);
    EditorBench::press(Qt::Key_Down);
    EditorBench::press(Qt::Key_End);
    EditorBench::press(Qt::Key_Space);
    turnWheel(*comboBox, -3);
    QTest::mouseClick(comboBox, Qt::LeftButton);
    EditorBench::press(Qt::Key_Return);
    QCOMPARE(bench.written(), QStringList());
}

void ChoicesByHandTest::comboBoxWhoseEntriesCannotBeRead()
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

void ChoicesByHandTest::comboBoxWhoseEntryVanishes()
{
    EditorBench bench({choice()});
    auto* comboBox = bench.openAs<QComboBox>("Choice");
    scripted::changeNode("EnumEntry_Choice_Three", [](NodeSpec& entry) { entry.access = Orvo::NODE_ACCESS_MODE_NA; });
    EditorBench::press(Qt::Key_Down);
    QCOMPARE(bench.written(), QStringList{"Choice = Three"}); // the camera refuses it
    QCOMPARE(bench.shown("Choice"), QString("Two"));
    QCOMPARE(bench.editor(), comboBox);
    EditorBench::press(Qt::Key_Return);
    QCOMPARE(bench.shown("Choice"), QString("Two"));
    QCOMPARE(scripted::node("Choice").intValue, std::int64_t{1});
    QCOMPARE(bench.openAs<QComboBox>("Choice")->count(), 2);
}

void ChoicesByHandTest::comboBoxListsSelectableEntries()
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

void ChoicesByHandTest::comboBoxAfterARefusal()
{
    EditorBench bench({choice()});
    auto* comboBox = bench.openAs<QComboBox>("Choice");
    scripted::failCall("Nd_SetEnumStrValue", 258, 1);
    EditorBench::press(Qt::Key_Down);
    QCOMPARE(bench.written(), QStringList{"Choice = Three"});
    QCOMPARE(scripted::node("Choice").intValue, std::int64_t{1});
    QCOMPARE(bench.shown("Choice"), QString("Two"));
    QCOMPARE(comboBox->currentText(), QString("Two"));
    EditorBench::press(Qt::Key_Down); // this time the camera accepts it
    QCOMPARE(bench.written(), (QStringList{"Choice = Three", "Choice = Three"}));
    QCOMPARE(bench.shown("Choice"), QString("Three"));
    QCOMPARE(comboBox->currentText(), QString("Three"));
}

void ChoicesByHandTest::comboBoxWithAValueOutsideItsEntries_data()
{
    QTest::addColumn<NodeSpec>("spec");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("first");
    const auto writeOnly = [](NodeSpec spec) {
        return features::withAccess(std::move(spec), Orvo::NODE_ACCESS_MODE_WO);
    };
    QTest::newRow("write-only enumeration") << writeOnly(choice()) << "== Write-Only =="
                                            << "One";
    QTest::newRow("write-only boolean") << writeOnly(features::boolean("Choice", true)) << "== Write-Only =="
                                        << "false";
    NodeSpec gone = choice();
    gone.entries[1].access = Orvo::NODE_ACCESS_MODE_NA;
    QTest::newRow("entry that is not available") << gone << "Two"
                                                 << "One";
}

// No entry is current, so choosing the first one is a change.
void ChoicesByHandTest::comboBoxWithAValueOutsideItsEntries()
{
    QFETCH(const NodeSpec, spec);
    QFETCH(const QString, shown);
    QFETCH(const QString, first);
    EditorBench bench({spec});
    auto* comboBox = bench.openAs<QComboBox>("Choice");
    QCOMPARE(bench.shown("Choice"), shown);
    QCOMPARE(comboBox->currentIndex(), -1);
    QCOMPARE(bench.written(), QStringList());
    EditorBench::press(Qt::Key_Home);
    QCOMPARE(bench.written(), QStringList{"Choice = " + first});
}

// --- Button ----------------------------------------------------------------------------------------------------------

void ChoicesByHandTest::buttonByMouse()
{
    EditorBench bench({features::command("Reset"), features::integer("Number", 37, 0, 100)});
    auto* button = bench.openAs<QPushButton>("Reset");
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(bench.written(), QStringList{"Reset executed"});
    QVERIFY(scripted::count("Nd_GetIntValue") > 0); // the features are read again
    QCOMPARE(bench.editor(), button);
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(bench.written(), (QStringList{"Reset executed", "Reset executed"}));
    QCOMPARE(scripted::node("Reset").executed, 2);
}

void ChoicesByHandTest::buttonByKey()
{
    EditorBench bench({features::withAccess(features::command("Reset"), Orvo::NODE_ACCESS_MODE_WO)});
    auto* button = bench.openAs<QPushButton>("Reset");
    QVERIFY(button->hasFocus());
    EditorBench::press(Qt::Key_Space);
    QCOMPARE(bench.written(), QStringList{"Reset executed"});
    QCOMPARE(bench.shown("Reset"), QString("== Write-Only =="));
}

void ChoicesByHandTest::leavingTheButtonDoesNothing_data()
{
    leavingTheComboBoxWritesNothing_data();
}

void ChoicesByHandTest::leavingTheButtonDoesNothing()
{
    QFETCH(const QString, how);
    EditorBench bench(features::beside(features::command("Reset")));
    bench.openAs<QPushButton>("Reset");
    bench.leave(how);
    QVERIFY(bench.editor() == nullptr);
    QCOMPARE(bench.written(), QStringList());
}

void ChoicesByHandTest::buttonWhoseCommandFails()
{
    EditorBench bench({features::command("Reset"), features::integer("Number", 37, 0, 100)});
    auto* button = bench.openAs<QPushButton>("Reset");
    scripted::failAlways("Nd_CmdExecute", 258);
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(scripted::node("Reset").executed, 0);
    QCOMPARE(scripted::count("Nd_GetIntValue"), 0);
    QCOMPARE(bench.editor(), button);
}

} // namespace

ORVO_TEST_CLASS(ChoicesByHandTest)
#include "ChoicesByHandTest.moc"

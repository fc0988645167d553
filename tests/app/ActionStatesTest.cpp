// Which state of the window enables which action.

#include "app/ActionStates.h"
#include "tests/support/EnableTable.h"
#include "tests/support/TestProgram.h"
#include "ui_MainWindow.h"

#include <QtTest>

namespace {

constexpr double kScales[] = {0.125, 0.25, 0.5, 1.0, 2.0, 4.0, 8.0};

class ActionStatesTest : public QObject {
    Q_OBJECT

private slots:
    void everyActionInEveryState_data();
    void everyActionInEveryState();
    void invalidStatesChangeNothing_data();
    void invalidStatesChangeNothing();
};

void ActionStatesTest::everyActionInEveryState_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("state");
    for (int row = 0; row < int(std::size(kEnableTable)); ++row) {
        for (int state = 1; state <= 5; ++state)
            QTest::addRow("%s in state %d", kEnableTable[row].action, state) << row << state;
    }
}

void ActionStatesTest::everyActionInEveryState()
{
    QFETCH(int, row);
    QFETCH(int, state);
    QMainWindow window;
    Ui_MainWindow ui{};
    ui.setupUi(&window);
    auto* const action = window.findChild<QAction*>(kEnableTable[row].action);
    QVERIFY(action);
    for (const bool before : {false, true}) {
        for (const double scale : kScales) {
            action->setEnabled(before);
            applyActionStates(ui, static_cast<MAIN_STATE>(state), scale);
            QCOMPARE(action->isEnabled(), enabledBy(kEnableTable[row].states[state - 1], before, scale));
        }
    }
}

void ActionStatesTest::invalidStatesChangeNothing_data()
{
    QTest::addColumn<int>("state");
    for (const int state : {0, 6, 7})
        QTest::addRow("%d", state) << state;
}

void ActionStatesTest::invalidStatesChangeNothing()
{
    QFETCH(int, state);
    QMainWindow window;
    Ui_MainWindow ui{};
    ui.setupUi(&window);
    for (const bool before : {false, true}) {
        for (const EnableRow& row : kEnableTable)
            window.findChild<QAction*>(row.action)->setEnabled(before);
        applyActionStates(ui, static_cast<MAIN_STATE>(state), 2.0);
        for (const EnableRow& row : kEnableTable)
            QCOMPARE(window.findChild<QAction*>(row.action)->isEnabled(), before);
    }
}

} // namespace

ORVO_TEST_CLASS(ActionStatesTest)
#include "ActionStatesTest.moc"

// Which state of the window enables which action.

#include "app/ActionStates.h"
#include "tests/support/TestProgram.h"
#include "ui_MainWindow.h"

#include <QtTest>

namespace {

struct Row {
    const char* action;
    const char* states[5]; // idle, opening, opened, locked, acquiring
};
constexpr Row kRows[] = {
    {"actionOpen", {"on", "off", "keep", "keep", "keep"}},
    {"action_Menu_Open", {"on", "off", "keep", "keep", "keep"}},
    {"actionClose", {"off", "keep", "on", "keep", "keep"}},
    {"action_Menu_Close", {"off", "keep", "on", "keep", "keep"}},
    {"actionStart", {"off", "keep", "on", "off", "keep"}},
    {"action_Menu_Start", {"off", "keep", "on", "off", "keep"}},
    {"actionPause", {"off", "keep", "off", "keep", "on"}},
    {"action_Menu_Pause", {"off", "keep", "on", "keep", "on"}},
    {"actionStop", {"off", "keep", "off", "keep", "on"}},
    {"action_Menu_Stop", {"off", "keep", "on", "keep", "on"}},
    {"actionSoftwareTrigger", {"off", "keep", "off", "keep", "keep"}},
    {"action_Menu_One_Shot", {"off", "keep", "off", "keep", "keep"}},
    {"actionSnapshot", {"off", "keep", "keep", "keep", "on"}},
    {"action_Menu_Snapshot", {"off", "keep", "keep", "keep", "on"}},
    {"actionZoomIn", {"off", "keep", "scale < 4", "keep", "scale < 4"}},
    {"action_Menu_Zoom_In", {"off", "keep", "scale < 4", "keep", "scale < 4"}},
    {"actionZoomOut", {"off", "keep", "scale > 0.25", "keep", "scale > 0.25"}},
    {"action_Menu_Zoom_Out", {"off", "keep", "scale > 0.25", "keep", "scale > 0.25"}},
    {"actionNormalSize", {"off", "keep", "scale != 1", "keep", "scale != 1"}},
    {"action_Menu_Normal_Size", {"off", "keep", "on", "keep", "on"}},
    {"action_Menu_Exit", {"keep", "keep", "keep", "keep", "keep"}},
    {"action_Menu_About", {"keep", "keep", "keep", "keep", "keep"}},
};
constexpr double kScales[] = {0.125, 0.25, 0.5, 1.0, 2.0, 4.0, 8.0};

bool expected(const QString& rule, bool before, double scale)
{
    if (rule == "keep")
        return before;
    if (rule == "scale < 4")
        return scale < 4.0;
    if (rule == "scale > 0.25")
        return scale > 0.25;
    if (rule == "scale != 1")
        return scale != 1.0;
    return rule == "on";
}

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
    for (int row = 0; row < int(std::size(kRows)); ++row) {
        for (int state = 1; state <= 5; ++state)
            QTest::addRow("%s in state %d", kRows[row].action, state) << row << state;
    }
}

void ActionStatesTest::everyActionInEveryState()
{
    QFETCH(int, row);
    QFETCH(int, state);
    QMainWindow window;
    Ui_MainWindow ui{};
    ui.setupUi(&window);
    auto* const action = window.findChild<QAction*>(kRows[row].action);
    QVERIFY(action);
    for (const bool before : {false, true}) {
        for (const double scale : kScales) {
            action->setEnabled(before);
            applyActionStates(ui, static_cast<MAIN_STATE>(state), scale);
            QCOMPARE(action->isEnabled(), expected(kRows[row].states[state - 1], before, scale));
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
        for (const Row& row : kRows)
            window.findChild<QAction*>(row.action)->setEnabled(before);
        applyActionStates(ui, static_cast<MAIN_STATE>(state), 2.0);
        for (const Row& row : kRows)
            QCOMPARE(window.findChild<QAction*>(row.action)->isEnabled(), before);
    }
}

} // namespace

ORVO_TEST_CLASS(ActionStatesTest)
#include "ActionStatesTest.moc"

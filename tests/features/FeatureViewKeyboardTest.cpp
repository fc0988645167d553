// The feature view without a mouse.

#include "tests/features/FeatureTable.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <QToolBar>
#include <QToolButton>

using scripted::category;

namespace {

class FeatureViewKeyboardTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void leftFoldsAndRightUnfolds();
    void keysThatToggle_data();
    void keysThatToggle();
    void keysOnAFeatureRowFoldNothing_data();
    void keysOnAFeatureRowFoldNothing();
    void arrowsGoFromRowToRow();
    void toolButtonsAcceptKeyboardFocus();
};

std::vector<scripted::NodeSpec> twoCategories()
{
    return {category("Root", {"First", "Second"}),
            category("First", {"A", "B"}),
            category("Second", {"C"}),
            feature("A", Orvo::NODE_VISIBILITY_BEGINNER, Orvo::NODE_ACCESS_MODE_RO),
            feature("B"),
            feature("C")};
}

void FeatureViewKeyboardTest::leftFoldsAndRightUnfolds()
{
    FeatureTable features(twoCategories());
    features.show();
    QTableView& table = features.table();
    table.setCurrentIndex(features.cell("First"));
    QTest::keyClick(&table, Qt::Key_Left); // folded already
    QCOMPARE(features.shownNames(), QStringList({"First", "Second"}));
    for (int i = 0; i < 2; ++i) {
        QTest::keyClick(&table, Qt::Key_Right);
        QCOMPARE(features.shownNames(), QStringList({"First", "A", "B", "Second"}));
    }
    QTest::keyClick(&table, Qt::Key_Left);
    QCOMPARE(features.shownNames(), QStringList({"First", "Second"}));
    QCOMPARE(table.currentIndex(), features.cell("First"));
}

void FeatureViewKeyboardTest::keysThatToggle_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("return") << int(Qt::Key_Return);
    QTest::newRow("enter") << int(Qt::Key_Enter);
    QTest::newRow("space") << int(Qt::Key_Space);
}

void FeatureViewKeyboardTest::keysThatToggle()
{
    QFETCH(const int, key);
    FeatureTable features(twoCategories());
    features.show();
    features.table().setCurrentIndex(features.cell("Second"));
    QTest::keyClick(&features.table(), Qt::Key(key));
    QCOMPARE(features.shownNames(), QStringList({"First", "Second", "C"}));
    QTest::keyClick(&features.table(), Qt::Key(key));
    QCOMPARE(features.shownNames(), QStringList({"First", "Second"}));
}

void FeatureViewKeyboardTest::keysOnAFeatureRowFoldNothing_data()
{
    keysThatToggle_data();
    QTest::newRow("left") << int(Qt::Key_Left);
    QTest::newRow("right") << int(Qt::Key_Right);
}

void FeatureViewKeyboardTest::keysOnAFeatureRowFoldNothing()
{
    QFETCH(const int, key);
    FeatureTable features(twoCategories());
    features.show();
    features.view().changeCollapsedState(features.cell("First"));
    features.table().setCurrentIndex(features.cell("A"));
    QTest::keyClick(&features.table(), Qt::Key(key));
    QCOMPARE(features.shownNames(), QStringList({"First", "A", "B", "Second"}));
}

void FeatureViewKeyboardTest::arrowsGoFromRowToRow()
{
    FeatureTable features(twoCategories());
    features.show();
    features.table().setCurrentIndex(features.cell("First"));
    QTest::keyClick(&features.table(), Qt::Key_Right);
    QTest::keyClick(&features.table(), Qt::Key_Down);
    QCOMPARE(features.table().currentIndex().row(), features.row("A"));
}

void FeatureViewKeyboardTest::toolButtonsAcceptKeyboardFocus()
{
    FeatureTable features(twoCategories());
    features.show();
    const auto buttons = features.view().findChild<QToolBar*>()->findChildren<QToolButton*>();
    const auto aToZ =
        std::find_if(buttons.begin(), buttons.end(), [](QToolButton* button) { return button->text() == "sortAz"; });
    QVERIFY(aToZ != buttons.end());
    buttons.first()->setFocus();
    for (int i = 0; i < buttons.size() && !(*aToZ)->hasFocus(); ++i)
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QVERIFY((*aToZ)->hasFocus());
    QTest::keyClick(*aToZ, Qt::Key_Space);
    QCOMPARE(features.shownNames(), QStringList({"A", "B", "C"}));
}

} // namespace

ORVO_TEST_CLASS(FeatureViewKeyboardTest)
#include "FeatureViewKeyboardTest.moc"

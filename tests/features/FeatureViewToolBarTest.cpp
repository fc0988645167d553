// The tool bar of the feature view.

#include "features/view/FeatureView.h"
#include "tests/features/FeatureTable.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <QToolBar>
#include <QToolButton>

namespace {

struct ActionRow {
    const char* text;
    const char* icon;
    bool checkable;
    bool checked; // in a new view
    const char* toolTip;
    bool visible;
};
constexpr ActionRow kActions[] = {
    {"&refreshItems", "RefreshArrow_Blue.png", false, false, "Refreshes all features.", true},
    {"&sortCtg", "Categorized.png", true, true, "Sorts by Category.", true},
    {"&sortAz", "AZSorted.png", true, false, "Sorts by Feature name.", true},
    {"&levelBeginner", "Beginner.png", true, true, "Shows beginner lebel features.", true},
    {"&levelExpert", "Expert.png", true, false, "Shows expert lebel features.", true},
    {"&levelGuru", "Guru.png", true, false, "Shows guru lebel features.", true},
    {"&levelInvisible", "Invisible.png", true, false, "Shows invisible lebel features.", false},
};

class FeatureViewToolBarTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void actions_data();
    void actions();
    void order();
    void standsAboveTheTable();
    void buttonsAreClickedByMouse();
    void iconsAreSharedByAllViews();
};

void FeatureViewToolBarTest::actions_data()
{
    QTest::addColumn<int>("index");
    for (std::size_t i = 0; i < std::size(kActions); ++i)
        QTest::newRow(kActions[i].text) << static_cast<int>(i);
}

void FeatureViewToolBarTest::actions()
{
    QFETCH(int, index);
    const ActionRow& expected = kActions[index];
    const FeatureView view;
    QList<QAction*> actions = view.findChild<QToolBar*>()->actions();
    actions.erase(std::remove_if(actions.begin(), actions.end(), [](QAction* a) { return a->isSeparator(); }),
                  actions.end());
    QCOMPARE(actions.size(), static_cast<int>(std::size(kActions)));
    const QAction& action = *actions.at(index);
    QCOMPARE(action.text(), QString(expected.text));
    QVERIFY(showsImage(action.icon(), expected.icon));
    QCOMPARE(action.isCheckable(), expected.checkable);
    QCOMPARE(action.isChecked(), expected.checked);
    QCOMPARE(action.toolTip(), QString(expected.toolTip));
    QCOMPARE(action.isVisible(), expected.visible);
    QCOMPARE(action.parent(), nullptr);
}

void FeatureViewToolBarTest::order()
{
    const FeatureView view;
    QStringList texts;
    for (const QAction* const action : view.findChild<QToolBar*>()->actions())
        texts << (action->isSeparator() ? QString("|") : action->text());
    QCOMPARE(texts, QStringList({"|", "&refreshItems", "&sortCtg", "&sortAz", "|", "&levelBeginner", "&levelExpert",
                                 "&levelGuru", "&levelInvisible"}));
}

void FeatureViewToolBarTest::standsAboveTheTable()
{
    FeatureTable features;
    features.show();
    const auto* const bar = features.view().findChild<QToolBar*>();
    QCOMPARE(bar->parentWidget(), &features.view());
    QVERIFY(bar->geometry().bottom() < features.table().geometry().top());
}

void FeatureViewToolBarTest::buttonsAreClickedByMouse()
{
    FeatureTable features;
    features.show();
    auto* const bar = features.view().findChild<QToolBar*>();
    const auto click = [&](int action) {
        QTest::mouseClick(bar->widgetForAction(bar->actions().at(action)), Qt::LeftButton);
    };
    const int beginners = features.names().size();
    click(7); // Guru
    QVERIFY(features.names().size() > beginners);
    QVERIFY(features.names().contains("DeviceReset"));
    click(3); // A-Z
    QVERIFY(!features.names().contains("DeviceControl"));
    scripted::clearCalls();
    click(1); // refresh
    QCOMPARE(scripted::count("Nd_GetAccessMode"), features.view().items().size());
}

/// Identifies the drawn icons of the tool bar and of the table.
QVector<qint64> drawnIcons(FeatureTable& features)
{
    QVector<QIcon> icons;
    for (const QAction* const action : features.view().findChild<QToolBar*>()->actions())
        icons << action->icon();
    const QAbstractItemModel& model = *features.table().model();
    for (int row = 0; row < model.rowCount(); ++row)
        icons << model.index(row, 0).data(Qt::DecorationRole).value<QIcon>();
    QVector<qint64> keys;
    for (const QIcon& icon : qAsConst(icons)) {
        if (!icon.isNull())
            keys << icon.pixmap(24, 24).cacheKey();
    }
    return keys;
}

// Qt caches each icon that it has drawn. New ones for each opened camera would fill its cache of 10 MB.
void FeatureViewToolBarTest::iconsAreSharedByAllViews()
{
    QVector<qint64> drawn[2];
    for (QVector<qint64>& icons : drawn) {
        FeatureTable features;
        features.show();
        icons = drawnIcons(features);
    }
    QVERIFY2(drawn[0].size() > static_cast<int>(std::size(kActions)), "the table has icons, too");
    QCOMPARE(drawn[1], drawn[0]);
}

} // namespace

ORVO_TEST_CLASS(FeatureViewToolBarTest)
#include "FeatureViewToolBarTest.moc"

// The tool bar of the feature view.

#include "features/view/FeatureView.h"

#include <QIcon>
#include <QPixmap>
#include <QToolBar>

namespace {

struct ToolActionSpec {
    const char* text;
    const char* icon;
    bool checkable;
    bool checked;
    const char* toolTip;
    void (*run)(FeatureView& view);
};

// In the order of FeatureView::ToolAction. The first sortAndFilter() corrects the check marks.
constexpr ToolActionSpec kToolActions[] = {
    {QT_TRANSLATE_NOOP("FeatureView", "&refreshItems"), ":/images/FeatureView/images/RefreshArrow_Blue.png", false,
     false, QT_TRANSLATE_NOOP("FeatureView", "Refreshes all features."),
     [](FeatureView& view) { view.updateAllFeatures(); }},
    {QT_TRANSLATE_NOOP("FeatureView", "&sortCtg"), ":/images/FeatureView/images/Categorized.png", true, true,
     QT_TRANSLATE_NOOP("FeatureView", "Sorts by Category."), [](FeatureView& view) { view.selectSortCategory(); }},
    {QT_TRANSLATE_NOOP("FeatureView", "&sortAz"), ":/images/FeatureView/images/AZSorted.png", true, true,
     QT_TRANSLATE_NOOP("FeatureView", "Sorts by Feature name."), [](FeatureView& view) { view.selectSortAtoZ(); }},
    {QT_TRANSLATE_NOOP("FeatureView", "&levelBeginner"), ":/images/FeatureView/images/Beginner.png", true, true,
     QT_TRANSLATE_NOOP("FeatureView", "Shows beginner lebel features."),
     [](FeatureView& view) { view.selectBeginner(); }},
    {QT_TRANSLATE_NOOP("FeatureView", "&levelExpert"), ":/images/FeatureView/images/Expert.png", true, false,
     QT_TRANSLATE_NOOP("FeatureView", "Shows expert lebel features."), [](FeatureView& view) { view.selectExpert(); }},
    {QT_TRANSLATE_NOOP("FeatureView", "&levelGuru"), ":/images/FeatureView/images/Guru.png", true, false,
     QT_TRANSLATE_NOOP("FeatureView", "Shows guru lebel features."), [](FeatureView& view) { view.selectGuru(); }},
    {QT_TRANSLATE_NOOP("FeatureView", "&levelInvisible"), ":/images/FeatureView/images/Invisible.png", true, false,
     QT_TRANSLATE_NOOP("FeatureView", "Shows invisible lebel features."),
     [](FeatureView& view) { view.selectInvisible(); }},
};

} // namespace

void FeatureView::createToolBar()
{
    static_assert(std::size(kToolActions) == ToolActionCount);
    m_toolBar = new QToolBar(this);
    for (std::size_t i = 0; i < m_actions.size(); ++i) {
        const ToolActionSpec& spec = kToolActions[i];
        // The icon is made from a pixmap for the same reason as m_foldedIcon.
        m_actions[i] = std::make_unique<QAction>(QIcon(QPixmap(QString::fromLatin1(spec.icon))), tr(spec.text));
        m_actions[i]->setCheckable(spec.checkable);
        m_actions[i]->setChecked(spec.checked);
        m_actions[i]->setToolTip(tr(spec.toolTip));
        connect(m_actions[i].get(), &QAction::triggered, this, [this, run = spec.run] { run(*this); });
        if (i == RefreshAction || i == BeginnerAction)
            m_toolBar->addSeparator();
        m_toolBar->addAction(m_actions[i].get());
        m_toolBar->widgetForAction(m_actions[i].get())
            ->setFocusPolicy(Qt::TabFocus); // otherwise only the mouse reaches it
    }
    m_actions[InvisibleAction]->setVisible(m_levelInvisibleAvailable);
}

void FeatureView::checkActions()
{
    m_actions[SortCategoryAction]->setChecked(!m_sortAtoZ);
    m_actions[SortAzAction]->setChecked(m_sortAtoZ);
    m_actions[BeginnerAction]->setChecked(m_level == Orvo::NODE_VISIBILITY_BEGINNER);
    m_actions[ExpertAction]->setChecked(m_level == Orvo::NODE_VISIBILITY_EXPERT);
    m_actions[GuruAction]->setChecked(m_level == Orvo::NODE_VISIBILITY_GURU);
    m_actions[InvisibleAction]->setChecked(m_level == Orvo::NODE_VISIBILITY_INVISIBLE);
}

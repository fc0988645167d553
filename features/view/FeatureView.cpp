#include "features/view/FeatureView.h"

#include "features/description/DescBox.h"
#include "features/description/PlainToolTip.h"
#include "features/item/GenAPINodeItem.h"

#include <QHeaderView>
#include <QHelpEvent>
#include <QPersistentModelIndex>
#include <QToolBar>
#include <QVBoxLayout>

namespace {

constexpr int kRowHeight = 22;

} // namespace

FeatureView::FeatureView(QWidget* parent)
    : QWidget(parent)
{
    makeRowColours();
    createToolBar();
    createTable();
    m_descBox = new DescBox(this);

    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(m_toolBar);
    layout->addWidget(&m_tableView);
    layout->addWidget(m_descBox);

    sortAndFilter(false, Orvo::NODE_VISIBILITY_BEGINNER);
}

FeatureView::~FeatureView()
{
    // The table and its viewport outlive this destructor: event filters must not reach a half-destroyed view.
    m_tableView.removeEventFilter(this);
    m_tableView.viewport()->removeEventFilter(this);
    dropModel();
    deleteItemsWithoutModel();
    m_toolBar->clear();
    m_items.clear();
}

void FeatureView::createTable()
{
    m_delegate.setParent(this);
    m_delegate.setView(this);
    m_tableView.setItemDelegate(&m_delegate);
    m_tableView.setWindowTitle(tr("FeatureView"));
    m_tableView.setEditTriggers(QAbstractItemView::CurrentChanged | QAbstractItemView::SelectedClicked);
    m_tableView.installEventFilter(this);
    m_tableView.viewport()->installEventFilter(this);

    QHeaderView* const rows = m_tableView.verticalHeader();
    rows->hide();
    // The default section size comes last: the limits clamp it, and a style's minimum may exceed it.
    rows->setMinimumSectionSize(kRowHeight);
    rows->setMaximumSectionSize(kRowHeight);
    rows->setDefaultSectionSize(kRowHeight);

    QHeaderView* const columns = m_tableView.horizontalHeader();
    columns->setStretchLastSection(true);
    columns->setSectionsClickable(false); // a click would select the column; double clicks are still signalled
    columns->setToolTip(tr("Double-clicking column header will shows / hides Node-Type colmn."));
    updateClmNodeTypeVisible();

    connect(&m_tableView, &QTableView::clicked, this, &FeatureView::tableRowClicked);
    connect(&m_tableView, &QTableView::doubleClicked, this, &FeatureView::tableRowDoubleClicked);
    connect(columns, &QHeaderView::sectionDoubleClicked, this, &FeatureView::columnHeaderDoubleClicked);
    m_scrollTimer.setSingleShot(true);
    connect(&m_scrollTimer, &QTimer::timeout, this, [this] { m_tableView.scrollTo(m_tableView.currentIndex()); });

    m_valuesWritten = false;
    showModel(emptyModel().release());
}

std::unique_ptr<QStandardItemModel> FeatureView::emptyModel()
{
    auto model = std::make_unique<QStandardItemModel>(0, ColumnCount);
    model->setHorizontalHeaderLabels({tr("Name"), tr("Type"), tr("Value")});
    return model;
}

void FeatureView::showModel(QStandardItemModel* model)
{
    if (model != m_sourceModel.get()) {
        dropModel();
        m_sourceModel.reset(model);
    }
    noteCategories();
    sortAndFilter(false, static_cast<Orvo::TC_NODE_VISIBILITY>(m_level));
}

void FeatureView::dropModel()
{
    if (m_descBox && m_descBox->getCurrentIndex() >= 0)
        m_descBox->clear();
    m_filterModel.setSourceModel(nullptr); // closes the editors while their items still exist
    if (!m_items.isEmpty() && m_items.first()->model() == m_sourceModel.get())
        m_items.clear();
    m_sourceModel.reset();
    m_categoryRows.clear();
}

QStandardItem* FeatureView::sourceItem(const QModelIndex& index, int column) const
{
    const QModelIndex source = index.model() == &m_filterModel ? m_filterModel.mapToSource(index) : index;
    if (!source.isValid() || source.model() != m_sourceModel.get())
        return nullptr;
    return m_sourceModel->item(source.row(), column);
}

GenAPINodeItem* FeatureView::itemAt(const QModelIndex& index) const
{
    const QStandardItem* const name = sourceItem(index, NameColumn);
    if (!name)
        return nullptr;
    const int row = name->data(ItemIndexRole).toInt();
    return dynamic_cast<GenAPINodeItem*>(m_sourceModel->item(row, ValueColumn));
}

void FeatureView::closeEditOperation()
{
    const QPersistentModelIndex current = m_tableView.currentIndex(); // closing an editor may write
    m_tableView.reset();
    m_tableView.setCurrentIndex(current);
}

bool FeatureView::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == &m_tableView && event->type() == QEvent::KeyPress)
        return foldByKey(*static_cast<QKeyEvent*>(event));
    if (watched == m_tableView.viewport() && event->type() == QEvent::Resize)
        keepCurrentRowInView(static_cast<QResizeEvent*>(event)->oldSize());
    if (watched != m_tableView.viewport() || event->type() != QEvent::ToolTip)
        return QWidget::eventFilter(watched, event);
    showToolTip(*static_cast<QHelpEvent*>(event));
    return true;
}

void FeatureView::showToolTip(const QHelpEvent& help)
{
    const QModelIndex index = m_tableView.indexAt(help.pos());
    showPlainToolTip(help, index.data(Qt::ToolTipRole).toString(), m_tableView.viewport(),
                     m_tableView.visualRect(index));
}

/// A long description makes the table smaller, so scrolls to the current row, which may have an open editor.
void FeatureView::keepCurrentRowInView(QSize before)
{
    // Deferred: the scroll range follows the new size only after the layout.
    if (m_tableView.visualRect(m_tableView.currentIndex()).intersects(QRect(QPoint(), before)))
        m_scrollTimer.start(0);
}

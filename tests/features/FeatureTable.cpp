#include "tests/features/FeatureTable.h"

#include "tests/support/Patience.h"

#include <QtTest>

#include <QCursor>
#include <QHeaderView>

using scripted::NodeSpec;

NodeSpec feature(std::string name, Orvo::TC_NODE_VISIBILITY visibility, Orvo::NodeAccessMode access)
{
    NodeSpec spec;
    spec.name = std::move(name);
    spec.visibility = visibility;
    spec.access = access;
    return spec;
}

std::vector<NodeSpec> manyNodes(int count)
{
    constexpr int kPerCategory = 12;
    NodeSpec root = scripted::category("Root", {});
    std::vector<NodeSpec> nodes;
    for (int i = 0; i < count; ++i) {
        if (i % kPerCategory == 0) {
            root.features.push_back("Category" + std::to_string(i / kPerCategory));
            nodes.push_back(scripted::category(root.features.back(), {}));
        }
        const auto category = nodes.end() - 1 - i % kPerCategory;
        category->features.push_back("Feature" + std::to_string(i));
        const std::string name = category->features.back(); // a copy: the next line moves the nodes
        nodes.push_back(feature(name, static_cast<Orvo::TC_NODE_VISIBILITY>(i % 3)));
    }
    nodes.insert(nodes.begin(), std::move(root));
    return nodes;
}

bool showsImage(const QIcon& icon, const QString& fileName)
{
    const QPixmap wanted(":/images/FeatureView/images/" + fileName);
    return !wanted.isNull() && icon.pixmap(wanted.size()).toImage() == wanted.toImage();
}

QStringList headerTexts(const QAbstractItemModel& model)
{
    QStringList texts;
    for (int column = 0; column < model.columnCount(); ++column)
        texts << model.headerData(column, Qt::Horizontal, Qt::EditRole).toString();
    return texts;
}

QStringList itemNames(const FeatureView& view)
{
    QStringList names;
    for (const GenAPINodeItem* const item : view.items())
        names << item->getNodeName();
    return names;
}

Orvo::CAM_HANDLE openScriptedCamera()
{
    std::uint32_t count = 0;
    Orvo::CAM_HANDLE camera = 0;
    Orvo::Sys_Initialize(65535);
    if (Orvo::Sys_GetNumOfCameras(&count) != 0 || Orvo::Cam_Open(0, &camera, 0, 1, nullptr, 1) != 0)
        qFatal("the scripted camera does not open");
    return camera;
}

FeatureTable::FeatureTable()
{
    open();
}

FeatureTable::FeatureTable(std::vector<NodeSpec> nodes)
{
    scripted::setNodes(std::move(nodes));
    open();
}

void FeatureTable::open()
{
    m_camera = openScriptedCamera();
    m_view = std::make_unique<FeatureView>();
    m_view->resize(500, 700);
    m_view->SetCam(m_camera);
}

FeatureTable::~FeatureTable()
{
    m_view.reset();
    Orvo::Cam_Close(m_camera);
}

void FeatureTable::show()
{
    m_view->show();
    m_view->activateWindow();
    if (!QTest::qWaitForWindowActive(m_view.get(), kPatienceMs))
        qFatal("the feature view does not become active");
}

QStringList FeatureTable::names(bool shownOnly)
{
    QStringList found;
    for (int row = 0; row < rowsModel().rowCount(); ++row) {
        if (!shownOnly || !table().isRowHidden(row))
            found << rowsModel().index(row, 0).data().toString().trimmed();
    }
    return found;
}

int FeatureTable::row(const QString& name)
{
    const int found = names().indexOf(name);
    if (found < 0)
        qFatal("no row %s", qPrintable(name));
    return found;
}

QModelIndex FeatureTable::cell(const QString& name, int column)
{
    return rowsModel().index(row(name), column);
}

GenAPINodeItem* FeatureTable::item(const QString& name)
{
    for (GenAPINodeItem* const item : m_view->items()) {
        if (item->getNodeName() == name)
            return item;
    }
    qFatal("no item %s", qPrintable(name));
    return nullptr;
}

void FeatureTable::clickRow(const QString& name, int x)
{
    const QPoint inTable(x, table().viewport()->y() + table().visualRect(cell(name)).center().y());
    QCursor::setPos(table().mapToGlobal(inTable));
    QTest::mouseClick(table().viewport(), Qt::LeftButton, {}, table().viewport()->mapFrom(&table(), inTable));
}

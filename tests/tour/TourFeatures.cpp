// The feature browser: levels, orders, folding, descriptions, and every editor.

#include "tests/tour/Tour.h"

#include "features/FeatureView.h"

#include <QApplication>
#include <QTableView>
#include <QTest>
#include <QToolBar>

namespace {

constexpr int kNameColumn = 0;
constexpr int kValueColumn = 2;

} // namespace

QTableView& Tour::table() const
{
    auto* const view = m_driver->window().findChild<FeatureView*>();
    if (!view)
        endTour("no feature browser");
    return *view->tableView();
}

void Tour::clickTool(const char* text)
{
    const auto* const bar = m_driver->window().findChild<FeatureView*>()->findChild<QToolBar*>();
    for (QAction* const action : bar->actions()) {
        if (action->text() == text) {
            QTest::mouseClick(bar->widgetForAction(action), Qt::LeftButton);
            return;
        }
    }
    endTour(QString("no tool %1").arg(text));
}

void Tour::click(const QModelIndex& index)
{
    QTest::mouseClick(table().viewport(), Qt::LeftButton, {}, table().visualRect(index).center());
}

QModelIndex Tour::feature(const QString& name, int column)
{
    const QAbstractItemModel* const model = table().model();
    int category = -1;
    for (int row = 0; row < model->rowCount(); ++row) {
        const QModelIndex nameIndex = model->index(row, kNameColumn);
        if (nameIndex.data(FeatureView::LevelRole).toString() == "C")
            category = row;
        if (nameIndex.data().toString().trimmed() != name)
            continue;
        if (table().isRowHidden(row) && category >= 0) {
            const QModelIndex header = model->index(category, kNameColumn);
            table().scrollTo(header);
            QTest::mouseDClick(table().viewport(), Qt::LeftButton, {}, table().visualRect(header).center());
            QTest::qWait(QApplication::doubleClickInterval()); // the next click is not to count as a third
        }
        const QModelIndex index = model->index(row, column);
        table().scrollTo(index, QAbstractItemView::PositionAtCenter);
        return index;
    }
    endTour("no feature " + name);
}

void Tour::featuresChapter()
{
    m_driver->stop();
    for (const char* level : {"&levelBeginner", "&levelExpert", "&levelGuru"}) {
        clickTool(level);
        picture(QString("features-%1").arg(level + 1));
    }
    click(feature("PixelFormat", kNameColumn));
    picture("features-unfolded");
    for (const char* name : {"ExposureTime", "AccessNotAvailable", "AccessReadOnly", "EnumerationChanging"}) {
        click(feature(name, kNameColumn));
        picture(QString("description-%1").arg(name));
    }
    clickTool("&sortAz");
    picture("features-by-name");
    clickTool("&sortCtg");
    picture("features-by-category");
}

void Tour::editorsChapter()
{
    struct Stop {
        const char* name;
        const char* feature;
    };
    constexpr Stop stops[] = {
        {"line-edit", "DeviceUserID"},
        {"slider", "Width"},
        {"slider-logarithmic", "ExposureTime"},
        {"combo-box", "PixelFormat"},
        {"button", "TriggerSoftware"},
        {"check", "ReverseX"},
        {"empty-enumeration", "EnumerationEmpty"},
        {"hexadecimal", "IntegerHexNumber"},
        {"mac-address", "IntegerMACAddress"},
        {"long-text", "StringLong"},
        {"markup", "StringMarkup"},
    };
    for (const Stop& stop : stops) {
        click(feature(stop.feature, kValueColumn));
        picture(QString("editor-%1").arg(stop.name));
    }
}

// Measures whether the feature table stays fast with thousands of rows.
//
// Compares each step of the feature view with the same step implemented with straightforward calls of the toolkit
// (PlainTable), alternately and at three sizes. Prints the times, their ratios, and the growth of the feature view's
// time: the exponent e of rows^e between two sizes. Excludes reading from the camera and painting. Exits with 1 if a
// goal is missed. Times vary with the machine and its load; the ratios are what matters.
//
//     QT_QPA_PLATFORM=offscreen build/release/bin/feature_table [rounds]

#include "benchmarks/Report.h"
#include "benchmarks/feature_table/InstantCamera.h"
#include "benchmarks/feature_table/PlainTable.h"
#include "features/item/GenAPINodeItem.h"
#include "features/view/FeatureView.h"

#include <QApplication>
#include <QSignalBlocker>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr std::array<int, 3> kSizes = {200, 2000, 20000};
constexpr double kNoLimit = 1e9;

// The steps, with the largest ratio to the plain table's time at each size and the largest exponents between sizes.
enum Step {
    Open,
    ReadUnchanged,
    ReadChanged,
    Toggle,
    UnfoldAll,
    FoldAll,
    LevelDown,
    LevelUp,
    ToAtoZ,
    ToCategories,
    StepCount,
};
struct StepLimits {
    const char* name;
    std::array<double, 3> ratio;
    std::array<double, 2> exponent;
};
constexpr StepLimits kLimits[] = {
    {"open", {kNoLimit, 0.6, 0.3}, {1.1, 1.6}},
    {"read, nothing changed", {kNoLimit, 0.4, 0.4}, {1.1, 1.4}},
    {"read, all changed", {kNoLimit, 0.5, 0.5}, {1.1, 1.4}},
    {"toggle a category", {kNoLimit, 0.25, 0.25}, {1.1, 1.2}},
    {"unfold all", {kNoLimit, 0.2, 0.03}, {1.1, 1.2}},
    {"fold all", {kNoLimit, kNoLimit, kNoLimit}, {1.1, 1.3}}, // the toolkit keeps hidden rows in a growing hash table
    {"Guru to Beginner", {kNoLimit, kNoLimit, 0.15}, {1.1, 1.6}},
    {"Beginner to Guru", {kNoLimit, kNoLimit, 0.15}, {1.1, 1.6}},
    {"to A-Z", {kNoLimit, kNoLimit, kNoLimit}, {1.1, 1.6}},
    {"to categories", {kNoLimit, kNoLimit, kNoLimit}, {1.1, 1.6}},
};
static_assert(std::size(kLimits) == StepCount);

/// Suppresses painting, because a screenful of rows costs the same whatever the number of rows.
class PaintEater : public QObject {
protected:
    bool eventFilter(QObject*, QEvent* event) override { return event->type() == QEvent::Paint; }
};

/// Processor time, so that other programs do not count. Excludes the event loop afterwards, which paints.
double milliseconds(const std::function<void()>& step)
{
    const std::clock_t start = std::clock();
    step();
    const std::clock_t end = std::clock();
    QCoreApplication::processEvents();
    return 1000.0 * static_cast<double>(end - start) / CLOCKS_PER_SEC;
}

/// The times of each step for a table of one size that is opened repeatedly.
struct Times {
    std::array<std::vector<double>, StepCount> steps;
    std::vector<double> makingItems; // the time of opening and reading without a table
    std::vector<double> readingItems;

    /// Without the camera's part of each round.
    [[nodiscard]] std::vector<double> of(std::size_t step) const
    {
        std::vector<double> result = steps[step];
        const auto withoutCamera = [&](const std::vector<double>& camera) {
            std::transform(result.begin(), result.end(), camera.begin(), result.begin(), std::minus<>());
        };
        if (step == Open) {
            withoutCamera(makingItems);
        } else if (step == ReadUnchanged || step == ReadChanged) {
            withoutCamera(readingItems);
        }
        return result;
    }
};

QList<GenAPINodeItem*> makeItems(int rows)
{
    QList<GenAPINodeItem*> items;
    for (int row = 0; row < rows; ++row)
        items.append(new GenAPINodeItem(1, static_cast<unsigned long>(row) + 2, row, nullptr, nullptr));
    return items;
}

void measureCamera(int rows, Times& times)
{
    QList<GenAPINodeItem*> items;
    times.makingItems.push_back(milliseconds([&] { items = makeItems(rows); }));
    const auto read = [&] {
        for (GenAPINodeItem* const item : items)
            item->updateVals(false);
    };
    read();
    times.readingItems.push_back(milliseconds(read));
    qDeleteAll(items);
}

void show(QWidget& window)
{
    window.resize(420, 800);
    window.show();
    QCoreApplication::processEvents();
}

void setAllExpanded(QStandardItemModel& model, bool expanded)
{
    const QSignalBlocker quiet(&model);
    for (int row = 0; row < model.rowCount(); row += instant::kRowsPerCategory)
        model.item(row, 0)->setData(expanded, FeatureView::ExpandedRole);
}

void measureFeatureView(int rows, Times& times)
{
    const auto measure = [&](Step step, const std::function<void()>& work) {
        times.steps[step].push_back(milliseconds(work));
    };
    instant::setRows(rows);
    measureCamera(rows, times);
    FeatureView view;
    show(view);
    view.selectGuru();
    measure(Open, [&] { view.SetCam(1); });

    view.updateAllFeatures();
    measure(ReadUnchanged, [&] { view.updateAllFeatures(); });
    instant::changeEverything();
    measure(ReadChanged, [&] { view.updateAllFeatures(); });

    const QModelIndex category = view.tableView()->model()->index(0, 0);
    measure(Toggle, [&] { view.changeCollapsedState(category); });
    measure(Toggle, [&] { view.changeCollapsedState(category); });
    setAllExpanded(*view.sourceModel(), true);
    measure(UnfoldAll, [&] { view.SetRowCollapsedState(); });
    setAllExpanded(*view.sourceModel(), false);
    measure(FoldAll, [&] { view.SetRowCollapsedState(); });

    measure(LevelDown, [&] { view.selectBeginner(); });
    measure(LevelUp, [&] { view.selectGuru(); });
    measure(ToAtoZ, [&] { view.selectSortAtoZ(); });
    measure(ToCategories, [&] { view.selectSortCategory(); });
}

void measurePlainTable(int rows, Times& times)
{
    constexpr char kBeginner[] = "[BC]";
    constexpr char kGuru[] = "[BEGC]";
    constexpr char kGuruAtoZ[] = "[BEG]";
    const auto measure = [&](Step step, const std::function<void()>& work) {
        times.steps[step].push_back(milliseconds(work));
    };
    instant::setRows(rows);
    measureCamera(rows, times);
    PlainTable table;
    show(table.view());
    measure(Open, [&] { table.open(makeItems(rows), kGuru); });

    table.updateAll();
    measure(ReadUnchanged, [&] { table.updateAll(); });
    instant::changeEverything();
    measure(ReadChanged, [&] { table.updateAll(); });

    const QModelIndex category = table.view().model()->index(0, 0);
    measure(Toggle, [&] { table.changeCollapsedState(category); });
    measure(Toggle, [&] { table.changeCollapsedState(category); });
    setAllExpanded(table.model(), true);
    measure(UnfoldAll, [&] { table.setRowCollapsedState(); });
    setAllExpanded(table.model(), false);
    measure(FoldAll, [&] { table.setRowCollapsedState(); });

    measure(LevelDown, [&] { table.sortAndFilter(false, kBeginner); });
    measure(LevelUp, [&] { table.sortAndFilter(false, kGuru); });
    measure(ToAtoZ, [&] { table.sortAndFilter(true, kGuruAtoZ); });
    measure(ToCategories, [&] { table.sortAndFilter(false, kGuru); });
}

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    PaintEater eater;
    qApp->installEventFilter(&eater);
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 9;
    if (rounds < 1) {
        std::fprintf(stderr, "usage: feature_table [rounds]\n");
        return 2;
    }

    std::array<Times, kSizes.size()> ours;
    std::array<Times, kSizes.size()> plain;
    for (std::size_t size = 0; size < kSizes.size(); ++size) {
        Times warmUp;
        measureFeatureView(kSizes[0], warmUp);
        measurePlainTable(kSizes[0], warmUp);
        // At the largest size a step of the plain table takes seconds.
        const int plainRounds = size + 1 == kSizes.size() ? std::min(rounds, 3) : rounds;
        for (int round = 0; round < rounds; ++round) {
            measureFeatureView(kSizes[size], ours[size]);
            if (round < plainRounds)
                measurePlainTable(kSizes[size], plain[size]);
        }
    }

    for (std::size_t step = 0; step < StepCount; ++step) {
        const StepLimits& limits = kLimits[step];
        const auto goal = [](double limit) { return limit < kNoLimit ? report::atMost(limit) : report::Goal(); };
        for (std::size_t size = 0; size < kSizes.size(); ++size) {
            const std::string name = std::string(limits.name) + ", " + std::to_string(kSizes[size]) + " rows: ";
            const std::vector<double> mine = ours[size].of(step);
            std::vector<double> ratios = plain[size].of(step); // the first rounds only, if there were fewer
            std::transform(ratios.begin(), ratios.end(), mine.begin(), ratios.begin(),
                           [](double theirs, double our) { return our / theirs; });
            report::print(name + "time", report::figureOf(mine), "ms");
            report::print(name + "of the plain table's time", report::figureOf(ratios), "", goal(limits.ratio[size]));
            if (size > 0) {
                const double exponent =
                    std::log10(report::figureOf(mine).median / report::figureOf(ours[size - 1].of(step)).median);
                report::print(name + "exponent of growth", report::single(exponent), "",
                              report::atMost(limits.exponent[size - 1]));
            }
        }
    }
    return report::exitStatus();
}

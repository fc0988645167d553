#pragma once

#include <QPointer>
#include <QStandardItemModel>

#include <vector>

/// Keeps a model quiet while many of its cells change. At the end the model tells of the rows that were noted, run by
/// run instead of cell by cell.
class HeldChanges {
public:
    /// A run takes less time to tell of. In a table that sorts the rows it spans others, too.
    enum class Telling { OfRuns, OfEachRow };

    explicit HeldChanges(QStandardItemModel* model, Telling telling = Telling::OfRuns);
    ~HeldChanges();
    Q_DISABLE_COPY_MOVE(HeldChanges)

    /// The cells of the row from `firstColumn` to its end have changed.
    void note(int row, int firstColumn);

private:
    struct Run {
        int firstRow;
        int lastRow;
        int firstColumn;
    };

    QPointer<QStandardItemModel> m_model;
    const Telling m_telling;
    bool m_wasQuiet;
    std::vector<Run> m_runs;
};

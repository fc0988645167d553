#pragma once

#include <QPointer>
#include <QStandardItemModel>

#include <vector>

/// Suppresses a model's change notifications while many of its cells change, and sends them together when it is
/// destroyed: for ranges of rows instead of single cells.
class HeldChanges {
public:
    /// Ranges are cheaper, but in a sorted view they span unrelated rows.
    enum class Telling { OfRuns, OfEachRow };

    explicit HeldChanges(QStandardItemModel* model, Telling telling = Telling::OfRuns);
    ~HeldChanges();
    Q_DISABLE_COPY_MOVE(HeldChanges)

    /// The cells of the row from `firstColumn` on have changed.
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

#include "features/view/HeldChanges.h"

#include <algorithm>

HeldChanges::HeldChanges(QStandardItemModel* model, Telling telling)
    : m_model(model)
    , m_telling(telling)
    , m_wasQuiet(model && model->blockSignals(true))
{
}

HeldChanges::~HeldChanges()
{
    if (!m_model)
        return;
    m_model->blockSignals(m_wasQuiet);
    for (const Run& run : m_runs) {
        if (!m_model) // a receiver may have deleted it
            return;
        emit m_model->dataChanged(m_model->index(run.firstRow, run.firstColumn),
                                  m_model->index(run.lastRow, m_model->columnCount() - 1));
    }
}

void HeldChanges::note(int row, int firstColumn)
{
    if (!m_runs.empty()) {
        Run& last = m_runs.back();
        const int next = m_telling == Telling::OfRuns ? last.lastRow + 1 : last.lastRow;
        if (row == last.lastRow || row == next) {
            last.lastRow = row;
            last.firstColumn = std::min(last.firstColumn, firstColumn);
            return;
        }
    }
    m_runs.push_back({row, row, firstColumn});
}

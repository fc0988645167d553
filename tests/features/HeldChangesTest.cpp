// The dataChanged signals that a model emits for changes made while its signals were blocked.

#include "features/view/HeldChanges.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <memory>

namespace {

class HeldChangesTest : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        model = std::make_unique<QStandardItemModel>(10, 3);
        emitted.clear();
        connect(model.get(), &QStandardItemModel::dataChanged, this,
                [this](const QModelIndex& a, const QModelIndex& b) {
                    emitted << QString("%1,%2-%3,%4").arg(a.row()).arg(a.column()).arg(b.row()).arg(b.column());
                });
    }

    void emitsNothingWithoutNotedRows();
    void emitsOnDestruction();
    void joinsConsecutiveRows();
    void emitsEachRowSeparately();
    void aRangeCoversItsWidestRow();
    void blockedSignalsStayBlocked();

private:
    std::unique_ptr<QStandardItemModel> model;
    QStringList emitted;
};

void HeldChangesTest::emitsNothingWithoutNotedRows()
{
    {
        const HeldChanges held(model.get());
        model->setData(model->index(0, 0), "text");
    }
    QVERIFY(emitted.isEmpty());
    model->setData(model->index(0, 0), "other");
    QCOMPARE(emitted.size(), 1);
}

void HeldChangesTest::emitsOnDestruction()
{
    {
        HeldChanges held(model.get());
        model->setData(model->index(4, 2), "text");
        held.note(4, 2);
        QVERIFY(emitted.isEmpty());
    }
    QCOMPARE(emitted, QStringList({"4,2-4,2"}));
}

void HeldChangesTest::joinsConsecutiveRows()
{
    {
        HeldChanges held(model.get());
        for (const int row : {1, 2, 2, 3, 5, 6, 9, 8})
            held.note(row, 2);
    }
    QCOMPARE(emitted, QStringList({"1,2-3,2", "5,2-6,2", "9,2-9,2", "8,2-8,2"}));
}

void HeldChangesTest::emitsEachRowSeparately()
{
    {
        HeldChanges held(model.get(), HeldChanges::Telling::OfEachRow);
        for (const int row : {1, 2, 2, 3, 6})
            held.note(row, 2);
    }
    QCOMPARE(emitted, QStringList({"1,2-1,2", "2,2-2,2", "3,2-3,2", "6,2-6,2"}));
}

void HeldChangesTest::aRangeCoversItsWidestRow()
{
    {
        HeldChanges held(model.get());
        held.note(0, 2);
        held.note(1, 0);
        held.note(1, 2);
        held.note(2, 2);
    }
    QCOMPARE(emitted, QStringList({"0,0-2,2"}));
}

void HeldChangesTest::blockedSignalsStayBlocked()
{
    model->blockSignals(true);
    {
        HeldChanges held(model.get());
        held.note(0, 0);
    }
    QVERIFY(emitted.isEmpty());
    QVERIFY(model->signalsBlocked());
}

} // namespace

ORVO_TEST_CLASS(HeldChangesTest)
#include "HeldChangesTest.moc"

// The tool tips of the feature view's rows.

#include "tests/features/FeatureTable.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <QHelpEvent>
#include <QTextDocument>
#include <QToolTip>

using scripted::category;
using scripted::NodeSpec;

namespace {

/// The plain text of the tool tip shown at a point of the table.
QString toolTipAt(const QTableView& table, const QPoint& at)
{
    QHelpEvent event(QEvent::ToolTip, at, table.viewport()->mapToGlobal(at));
    QCoreApplication::sendEvent(table.viewport(), &event);
    QTextDocument document;
    document.setHtml(QToolTip::text());
    return document.toPlainText();
}

class FeatureViewToolTipTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void toolTipsAreShownVerbatim();
    void aVeryLongToolTipIsTruncated_data();
    void aVeryLongToolTipIsTruncated();
    void toolTipsWithLongLinesAreWrapped_data();
    void toolTipsWithLongLinesAreWrapped();
};

void FeatureViewToolTipTest::toolTipsAreShownVerbatim()
{
    NodeSpec node = feature("A");
    node.toolTip = "<b>bold</b> & <img src='x'>\nsecond line";
    FeatureTable features({category("Root", {"C"}), category("C", {"A"}), node});
    features.show();
    features.view().selectSortAtoZ();
    const QTableView& table = features.table();
    QCOMPARE(toolTipAt(table, table.visualRect(features.cell("A")).center()), QString::fromStdString(node.toolTip));
    QCOMPARE(features.cell("A").data(Qt::ToolTipRole).toString(), QString::fromStdString(node.toolTip));
    toolTipAt(table, table.viewport()->rect().bottomRight()); // below the last row
    QTRY_VERIFY(QToolTip::text().isEmpty());
}

void FeatureViewToolTipTest::aVeryLongToolTipIsTruncated_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    const QString ellipsis(QChar(0x2026));
    const QString lines = QString("line\n").repeated(39);
    QTest::newRow("words") << QString("words on ").repeated(8000)
                           << QString("words on ").repeated(300).left(2000) + ellipsis;
    QTest::newRow("2,000 characters") << QString(2000, 'a') << QString(2000, 'a');
    QTest::newRow("2,001") << QString(2001, 'a') << QString(2000, 'a') + ellipsis;
    QTest::newRow("40 lines") << lines + "end" << lines + "end";
    QTest::newRow("41") << lines + "end\n" << lines + "end" + ellipsis;
    QTest::newRow("1,000") << QString("line\n").repeated(1000) << lines + "line" + ellipsis;
    const QString separated = QString("a").append(QChar::LineSeparator).append("b").append(QChar::ParagraphSeparator);
    QTest::newRow("separators") << separated.repeated(40) << QString("a\nb\n").repeated(20).chopped(1) + ellipsis;
}

void FeatureViewToolTipTest::aVeryLongToolTipIsTruncated()
{
    QFETCH(QString, text);
    NodeSpec node = feature("A");
    node.toolTip = text.toStdString();
    FeatureTable features({category("Root", {"A"}), node});
    features.show();
    features.view().selectSortAtoZ();
    const QModelIndex cell = features.cell("A");
    QTEST(toolTipAt(features.table(), features.table().visualRect(cell).center()), "expected");
    QCOMPARE(cell.data(Qt::ToolTipRole).toString(), text); // untruncated
}

void FeatureViewToolTipTest::toolTipsWithLongLinesAreWrapped_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("wrapped");
    const QString words80 = QString("nine and ").repeated(8) + "the last";
    QTest::newRow("a short line") << "three short words" << false;
    QTest::newRow("80 characters") << words80 << false;
    QTest::newRow("81") << words80 + "." << true;
    QTest::newRow("80 in each line") << words80 + "\n" + words80 + QChar(QChar::LineSeparator) + words80 << false;
    QTest::newRow("81 in the second line") << "short\n" + words80 + "." << true;
}

void FeatureViewToolTipTest::toolTipsWithLongLinesAreWrapped()
{
    QFETCH(QString, text);
    NodeSpec node = feature("A");
    node.toolTip = text.toStdString();
    FeatureTable features({category("Root", {"A"}), node});
    features.show();
    features.view().selectSortAtoZ();
    toolTipAt(features.table(), features.table().visualRect(features.cell("A")).center());
    QTextDocument document;
    document.setHtml(QToolTip::text());
    const qreal before = document.idealWidth();
    document.setTextWidth(1);
    QTEST(document.idealWidth() < before, "wrapped");
}

} // namespace

ORVO_TEST_CLASS(FeatureViewToolTipTest)
#include "FeatureViewToolTipTest.moc"

// The description of the current node.

#include "features/description/DescBox.h"
#include "tests/features/FeatureTable.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <QHelpEvent>
#include <QTextDocument>
#include <QToolTip>
#include <QVBoxLayout>

#include <algorithm>

using scripted::category;
using scripted::NodeSpec;

namespace {

QLabel& label(const DescBox& box, int index)
{
    return *qobject_cast<QLabel*>(box.layout()->itemAt(index)->widget());
}
QString heading(const DescBox& box)
{
    return label(box, 0).text();
}
QString text(const DescBox& box)
{
    return label(box, 1).text();
}

void askForToolTip(DescBox& box)
{
    box.show();
    QHelpEvent event(QEvent::ToolTip, QPoint(5, 5), box.mapToGlobal(QPoint(5, 5)));
    QCoreApplication::sendEvent(&label(box, 0), &event); // for the panel, independent of the pointer
}

class DescBoxTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void aFreshPanel();
    void layout();
    void headingByAccessMode_data();
    void headingByAccessMode();
    void headingNamesTheType();
    void aWriteOnlyCommand();
    void showsDescriptionAndAdditionalInformation();
    void readsTheWholeRangeBeforeShowingIt();
    void theAccessModeIsReadAgain();
    void clearEmptiesThePanel();
    void nullIsTheSameAsClear();
    void currentIndex();
    void threeTexts();
    void aDestroyedItemIsForgotten();
    void textsAreNeverParsedAsMarkup();
    void onlyLongLinesOfAToolTipAreWrapped();
    void aLongDescriptionIsWrapped();
    void noDescriptionShrinksTheTable_data();
    void noDescriptionShrinksTheTable();
    void aLongNameIsWrapped();
};

void DescBoxTest::aFreshPanel()
{
    const DescBox box(nullptr);
    QCOMPARE(heading(box), QString("Description:"));
    QVERIFY(text(box).isEmpty());
    QVERIFY(box.toolTip().isEmpty());
    QCOMPARE(box.getCurrentIndex(), -1);
}

void DescBoxTest::layout()
{
    const DescBox box(nullptr);
    const auto* const layout = qobject_cast<QVBoxLayout*>(box.layout());
    QVERIFY(layout);
    QCOMPARE(layout->count(), 2);
    QCOMPARE(layout->contentsMargins(), QMargins(2, 3, 2, 1));
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(layout->stretch(i), 0);
        QVERIFY(label(box, i).wordWrap());
        QVERIFY(label(box, i).alignment() == (Qt::AlignLeft | Qt::AlignTop));
        QVERIFY(label(box, i).textFormat() == Qt::PlainText);
    }
    QCOMPARE(label(box, 0).font().weight(), 75);
    QCOMPARE(label(box, 0).font().family(), QApplication::font().family());
    QCOMPARE(label(box, 0).font().pointSizeF(), QApplication::font().pointSizeF());
    QVERIFY(label(box, 1).font().weight() < 75);
}

void DescBoxTest::headingByAccessMode_data()
{
    QTest::addColumn<int>("access");
    QTest::addColumn<QString>("expected");
    QTest::newRow("not implemented") << 0 << "Description: Width (Integer node, not implemented)";
    QTest::newRow("not available") << 1 << "Description: Width (Integer node, not available)";
    QTest::newRow("write-only") << 2 << "Description: Width (Integer node, write-only)";
    QTest::newRow("read-only") << 3 << "Description: Width (Integer node, read-only)";
    QTest::newRow("read-write") << 4 << "Description: Width (Integer node)";
    QTest::newRow("unknown") << 5 << "Description: Width (Integer node)";
    QTest::newRow("not read yet") << 6 << "Description: Width (Integer node)";
    QTest::newRow("negative") << -1 << "Description: Width (Integer node)";
}

void DescBoxTest::headingByAccessMode()
{
    QFETCH(int, access);
    NodeSpec node = feature("Width");
    node.access = static_cast<Orvo::NodeAccessMode>(access);
    FeatureTable features({category("Root", {"Width"}), node});
    DescBox box(nullptr);
    box.setText(features.item("Width"));
    QTEST(heading(box), "expected");
}

void DescBoxTest::headingNamesTheType()
{
    FeatureTable features;
    DescBox box(nullptr);
    box.setText(features.item("DeviceControl"));
    QCOMPARE(heading(box), QString("Description: DeviceControl (Category node, read-only)"));
    box.setText(features.item("PixelFormat"));
    QCOMPARE(heading(box), QString("Description: PixelFormat (Enumeration node)"));
}

void DescBoxTest::aWriteOnlyCommand()
{
    NodeSpec command = feature("Do", {}, Orvo::NODE_ACCESS_MODE_WO);
    command.type = Orvo::NODE_TYPE_COMMAND;
    FeatureTable features({category("Root", {"Do"}), command});
    DescBox box(nullptr);
    box.setText(features.item("Do"));
    QCOMPARE(heading(box), QString("Description: Do (Command node, write-only)"));
}

void DescBoxTest::showsDescriptionAndAdditionalInformation()
{
    FeatureTable features;
    DescBox box(nullptr);
    box.setText(features.item("Width"));
    QCOMPARE(text(box), QString("Width of the image in pixels."));
    QCOMPARE(box.toolTip(), QString("Max = 4096, Min = 16, Inc = 16"));
    box.setText(features.item("TriggerMode"));
    QCOMPARE(box.toolTip(), QString("Current value is Off (0)"));
    box.setText(features.item("DeviceUserID"));
    QVERIFY(box.toolTip().isEmpty());
}

void DescBoxTest::readsTheWholeRangeBeforeShowingIt()
{
    FeatureTable features;
    DescBox box(nullptr);
    scripted::clearCalls();
    box.setText(features.item("Width"));
    const QStringList expected = {"Nd_GetAccessMode", "Nd_GetIntValue", "Nd_GetIntMax", "Nd_GetIntMin", "Nd_GetIntInc"};
    QStringList names;
    for (const scripted::Call& call : scripted::calls())
        names << QString::fromStdString(call.operation);
    QCOMPARE(names, expected);
}

void DescBoxTest::theAccessModeIsReadAgain()
{
    FeatureTable features;
    DescBox box(nullptr);
    scripted::changeNode("Width", [](NodeSpec& node) { node.access = Orvo::NODE_ACCESS_MODE_NA; });
    box.setText(features.item("Width"));
    QCOMPARE(heading(box), QString("Description: Width (Integer node, not available)"));
    QCOMPARE(features.cell("Width", 2).data().toString(), QString("== Not Available =="));
}

void DescBoxTest::clearEmptiesThePanel()
{
    FeatureTable features;
    DescBox box(nullptr);
    box.setText(features.item("Width"));
    box.clear();
    QCOMPARE(heading(box), QString("Description: "));
    QVERIFY(text(box).isEmpty());
    QVERIFY(box.toolTip().isEmpty());
    QCOMPARE(box.getCurrentIndex(), -1);
}

void DescBoxTest::nullIsTheSameAsClear()
{
    FeatureTable features;
    DescBox box(nullptr);
    box.setText(features.item("Width"));
    box.setText(nullptr);
    QCOMPARE(heading(box), QString("Description: "));
    QVERIFY(text(box).isEmpty());
    QVERIFY(box.toolTip().isEmpty());
    QCOMPARE(box.getCurrentIndex(), -1);
}

void DescBoxTest::currentIndex()
{
    FeatureTable features;
    DescBox box(nullptr);
    box.setText(features.item("DeviceControl"));
    QCOMPARE(box.getCurrentIndex(), 0);
    box.setText(features.item("Width"));
    QCOMPARE(box.getCurrentIndex(), features.item("Width")->row());
}

void DescBoxTest::threeTexts()
{
    FeatureTable features;
    DescBox box(nullptr);
    box.setText(features.item("Width"));
    QString headingText = "A heading";
    QString description = "A text";
    QString toolTip = "A tool tip";
    box.setText(headingText, description, toolTip);
    QCOMPARE(headingText, QString("Description: A heading"));
    QCOMPARE(heading(box), QString("Description: A heading"));
    QCOMPARE(text(box), QString("A text"));
    QCOMPARE(description, QString("A text"));
    QCOMPARE(box.toolTip(), QString("A tool tip"));
    QCOMPARE(box.getCurrentIndex(), -1);
}

void DescBoxTest::aDestroyedItemIsForgotten()
{
    FeatureTable features;
    DescBox box(nullptr);
    box.setText(features.item("Width"));
    features.destroyView();
    QCOMPARE(box.getCurrentIndex(), -1);
}

void DescBoxTest::textsAreNeverParsedAsMarkup()
{
    NodeSpec node = feature("%1<i>A</i>");
    node.type = Orvo::NODE_TYPE_ENUMERATION;
    node.description = "<b>%1</b> &amp; \"%2\"";
    node.entries = {scripted::enumEntry("<u>0</u>", 0)};
    FeatureTable features({category("Root", {node.name}), node});
    DescBox box(nullptr);
    box.setText(features.view().items().first());
    QCOMPARE(heading(box), QString("Description: %1<i>A</i> (Enumeration node)"));
    QCOMPARE(text(box), QString("<b>%1</b> &amp; \"%2\""));
    QCOMPARE(box.toolTip(), QString("Current value is <u>0</u> (0)"));

    askForToolTip(box);
    QTextDocument document;
    document.setHtml(QToolTip::text());
    QCOMPARE(document.toPlainText(), QString("Current value is <u>0</u> (0)"));
}

void DescBoxTest::onlyLongLinesOfAToolTipAreWrapped()
{
    DescBox box(nullptr);
    const auto shownHeight = [&box](QString toolTip) {
        QString heading;
        QString text;
        box.setText(heading, text, toolTip);
        askForToolTip(box);
        const QWidgetList windows = QApplication::topLevelWidgets();
        const auto shown = std::find_if(windows.begin(), windows.end(), [](const QWidget* window) {
            return window->inherits("QTipLabel") && window->isVisible();
        });
        return shown == windows.end() ? 0 : (*shown)->height();
    };
    const int oneLine = shownHeight("x");
    const int twoLines = shownHeight("x\nx");
    QVERIFY(oneLine > 0);
    QVERIFY(twoLines > oneLine);
    QCOMPARE(shownHeight("Max = 1200, Min = 16, Inc = 2"), oneLine);
    QCOMPARE(shownHeight(QString("words on ").repeated(8) + "79 to 80"), oneLine);
    QVERIFY(shownHeight(QString("words on ").repeated(40)) > twoLines);
}

void DescBoxTest::aLongDescriptionIsWrapped()
{
    NodeSpec node = feature("A");
    for (int i = 0; i < 40; ++i)
        node.description += "words that go on ";
    FeatureTable features({category("Root", {"A"}), node});
    features.show();
    features.view().descBox()->setText(features.item("A"));
    const QLabel& shown = label(*features.view().descBox(), 1);
    QTRY_VERIFY(shown.height() >= shown.heightForWidth(shown.width()));
    QVERIFY(shown.height() > 2 * shown.fontMetrics().height());
    QCOMPARE(features.view().width(), 500);
}

void DescBoxTest::noDescriptionShrinksTheTable_data()
{
    QTest::addColumn<QString>("description");
    QTest::newRow("120 lines") << QString("a line\n").repeated(120);
    QTest::newRow("1,000 lines") << QString("a line\n").repeated(1000);
    QTest::newRow("32,000 line breaks") << QString(32000, '\n');
    QTest::newRow("64 KiB of words") << QString("words ").repeated(65536 / 6);
    QTest::newRow("one word of 64 KiB") << QString(65535, 'w');
}

void DescBoxTest::noDescriptionShrinksTheTable()
{
    QFETCH(QString, description);
    NodeSpec twelveLines = feature("A");
    twelveLines.description = QString("line\n").repeated(11).toStdString() + "line";
    NodeSpec many = feature("B");
    many.description = description.toStdString();
    FeatureTable features({category("Root", {"A", "B"}), twelveLines, many});
    features.show();
    const QSize least = features.view().minimumSizeHint();
    const QSize wished = features.view().sizeHint();

    const QLabel& shown = label(*features.view().descBox(), 1);
    features.view().descBox()->setText(features.item("A"));
    QTRY_VERIFY(shown.height() >= 12 * shown.fontMetrics().lineSpacing());
    const int tableHeight = features.table().height();
    QVERIFY2(tableHeight > 700 / 2, qPrintable(QString::number(tableHeight)));

    features.view().descBox()->setText(features.item("B"));
    features.view().descBox()->layout()->activate();
    features.view().layout()->activate();
    QCOMPARE(shown.text(), description);
    QCOMPARE(features.table().height(), tableHeight);
    QCOMPARE(features.view().size(), QSize(500, 700));
    QCOMPARE(features.view().minimumSizeHint(), least);
    QCOMPARE(features.view().sizeHint().width(), wished.width());
}

void DescBoxTest::aLongNameIsWrapped()
{
    const NodeSpec node = feature(std::string(255, 'W'));
    FeatureTable features({category("Root", {node.name}), node});
    features.show();
    const QSize least = features.view().minimumSizeHint();
    features.view().descBox()->setText(features.view().items().first());
    const QLabel& shown = label(*features.view().descBox(), 0);
    QTRY_VERIFY(shown.height() > 3 * shown.fontMetrics().height());
    QVERIFY(shown.heightForWidth(100) < 5 * shown.fontMetrics().height());
    QCOMPARE(features.view().minimumSizeHint(), least);
    QCOMPARE(features.view().size(), QSize(500, 700));
}

} // namespace

ORVO_TEST_CLASS(DescBoxTest)
#include "DescBoxTest.moc"

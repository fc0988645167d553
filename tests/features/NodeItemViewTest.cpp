// An item and its view: the flags that a write sets, the update that follows it, the colours of the row.

#include "features/editors/TableViewItemDelegate.h"
#include "tests/features/FeatureTable.h"
#include "tests/features/NodeBench.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <QColor>
#include <QComboBox>
#include <QStandardItemModel>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

using Write = std::function<int(GenAPINodeItem&)>;
Q_DECLARE_METATYPE(Write)

namespace {

using namespace Orvo;

/// A view of the node under test and a second one that is read only when all features are updated.
class Rows {
public:
    explicit Rows(const scripted::NodeSpec& node)
        : name(QString::fromStdString(node.name))
        , table({scripted::category("Root", {"Category"}), scripted::category("Category", {node.name, "Other"}), node,
                 integerNode(5, "Other")})
        , item(table.item(name))
    {
        table.view().setOpeLogLevel(OpeLogOff);
        scripted::clearCalls();
    }

    [[nodiscard]] bool writeInProgress()
    {
        return dynamic_cast<TableViewItemDelegate&>(*table.table().itemDelegate()).writeInProgress();
    }

    /// Whether updateAllFeatures(false) reads; the call resets this.
    [[nodiscard]] bool valuesWritten()
    {
        const int before = readings();
        table.view().updateAllFeatures(false);
        return readings() > before;
    }

    /// How often all features were updated.
    [[nodiscard]] int readings()
    {
        const std::string other = std::to_string(table.item("Other")->getNodeHandle());
        const auto calls = scripted::calls({"Nd_GetIntMax"});
        return static_cast<int>(std::count_if(calls.begin(), calls.end(),
                                              [&](const scripted::Call& call) { return call.arguments[1] == other; }));
    }

    QString name;
    FeatureTable table;
    GenAPINodeItem* item;
};

class NodeItemViewTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void textWritesAreInProgress_data();
    void textWritesAreInProgress();
    void refusedWritesEndTheProgress_data();
    void refusedWritesEndTheProgress();
    void spinBoxIsNotInProgress();
    void buttonIsNotInProgress();
    void successfulWritesRequestAnUpdate_data();
    void successfulWritesRequestAnUpdate();
    void failedWritesRequestNoUpdate_data();
    void failedWritesRequestNoUpdate();
    void failedCommandFromTextRequestsAnUpdate();
    void spinBoxRequestsNoUpdate();
    void triggerCheckHappensDuringTheWrite();
    void readingBackHappensDuringTheWrite();
    void storingTheTextHappensDuringTheWrite();
    void comboUpdatesAllFeatures();
    void comboSkipsAnUpdateThatAlreadyHappened();
    void failedComboUpdatesNothing();
    void buttonUpdatesAllFeatures();
    void failedButtonUpdatesNothing();
    void buttonLogsLast();
    void accessModeColoursTheRow();
    void failedAccessModeColoursNothing();
};

void addWrites()
{
    QTest::addColumn<scripted::NodeSpec>("node");
    QTest::addColumn<Write>("write");
    QTest::addColumn<QString>("call");
    const auto row = [](const char* name, const scripted::NodeSpec& node, const char* call, const Write& write) {
        QTest::newRow(name) << node << write << QString(call);
    };
    const auto type = [](const char* text) {
        return [text](GenAPINodeItem& item) { return item.setNodeValue(QString(text)); };
    };
    const scripted::NodeSpec enumeration = enumNode({NODE_ACCESS_MODE_RO, NODE_ACCESS_MODE_RO});
    row("boolean from text", nodeOf(NODE_TYPE_BOOLEAN), "Nd_SetBoolValue", type("true"));
    row("float from text", floatNode(5), "Nd_SetFloatValue", type("1.5"));
    row("string from text", stringNode("old"), "Nd_SetStrValue", type("new"));
    row("enumeration from text", enumeration, "Nd_SetEnumStrValue", type("Second"));
    row("enumeration from a number", enumeration, "Nd_SetEnumIntValue",
        [](GenAPINodeItem& item) { return item.setNodeValue(20L); });
    row("float from a number", floatNode(5), "Nd_SetFloatValue",
        [](GenAPINodeItem& item) { return item.setNodeValue(1.5); });
    row("integer from text", integerNode(5), "Nd_SetIntValue", type("7"));
    row("integer from a number", integerNode(5), "Nd_SetIntValue",
        [](GenAPINodeItem& item) { return item.setNodeValue(7L); });
}

void NodeItemViewTest::textWritesAreInProgress_data()
{
    addWrites();
    QTest::newRow("command from text") << nodeOf(NODE_TYPE_COMMAND)
                                       << Write([](GenAPINodeItem& item) { return item.setNodeValue(QString("1")); })
                                       << "Nd_CmdExecute";
}

void NodeItemViewTest::textWritesAreInProgress()
{
    QFETCH(scripted::NodeSpec, node);
    QFETCH(Write, write);
    QFETCH(QString, call);
    Rows rows(node);
    int seen = 0;
    scripted::onCall(call.toStdString(), [&] { seen += rows.writeInProgress() ? 1 : 0; });
    QVERIFY(!rows.writeInProgress());
    QCOMPARE(write(*rows.item), 0);
    QCOMPARE(seen, 1);
    QVERIFY(!rows.writeInProgress());
    scripted::failAlways(call.toStdString(), CAM_API_STS_BUSY);
    QCOMPARE(write(*rows.item), 2053);
    QCOMPARE(seen, 2);
    QVERIFY(!rows.writeInProgress());
}

void NodeItemViewTest::refusedWritesEndTheProgress_data()
{
    QTest::addColumn<scripted::NodeSpec>("node");
    QTest::addColumn<Write>("write");
    const Write text = [](GenAPINodeItem& item) { return item.setNodeValue(QString("seven")); };
    const Write integer = [](GenAPINodeItem& item) { return item.setNodeValue(7L); };
    const Write real = [](GenAPINodeItem& item) { return item.setNodeValue(7.0); };
    const scripted::NodeSpec readOnly = with(NODE_ACCESS_MODE_RO, integerNode(5));
    QTest::newRow("text to a read-only node") << readOnly << text;
    QTest::newRow("number to a read-only node") << readOnly << integer;
    QTest::newRow("float to a read-only node") << with(NODE_ACCESS_MODE_RO, floatNode(5)) << real;
    QTest::newRow("no number") << integerNode(5) << text;
    QTest::newRow("float to an integer") << integerNode(5) << real;
    QTest::newRow("number to a string") << stringNode("old") << integer;
    QTest::newRow("text to a register") << nodeOf(NODE_TYPE_REGISTER) << text;
}

void NodeItemViewTest::refusedWritesEndTheProgress()
{
    QFETCH(scripted::NodeSpec, node);
    QFETCH(Write, write);
    Rows rows(node);
    QVERIFY(write(*rows.item) != 0);
    QVERIFY(!rows.writeInProgress());
    QVERIFY(!rows.valuesWritten());
}

void NodeItemViewTest::spinBoxIsNotInProgress()
{
    Rows rows(integerNode(5));
    int seen = 0;
    scripted::onCall("Nd_SetIntValue", [&] { seen += rows.writeInProgress() ? 2 : 1; });
    rows.item->spinBox_ValueChanged(7);
    QCOMPARE(seen, 1);
}

void NodeItemViewTest::buttonIsNotInProgress()
{
    Rows rows(nodeOf(NODE_TYPE_COMMAND));
    int seen = 0;
    scripted::onCall("Nd_CmdExecute", [&] { seen += rows.writeInProgress() ? 2 : 1; });
    rows.item->button_Clicked();
    QCOMPARE(seen, 1);
}

void NodeItemViewTest::successfulWritesRequestAnUpdate_data()
{
    addWrites();
}

void NodeItemViewTest::successfulWritesRequestAnUpdate()
{
    QFETCH(scripted::NodeSpec, node);
    QFETCH(Write, write);
    Rows rows(node);
    QVERIFY(!rows.valuesWritten());
    QCOMPARE(write(*rows.item), 0);
    QCOMPARE(rows.readings(), 0); // the write itself updates nothing else
    QVERIFY(rows.valuesWritten());
    QVERIFY(!rows.valuesWritten());
}

void NodeItemViewTest::failedWritesRequestNoUpdate_data()
{
    addWrites();
}

void NodeItemViewTest::failedWritesRequestNoUpdate()
{
    QFETCH(scripted::NodeSpec, node);
    QFETCH(Write, write);
    QFETCH(QString, call);
    Rows rows(node);
    scripted::failAlways(call.toStdString(), CAM_API_STS_BUSY);
    QCOMPARE(write(*rows.item), 2053);
    QVERIFY(!rows.valuesWritten());
}

void NodeItemViewTest::failedCommandFromTextRequestsAnUpdate()
{
    Rows rows(nodeOf(NODE_TYPE_COMMAND));
    QCOMPARE(rows.item->setNodeValue(QString("Stop")), 13);
    QVERIFY(!rows.valuesWritten()); // it was not executed
    QCOMPARE(rows.item->setNodeValue(QString("Execute")), 0);
    QVERIFY(rows.valuesWritten());
    scripted::failCall("Nd_CmdExecute", CAM_API_STS_BUSY);
    QCOMPARE(rows.item->setNodeValue(QString("Execute")), 2053);
    QVERIFY(rows.valuesWritten());
}

void NodeItemViewTest::spinBoxRequestsNoUpdate()
{
    Rows rows(integerNode(5));
    rows.item->spinBox_ValueChanged(7);
    QVERIFY(!rows.valuesWritten());
}

void NodeItemViewTest::triggerCheckHappensDuringTheWrite()
{
    Rows rows(enumNode({NODE_ACCESS_MODE_RO, NODE_ACCESS_MODE_RO}, "TriggerSource"));
    int checks = 0;
    bool inProgress = false;
    connect(&rows.table.view(), &FeatureView::checkSoftwareTriggerMode, this, [&] {
        ++checks;
        inProgress = rows.writeInProgress();
    });
    QCOMPARE(rows.item->setNodeValue(QString("Second")), 0);
    QCOMPARE(checks, 1);
    QVERIFY(inProgress);
    QVERIFY(!rows.writeInProgress());
}

void NodeItemViewTest::readingBackHappensDuringTheWrite()
{
    Rows rows(integerNode(5));
    std::vector<bool> inProgress;
    scripted::onCall("Nd_GetIntValue", [&] { inProgress.push_back(rows.writeInProgress()); });
    QCOMPARE(rows.item->setNodeValue(7L), 0);
    QCOMPARE(inProgress, std::vector<bool>{true});
    QVERIFY(!rows.writeInProgress());
}

void NodeItemViewTest::storingTheTextHappensDuringTheWrite()
{
    Rows rows(integerNode(5));
    std::vector<bool> inProgress;
    connect(rows.table.view().sourceModel(), &QStandardItemModel::dataChanged, this,
            [&] { inProgress.push_back(rows.writeInProgress()); });
    QCOMPARE(rows.item->setNodeValue(QString("7")), 0);
    QCOMPARE(inProgress, std::vector<bool>{true});
    QVERIFY(!rows.writeInProgress());
}

void NodeItemViewTest::comboUpdatesAllFeatures()
{
    Rows rows(enumNode({NODE_ACCESS_MODE_RO, NODE_ACCESS_MODE_RO}));
    QComboBox editor;
    editor.addItems({"First", "Second"});
    rows.item->setEditor(&editor);
    editor.setCurrentIndex(1);
    rows.item->combo_CurrentIndexChanged(1);
    QCOMPARE(rows.readings(), 1);
    QVERIFY(!rows.valuesWritten());
    rows.item->combo_CurrentIndexChanged(1);
    QCOMPARE(rows.readings(), 1);
}

void NodeItemViewTest::comboSkipsAnUpdateThatAlreadyHappened()
{
    Rows rows(enumNode({NODE_ACCESS_MODE_RO, NODE_ACCESS_MODE_RO}, "TriggerMode"));
    connect(&rows.table.view(), &FeatureView::checkSoftwareTriggerMode, this,
            [&] { rows.table.view().updateAllFeatures(true); });
    QComboBox editor;
    editor.addItems({"First", "Second"});
    rows.item->setEditor(&editor);
    editor.setCurrentIndex(1);
    rows.item->combo_CurrentIndexChanged(1);
    QCOMPARE(rows.readings(), 1);
}

void NodeItemViewTest::failedComboUpdatesNothing()
{
    Rows rows(enumNode({NODE_ACCESS_MODE_RO, NODE_ACCESS_MODE_RO}));
    QComboBox editor;
    editor.addItems({"First", "Second"});
    rows.item->setEditor(&editor);
    rows.table.view().setValuesWritten(); // a write elsewhere
    scripted::failAlways("Nd_SetEnumStrValue", CAM_API_STS_BUSY);
    editor.setCurrentIndex(1);
    rows.item->combo_CurrentIndexChanged(1);
    QCOMPARE(rows.readings(), 0);
}

void NodeItemViewTest::buttonUpdatesAllFeatures()
{
    Rows rows(nodeOf(NODE_TYPE_COMMAND));
    rows.item->button_Clicked();
    QCOMPARE(rows.readings(), 1);
    QVERIFY(!rows.valuesWritten());
}

void NodeItemViewTest::failedButtonUpdatesNothing()
{
    Rows rows(nodeOf(NODE_TYPE_COMMAND));
    scripted::failAlways("Nd_CmdExecute", CAM_API_STS_BUSY);
    rows.item->button_Clicked();
    QCOMPARE(rows.readings(), 0);
    QVERIFY(!rows.valuesWritten());
}

void NodeItemViewTest::buttonLogsLast()
{
    Rows rows(nodeOf(NODE_TYPE_COMMAND));
    rows.table.view().setOpeLogLevel(OpeLogRead);
    QStringList log;
    connect(&rows.table.view(), &FeatureView::OpeLogAppended, this, [&](const QString& entry) { log << entry; });
    rows.item->button_Clicked();
    QCOMPARE(log.size(), 2); // the entry for the other node comes first
    QVERIFY(log[0].contains("\"Other\""));
    QVERIFY(log[1].contains("Nd_CmdExecute"));
}

void NodeItemViewTest::accessModeColoursTheRow()
{
    Rows rows(integerNode(5));
    const QStandardItemModel& model = *rows.table.view().sourceModel();
    const auto foreground = [&] {
        return model.item(rows.item->getBaseIndex(), 0)->data(Qt::ForegroundRole).value<QColor>();
    };
    QCOMPARE(foreground(), QColor(0, 0, 0));
    scripted::changeNode("Node", [](scripted::NodeSpec& spec) { spec.access = NODE_ACCESS_MODE_RO; });
    QCOMPARE(rows.item->updateAccessMode(nullptr), 0);
    QCOMPARE(foreground(), QColor(128, 64, 0));
    QCOMPARE(NodeBench::calls(), QStringList{"Nd_GetAccessMode(out)"});
}

void NodeItemViewTest::failedAccessModeColoursNothing()
{
    Rows rows(integerNode(5));
    QStandardItem& name = *rows.table.view().sourceModel()->item(rows.item->getBaseIndex(), 0);
    name.setData(QColor(1, 2, 3), Qt::ForegroundRole);
    scripted::failCall("Nd_GetAccessMode", CAM_API_STS_TIMEOUT);
    QCOMPARE(rows.item->updateAccessMode(nullptr), 18);
    QCOMPARE(name.data(Qt::ForegroundRole).value<QColor>(), QColor(1, 2, 3));
    QCOMPARE(rows.item->updateAccessMode(nullptr), 0); // unchanged, but coloured
    QCOMPARE(name.data(Qt::ForegroundRole).value<QColor>(), QColor(0, 0, 0));
}

} // namespace

ORVO_TEST_CLASS(NodeItemViewTest)
#include "NodeItemViewTest.moc"

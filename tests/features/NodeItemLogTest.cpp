// The operation log entries of each operation of an item, at every level, with and without failure.

#include "tests/features/NodeBench.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <functional>

using Operation = std::function<void(GenAPINodeItem&)>;
Q_DECLARE_METATYPE(Operation)

namespace {

using namespace Orvo;
using OperationLog::Fragment;

constexpr NodeAccessMode RO = NODE_ACCESS_MODE_RO;

const QString lookup = "status = Orvo::Nd_GetNode(hCam, \"Node\", &hNode);\n";

class NodeItemLogTest : public QObject {
    Q_OBJECT

private slots:
    void levels_data();
    void levels();
    void writeOfFiveToGain();
    void failedReadLogsItsStatus();
    void failedEntryRead();
    void refusedTexts_data();
    void refusedTexts();
    void textsAreLoggedAsTruncated_data();
    void textsAreLoggedAsTruncated();
    void floatByNumberInDefaultPrecision();
    void numberWriteLogsBeforeItsRead();
    void rangeEntry_data();
    void rangeEntry();
    void rangeOfOtherTypesIsNotLogged();
    void entriesOfOneUpdate();
    void bindingLogsItsRead();
    void markersInNameAndText();
    void appendFollowsTheLevel();
    void itemWithoutAViewLogsNothing();
    void receiverMayChangeTheText();
    void additionalInfoLogsItsRead();
};

void NodeItemLogTest::levels_data()
{
    QTest::addColumn<scripted::NodeSpec>("node");
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QString>("call");     // fails in the second half
    QTest::addColumn<int>("mode");         // the lowest level that logs it
    QTest::addColumn<QString>("fragment"); // without lookup line
    QTest::addColumn<QString>("failure");  // appended after a failure; "-": nothing is logged then
    const auto row = [](const char* name, const scripted::NodeSpec& node, const char* call, int mode,
                        const QString& fragment, const char* failure, const Operation& operation) {
        QTest::newRow(name) << node << operation << QString(call) << mode << fragment << QString(failure);
    };
    const auto read = [](GenAPINodeItem& item) { item.getNodeValue(true, true); };
    const auto type = [](const char* text) {
        return [text](GenAPINodeItem& item) { item.setNodeValue(QString(text)); };
    };
    constexpr auto kFailed = "Failed!! Status code: 0x00000805.\n";
    const scripted::NodeSpec integer = integerNode(5);
    const scripted::NodeSpec boolean = nodeOf(NODE_TYPE_BOOLEAN);
    const scripted::NodeSpec command = nodeOf(NODE_TYPE_COMMAND);
    const scripted::NodeSpec enumeration = enumNode({RO, RO});

    row("integer read", integer, "Nd_GetIntValue", 2, OperationLog::text(Fragment::IntegerRead), kFailed, read);
    row("float read never tells a failure", floatNode(5), "Nd_GetFloatValue", 2,
        OperationLog::text(Fragment::FloatRead), "", read);
    row("boolean read", boolean, "Nd_GetBoolValue", 2, OperationLog::text(Fragment::BooleanRead), kFailed, read);
    row("string read", stringNode("text"), "Nd_GetStrValue", 2, OperationLog::text(Fragment::StringRead), kFailed,
        read);
    row("enumeration read", enumeration, "Nd_GetEnumStrValue", 2, OperationLog::text(Fragment::EnumRead), kFailed,
        read);
    row("enumeration integer read", enumeration, "Nd_GetEnumIntValue", 2, OperationLog::text(Fragment::EnumIntegerRead),
        kFailed, [](GenAPINodeItem& item) { item.getEnumIntValue(); });

    row("integer from text", integer, "Nd_SetIntValue", 1, "status = Orvo::Nd_SetIntValue(hcam, hNode, 7);\n", kFailed,
        type("7 px"));
    row("boolean from text", boolean, "Nd_SetBoolValue", 1, "status = Orvo::Nd_SetBoolValue(hCam, hNode, true);\n",
        kFailed, type("YES"));
    row("command from text", command, "Nd_CmdExecute", 1, "status = Orvo::Nd_CmdExecute'hCam, hNode);\n", kFailed,
        type("1"));
    row("float from text", floatNode(5), "Nd_SetFloatValue", 1, "status = Orvo::Nd_SetFloatValue(hCam, hNode, 1.50);\n",
        kFailed, type("1.50 us"));
    row("string from text", stringNode("old"), "Nd_SetStrValue", 1,
        "status = Orvo::Nd_SetStrValue(hCam, hNode, \"new text\");\n", kFailed, type("new text"));
    row("enumeration from text", enumeration, "Nd_SetEnumStrValue", 1,
        "status = Orvo::Nd_SetEnumStrValue(hCam, hNode, \"Second\");\n", kFailed, type("Second"));

    row("float from a number is not told when it fails", floatNode(5), "Nd_SetFloatValue", 1,
        "status = Orvo::Nd_SetFloatValue(hCam, hNode, 1.5);\n", "-",
        [](GenAPINodeItem& item) { item.setNodeValue(1.5); });
    row("spin box", integer, "Nd_SetIntValue", 1, "status = Orvo::Nd_SetIntValue(hcam, hNode, 7);\n", "",
        [](GenAPINodeItem& item) { item.spinBox_ValueChanged(7); });
    row("command by its button", command, "Nd_CmdExecute", 1, "status = Orvo::Nd_CmdExecute'hCam, hNode);\n", "",
        [](GenAPINodeItem& item) { item.button_Clicked(); });
}

void NodeItemLogTest::levels()
{
    QFETCH(scripted::NodeSpec, node);
    QFETCH(Operation, operation);
    QFETCH(QString, call);
    QFETCH(int, mode);
    QFETCH(QString, fragment);
    QFETCH(QString, failure);
    for (int level = 0; level <= 3; ++level) {
        NodeBench bench({node}, level);
        const auto item = bench.item();
        operation(*item);
        QCOMPARE(bench.log, level >= mode ? QStringList{lookup + fragment} : QStringList());

        bench.log.clear();
        scripted::failAlways(call.toStdString(), CAM_API_STS_BUSY);
        operation(*item);
        const bool told = level >= mode && failure != "-";
        QCOMPARE(bench.log, told ? QStringList{lookup + fragment + failure} : QStringList());
    }
}

void NodeItemLogTest::writeOfFiveToGain()
{
    NodeBench bench({integerNode(1, "Gain")}, OpeLogWrite);
    const auto item = bench.item();
    QCOMPARE(item->setNodeValue(5L), 0);
    QCOMPARE(bench.log, QStringList{"status = Orvo::Nd_GetNode(hCam, \"Gain\", &hNode);\n"
                                    "status = Orvo::Nd_SetIntValue(hcam, hNode, 5);\n"});
    item->getNodeValue(true, true);
    QCOMPARE(bench.log.size(), 1);
}

void NodeItemLogTest::failedReadLogsItsStatus()
{
    NodeBench bench({integerNode(1)}, OpeLogRead);
    const auto item = bench.item();
    scripted::failCall("Nd_GetIntValue", 0x10);
    item->getNodeValue(true, true);
    QCOMPARE(bench.log,
             QStringList{lookup + OperationLog::text(Fragment::IntegerRead) + "Failed!! Status code: 0x00000010.\n"});
    scripted::failCall("Nd_GetIntValue", CAM_API_STS_UNSUCCESSFUL);
    item->getNodeValue(true, true);
    QVERIFY(bench.log[1].endsWith("Failed!! Status code: 0xffffffff.\n"));
}

void NodeItemLogTest::failedEntryRead()
{
    // An enumeration entry has no fragment of its own: only its failure is logged.
    NodeBench bench({enumNode({RO})}, OpeLogRead);
    const auto item = bench.item("EnumEntry_Node_First");
    item->getNodeValue(true, true);
    QCOMPARE(bench.log, QStringList());
    scripted::failCall("Nd_GetEnumEntryStrValue", CAM_API_STS_TIMEOUT);
    item->getNodeValue(true, true);
    QCOMPARE(bench.log, QStringList{"status = Orvo::Nd_GetNode(hCam, \"EnumEntry_Node_First\", &hNode);\n"
                                    "Failed!! Status code: 0x00000012.\n"});
}

void NodeItemLogTest::refusedTexts_data()
{
    QTest::addColumn<scripted::NodeSpec>("node");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("fragment");
    const auto row = [](const char* name, const scripted::NodeSpec& node, const char* text, const char* fragment) {
        QTest::newRow(name) << node << QString(text) << QString(fragment);
    };
    row("integer", integerNode(5), "five px", "status = Orvo::Nd_SetIntValue(hcam, hNode, five);\n");
    row("integer, empty", integerNode(5), "", "status = Orvo::Nd_SetIntValue(hcam, hNode, );\n");
    row("boolean, empty", nodeOf(NODE_TYPE_BOOLEAN), "", "status = Orvo::Nd_SetBoolValue(hCam, hNode, true);\n");
    row("command", nodeOf(NODE_TYPE_COMMAND), "Stop", "status = Orvo::Nd_CmdExecute'hCam, hNode);\n");
    row("float", floatNode(5), " 5 us", "status = Orvo::Nd_SetFloatValue(hCam, hNode,  5 us);\n");
    row("type without a fragment", nodeOf(NODE_TYPE_REGISTER), "5", "");
}

void NodeItemLogTest::refusedTexts()
{
    QFETCH(scripted::NodeSpec, node);
    QFETCH(QString, text);
    QFETCH(QString, fragment);
    for (int level = 0; level <= 3; ++level) {
        NodeBench bench({node}, level);
        QCOMPARE(bench.item()->setNodeValue(text), 13);
        const QString entry = lookup + fragment + "Failed!! Status code: 0x0000000d.\n";
        QCOMPARE(bench.log, level >= 1 ? QStringList{entry} : QStringList());
    }
}

void NodeItemLogTest::textsAreLoggedAsTruncated_data()
{
    QTest::addColumn<int>("representation");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("argument");
    QTest::newRow("hexadecimal") << 4 << "0x1F bytes"
                                 << "0x1F";
    QTest::newRow("IPv4") << 5 << "192.168.0.1 or so"
                          << "192.168.0.1";
    QTest::newRow("MAC") << 6 << "0-17-34-51-68-171 it is"
                         << "0-17-34-51-68-171";
}

void NodeItemLogTest::textsAreLoggedAsTruncated()
{
    QFETCH(int, representation);
    QFETCH(QString, text);
    QFETCH(QString, argument);
    NodeBench bench({with(static_cast<NodeRepresentation>(representation), integerNode(5))}, OpeLogWrite);
    QCOMPARE(bench.item()->setNodeValue(text), 0);
    QCOMPARE(bench.log, QStringList{lookup + "status = Orvo::Nd_SetIntValue(hcam, hNode, " + argument + ");\n"});
}

void NodeItemLogTest::floatByNumberInDefaultPrecision()
{
    NodeBench bench({floatNode(5)}, OpeLogWrite);
    const auto item = bench.item();
    QCOMPARE(item->setNodeValue(1234567.891), 0);
    QCOMPARE(item->setNodeValue(0.25), 0);
    QCOMPARE(bench.log, QStringList({lookup + "status = Orvo::Nd_SetFloatValue(hCam, hNode, 1.23457e+06);\n",
                                     lookup + "status = Orvo::Nd_SetFloatValue(hCam, hNode, 0.25);\n"}));
}

void NodeItemLogTest::numberWriteLogsBeforeItsRead()
{
    for (int level = 0; level <= 3; ++level) {
        NodeBench bench({integerNode(5), enumNode({RO, RO}, "Mode")}, level);
        const QString integerWrite = lookup + "status = Orvo::Nd_SetIntValue(hcam, hNode, -7);\n";
        QStringList expected;
        if (level >= 1)
            expected << integerWrite;
        if (level >= 2)
            expected << lookup + OperationLog::text(Fragment::IntegerRead);
        const auto integer = bench.item("Node");
        QCOMPARE(integer->setNodeValue(-7L), 0);
        QCOMPARE(bench.log, expected);

        bench.log.clear();
        scripted::failCall("Nd_SetIntValue", CAM_API_STS_BUSY);
        integer->setNodeValue(-7L);
        QCOMPARE(bench.log,
                 level >= 1 ? QStringList{integerWrite + "Failed!! Status code: 0x00000805.\n"} : QStringList());

        const auto enumeration = bench.item("Mode");
        const QString enumWrite = "status = Orvo::Nd_GetNode(hCam, \"Mode\", &hNode);\n"
                                  "status = Orvo::Nd_SetEnumIntValue(hCam, hNode, 20);\n";
        QCOMPARE(enumeration->setNodeValue(20L), 0);
        QCOMPARE(bench.log.value(0), level >= 1 ? enumWrite : QString());
        QCOMPARE(bench.log.size(), qMin(level, 2));
        bench.log.clear();
        scripted::failCall("Nd_SetEnumIntValue", CAM_API_STS_BUSY);
        enumeration->setNodeValue(20L);
        QCOMPARE(bench.log,
                 level >= 1 ? QStringList{enumWrite + "Failed!! Status code: 0x00000805.\n"} : QStringList());
    }
}

void NodeItemLogTest::rangeEntry_data()
{
    QTest::addColumn<scripted::NodeSpec>("node");
    QTest::addColumn<bool>("all");
    QTest::addColumn<QString>("entry");
    const QString intMax = OperationLog::text(Fragment::IntegerMaximum);
    const QString intMin = OperationLog::text(Fragment::IntegerMinimum);
    const QString intInc = OperationLog::text(Fragment::IntegerIncrement);
    const QString floatMax = OperationLog::text(Fragment::FloatMaximum);
    const QString floatMin = OperationLog::text(Fragment::FloatMinimum);
    const QString hasInc = OperationLog::text(Fragment::FloatHasIncrement);
    const QString floatInc = OperationLog::text(Fragment::FloatIncrement);
    QTest::newRow("integer") << integerNode(5) << true << intMax + intMin + intInc;
    QTest::newRow("integer, maximum only") << integerNode(5) << false << intMax;
    QTest::newRow("float") << floatNode(5) << true << floatMax + floatMin + hasInc;
    scripted::NodeSpec steps = floatNode(5);
    steps.floatHasInc = 1;
    QTest::newRow("float with increment") << steps << true << floatMax + floatMin + hasInc + floatInc;
    QTest::newRow("float, maximum only") << steps << false << floatMax;
    QTest::newRow("not readable") << with(NODE_ACCESS_MODE_NA, integerNode(5)) << true << intMax + intMin + intInc;
}

void NodeItemLogTest::rangeEntry()
{
    QFETCH(scripted::NodeSpec, node);
    QFETCH(bool, all);
    QFETCH(QString, entry);
    const bool readable = node.access == NODE_ACCESS_MODE_RW;
    for (const bool failing : {false, true}) {
        for (int level = 0; level <= 3; ++level) {
            NodeBench bench({node}, level);
            const auto item = bench.item();
            if (failing) {
                for (const char* call : {"Nd_GetIntMax", "Nd_GetIntMin", "Nd_GetIntInc", "Nd_GetFloatMax",
                                         "Nd_GetFloatMin", "Nd_GetFloatInc"})
                    scripted::failAlways(call, CAM_API_STS_BUSY); // not part of this entry
            }
            item->updateVals(all);
            const int reads = level >= 2 && readable ? 1 : 0;
            QCOMPARE(bench.log.size(), reads + (level >= 3 ? 1 : 0));
            if (level >= 3)
                QCOMPARE(bench.log.last(), entry); // without a lookup line
        }
    }
}

void NodeItemLogTest::rangeOfOtherTypesIsNotLogged()
{
    NodeBench bench({nodeOf(NODE_TYPE_BOOLEAN), nodeOf(NODE_TYPE_CATEGORY, "Category")}, OpeLogRange);
    const auto boolean = bench.item("Node");
    boolean->updateVals(true);
    QCOMPARE(bench.log.size(), 1); // only the read
    const auto category = bench.item("Category");
    category->updateVals(true);
    QCOMPARE(bench.log, QStringList());
}

void NodeItemLogTest::entriesOfOneUpdate()
{
    NodeBench bench({integerNode(5)}, OpeLogRange);
    bench.item()->updateVals(false);
    QCOMPARE(bench.log, QStringList({lookup + OperationLog::text(Fragment::IntegerRead),
                                     OperationLog::text(Fragment::IntegerMaximum)}));
}

void NodeItemLogTest::bindingLogsItsRead()
{
    for (int level = 0; level <= 3; ++level) {
        NodeBench bench({integerNode(5)}, level);
        const GenAPINodeItem item(bench.camera(), bench.handle("Node"), 0, &bench.view, nullptr);
        QCOMPARE(bench.log,
                 level >= 2 ? QStringList{lookup + OperationLog::text(Fragment::IntegerRead)} : QStringList());
    }
}

void NodeItemLogTest::markersInNameAndText()
{
    NodeBench bench({stringNode("old", "%1 <b>%2</b>")}, OpeLogWrite);
    QCOMPARE(bench.item()->setNodeValue(QString("%1%2\n<i>")), 0);
    QCOMPARE(bench.log, QStringList{"status = Orvo::Nd_GetNode(hCam, \"%1 <b>%2</b>\", &hNode);\n"
                                    "status = Orvo::Nd_SetStrValue(hCam, hNode, \"%1%2\n<i>\");\n"});
}

void NodeItemLogTest::appendFollowsTheLevel()
{
    for (int level = 0; level <= 3; ++level) {
        NodeBench bench({integerNode(5)}, level);
        const auto item = bench.item();
        for (const OperationLogMode mode : {OpeLogWrite, OpeLogRead, OpeLogRange}) {
            QString log = "log\n";
            QString text = "text\n";
            item->appendOpeLog(log, text, mode, 0);
            QCOMPARE(log, QString(level >= mode ? "log\ntext\n" : "log\n"));
            item->appendOpeLog(log, text, mode, 0x807);
            QVERIFY(level < mode || log.endsWith("text\nFailed!! Status code: 0x00000807.\n"));
            QCOMPARE(text, QString("text\n"));
        }
        QCOMPARE(bench.log, QStringList());
    }
}

void NodeItemLogTest::itemWithoutAViewLogsNothing()
{
    NodeBench bench(
        {integerNode(5), nodeOf(NODE_TYPE_COMMAND, "Command"), enumNode({RO}, "TriggerMode"), floatNode(5, "Float")},
        OpeLogRange);
    for (const char* name : {"Node", "Command", "TriggerMode", "Float"}) {
        GenAPINodeItem item(bench.camera(), bench.handle(name), 0, nullptr, nullptr);
        item.updateVals(true);
        item.setNodeValue(QString("1"));
        item.setNodeValue(1L);
        item.setNodeValue(1.0);
        item.spinBox_ValueChanged(1);
        item.button_Clicked();
        item.getEnumIntValue();
        QString log;
        item.appendOpeLog(log, "text", OpeLogWrite, 1);
        QCOMPARE(log, QString());
    }
    QCOMPARE(bench.log, QStringList());
    QCOMPARE(bench.triggerChecks, 0);
    QCOMPARE(scripted::node("Command").executed, 2);
}

void NodeItemLogTest::receiverMayChangeTheText()
{
    NodeBench bench({integerNode(5)}, OpeLogRange);
    const auto item = bench.item();
    QObject::connect(&bench.view, &FeatureView::OpeLogAppended, &bench.view, [](QString& entry) { entry.clear(); });
    item->updateVals(true);
    QCOMPARE(item->setNodeValue(QString("7")), 0);
    QCOMPARE(bench.log.size(), 3);
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("7")));
}

void NodeItemLogTest::additionalInfoLogsItsRead()
{
    for (int level = 0; level <= 3; ++level) {
        NodeBench bench({enumNode({RO})}, level);
        const auto item = bench.item();
        item->getAdditionalInfo();
        QCOMPARE(bench.log.size(), level >= 2 ? 1 : 0); // the text is cached, the number is read
    }
}

} // namespace

ORVO_TEST_CLASS(NodeItemLogTest)
#include "NodeItemLogTest.moc"

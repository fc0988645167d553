// The choices of a combo box, and the number of an enumeration.

#include "tests/features/NodeBench.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

Q_DECLARE_METATYPE(std::vector<Orvo::NodeAccessMode>)

namespace {

using namespace Orvo;

constexpr NodeAccessMode RO = NODE_ACCESS_MODE_RO;
constexpr NodeAccessMode RW = NODE_ACCESS_MODE_RW;

class NodeItemChoicesTest : public QObject {
    Q_OBJECT

private slots:
    void enumInteger();
    void enumIntegerFails();
    void enumIntegerOfOtherTypes();
    void choicesOfABoolean();
    void choicesByAccess_data();
    void choicesByAccess();
    void choicesCallByCall();
    void choicesFail_data();
    void choicesFail();
    void choicesOfOtherTypes();
    void choicesVanish();
    void longEntryNames();
};

void NodeItemChoicesTest::enumInteger()
{
    NodeBench bench({enumNode({RO, RO})});
    const auto item = bench.item();
    QCOMPARE(item->getEnumIntValue(), 10L);
    scripted::changeNode("Node", [](scripted::NodeSpec& spec) { spec.intValue = INT64_MIN; });
    QCOMPARE(item->getEnumIntValue(), static_cast<long>(INT64_MIN));
    QCOMPARE(NodeBench::calls(), QStringList({"Nd_GetEnumIntValue(out)", "Nd_GetEnumIntValue(out)"}));
}

void NodeItemChoicesTest::enumIntegerFails()
{
    NodeBench bench({enumNode({RO, RO})});
    const auto item = bench.item();
    scripted::failAlways("Nd_GetEnumIntValue", CAM_API_STS_TIMEOUT);
    QCOMPARE(item->getEnumIntValue(), 0L);
}

void NodeItemChoicesTest::enumIntegerOfOtherTypes()
{
    for (const NodeType type : {NODE_TYPE_INTEGER, NODE_TYPE_BOOLEAN, NODE_TYPE_ENUM_ENTRY, NODE_TYPE_CATEGORY}) {
        NodeBench bench({nodeOf(type)}, OpeLogRange);
        QCOMPARE(bench.item()->getEnumIntValue(), 0L);
        QCOMPARE(scripted::count("Nd_GetEnumIntValue"), 0);
        QCOMPARE(bench.log, QStringList());
    }
}

void NodeItemChoicesTest::choicesOfABoolean()
{
    NodeBench bench({nodeOf(NODE_TYPE_BOOLEAN)});
    QCOMPARE(bench.item()->getItemsValue(), QStringList({"false", "true"}));
    QCOMPARE(NodeBench::calls(), QStringList());
}

void NodeItemChoicesTest::choicesByAccess_data()
{
    QTest::addColumn<std::vector<NodeAccessMode>>("entries");
    QTest::addColumn<QStringList>("choices");
    constexpr NodeAccessMode NI = NODE_ACCESS_MODE_NI;
    constexpr NodeAccessMode NA = NODE_ACCESS_MODE_NA;
    constexpr NodeAccessMode WO = NODE_ACCESS_MODE_WO;
    using Entries = std::vector<NodeAccessMode>;
    QTest::newRow("none") << Entries{} << QStringList();
    QTest::newRow("second entry not available") << Entries{RO, NA, RO} << QStringList{"First", "Third"};
    QTest::newRow("not implemented") << Entries{NI, RO} << QStringList{"Second"};
    QTest::newRow("write-only is listed") << Entries{WO, RO} << QStringList{"First", "Second"};
    QTest::newRow("read-write is not listed") << Entries{RW, RO} << QStringList{"Second"};
    QTest::newRow("unknown access is not listed")
        << Entries{static_cast<NodeAccessMode>(5), RO} << QStringList{"Second"};
    QTest::newRow("no entry is selectable") << Entries{NA, NI, RW} << QStringList();
}

void NodeItemChoicesTest::choicesByAccess()
{
    QFETCH(std::vector<NodeAccessMode>, entries);
    NodeBench bench({enumNode(entries)});
    QTEST(bench.item()->getItemsValue(), "choices");
}

void NodeItemChoicesTest::choicesCallByCall()
{
    NodeBench bench({enumNode({RO, NODE_ACCESS_MODE_NA})});
    const auto item = bench.item();
    item->getItemsValue();
    QCOMPARE(NodeBench::calls(), QStringList({"Nd_GetNumOfEnumEntries(out)", "Nd_GetEnumEntryByIndex(0, out)",
                                              "Nd_GetAccessMode(out)", "Nd_GetEnumEntryStrValue(out, out)",
                                              "Nd_GetEnumEntryByIndex(1, out)", "Nd_GetAccessMode(out)"}));
    QCOMPARE(item->getAccessMode(), RW); // reading an entry's access mode keeps that of the node
}

void NodeItemChoicesTest::choicesFail_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<int>("nth");
    QTest::addColumn<int>("calls");
    QTest::newRow("count") << "Nd_GetNumOfEnumEntries" << 1 << 1;
    QTest::newRow("first entry") << "Nd_GetEnumEntryByIndex" << 1 << 2;
    QTest::newRow("access of the first entry") << "Nd_GetAccessMode" << 1 << 3;
    QTest::newRow("name of the first entry") << "Nd_GetEnumEntryStrValue" << 1 << 4;
    QTest::newRow("last entry") << "Nd_GetEnumEntryByIndex" << 3 << 8;
    QTest::newRow("access of the last entry") << "Nd_GetAccessMode" << 3 << 9;
    QTest::newRow("name of the last entry") << "Nd_GetEnumEntryStrValue" << 3 << 10;
}

void NodeItemChoicesTest::choicesFail()
{
    QFETCH(QString, operation);
    QFETCH(int, nth);
    NodeBench bench({enumNode({RO, RO, RO})});
    const auto item = bench.item();
    scripted::failCall(operation.toStdString(), CAM_API_STS_GENICAM_ERR, nth);
    QCOMPARE(item->getItemsValue(), QStringList());
    QTEST(static_cast<int>(NodeBench::calls().size()), "calls");
    QCOMPARE(item->getItemsValue(), QStringList({"First", "Second", "Third"}));
}

void NodeItemChoicesTest::choicesOfOtherTypes()
{
    for (const NodeType type : {NODE_TYPE_INTEGER, NODE_TYPE_FLOAT, NODE_TYPE_COMMAND, NODE_TYPE_STRING,
                                NODE_TYPE_CATEGORY, NODE_TYPE_UNKNOWN}) {
        NodeBench bench({nodeOf(type)});
        const auto item = bench.item();
        QCOMPARE(item->getItemsValue(), QStringList());
        QCOMPARE(NodeBench::calls(), QStringList());
    }
}

void NodeItemChoicesTest::choicesVanish()
{
    NodeBench bench({enumNode({RO, RO})});
    const auto item = bench.item();
    QCOMPARE(item->getItemsValue(), QStringList({"First", "Second"}));
    scripted::changeNode("Node", [](scripted::NodeSpec& spec) { spec.entries[1].access = NODE_ACCESS_MODE_NA; });
    QCOMPARE(item->setNodeValue(QString("Second")), 13);
    QCOMPARE(item->getNodeValue(false, false), QString("First"));
    QCOMPARE(item->getItemsValue(), QStringList{"First"});
}

void NodeItemChoicesTest::longEntryNames()
{
    scripted::NodeSpec spec = nodeOf(NODE_TYPE_ENUMERATION);
    spec.entries = {scripted::enumEntry(std::string(255, 'e'), 0), scripted::enumEntry("%1 <b>", 1)};
    NodeBench bench({spec});
    const auto item = bench.item();
    QCOMPARE(item->getItemsValue(), QStringList({QString(255, 'e'), "%1 <b>"}));
    QCOMPARE(item->getNodeValue(false, true), QString(255, 'e'));

    spec.entries[1].name = std::string(256, 'e'); // longer than the interface allows
    NodeBench broken({spec});
    QCOMPARE(broken.item()->getItemsValue(), QStringList());
}

} // namespace

ORVO_TEST_CLASS(NodeItemChoicesTest)
#include "NodeItemChoicesTest.moc"

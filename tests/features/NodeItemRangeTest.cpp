// Refreshing access mode, value and range.

#include "tests/features/NodeBench.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

namespace {

using namespace Orvo;

constexpr NodeAccessMode RO = NODE_ACCESS_MODE_RO;
constexpr NodeAccessMode RW = NODE_ACCESS_MODE_RW;

class NodeItemRangeTest : public QObject {
    Q_OBJECT

private slots:
    void updateValsOfAnInteger();
    void updateValsOfAFloat();
    void updateValsOfAFloatWithoutIncrement();
    void everyByteThatIsNotZeroIsAnIncrement();
    void updateValsOfOtherTypes_data();
    void updateValsOfOtherTypes();
    void updateValsStopsWhereNotImplemented();
    void updateValsOfAnUnavailableNode();
    void updateValsFollowsTheAccess();
    void rangeFailuresLeaveTheRange_data();
    void rangeFailuresLeaveTheRange();
    void rangeFailuresAreNotStored();
    void unpluggedCamera();
};

void NodeItemRangeTest::updateValsOfAnInteger()
{
    scripted::NodeSpec spec = integerNode(640);
    spec.intMin = 8;
    spec.intMax = 1024;
    spec.intInc = 4;
    NodeBench bench({spec});
    const auto item = bench.item();
    item->updateVals(false);
    QCOMPARE(NodeBench::calls(), QStringList({"Nd_GetAccessMode(out)", "Nd_GetIntValue(out)", "Nd_GetIntMax(out)"}));
    QCOMPARE(item->getMaxInt(), 1024L);
    QCOMPARE(item->getMinInt(), 0L);
    QCOMPARE(item->getIncInt(), 0L);
    scripted::clearCalls();
    item->updateVals(true);
    QCOMPARE(NodeBench::calls(), QStringList({"Nd_GetAccessMode(out)", "Nd_GetIntValue(out)", "Nd_GetIntMax(out)",
                                              "Nd_GetIntMin(out)", "Nd_GetIntInc(out)"}));
    QCOMPARE(item->getMinInt(), 8L);
    QCOMPARE(item->getIncInt(), 4L);
}

void NodeItemRangeTest::updateValsOfAFloat()
{
    NodeBench bench({exposure()});
    const auto item = bench.item();
    item->updateVals(false);
    QCOMPARE(NodeBench::calls(),
             QStringList({"Nd_GetAccessMode(out)", "Nd_GetFloatValue(out)", "Nd_GetFloatMax(out)"}));
    QCOMPARE(item->getMaxFloat(), 1e6);
    QCOMPARE(item->getMinFloat(), 0.0);
    QVERIFY(!item->getHasIncFloat());
    scripted::clearCalls();
    item->updateVals(true);
    QCOMPARE(NodeBench::calls(), QStringList({"Nd_GetAccessMode(out)", "Nd_GetFloatValue(out)", "Nd_GetFloatMax(out)",
                                              "Nd_GetFloatMin(out)", "Nd_GetFloatHasInc(out)", "Nd_GetFloatInc(out)"}));
    QCOMPARE(item->getMinFloat(), 1.5);
    QVERIFY(item->getHasIncFloat());
    QCOMPARE(item->getIncFloat(), 0.5);
}

void NodeItemRangeTest::updateValsOfAFloatWithoutIncrement()
{
    scripted::NodeSpec spec = exposure();
    spec.floatHasInc = 0;
    NodeBench bench({spec});
    const auto item = bench.item();
    item->updateVals(true);
    QCOMPARE(scripted::count("Nd_GetFloatHasInc"), 1);
    QCOMPARE(scripted::count("Nd_GetFloatInc"), 0);
    QVERIFY(!item->getHasIncFloat());

    // Once an increment is known to exist, it is read even where the check for it fails.
    scripted::changeNode("ExposureTime", [](scripted::NodeSpec& node) { node.floatHasInc = 1; });
    item->updateVals(true);
    scripted::failAlways("Nd_GetFloatHasInc", CAM_API_STS_TIMEOUT);
    item->updateVals(true);
    QCOMPARE(scripted::count("Nd_GetFloatInc"), 2);
}

void NodeItemRangeTest::everyByteThatIsNotZeroIsAnIncrement()
{
    scripted::NodeSpec spec = exposure();
    spec.floatHasInc = 2;
    NodeBench bench({spec});
    const auto item = bench.item();
    item->updateVals(true);
    QCOMPARE(item->getHasIncFloat(), true);
    QCOMPARE(item->getIncFloat(), 0.5);
}

void NodeItemRangeTest::updateValsOfOtherTypes_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QStringList>("reads");
    QTest::newRow("boolean") << 3 << QStringList{"Nd_GetBoolValue(out)"};
    QTest::newRow("command") << 4 << QStringList();
    QTest::newRow("string") << 6 << QStringList{"Nd_GetStrValue(null, out)", "Nd_GetStrValue(out, out)"};
    QTest::newRow("category") << 8 << QStringList();
}

void NodeItemRangeTest::updateValsOfOtherTypes()
{
    QFETCH(int, type);
    QFETCH(QStringList, reads);
    NodeBench bench({nodeOf(static_cast<NodeType>(type))});
    const auto item = bench.item();
    item->updateVals(true);
    QCOMPARE(NodeBench::calls(), QStringList{"Nd_GetAccessMode(out)"} + reads);
}

void NodeItemRangeTest::updateValsStopsWhereNotImplemented()
{
    NodeBench bench({exposure()}, OpeLogRange);
    const auto item = bench.item();
    scripted::changeNode("ExposureTime", [](scripted::NodeSpec& spec) { spec.access = NODE_ACCESS_MODE_NI; });
    item->updateVals(true);
    QCOMPARE(NodeBench::calls(), QStringList{"Nd_GetAccessMode(out)"});
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("== Not Implemented == us")));
    QCOMPARE(bench.log, QStringList());
}

void NodeItemRangeTest::updateValsOfAnUnavailableNode()
{
    NodeBench bench({with(NODE_ACCESS_MODE_NA, integerNode(1))});
    const auto item = bench.item();
    item->updateVals(true);
    QCOMPARE(NodeBench::calls(),
             QStringList({"Nd_GetAccessMode(out)", "Nd_GetIntMax(out)", "Nd_GetIntMin(out)", "Nd_GetIntInc(out)"}));
}

void NodeItemRangeTest::updateValsFollowsTheAccess()
{
    NodeBench bench({with(NODE_ACCESS_MODE_NA, exposure())});
    const auto item = bench.item();
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("== Not Available == us")));
    scripted::changeNode("ExposureTime", [](scripted::NodeSpec& spec) { spec.access = NODE_ACCESS_MODE_RW; });
    item->updateVals(false);
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("12.35 us")));
    QVERIFY(item->isEditable());
}

void NodeItemRangeTest::rangeFailuresLeaveTheRange_data()
{
    QTest::addColumn<QString>("operation");
    for (const char* operation : {"Nd_GetIntMax", "Nd_GetIntMin", "Nd_GetIntInc", "Nd_GetFloatMax", "Nd_GetFloatMin",
                                  "Nd_GetFloatHasInc", "Nd_GetFloatInc"})
        QTest::newRow(operation) << QString(operation);
}

void NodeItemRangeTest::rangeFailuresLeaveTheRange()
{
    QFETCH(QString, operation);
    scripted::NodeSpec width = integerNode(640, "Width");
    width.intMin = 8;
    width.intMax = 1024;
    width.intInc = 4;
    NodeBench bench({width, exposure()});
    const auto integer = bench.item("Width");
    const auto real = bench.item("ExposureTime");
    integer->updateVals(true);
    real->updateVals(true);
    scripted::changeNode("Width", [](scripted::NodeSpec& spec) {
        spec.intMin = 16;
        spec.intMax = 2048;
        spec.intInc = 8;
    });
    scripted::changeNode("ExposureTime", [](scripted::NodeSpec& spec) {
        spec.floatMin = 3;
        spec.floatMax = 2e6;
        spec.floatInc = 1;
    });
    scripted::failAlways(operation.toStdString(), CAM_API_STS_TIMEOUT);
    integer->updateVals(true);
    real->updateVals(true);
    const auto failed = [&](const char* name) { return operation == name; };
    QCOMPARE(integer->getMaxInt(), failed("Nd_GetIntMax") ? 1024L : 2048L);
    QCOMPARE(integer->getMinInt(), failed("Nd_GetIntMin") ? 8L : 16L);
    QCOMPARE(integer->getIncInt(), failed("Nd_GetIntInc") ? 4L : 8L);
    QCOMPARE(real->getMaxFloat(), failed("Nd_GetFloatMax") ? 1e6 : 2e6);
    QCOMPARE(real->getMinFloat(), failed("Nd_GetFloatMin") ? 1.5 : 3.0);
    QVERIFY(real->getHasIncFloat());
    QCOMPARE(real->getIncFloat(), failed("Nd_GetFloatInc") ? 0.5 : 1.0);
}

void NodeItemRangeTest::rangeFailuresAreNotStored()
{
    NodeBench bench({integerNode(1)}, OpeLogRange);
    const auto item = bench.item();
    scripted::failAlways("Nd_GetIntMax", CAM_API_STS_TIMEOUT);
    item->updateVals(true);
    QCOMPARE(bench.log.size(), 2);
    for (const QString& entry : bench.log)
        QVERIFY(!entry.contains("Failed!!"));
    QCOMPARE(scripted::count("Nd_GetIntMin"), 1);
    QCOMPARE(item->getNodeValue(false, false), QString("1"));
    QCOMPARE(scripted::count("Nd_GetIntValue"), 1); // the cached text is still valid
}

void NodeItemRangeTest::unpluggedCamera()
{
    NodeBench bench({exposure(), enumNode({RO}, "Mode")});
    const auto real = bench.item("ExposureTime");
    const auto enumeration = bench.item("Mode");
    scripted::unplug();
    real->updateVals(true);
    enumeration->updateVals(true);
    QCOMPARE(real->getAccessMode(), RW); // unchanged
    QCOMPARE(real->data(Qt::EditRole), QVariant(QString("12.35 us")));
    QCOMPARE(enumeration->getItemsValue(), QStringList());
    QCOMPARE(enumeration->getEnumIntValue(), 0L);
    QCOMPARE(real->setNodeValue(QString("1500 us")), 19);
    QCOMPARE(real->data(Qt::EditRole), QVariant(QString("12.35 us")));
}

} // namespace

ORVO_TEST_CLASS(NodeItemRangeTest)
#include "NodeItemRangeTest.moc"

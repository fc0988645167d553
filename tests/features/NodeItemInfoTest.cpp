// The line of additional information.

#include "tests/features/NodeBench.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <limits>

namespace {

using namespace Orvo;

constexpr NodeAccessMode RO = NODE_ACCESS_MODE_RO;

class NodeItemInfoTest : public QObject {
    Q_OBJECT

private slots:
    void integers_data();
    void integers();
    void floats_data();
    void floats();
    void rangeThatWasNeverRead();
    void rangeIsNotReadAgain();
    void enumeration();
    void enumerationThatCannotBeRead();
    void markers();
    void otherTypes_data();
    void otherTypes();

private:
    static void expectText(const scripted::NodeSpec& spec);
};

/// Expects the data row's text, without a further call of the camera.
void NodeItemInfoTest::expectText(const scripted::NodeSpec& spec)
{
    NodeBench bench({spec});
    const auto item = bench.item();
    item->updateVals(true);
    scripted::clearCalls();
    QTEST(item->getAdditionalInfo(), "text");
    QCOMPARE(NodeBench::calls(), QStringList());
}

void NodeItemInfoTest::integers_data()
{
    QTest::addColumn<int>("representation");
    QTest::addColumn<qlonglong>("minimum");
    QTest::addColumn<qlonglong>("maximum");
    QTest::addColumn<qlonglong>("increment");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, int representation, qlonglong minimum, qlonglong maximum, qlonglong increment,
                        const char* text) {
        QTest::newRow(name) << representation << minimum << maximum << increment << QString(text);
    };
    row("decimal", 3, 0, 4095, 1, "Max = 4095, Min = 0, Inc = 1");
    row("linear", 0, -8, 8, 2, "Max = 8, Min = -8, Inc = 2");
    row("hexadecimal", 4, 0, 4095, 1, "Max = 0x00000fff, Min = 0x00000000, Inc = 0x00000001");
    row("IPv4 in decimal", 5, 0, 0xFFFFFFFF, 1, "Max = 4294967295, Min = 0, Inc = 1");
    row("MAC in decimal", 6, 0, 0xFFFFFFFFFFFF, 1, "Max = 281474976710655, Min = 0, Inc = 1");
    row("increment 0 is shown", 3, 0, 10, 0, "Max = 10, Min = 0, Inc = 0");
    row("negative increment is shown", 3, 0, 10, -2, "Max = 10, Min = 0, Inc = -2");
    row("whole range", 3, INT64_MIN, INT64_MAX, 1, "Max = 9223372036854775807, Min = -9223372036854775808, Inc = 1");
    row("whole range in hexadecimal", 4, INT64_MIN, INT64_MAX, 1,
        "Max = 0x7fffffffffffffff, Min = 0x8000000000000000, Inc = 0x00000001");
}

void NodeItemInfoTest::integers()
{
    QFETCH(int, representation);
    QFETCH(qlonglong, minimum);
    QFETCH(qlonglong, maximum);
    QFETCH(qlonglong, increment);
    scripted::NodeSpec spec = with(static_cast<NodeRepresentation>(representation), integerNode(0));
    spec.intMin = minimum;
    spec.intMax = maximum;
    spec.intInc = increment;
    expectText(spec);
}

void NodeItemInfoTest::floats_data()
{
    QTest::addColumn<int>("notation");
    QTest::addColumn<double>("minimum");
    QTest::addColumn<double>("maximum");
    QTest::addColumn<bool>("hasIncrement");
    QTest::addColumn<QString>("text");
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("with increment") << 1 << 1.5 << 1000.0 << true << "Max = 1000.00, Min = 1.50, Inc = 0.25";
    QTest::newRow("without") << 1 << 1.5 << 1000.0 << false << "Max = 1000.00, Min = 1.50. Does not have Inc value.";
    QTest::newRow("scientific") << 2 << 1.5 << 1000.0 << true << "Max = 1.00e+03, Min = 1.50e+00, Inc = 2.50e-01";
    QTest::newRow("infinite") << 1 << -infinity << infinity << false
                              << "Max = inf, Min = -inf. Does not have Inc value.";
    QTest::newRow("not a number") << 1 << nan << nan << false << "Max = nan, Min = nan. Does not have Inc value.";
}

void NodeItemInfoTest::floats()
{
    QFETCH(int, notation);
    QFETCH(double, minimum);
    QFETCH(double, maximum);
    QFETCH(bool, hasIncrement);
    scripted::NodeSpec spec = floatNode(2);
    spec.unit = "us"; // not shown here
    spec.notation = static_cast<FloatDisplayNotation>(notation);
    spec.floatMin = minimum;
    spec.floatMax = maximum;
    spec.floatHasInc = hasIncrement ? 1 : 0;
    spec.floatInc = 0.25;
    expectText(spec);
}

void NodeItemInfoTest::rangeThatWasNeverRead()
{
    NodeBench bench({integerNode(5, "Integer"), floatNode(5, "Float"),
                     with(NODE_REPRESENTATION_HEX_NUMBER, integerNode(5, "Hex"))});
    QCOMPARE(bench.item("Integer")->getAdditionalInfo(), QString("Max = 0, Min = 0, Inc = 0"));
    QCOMPARE(bench.item("Hex")->getAdditionalInfo(), QString("Max = 0x00000000, Min = 0x00000000, Inc = 0x00000000"));
    QCOMPARE(bench.item("Float")->getAdditionalInfo(), QString("Max = 0.00, Min = 0.00. Does not have Inc value."));
}

void NodeItemInfoTest::rangeIsNotReadAgain()
{
    NodeBench bench({exposure()});
    const auto item = bench.item();
    item->updateVals(true);
    scripted::changeNode("ExposureTime", [](scripted::NodeSpec& spec) { spec.floatMax = 7; });
    QCOMPARE(item->getAdditionalInfo(), QString("Max = 1000000.00, Min = 1.50, Inc = 0.50"));
}

void NodeItemInfoTest::enumeration()
{
    scripted::NodeSpec spec = nodeOf(NODE_TYPE_ENUMERATION, "AcquisitionMode");
    spec.entries = {scripted::enumEntry("Continuous", 0), scripted::enumEntry("SingleFrame", -3)};
    spec.unit = "frames"; // not shown here
    NodeBench bench({spec});
    const auto item = bench.item();
    QCOMPARE(item->getAdditionalInfo(), QString("Current value is Continuous (0)"));
    QCOMPARE(NodeBench::calls(), QStringList{"Nd_GetEnumIntValue(out)"});

    // The text is that of the last read; the number comes from the camera.
    scripted::changeNode("AcquisitionMode", [](scripted::NodeSpec& node) { node.intValue = -3; });
    QCOMPARE(item->getAdditionalInfo(), QString("Current value is Continuous (-3)"));
    item->getNodeValue(false, true);
    QCOMPARE(item->getAdditionalInfo(), QString("Current value is SingleFrame (-3)"));
}

void NodeItemInfoTest::enumerationThatCannotBeRead()
{
    NodeBench bench({with(NODE_ACCESS_MODE_NA, enumNode({RO})), enumNode({RO}, "Other"), enumNode({}, "Empty")});
    QCOMPARE(bench.item("Node")->getAdditionalInfo(), QString("Current value is == Not Available == (0)"));
    const auto other = bench.item("Other");
    scripted::failAlways("Nd_GetEnumIntValue", CAM_API_STS_TIMEOUT);
    QCOMPARE(other->getAdditionalInfo(), QString("Current value is First (0)"));
    scripted::heal("Nd_GetEnumIntValue");
    QCOMPARE(bench.item("Empty")->getAdditionalInfo(), QString("Current value is  (10)"));
}

void NodeItemInfoTest::markers()
{
    scripted::NodeSpec spec = nodeOf(NODE_TYPE_ENUMERATION);
    spec.entries = {scripted::enumEntry("<i>%1</i>%2", 7)};
    spec.intValue = 7;
    NodeBench bench({spec});
    QCOMPARE(bench.item()->getAdditionalInfo(), QString("Current value is <i>%1</i>%2 (7)"));
}

void NodeItemInfoTest::otherTypes_data()
{
    QTest::addColumn<int>("type");
    for (const int type : {0, 1, 3, 4, 6, 7, 8, 10, 11, 12, 13})
        QTest::addRow("type %d", type) << type;
}

void NodeItemInfoTest::otherTypes()
{
    QFETCH(int, type);
    NodeBench bench({nodeOf(static_cast<NodeType>(type))});
    const auto item = bench.item();
    item->updateVals(true);
    scripted::clearCalls();
    QCOMPARE(item->getAdditionalInfo(), QString());
    QCOMPARE(NodeBench::calls(), QStringList());
}

} // namespace

ORVO_TEST_CLASS(NodeItemInfoTest)
#include "NodeItemInfoTest.moc"

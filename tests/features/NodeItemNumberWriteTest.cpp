// Writing numbers, as a slider does.

#include "tests/features/NodeBench.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <limits>

namespace {

using namespace Orvo;

constexpr NodeAccessMode RO = NODE_ACCESS_MODE_RO;

class NodeItemNumberWriteTest : public QObject {
    Q_OBJECT

private slots:
    void integersByNumber_data();
    void integersByNumber();
    void integerByNumberFails();
    void enumerationByNumber();
    void enumerationByNumberFails();
    void numberOfOtherTypes_data();
    void numberOfOtherTypes();
    void floatsByNumber_data();
    void floatsByNumber();
    void floatByNumberInvalidatesTheCache();
    void floatByNumberFails();
};

QString written(const char* operation, const QString& value)
{
    return QString(operation) + '(' + value + ", true)";
}

void NodeItemNumberWriteTest::integersByNumber_data()
{
    QTest::addColumn<qlonglong>("value");
    QTest::newRow("small") << 31LL;
    QTest::newRow("beyond 32 bits") << 0x123456789LL;
    QTest::newRow("least") << static_cast<qlonglong>(INT64_MIN);
    QTest::newRow("most") << static_cast<qlonglong>(INT64_MAX);
}

void NodeItemNumberWriteTest::integersByNumber()
{
    QFETCH(qlonglong, value);
    scripted::NodeSpec spec = integerNode(5);
    spec.unit = "px";
    NodeBench bench({spec});
    const auto item = bench.item();
    QCOMPARE(item->setNodeValue(static_cast<long>(value)), 0);
    QCOMPARE(NodeBench::calls(),
             QStringList({written("Nd_SetIntValue", QString::number(value)), "Nd_GetIntValue(out)"}));
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString::number(value) + " px"));
    QCOMPARE(item->getValInt(false), static_cast<long>(value));
}

void NodeItemNumberWriteTest::integerByNumberFails()
{
    NodeBench bench({integerNode(5)});
    const auto item = bench.item();
    scripted::failCall("Nd_SetIntValue", CAM_API_STS_BUSY);
    QCOMPARE(item->setNodeValue(31L), 2053);
    QCOMPARE(scripted::count("Nd_GetIntValue"), 0);
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("5")));
    item->getNodeValue(false, false);
    QCOMPARE(scripted::count("Nd_GetIntValue"), 1); // no longer cached

    scripted::failCall("Nd_GetIntValue", CAM_API_STS_BUSY);
    QCOMPARE(item->setNodeValue(31L), 0); // the status is that of the write
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("5")));
}

void NodeItemNumberWriteTest::enumerationByNumber()
{
    NodeBench bench({enumNode({RO, RO})});
    const auto item = bench.item();
    QCOMPARE(item->setNodeValue(20L), 0);
    QCOMPARE(NodeBench::calls(), QStringList({"Nd_SetEnumIntValue(20, true)", "Nd_GetEnumStrValue(null, out)",
                                              "Nd_GetEnumStrValue(out, out)"}));
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("Second")));
}

void NodeItemNumberWriteTest::enumerationByNumberFails()
{
    NodeBench bench({enumNode({RO, RO})});
    const auto item = bench.item();
    QCOMPARE(item->setNodeValue(99L), 13);
    QCOMPARE(NodeBench::calls(), QStringList{"Nd_SetEnumIntValue(99, true)"});
    QCOMPARE(item->getNodeValue(false, false), QString("First"));
    QCOMPARE(scripted::count("Nd_GetEnumStrValue"), 2);
}

void NodeItemNumberWriteTest::numberOfOtherTypes_data()
{
    QTest::addColumn<int>("type");
    for (const int type : {3, 4, 5, 6, 8, 10})
        QTest::addRow("type %d", type) << type;
}

void NodeItemNumberWriteTest::numberOfOtherTypes()
{
    QFETCH(int, type);
    NodeBench bench({nodeOf(static_cast<NodeType>(type))}, OpeLogRange);
    const auto item = bench.item();
    QCOMPARE(item->setNodeValue(1L), 13);
    if (type != NODE_TYPE_FLOAT)
        QCOMPARE(item->setNodeValue(1.0), 13);
    QCOMPARE(NodeBench::calls(), QStringList());
    QCOMPARE(bench.log, QStringList());
}

void NodeItemNumberWriteTest::floatsByNumber_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("argument");
    QTest::newRow("fraction") << 0.1 << "0.1";
    QTest::newRow("beyond 32 bits") << 1e15 << "1e+15";
    QTest::newRow("negative") << -2.5 << "-2.5";
}

void NodeItemNumberWriteTest::floatsByNumber()
{
    QFETCH(double, value);
    QFETCH(QString, argument);
    NodeBench bench({floatNode(5)});
    const auto item = bench.item();
    QCOMPARE(item->setNodeValue(value), 0);
    QCOMPARE(NodeBench::calls(), QStringList{written("Nd_SetFloatValue", argument)}); // nothing is read back
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("5.00")));                    // until the next read
}

void NodeItemNumberWriteTest::floatByNumberInvalidatesTheCache()
{
    NodeBench bench({floatNode(5)});
    const auto item = bench.item();
    item->setNodeValue(7.25);
    QCOMPARE(item->getNodeValue(true, false), QString("7.25"));
    QCOMPARE(scripted::count("Nd_GetFloatValue"), 1);
    QCOMPARE(item->getValFloat(false), 7.25);
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("7.25")));
}

void NodeItemNumberWriteTest::floatByNumberFails()
{
    constexpr double kValues[] = {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                                  -std::numeric_limits<double>::infinity()};
    NodeBench bench({floatNode(5)});
    const auto item = bench.item();
    for (const double value : kValues) {
        scripted::clearCalls();
        QCOMPARE(item->setNodeValue(value), 13);
        QCOMPARE(NodeBench::calls().size(), 1);
        QCOMPARE(item->getNodeValue(false, false), QString("5.00"));
        QCOMPARE(scripted::count("Nd_GetFloatValue"), 1);
    }
    QCOMPARE(item->setNodeValue(QString("nan")), 13);
    QCOMPARE(item->setNodeValue(QString("inf")), 13);
    QCOMPARE(scripted::count("Nd_SetFloatValue"), 3); // these, too, are left to the camera
}

} // namespace

ORVO_TEST_CLASS(NodeItemNumberWriteTest)
#include "NodeItemNumberWriteTest.moc"

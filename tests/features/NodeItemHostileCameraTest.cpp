// Reading from cameras that return extreme, changing or broken values.

#include "tests/features/NodeBench.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using namespace Orvo;

constexpr NodeAccessMode RO = NODE_ACCESS_MODE_RO;

class NodeItemHostileCameraTest : public QObject {
    Q_OBJECT

private slots:
    void stringsOfTheCamera_data();
    void stringsOfTheCamera();
    void hugeString();
    void absurdSizes();
    void enumerationOfSizeZero();
    void emptyEntryNameIsAValue();
    void valueThatChangesBetweenTheCalls();
    void numbersAreCachedUntilReadAgain();
    void extremeIntegers_data();
    void extremeIntegers();
    void extremeFloats();
};

// --- Texts from the camera ------------------------------------------------------------------------------------------

void NodeItemHostileCameraTest::stringsOfTheCamera_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("line breaks") << QByteArray("a\nb\r\n") << "a\nb\r\n";
    QTest::newRow("not UTF-8") << QByteArray("a\xFF") << QString("a") + QChar(QChar::ReplacementCharacter);
    QTest::newRow("4095 bytes") << QByteArray(4095, 'x') << QString(4095, 'x');
}

void NodeItemHostileCameraTest::stringsOfTheCamera()
{
    QFETCH(QByteArray, bytes);
    NodeBench bench({stringNode(bytes.toStdString())});
    QTEST(bench.item()->getNodeValue(true, true), "text");
}

void NodeItemHostileCameraTest::hugeString()
{
    NodeBench bench({stringNode(std::string(65535, 'x'))});
    const auto item = bench.item();
    QCOMPARE(item->getNodeValue(true, true), QString(65535, 'x'));
    QCOMPARE(item->data(Qt::EditRole).toString().size(), 65535);
}

void NodeItemHostileCameraTest::absurdSizes()
{
    // A library that announces an impossible size: the text counts as not read.
    static std::uint32_t announced;
    static int calls;
    for (const std::uint32_t size : {0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
        QString text = "before";
        announced = size;
        calls = 0;
        const NodeTextOperation operation = [](CAM_HANDLE, CAM_NODE_HANDLE, char*, std::uint32_t* needed) {
            ++calls;
            *needed = announced;
            return CAM_API_STATUS{CAM_API_STS_SUCCESS};
        };
        QCOMPARE(readText(operation, 1, 1, text), CAM_API_STS_UNSUCCESSFUL);
        QCOMPARE(calls, 1);
        QCOMPARE(text, QString("before"));
    }
    // A library that writes no terminator: the text ends at the announced size.
    QString text;
    const NodeTextOperation endless = [](CAM_HANDLE, CAM_NODE_HANDLE, char* buffer, std::uint32_t* size) {
        if (buffer == nullptr) {
            *size = 5;
        } else {
            std::fill_n(buffer, *size, 'x');
        }
        return CAM_API_STATUS{CAM_API_STS_SUCCESS};
    };
    QCOMPARE(readText(endless, 1, 1, text), CAM_API_STS_SUCCESS);
    QCOMPARE(text, QString("xxxxx"));
}

void NodeItemHostileCameraTest::enumerationOfSizeZero()
{
    NodeBench bench({enumNode({RO}), stringNode("old", "Text")}, OpeLogRead);
    const auto enumeration = bench.item("Node");
    scripted::failCall("Nd_GetEnumStrValue", CAM_API_STS_SUCCESS); // returns success, leaves the size 0
    QCOMPARE(enumeration->getNodeValue(false, true), QString("First"));
    QCOMPARE(NodeBench::calls(), QStringList{"Nd_GetEnumStrValue(null, out)"});
    QCOMPARE(bench.log.size(), 1);
    QVERIFY(bench.log[0].endsWith("Failed!! Status code: 0x0000000d.\n"));

    const auto entry = bench.item("EnumEntry_Node_First");
    scripted::failCall("Nd_GetEnumEntryStrValue", CAM_API_STS_SUCCESS);
    QCOMPARE(entry->getNodeValue(false, true), QString("First"));
    QCOMPARE(NodeBench::calls(), QStringList{"Nd_GetEnumEntryStrValue(null, out)"});

    const auto text = bench.item("Text"); // for a string the second call decides
    scripted::failCall("Nd_GetStrValue", CAM_API_STS_SUCCESS);
    QCOMPARE(text->getNodeValue(false, true), QString("old"));
    QCOMPARE(NodeBench::calls(), QStringList({"Nd_GetStrValue(null, out)", "Nd_GetStrValue(out, out)"}));
}

void NodeItemHostileCameraTest::emptyEntryNameIsAValue()
{
    scripted::NodeSpec nameless = enumNode({RO, RO});
    nameless.entries.front().name.clear();
    NodeBench bench({nameless}, OpeLogRead);
    const auto enumeration = bench.item("Node");
    QCOMPARE(enumeration->getNodeValue(false, true), QString());
    QCOMPARE(NodeBench::calls(), QStringList({"Nd_GetEnumStrValue(null, out)", "Nd_GetEnumStrValue(out, out)"}));
    QCOMPARE(bench.log.size(), 1);
    QVERIFY(!bench.log[0].contains("Failed"));

    const auto entry = bench.item("EnumEntry_Node_");
    QCOMPARE(entry->getNodeValue(false, true), QString());
    QCOMPARE(NodeBench::calls(),
             QStringList({"Nd_GetEnumEntryStrValue(null, out)", "Nd_GetEnumEntryStrValue(out, out)"}));
}

void NodeItemHostileCameraTest::valueThatChangesBetweenTheCalls()
{
    NodeBench bench({stringNode("short")}, OpeLogRead);
    const auto item = bench.item();
    int calls = 0;
    scripted::onCall("Nd_GetStrValue", [&calls] {
        if (++calls == 2)
            scripted::changeNode("Node", [](scripted::NodeSpec& spec) { spec.strValue = "much longer"; });
    });
    QCOMPARE(item->getNodeValue(false, true), QString("short"));
    QVERIFY(bench.log[0].endsWith("Failed!! Status code: 0x0000000d.\n")); // not 14, the status of a short buffer
    QCOMPARE(item->getNodeValue(false, false), QString("much longer"));
}

// --- Numbers --------------------------------------------------------------------------------------------------------

void NodeItemHostileCameraTest::numbersAreCachedUntilReadAgain()
{
    NodeBench bench({integerNode(7), floatNode(2.5, "Float")});
    const auto integer = bench.item("Node");
    QCOMPARE(integer->getValInt(false), 7L);
    QCOMPARE(integer->getValFloat(false), 0.0);
    scripted::changeNode("Node", [](scripted::NodeSpec& spec) { spec.intValue = 8; });
    QCOMPARE(integer->getValInt(false), 7L);
    QCOMPARE(integer->getValInt(true), 8L);
    const auto real = bench.item("Float");
    QCOMPARE(real->getValFloat(false), 2.5);
    QCOMPARE(real->getValInt(false), 0L);
}

void NodeItemHostileCameraTest::extremeIntegers_data()
{
    QTest::addColumn<qlonglong>("value");
    QTest::newRow("least") << static_cast<qlonglong>(INT64_MIN);
    QTest::newRow("most") << static_cast<qlonglong>(INT64_MAX);
    QTest::newRow("beyond 32 bits") << 0x123456789LL;
}

void NodeItemHostileCameraTest::extremeIntegers()
{
    QFETCH(qlonglong, value);
    scripted::NodeSpec spec = integerNode(value);
    spec.intMin = INT64_MIN;
    spec.intMax = INT64_MAX;
    spec.intInc = INT64_MAX;
    NodeBench bench({spec});
    const auto item = bench.item();
    item->updateVals(true);
    QCOMPARE(item->getValInt(true), static_cast<long>(value));
    QCOMPARE(item->getNodeValue(false, true), QString::number(value));
    QCOMPARE(item->getMinInt(), static_cast<long>(INT64_MIN));
    QCOMPARE(item->getMaxInt(), static_cast<long>(INT64_MAX));
    QCOMPARE(item->getIncInt(), static_cast<long>(INT64_MAX));
}

void NodeItemHostileCameraTest::extremeFloats()
{
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    scripted::NodeSpec spec = floatNode(std::numeric_limits<double>::quiet_NaN());
    spec.floatMin = -kInfinity;
    spec.floatMax = kInfinity;
    spec.precision = INT64_MAX;
    NodeBench bench({spec});
    const auto item = bench.item();
    item->updateVals(true);
    QCOMPARE(item->getNodeValue(false, true), QString("nan"));
    QVERIFY(std::isnan(item->getValFloat(true)));
    QCOMPARE(item->getMinFloat(), -kInfinity);
    QCOMPARE(item->getMaxFloat(), kInfinity);
    scripted::changeNode("Node", [](scripted::NodeSpec& node) { node.floatValue = -kInfinity; });
    QCOMPARE(item->getNodeValue(false, true), QString("-inf"));
    scripted::changeNode("Node", [](scripted::NodeSpec& node) { node.floatValue = 1e308; });
    QVERIFY(item->getNodeValue(false, true).size() > 308);
}

} // namespace

ORVO_TEST_CLASS(NodeItemHostileCameraTest)
#include "NodeItemHostileCameraTest.moc"

// Formatting node values, and parsing typed texts.

#include "features/item/NodeValueText.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <limits>

namespace {

using namespace Orvo;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

class NodeValueTextTest : public QObject {
    Q_OBJECT

private slots:
    void integers_data();
    void integers();
    void booleans();
    void floats_data();
    void floats();
    void absurdPrecision();
    void units_data();
    void units();
    void typed_data();
    void typed();
    void refused_data();
    void refused();
};

void NodeValueTextTest::integers_data()
{
    QTest::addColumn<qlonglong>("value");
    QTest::addColumn<int>("representation");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, qlonglong value, int representation, const char* text) {
        QTest::newRow(name) << value << representation << QString(text);
    };
    row("linear", 1234567, 0, "1234567");
    row("logarithmic", -5, 1, "-5");
    row("boolean", 1, 2, "1");
    row("pure number", 0xC0A80001, 3, "3232235521");
    row("unknown representation", 255, 7, "255");
    row("decimal least", INT64_MIN, 3, "-9223372036854775808");
    row("decimal most", INT64_MAX, 3, "9223372036854775807");
    row("hexadecimal", 255, 4, "0x000000ff");
    row("hexadecimal zero", 0, 4, "0x00000000");
    row("hexadecimal of more digits", 0x123456789ABC, 4, "0x123456789abc");
    row("hexadecimal negative", -1, 4, "0xffffffffffffffff");
    row("hexadecimal least", INT64_MIN, 4, "0x8000000000000000");
    row("hexadecimal most", INT64_MAX, 4, "0x7fffffffffffffff");
    row("IPv4", 0xC0A80001, 5, "192.168.0.1");
    row("IPv4 zero", 0, 5, "0.0.0.0");
    row("IPv4 above 32 bits", 0x1FF0A0B0C0D, 5, "10.11.12.13");
    row("IPv4 negative", -1, 5, "255.255.255.255");
    row("MAC", 0x0011223344AB, 6, "00-11-22-33-44-ab");
    row("MAC above 48 bits", 0x12AABBCCDDEEFF, 6, "aa-bb-cc-dd-ee-ff");
    row("MAC negative", -1, 6, "ff-ff-ff-ff-ff-ff");
}

void NodeValueTextTest::integers()
{
    QFETCH(qlonglong, value);
    QFETCH(int, representation);
    QTEST(integerText(value, static_cast<NodeRepresentation>(representation)), "text");
}

void NodeValueTextTest::booleans()
{
    QCOMPARE(boolText(false), QString("false"));
    QCOMPARE(boolText(true), QString("true"));
}

void NodeValueTextTest::floats_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<char>("format");
    QTest::addColumn<qlonglong>("precision");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, double value, char format, qlonglong precision, const char* text) {
        QTest::newRow(name) << value << format << precision << QString(text);
    };
    row("fixed", 12.3456, 'f', 2, "12.35");
    row("fixed, no digits", 12.4, 'f', 0, "12");
    row("fixed, many digits", 0.5, 'f', 10, "0.5000000000");
    row("automatic", 12.3456, 'g', 2, "12");
    row("automatic, large", 1234567.0, 'g', 3, "1.23e+06");
    row("scientific", 12.3456, 'e', 2, "1.23e+01");
    row("negative", -0.005, 'f', 2, "-0.01");
    row("infinity", kInfinity, 'f', 2, "inf");
    row("minus infinity", -kInfinity, 'f', 2, "-inf");
    row("NaN", kNotANumber, 'f', 2, "nan");
    row("negative precision", 1.0, 'f', -5, "1.000000");
    row("least precision", 1.0, 'f', INT64_MIN, "1.000000");
}

void NodeValueTextTest::floats()
{
    QFETCH(double, value);
    QFETCH(char, format);
    QFETCH(qlonglong, precision);
    QTEST(floatText(value, format, precision), "text");
}

void NodeValueTextTest::absurdPrecision()
{
    const QString text = floatText(5e-324, 'f', INT64_MAX);
    QCOMPARE(text.size(), 2 + 1074);
    QVERIFY(text.endsWith("3447265625")); // 2 to the power of -1074 is written in full
    QVERIFY(floatText(1e300, 'g', INT64_MAX).startsWith("1000000000000000052504760255204420248704468581108159154915"));
}

void NodeValueTextTest::units_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("value");
    QTest::newRow("unit") << "1500 us"
                          << "1500";
    QTest::newRow("no unit") << "1500"
                             << "1500";
    QTest::newRow("first of several blanks") << "1500 us per line"
                                             << "1500";
    QTest::newRow("leading blank") << " 1500"
                                   << " 1500";
    QTest::newRow("leading blank and unit") << " 1500 us"
                                            << " 1500 us";
    QTest::newRow("trailing blank") << "1500 "
                                    << "1500";
    QTest::newRow("blank alone") << " "
                                 << " ";
    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("tabulator") << "1500\tus"
                               << "1500\tus";
}

void NodeValueTextTest::units()
{
    QFETCH(QString, text);
    QTEST(withoutUnit(text), "value");
}

void NodeValueTextTest::typed_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("representation");
    QTest::addColumn<qlonglong>("value");
    QTest::addColumn<QString>("shown");
    const auto row = [](const char* text, int representation, qlonglong value, const char* shown) {
        QTest::addRow("%s as %d", text, representation) << QString(text) << representation << value << QString(shown);
    };
    row("31", 3, 31, "31");
    row("-31", 0, -31, "-31");
    row("+31", 0, 31, "31");
    row("0031", 3, 31, "31");
    row(" 31", 3, 31, "31");
    row("0x1F", 3, 31, "31");
    row("0x1f", 4, 31, "0x0000001f");
    row("31", 4, 31, "0x0000001f");
    row("0x7fffffffffffffff", 3, INT64_MAX, "9223372036854775807");
    row("9223372036854775807", 4, INT64_MAX, "0x7fffffffffffffff");
    row("-9223372036854775808", 3, INT64_MIN, "-9223372036854775808");
    row("-1", 4, -1, "0xffffffffffffffff");
    row("192.168.0.1", 5, 11013121, "192.168.0.1");
    row("0.0.0.0", 5, 0, "0.0.0.0");
    row("255.255.255.255", 5, 255 + 255LL * 256 + 255LL * 65536 + 255LL * 16, "255.255.255.255");
    row("256.257.258.259", 5, 3 + 2 * 256 + 65536, "0.1.2.3");
    row("-1.0.0.0", 5, 255LL * 16, "255.0.0.0");
    row("010.0.0.010", 5, 10 * 16 + 10, "10.0.0.10");
    row("0-17-34-51-68-171", 6, 0x0011223344AB, "00-11-22-33-44-ab");
    row("255-255-255-255-255-255", 6, 0xFFFFFFFFFFFF, "ff-ff-ff-ff-ff-ff");
    row("256-511-0-0-0-1", 6, 0x00FF00000001, "00-ff-00-00-00-01");
}

void NodeValueTextTest::typed()
{
    QFETCH(QString, text);
    QFETCH(int, representation);
    const auto typed = parseInteger(text, static_cast<NodeRepresentation>(representation));
    QVERIFY(typed.has_value());
    QTEST(static_cast<qlonglong>(typed->value), "value");
    QTEST(typed->text, "shown");
}

void NodeValueTextTest::refused_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("representation");
    const auto row = [](const char* text, int representation) {
        QTest::addRow("'%s' as %d", text, representation) << QString(text) << representation;
    };
    for (const int representation : {0, 3, 4, 5, 6}) {
        row("", representation);
        row("abc", representation);
    }
    row("0X1F", 3);
    row("0X1F", 4);
    row("1F", 4);
    row("0x", 3);
    row("-0x1F", 3);
    row("0x8000000000000000", 4);
    row("9223372036854775808", 3);
    row("1.5", 3);
    row("1,000", 3);
    row("1e3", 3);
    row(" 1500 us", 3);
    row("31", 5);
    row("1.2.3", 5);
    row("1.2.3.4.5", 5);
    row("1..3.4", 5);
    row("1.2.3.", 5);
    row("1.2.3.x", 5);
    row("1.2.3.0x4", 5);
    row("1.2.3.4294967296", 5);
    row("1-2-3-4", 5);
    row("00-11-22-33-44-ab", 6);
    row("0-17-34-51-68", 6);
    row("0-17-34-51-68-171-0", 6);
    row("0--17-34-51-68", 6);
    row("0:17:34:51:68:171", 6);
}

void NodeValueTextTest::refused()
{
    QFETCH(QString, text);
    QFETCH(int, representation);
    QVERIFY(!parseInteger(text, static_cast<NodeRepresentation>(representation)).has_value());
}

} // namespace

ORVO_TEST_CLASS(NodeValueTextTest)
#include "NodeValueTextTest.moc"

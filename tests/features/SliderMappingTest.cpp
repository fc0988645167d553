// Mapping between node values and slider positions, including ranges that no sane camera has.

#include "features/editors/LineEditWithSliderMapping.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <cmath>
#include <cstdint>
#include <limits>

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr int kWrapped = INT_MIN; // the result for positions beyond 32 bits

SliderMapping ofInts(std::int64_t minimum, std::int64_t maximum, std::int64_t increment = 1)
{
    SliderMapping mapping;
    mapping.minInt = minimum;
    mapping.maxInt = maximum;
    mapping.incInt = increment;
    return mapping;
}

SliderMapping ofFloats(double minimum, double maximum)
{
    SliderMapping mapping;
    mapping.minFloat = minimum;
    mapping.maxFloat = maximum;
    return mapping;
}

SliderMapping ofFloats(double minimum, double maximum, double increment)
{
    SliderMapping mapping = ofFloats(minimum, maximum);
    mapping.hasIncFloat = true;
    mapping.incFloat = increment;
    return mapping;
}

class SliderMappingTest : public QObject {
    Q_OBJECT

private slots:
    void intLinear_data();
    void intLinear();
    void intLog_data();
    void intLog();
    void floatLinear_data();
    void floatLinear();
    void floatLog_data();
    void floatLog();
    void loadingResetsTheMapping();

    void valuesAreClampedBeforeTheyAreMapped();
    void logRangeOfZeroIsPositionOne();
    void intOfPosition_data();
    void intOfPosition();
    void floatOfPosition_data();
    void floatOfPosition();
    void scaleZeroMeansTheValueZero();

    void validIntSnapsInTheRangeOfTheMapping();
    void validFloatTable_data();
    void validFloatTable();
};

// --- Loading --------------------------------------------------------------------------------------------------------

void SliderMappingTest::intLinear_data()
{
    QTest::addColumn<qint64>("minimum");
    QTest::addColumn<qint64>("maximum");
    QTest::addColumn<qint64>("value");
    QTest::addColumn<double>("scale");
    QTest::addColumn<int>("sliderMinimum");
    QTest::addColumn<int>("sliderMaximum");
    QTest::addColumn<int>("position");

    constexpr qint64 kTwo31 = qint64{1} << 31;
    const auto row = [](const char* name, qint64 minimum, qint64 maximum, qint64 value, double scale, int sliderMinimum,
                        int sliderMaximum, int position) {
        QTest::newRow(name) << minimum << maximum << value << scale << sliderMinimum << sliderMaximum << position;
    };
    row("0 to 100", 0, 100, 37, 1, 0, 100, 37);
    row("negative", -100, 100, -37, 1, -100, 100, -37);
    row("0 to 1", 0, 1, 1, 1, 0, 1, 1);
    row("24 bits", 0, 16777216, 3, 1, 0, 16777216, 3);
    row("one more than 24 bits", 0, 16777217, 1009, 0.1, 0, 1677721, 100);
    row("0 to 2^30", 0, 1073741824, 536870912, 0.01, 0, 10737418, 5368709);
    row("minimum is scaled too", -1073741824, 0, -1000, 0.01, -10737418, 0, -10);
    row("0 to 2^31 - 1", 0, kTwo31 - 1, 12345, 0.001, 0, 2147483, 12);
    row("0 to 2^31", 0, kTwo31, 5, 1, 0, kWrapped, 5);
    row("0 to 2^40", 0, qint64{1} << 40, 5, 1, 0, kWrapped, 5);
    row("2^40 within 0 to 2^40", 0, qint64{1} << 40, qint64{1} << 40, 1, 0, kWrapped, kWrapped);
    row("narrow but far out", qint64{1} << 40, (qint64{1} << 40) + 100, 0, 1, kWrapped, kWrapped, 0);
    row("all of 64 bits", INT64_MIN, INT64_MAX, 0, 1, kWrapped, kWrapped, 0);
    row("the largest", INT64_MIN, INT64_MAX, INT64_MAX, 1, kWrapped, kWrapped, kWrapped);
    row("the smallest", INT64_MIN, INT64_MAX, INT64_MIN, 1, kWrapped, kWrapped, kWrapped);
    row("span beyond 63 bits", -2, INT64_MAX, 7, 1, -2, kWrapped, 7);
    row("fixed", 7, 7, 7, 1, 7, 7, 7);
    row("fixed, with another value", 7, 7, 9, 1, 7, 7, 7);
    row("upside down", 9, 3, 5, 1, 9, 9, 9);
    row("fixed beyond 32 bits", (qint64{1} << 32) + 5, (qint64{1} << 32) + 5, 0, 1, 5, 5, 5);
    row("fixed at the end", INT64_MAX, INT64_MAX, INT64_MAX, 1, -1, -1, -1);
    row("64 bits upside down", INT64_MAX, INT64_MIN, 0, 1, -1, -1, -1);
}

void SliderMappingTest::intLinear()
{
    QFETCH(const qint64, minimum);
    QFETCH(const qint64, maximum);
    QFETCH(const qint64, value);
    SliderMapping mapping = ofInts(minimum, maximum);
    const SliderPositions positions = loadIntLinear(mapping, value);
    QTEST(mapping.scale, "scale");
    QTEST(positions.minimum, "sliderMinimum");
    QTEST(positions.maximum, "sliderMaximum");
    QTEST(positions.position, "position");
}

void SliderMappingTest::intLog_data()
{
    QTest::addColumn<qint64>("minimum");
    QTest::addColumn<qint64>("maximum");
    QTest::addColumn<qint64>("value");
    QTest::addColumn<double>("logOffset");
    QTest::addColumn<double>("logRange");
    QTest::addColumn<int>("sliderMaximum");
    QTest::addColumn<int>("position");

    const auto row = [](const char* name, qint64 minimum, qint64 maximum, qint64 value, double logOffset,
                        double logRange, int sliderMaximum, int position) {
        QTest::newRow(name) << minimum << maximum << value << logOffset << logRange << sliderMaximum << position;
    };
    row("1 of 1 to 1000000", 1, 1000000, 1, 0, std::log(1e6), 10000, 0);
    row("1000000 of 1 to 1000000", 1, 1000000, 1000000, 0, std::log(1e6), 10000, 10000);
    row("31 of 1 to 1000000", 1, 1000000, 31, 0, std::log(1e6), 10000, 2485);
    row("below the minimum", 1, 1000000, -5, 0, std::log(1e6), 10000, 0);
    row("above the maximum", 1, 1000000, 2000000, 0, std::log(1e6), 10000, 10000);
    row("0 to 1", 0, 1, 1, 1, std::log(2.0), 10000, 10000);
    row("negative", -99, 900, 0, 100, std::log(1000.0), 10000, 6666);
    row("beyond 32 bits", 0, qint64{1} << 40, (qint64{1} << 20) - 1, 1, std::log(std::pow(2.0, 40) + 1), 10000, 4999);
    row("middle of 64 bits", INT64_MIN, INT64_MAX, 0, std::pow(2.0, 63), std::log(std::pow(2.0, 64)), 10000, 9843);
    row("end of 64 bits", INT64_MIN, INT64_MAX, INT64_MAX, std::pow(2.0, 63), std::log(std::pow(2.0, 64)), 10000,
        10000);
    // Adding 1 is lost in rounding next to 2^63, so this is the logarithm of zero.
    row("start of 64 bits", INT64_MIN, INT64_MAX, INT64_MIN, std::pow(2.0, 63), std::log(std::pow(2.0, 64)), 10000,
        kWrapped);
    row("too far out for a double", (qint64{1} << 62), (qint64{1} << 62) + 1, qint64{1} << 62, -std::pow(2.0, 62),
        -kInf, 10000, kWrapped);
    row("fixed", 7, 7, 7, 0, 0, 0, 0);
    row("upside down", 9, 3, 5, 0, 0, 0, 0);
}

void SliderMappingTest::intLog()
{
    QFETCH(const qint64, minimum);
    QFETCH(const qint64, maximum);
    QFETCH(const qint64, value);
    SliderMapping mapping = ofInts(minimum, maximum);
    const SliderPositions positions = loadIntLog(mapping, true, value);
    QCOMPARE(mapping.scale, 1.0);
    QTEST(mapping.logOffset, "logOffset");
    QTEST(mapping.logRange, "logRange");
    QCOMPARE(positions.minimum, 0);
    QTEST(positions.maximum, "sliderMaximum");
    QTEST(positions.position, "position");
}

void SliderMappingTest::floatLinear_data()
{
    QTest::addColumn<double>("minimum");
    QTest::addColumn<double>("maximum");
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("scale");
    QTest::addColumn<int>("sliderMinimum");
    QTest::addColumn<int>("sliderMaximum");
    QTest::addColumn<int>("position");

    const auto row = [](const char* name, double minimum, double maximum, double value, double scale, int sliderMinimum,
                        int sliderMaximum, int position) {
        QTest::newRow(name) << minimum << maximum << value << scale << sliderMinimum << sliderMaximum << position;
    };
    row("0 to 1", 0, 1, 0.5, 1000, 0, 1000, 500);
    row("0 to 100", 0, 100, 50.25, 10, 0, 1000, 502);
    row("-1 to 1", -1, 1, -0.25, 1000, -1000, 1000, -250);
    row("255 positions are too few", 0, 255, 1, 10, 0, 2550, 10);
    row("255.9 counts as 255", 0, 255.9, 1, 10, 0, 2559, 10);
    row("256 positions are enough", 0, 256, 1.9, 1, 0, 256, 1);
    row("24 bits", 0, 16777216, 3, 1, 0, 16777216, 3);
    row("0 to 1e8", 0, 1e8, 5e7, 0.1, 0, 10000000, 5000000);
    row("0 to 2e9", 0, 2e9, 1e9, 0.001, 0, 2000000, 1000000);
    row("at most seven multiplications", 0, 1e-9, 1e-9, 1e7, 0, 0, 0);
    row("the seventh is enough", 0, 3e-5, 2e-5, 1e7, 0, 300, 200);
    // A span beyond 32 bits turns negative, which looks like a small one.
    row("0 to 3e9", 0, 3e9, 100, 1e7, 0, kWrapped, 1000000000);
    row("widest", -1e300, 1e300, 0, 1e7, kWrapped, kWrapped, 0);
    row("infinite", -kInf, kInf, 2, 1e7, kWrapped, kWrapped, 20000000);
    row("infinite value", -kInf, kInf, kInf, 1e7, kWrapped, kWrapped, kWrapped);
    row("span beyond double", -1.7e308, 1.7e308, 1, 1e7, kWrapped, kWrapped, 10000000);
    row("no number as value", 0, 1, kNan, 1000, 0, 1000, kWrapped);
    row("no number as minimum", kNan, 1, 0.5, 1, kWrapped, kWrapped, kWrapped);
    row("no number as maximum", 3, kNan, 0.5, 1, 3, 3, 3);
    row("fixed", 5.5, 5.5, 5.5, 1, 5, 5, 5);
    row("upside down", 9, 3, 5, 1, 9, 9, 9);
    row("fixed beyond 32 bits", 1e10, 1e10, 1e10, 1, kWrapped, kWrapped, kWrapped);
}

void SliderMappingTest::floatLinear()
{
    QFETCH(const double, minimum);
    QFETCH(const double, maximum);
    QFETCH(const double, value);
    SliderMapping mapping = ofFloats(minimum, maximum);
    const SliderPositions positions = loadFloatLinear(mapping, value);
    QTEST(mapping.scale, "scale");
    QTEST(positions.minimum, "sliderMinimum");
    QTEST(positions.maximum, "sliderMaximum");
    QTEST(positions.position, "position");
}

void SliderMappingTest::floatLog_data()
{
    QTest::addColumn<double>("minimum");
    QTest::addColumn<double>("maximum");
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("scale");
    QTest::addColumn<double>("logOffset");
    QTest::addColumn<double>("logRange");
    QTest::addColumn<int>("sliderMaximum");
    QTest::addColumn<int>("position");

    const auto row = [](const char* name, double minimum, double maximum, double value, double scale, double logOffset,
                        double logRange, int sliderMaximum, int position) {
        QTest::newRow(name) << minimum << maximum << value << scale << logOffset << logRange << sliderMaximum
                            << position;
    };
    row("0 of 0 to 1", 0, 1, 0, 1e7, 1, std::log(10000001.0), 10000, 0);
    row("1 of 0 to 1", 0, 1, 1, 1e7, 1, std::log(10000001.0), 10000, 10000);
    row("0.001 of 0 to 1", 0, 1, 0.001, 1e7, 1, std::log(10000001.0), 10000, 5714);
    row("span of 255", 0, 255, 255, 1e5, 1, std::log(25500001.0), 10000, 10000);
    row("span of 256", 0, 256, 15, 1, 1, std::log(257.0), 10000, 4996);
    row("minimum is scaled too", 1, 2, 1, 1e7, 1 - 1e7, std::log(10000001.0), 10000, 0);
    // The scale grows again at 16777215.x, but not at 16777216.x.
    row("just within 24 bits", 0, 167.772155, 0, 1e6, 1, std::log(167772156.0), 10000, 0);
    row("just beyond 24 bits", 0, 167.772165, 0, 1e5, 1, std::log(16777217.5), 10000, 0);
    row("exposure time", 10, 1000000, 10, 1, -9, std::log(999991.0), 10000, 0);
    row("exposure time, longest", 10, 1000000, 1e9, 1, -9, std::log(999991.0), 10000, 10000);
    row("exposure time, too short", 10, 1000000, 0, 1, -9, std::log(999991.0), 10000, 0);
    // A span beyond 32 bits turns negative, which looks like a small one.
    row("0 to 3e9", 0, 3e9, 3e9, 1e7, 1, std::log(3e16 + 1), 10000, 10000);
    row("no number as value", 10, 1000000, kNan, 1, -9, std::log(999991.0), 10000, kWrapped);
    row("infinite maximum", 0, kInf, 5, 1e7, 1, kInf, 10000, 0);
    row("infinite value", 0, kInf, kInf, 1e7, 1, kInf, 10000, kWrapped);
    row("fixed", 5.5, 5.5, 5.5, 1, 0, 0, 0, 0);
    row("upside down", 9, 3, 5, 1, 0, 0, 0, 0);
    row("no number as minimum", kNan, 1, 0.5, 1, 0, 0, 0, 0);
    row("no number as maximum", 3, kNan, 0.5, 1, 0, 0, 0, 0);
}

void SliderMappingTest::floatLog()
{
    QFETCH(const double, minimum);
    QFETCH(const double, maximum);
    QFETCH(const double, value);
    SliderMapping mapping = ofFloats(minimum, maximum);
    const SliderPositions positions = loadFloatLog(mapping, true, value);
    QTEST(mapping.scale, "scale");
    QTEST(mapping.logOffset, "logOffset");
    QTEST(mapping.logRange, "logRange");
    QCOMPARE(positions.minimum, 0);
    QTEST(positions.maximum, "sliderMaximum");
    QTEST(positions.position, "position");
}

void SliderMappingTest::loadingResetsTheMapping()
{
    SliderMapping mapping = ofInts(0, 1073741824);
    static_cast<void>(loadIntLinear(mapping, 0));
    QCOMPARE(mapping.scale, 0.01);
    mapping.maxInt = 100;
    static_cast<void>(loadIntLinear(mapping, 0));
    QCOMPARE(mapping.scale, 1.0);

    SliderMapping fraction = ofFloats(0, 1);
    static_cast<void>(loadFloatLinear(fraction, 0));
    QCOMPARE(fraction.scale, 1000.0);
    static_cast<void>(loadFloatLinear(fraction, 0));
    QCOMPARE(fraction.scale, 1000.0);
    static_cast<void>(loadFloatLog(fraction, true, 0));
    QCOMPARE(fraction.scale, 10000000.0);
    static_cast<void>(loadFloatLog(fraction, true, 0));
    QCOMPARE(fraction.scale, 10000000.0);
}

// --- Between values and positions -----------------------------------------------------------------------------------

void SliderMappingTest::valuesAreClampedBeforeTheyAreMapped()
{
    SliderMapping ints = ofInts(-10, 100);
    static_cast<void>(loadIntLinear(ints, 0));
    QCOMPARE(intToPosition(ints, false, -11), -10);
    QCOMPARE(intToPosition(ints, false, 37), 37);
    QCOMPARE(intToPosition(ints, false, INT64_MAX), 100);

    SliderMapping floats = ofFloats(-1, 1);
    static_cast<void>(loadFloatLinear(floats, 0));
    QCOMPARE(floatToPosition(floats, false, -kInf), -1000);
    QCOMPARE(floatToPosition(floats, false, 0.5), 500);
    QCOMPARE(floatToPosition(floats, false, 1e9), 1000);

    // An empty range has a single position.
    QCOMPARE(intToPosition(ofInts(7, 7), false, 9), 7);
    QCOMPARE(intToPosition(ofInts(7, 7), true, 9), 0);
    QCOMPARE(floatToPosition(ofFloats(7.9, 7.9), false, 9), 7);
    QCOMPARE(floatToPosition(ofFloats(7.9, 7.9), true, 9), 0);
}

// Integers only: floats have no such special case.
void SliderMappingTest::logRangeOfZeroIsPositionOne()
{
    QCOMPARE(intToPosition(ofInts(0, 100), true, 50), 1);
    QCOMPARE(floatToPosition(ofFloats(0, 100), true, 50), kWrapped);
}

void SliderMappingTest::intOfPosition_data()
{
    QTest::addColumn<bool>("logarithmic");
    QTest::addColumn<qint64>("minimum");
    QTest::addColumn<qint64>("maximum");
    QTest::addColumn<qint64>("increment");
    QTest::addColumn<int>("position");
    QTest::addColumn<qint64>("value");

    const auto row = [](const char* name, bool logarithmic, qint64 minimum, qint64 maximum, qint64 increment,
                        int position, qint64 value) {
        QTest::newRow(name) << logarithmic << minimum << maximum << increment << position << value;
    };
    row("linear", false, 0, 100, 1, 37, 37);
    row("linear, negative", false, -100, 100, 1, -37, -37);
    row("linear, on a step", false, 0, 100, 16, 37, 32);
    row("linear, scaled", false, 0, 1073741824, 1, 5368709, 536870900);
    row("linear, beyond the maximum", false, 0, 100, 1, 101, 100);
    row("linear, wrapped slider", false, 0, qint64{1} << 40, 1, kWrapped, 0);
    row("linear, 64 bits", false, INT64_MIN, INT64_MAX, 1, kWrapped, INT_MIN);
    row("linear, fixed", false, 7, 7, 1, 7, 7);
    row("logarithmic, start", true, 1, 1000000, 1, 0, 1);
    row("logarithmic, middle", true, 1, 1000000, 1, 5000, 999); // truncated
    row("logarithmic, on a step", true, 0, 4096, 16, 5000, 64);
    row("logarithmic, fixed", true, 7, 7, 1, 0, 7);
    row("logarithmic, end of 64 bits", true, INT64_MIN, INT64_MAX, 1, 10000, INT64_MAX - 26623); // rounding of exp()
    row("logarithmic, 2^63 does not wrap", true, -1000000, INT64_MAX, 1, 10000, INT64_MAX);
    row("logarithmic, start of 64 bits", true, INT64_MIN, INT64_MAX, 1, 0, INT64_MIN);
    row("logarithmic, too far out for a double", true, qint64{1} << 62, (qint64{1} << 62) + 1, 1, 0, qint64{1} << 62);
}

void SliderMappingTest::intOfPosition()
{
    QFETCH(const bool, logarithmic);
    QFETCH(const qint64, minimum);
    QFETCH(const qint64, maximum);
    QFETCH(const qint64, increment);
    QFETCH(const int, position);
    SliderMapping mapping = ofInts(minimum, maximum, increment);
    static_cast<void>(logarithmic ? loadIntLog(mapping, true, 0) : loadIntLinear(mapping, 0));
    const qint64 value = positionToInt(mapping, logarithmic, position);
    QTEST(value, "value");
}

void SliderMappingTest::floatOfPosition_data()
{
    QTest::addColumn<bool>("logarithmic");
    QTest::addColumn<double>("minimum");
    QTest::addColumn<double>("maximum");
    QTest::addColumn<int>("position");
    QTest::addColumn<double>("value");

    QTest::newRow("linear") << false << 0.0 << 1.0 << 500 << 0.5;
    QTest::newRow("linear, negative") << false << -1.0 << 1.0 << -250 << -0.25;
    QTest::newRow("linear, scaled down") << false << 0.0 << 1e8 << 5000000 << 5e7;
    QTest::newRow("linear, beyond the maximum") << false << 0.0 << 1.0 << 1001 << 1.0;
    QTest::newRow("linear, below the minimum") << false << 0.0 << 1.0 << -1 << 0.0;
    QTest::newRow("linear, wrapped slider") << false << 0.0 << 3e9 << kWrapped << 0.0;
    QTest::newRow("linear, infinite") << false << -kInf << kInf << 20000000 << 2.0;
    QTest::newRow("linear, fixed") << false << 5.5 << 5.5 << 5 << 5.5;
    QTest::newRow("logarithmic, start") << true << 10.0 << 1e6 << 0 << 10.0;
    QTest::newRow("logarithmic, middle") << true << 10.0 << 1e6 << 5000 << std::sqrt(999991.0) + 9;
    QTest::newRow("logarithmic, end") << true << 10.0 << 1e6 << 10000 << 1e6;
    QTest::newRow("logarithmic, 0 to 1") << true << 0.0 << 1.0 << 5000 << (std::sqrt(10000001.0) - 1) / 1e7;
    QTest::newRow("logarithmic, fixed") << true << 5.5 << 5.5 << 0 << 5.5;
    QTest::newRow("logarithmic, infinite maximum") << true << 0.0 << kInf << 5000 << kInf;
    QTest::newRow("logarithmic, infinite maximum, start") << true << 0.0 << kInf << 0 << 0.0;
}

void SliderMappingTest::floatOfPosition()
{
    QFETCH(const bool, logarithmic);
    QFETCH(const double, minimum);
    QFETCH(const double, maximum);
    QFETCH(const int, position);
    SliderMapping mapping = ofFloats(minimum, maximum);
    static_cast<void>(logarithmic ? loadFloatLog(mapping, true, 0) : loadFloatLinear(mapping, 0));
    const double value = positionToFloat(mapping, logarithmic, position);
    QTEST(value, "value");
}

void SliderMappingTest::scaleZeroMeansTheValueZero()
{
    SliderMapping mapping = ofInts(-10, 100);
    mapping.minFloat = -10;
    mapping.maxFloat = 100;
    mapping.scale = 0.0;
    for (const bool logarithmic : {false, true}) {
        QCOMPARE(positionToInt(mapping, logarithmic, 50), std::int64_t{0});
        QCOMPARE(positionToFloat(mapping, logarithmic, 50), 0.0);
    }
}

// --- Valid values ---------------------------------------------------------------------------------------------------

void SliderMappingTest::validIntSnapsInTheRangeOfTheMapping()
{
    const SliderMapping mapping = ofInts(3, 100, 10);
    QCOMPARE(validInt(mapping, 17), std::int64_t{13});
    QCOMPARE(validInt(mapping, -20), std::int64_t{3});
    QCOMPARE(validInt(mapping, 99), std::int64_t{100});
}

void SliderMappingTest::validFloatTable_data()
{
    QTest::addColumn<bool>("hasIncrement");
    QTest::addColumn<double>("minimum");
    QTest::addColumn<double>("maximum");
    QTest::addColumn<double>("increment");
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("valid");

    const auto row = [](const char* name, bool hasIncrement, double minimum, double maximum, double increment,
                        double value, double valid) {
        QTest::newRow(name) << hasIncrement << minimum << maximum << increment << value << valid;
    };
    row("without increment", false, 0, 10, 0.5, 3.3, 3.3);
    row("below the minimum", false, 0, 10, 0.5, -1, 0);
    row("above the maximum", false, 0, 10, 0.5, 11, 10);
    row("increment 1", true, 0, 10, 1, 3.3, 3);
    row("increment 1, half is up", true, 0, 10, 1, 3.5, 4);
    row("increment 1, from the minimum", true, 0.25, 10, 1, 3.3, 3.25);
    // The increment is squared: two halves make a quarter each.
    row("increment 0.5", true, 0, 10, 0.5, 1.0, 0.5);
    row("increment 0.5, from the minimum", true, 2, 10, 0.5, 3.0, 2.5);
    row("increment 2", true, 0, 100, 2, 10, 20);
    row("increment 2, above the maximum", true, 0, 15, 2, 10, 15);
    row("increment 0", true, 0, 10, 0, 3.3, 3);
    row("negative increment", true, 0, 10, -0.5, 3.3, 3);
    row("increment that is no number", true, 0, 10, kNan, 3.3, 3);
    row("steps beyond 32 bits", true, 0, 1e10, 0.5, 1e10, -536870912);
    row("no number", false, 2, 10, 0, kNan, 2);
    row("no number, with increment", true, 2, 10, 1, kNan, 2);
    row("infinite", false, 0, kInf, 0, kInf, kInf);
    row("infinite, below", false, -kInf, kInf, 0, -kInf, -kInf);
    row("infinite, above", false, 0, 10, 0, kInf, 10);
    row("no number as range", false, kNan, kNan, 0, 3.3, 3.3);
    row("fixed", false, 7, 7, 0, 9, 7);
    row("upside down", false, 9, 3, 0, 5, 3);
}

void SliderMappingTest::validFloatTable()
{
    QFETCH(const bool, hasIncrement);
    QFETCH(const double, minimum);
    QFETCH(const double, maximum);
    QFETCH(const double, increment);
    QFETCH(const double, value);
    SliderMapping mapping = ofFloats(minimum, maximum, increment);
    mapping.hasIncFloat = hasIncrement;
    const double valid = validFloat(mapping, value);
    QTEST(valid, "valid");
}

} // namespace

ORVO_TEST_CLASS(SliderMappingTest)
#include "SliderMappingTest.moc"

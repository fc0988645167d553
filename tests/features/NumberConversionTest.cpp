// Conversions that the language leaves open: out-of-range doubles, and 64-bit ranges wider than their numbers.

#include "features/item/NumberConversion.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <climits>
#include <limits>

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

class NumberConversionTest : public QObject {
    Q_OBJECT

private slots:
    void toInt_data();
    void toInt();
    void toInt64_data();
    void toInt64();
    void snap_data();
    void snap();
    void snapOnEveryRangeOfANumberLine();
};

void NumberConversionTest::toInt_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("expected");
    QTest::newRow("zero") << 0.0 << 0;
    QTest::newRow("truncates downward") << 2.999 << 2;
    QTest::newRow("truncates upward") << -2.999 << -2;
    QTest::newRow("largest") << 2147483647.0 << INT_MAX;
    QTest::newRow("largest and a fraction") << 2147483647.999 << INT_MAX;
    QTest::newRow("above") << 2147483648.0 << INT_MIN;
    QTest::newRow("least") << -2147483648.0 << INT_MIN;
    QTest::newRow("least and a fraction") << -2147483648.999 << INT_MIN;
    QTest::newRow("next to the least") << -2147483647.5 << -INT_MAX;
    QTest::newRow("below") << -2147483649.0 << INT_MIN;
    QTest::newRow("far above") << 1e300 << INT_MIN;
    QTest::newRow("far below") << -1e300 << INT_MIN;
    QTest::newRow("infinity") << kInfinity << INT_MIN;
    QTest::newRow("minus infinity") << -kInfinity << INT_MIN;
    QTest::newRow("NaN") << kNotANumber << INT_MIN;
}

void NumberConversionTest::toInt()
{
    QFETCH(double, value);
    QTEST(doubleToInt(value), "expected");
}

void NumberConversionTest::toInt64_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<qlonglong>("expected");
    constexpr qlonglong kLeast = INT64_MIN;
    QTest::newRow("truncates downward") << 1e10 + 0.75 << 10000000000LL;
    QTest::newRow("truncates upward") << -1e10 - 0.75 << -10000000000LL;
    QTest::newRow("largest double below") << 9223372036854774784.0 << 9223372036854774784LL;
    QTest::newRow("above") << 9223372036854775808.0 << kLeast;
    QTest::newRow("least") << -9223372036854775808.0 << kLeast;
    QTest::newRow("below") << -9223372036854777856.0 << kLeast;
    QTest::newRow("infinity") << kInfinity << kLeast;
    QTest::newRow("NaN") << kNotANumber << kLeast;
}

void NumberConversionTest::toInt64()
{
    QFETCH(double, value);
    QTEST(static_cast<qlonglong>(doubleToInt64(value)), "expected");
}

void NumberConversionTest::snap_data()
{
    QTest::addColumn<qlonglong>("value");
    QTest::addColumn<qlonglong>("minimum");
    QTest::addColumn<qlonglong>("maximum");
    QTest::addColumn<qlonglong>("increment");
    QTest::addColumn<qlonglong>("expected");
    const auto row = [](const char* name, qlonglong value, qlonglong minimum, qlonglong maximum, qlonglong increment,
                        qlonglong expected) {
        QTest::newRow(name) << value << minimum << maximum << increment << expected;
    };
    constexpr qlonglong kLeast = INT64_MIN;
    constexpr qlonglong kMost = INT64_MAX;
    row("below half", 5, 0, 10, 4, 4);
    row("half goes up", 6, 0, 10, 4, 8);
    row("the maximum comes after rounding", 11, 0, 10, 4, 10);
    row("off the steps at the maximum", 10, 0, 10, 4, 10);
    row("below the minimum", -3, 0, 10, 4, 0);
    row("above a maximum between steps stays on a step", 11, 0, 10, 8, 8);
    row("odd increment, below half", 4, 0, 10, 3, 3);
    row("odd increment, above half", 5, 0, 10, 3, 6);
    row("steps count from the minimum", 6, 1, 100, 4, 5);
    row("steps count from a negative minimum", -4, -7, 100, 4, -3);
    row("increment 1", 7, 0, 10, 1, 7);
    row("increment 0 counts as 1", 7, 0, 10, 0, 7);
    row("negative increment counts as 1", 7, 0, 10, -4, 7);
    row("increment beyond the range, below half", 4, 0, 10, 1000, 0);
    row("increment beyond the range, above half", 10, 0, 10, 15, 10);
    row("fixed value", 7, 3, 3, 1, 3);
    row("maximum below the minimum", 7, 5, 3, 1, 3);
    row("whole range, half goes up", kLeast + 2, kLeast, kMost, 4, kLeast + 4);
    row("whole range, no room for the last step", kMost, kLeast, kMost, 1000, kMost);
    row("whole range, widest step, at the maximum", kMost, kLeast, kMost, kMost, kMost - 1);
    row("whole range, least", kLeast, kLeast, kMost, 1, kLeast);
    row("whole range, most", kMost, kLeast, kMost, 1, kMost);
    row("whole range, zero", 0, kLeast, kMost, 1, 0);
    row("whole range, widest step, below half", kMost / 2 - 1, kLeast, kMost, kMost, -1);
    row("whole range, widest step, half", kMost / 2, kLeast, kMost, kMost, kMost - 1);
    row("whole range, last step beyond the maximum", kMost, kLeast, kMost, 1LL << 62, kMost);
    row("whole range, negative increment", 12345, kLeast, kMost, kLeast, 12345);
    row("upper half", kMost - 1, 0, kMost, 2, kMost - 1);
    row("upper half, half a step goes up to the maximum", kMost, 0, kMost, 2, kMost);
}

void NumberConversionTest::snap()
{
    QFETCH(qlonglong, value);
    QFETCH(qlonglong, minimum);
    QFETCH(qlonglong, maximum);
    QFETCH(qlonglong, increment);
    QTEST(static_cast<qlonglong>(snapToIncrement(value, minimum, maximum, increment)), "expected");
}

// The definition of the rule, computed in a wider type.
void NumberConversionTest::snapOnEveryRangeOfANumberLine()
{
    __extension__ using Wide = __int128;
    const std::int64_t numbers[] = {
        INT64_MIN, INT64_MIN + 1, INT64_MIN + 7, -1000001,      -16,           -3,       0, 1, 5, 16,
        4095,      1000001,       INT64_MAX / 2, INT64_MAX - 6, INT64_MAX - 1, INT64_MAX};
    const std::int64_t increments[] = {1, 2, 3, 16, 1000, INT64_MAX / 3, INT64_MAX};
    for (const std::int64_t minimum : numbers) {
        for (const std::int64_t maximum : numbers) {
            for (const std::int64_t increment : increments) {
                for (const std::int64_t value : numbers) {
                    const Wide distance = Wide{std::max(value, minimum)} - minimum;
                    const Wide steps = (Wide{increment} + 2 * distance) / increment / 2;
                    const Wide expected = std::min(Wide{minimum} + Wide{increment} * steps, Wide{maximum});
                    QCOMPARE(snapToIncrement(value, minimum, maximum, increment), static_cast<long>(expected));
                }
            }
        }
    }
}

} // namespace

ORVO_TEST_CLASS(NumberConversionTest)
#include "NumberConversionTest.moc"

// Undocumented behaviour of Aravis that the library relies on: the installed version has it, and the library also works
// without it.

#include "cameralibs/genicam/AravisInternals.h"

#include "cameralibs/base/GlibOwners.h"
#include "cameralibs/base/Log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

using namespace cameralibs;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Whether evaluating the formula fails with an error that counts as a division by zero.
bool dividesByZero(const char* formula, bool asInteger)
{
    const GObjectPointer<ArvEvaluator> evaluator(arv_evaluator_new(formula));
    GErrorPointer error;
    if (asInteger) {
        (void)arv_evaluator_evaluate_as_int64(evaluator.get(), error.out());
    } else {
        (void)arv_evaluator_evaluate_as_double(evaluator.get(), error.out());
    }
    EXPECT_TRUE(error) << formula;
    return error && isDivisionByZero(*error.get());
}

/// Runs `work` in a separate process and expects the warning on its standard error.
template <class Work> void expectWarning(Work&& work, const char* text)
{
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            setLogLevel("warning");
            work();
            std::exit(0); // NOLINT(concurrency-mt-unsafe)
        },
        ::testing::ExitedWithCode(0), text);
}

} // namespace

TEST(AravisInternals, DivisionsByZeroDifferFromMalformedFormulas)
{
    for (const bool asInteger : {true, false}) {
        EXPECT_TRUE(dividesByZero("1 / 0", asInteger));
        EXPECT_TRUE(dividesByZero("1 % 0", asInteger));
        EXPECT_FALSE(dividesByZero("1 +", asInteger));
        EXPECT_FALSE(dividesByZero("(1", asInteger));
        EXPECT_FALSE(dividesByZero("Unknown", asInteger));
    }
}

TEST(AravisInternals, NoErrorIsADivisionByZeroIfItsCodeIsAmbiguous)
{
    EXPECT_EQ(divisionByZeroCode(7, 3), 7);
    EXPECT_EQ(divisionByZeroCode(7, std::nullopt), 7);
    EXPECT_EQ(divisionByZeroCode(3, 3), std::nullopt);
    EXPECT_EQ(divisionByZeroCode(std::nullopt, 3), std::nullopt);
    EXPECT_EQ(divisionByZeroCode(std::nullopt, std::nullopt), std::nullopt);
}

TEST(AravisInternals, InstalledVersionListsEntriesInReverseOrder)
{
    constexpr std::string_view kDescription = R"(
        <RegisterDescription>
            <Enumeration Name="Letter">
                <EnumEntry Name="A"><Value>1</Value></EnumEntry>
                <EnumEntry Name="B"><Value>2</Value></EnumEntry>
                <EnumEntry Name="A"><Value>3</Value></EnumEntry>
                <Value>1</Value>
            </Enumeration>
        </RegisterDescription>)";
    const GObjectPointer<ArvGc> nodes(arv_gc_new(nullptr, kDescription.data(), kDescription.size()));
    ASSERT_NE(nodes, nullptr);
    std::vector<std::int64_t> values;
    const GSList* entry = arv_gc_enumeration_get_entries(ARV_GC_ENUMERATION(arv_gc_get_node(nodes.get(), "Letter")));
    for (; entry != nullptr; entry = entry->next)
        values.push_back(arv_gc_enum_entry_get_value(ARV_GC_ENUM_ENTRY(entry->data), nullptr));
    EXPECT_THAT(values, ElementsAre(3, 2, 1));
}

TEST(AravisInternals, EntriesInReverseOrderAreMatchedByPosition)
{
    EXPECT_THAT(matchEntries({}, {}), IsEmpty());
    EXPECT_THAT(matchEntries({"A", "B", "C"}, {"C", "B", "A"}), ElementsAre(2, 1, 0));
    EXPECT_THAT(matchEntries({"A", "A", "B"}, {"B", "A", "A"}), ElementsAre(2, 1, 0));
}

TEST(AravisInternals, EntriesInUnexpectedOrderAreMatchedByName)
{
    EXPECT_THAT(matchEntries({"A", "B", "C"}, {"A", "B", "C"}), ElementsAre(0, 1, 2));
    EXPECT_THAT(matchEntries({"A", "B", "C"}, {"C", "A"}), ElementsAre(2, 0));
    EXPECT_THAT(matchEntries({"A"}, {"B", "A"}), ElementsAre(kNoMatch, 0));
}

TEST(AravisInternalsDeathTest, DifferencesOfTheVersionAreLogged)
{
    expectWarning([] { (void)divisionByZeroCode(3, 3); }, "warning: Aravis .* does not distinguish divisions by zero");
    expectWarning([] { (void)matchEntries({"A", "B"}, {"A", "B"}); }, "warning: Aravis .* in an unexpected order");
}

#include "cameralibs/devices/transport/BlockIds.h"

#include <gtest/gtest.h>

#include <cstdint>

using cameralibs::BlockIds;

namespace {

struct StepRow {
    std::uint64_t last;
    std::uint64_t next;
    std::uint64_t step; ///< of the frame number
    const char* what;
};

constexpr std::uint64_t kLong = 0x123456789A;

constexpr StepRow kSteps[] = {
    {1, 2, 1, "none lost"},
    {1, 5, 4, "three lost"},
    {65534, 65535, 1, "the highest short id"},
    {65535, 1, 1, "there is no id 0"},
    {65535, 2, 2, "1 lost"},
    {65534, 1, 2, "65535 lost"},
    {65530, 3, 8, "several lost over the end"},
    {65535, 0, 1, "a camera that sends 0 all the same"},
    {7, 7, 1, "the same again"},
    {100, 50, 1, "an earlier one"},
    {65535, 65536, 1, "the first of the long ids"},
    {65536, 65539, 3, "long ids"},
    {kLong, kLong + 70000, 70000, "long ids far apart"},
    {kLong, kLong, 1, "the same long id again"},
    {kLong, kLong - 3, 1, "an earlier long id"},
    {kLong, 1, 1, "a short id after a long one"},
    {1, ~0ULL, 1, "absurdly far"},
    {~0ULL, 1, 1, "from the highest of all"},
};

} // namespace

TEST(BlockIds, StepOfEveryKind)
{
    for (const StepRow& row : kSteps) {
        BlockIds ids;
        const std::uint64_t first = ids.next(row.last);
        EXPECT_EQ(ids.next(row.next) - first, row.step) << row.last << " to " << row.next << ": " << row.what;
    }
}

TEST(BlockIds, RiseOnOverManyRounds)
{
    BlockIds ids;
    std::uint64_t expected = ids.next(65400);
    EXPECT_EQ(expected, 65400U);
    for (int round = 0; round < 3; ++round) {
        for (std::uint64_t id = round == 0 ? 65401 : 1; id <= 65535; ++id)
            ASSERT_EQ(ids.next(id), ++expected) << "id " << id << " of round " << round;
    }
}

TEST(BlockIds, BeginAnewWithTheFirstId)
{
    BlockIds ids;
    (void)ids.next(500);
    ids = {};
    EXPECT_EQ(ids.next(1), 1U);
    EXPECT_EQ(ids.next(2), 2U);
}

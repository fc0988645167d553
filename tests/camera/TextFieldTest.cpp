#include "camera/TextField.h"

#include <gtest/gtest.h>

#include <array>

namespace {

TEST(TextField, endsAtTheFirstNul)
{
    const char field[8] = {'o', 'n', 'e', '\0', 't', 'w', 'o', '\0'};
    EXPECT_EQ(fieldBytes(field), QByteArray("one"));
    EXPECT_EQ(fieldBytes(std::array<char, 4>{'a', '\0', '\0', 'b'}), QByteArray("a"));
    EXPECT_EQ(fieldBytes(std::array<char, 4>{}), QByteArray(""));
}

TEST(TextField, endsWithTheFieldWhereThereIsNoNul)
{
    struct {
        char field[3] = {'a', 'b', 'c'};
        char next[2] = {'d', '\0'};
    } record;
    EXPECT_EQ(fieldBytes(record.field), QByteArray("abc"));
}

} // namespace

// The special cases that the gallery features offer for testing feature browsers.

#include "tests/cameralibs/devices/BuiltInTest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

using namespace Orvo;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

namespace {

class GalleryTest : public MonoTest {
protected:
    [[nodiscard]] NodeAccessMode entryAccess(const std::string& enumeration, std::uint32_t index) const
    {
        CAM_NODE_HANDLE entry = 0;
        NodeAccessMode mode = NODE_ACCESS_MODE_UNDEFINED;
        EXPECT_EQ(Nd_GetEnumEntryByIndex(m_camera.handle(), m_camera.node(enumeration), index, &entry), 0U);
        EXPECT_EQ(Nd_GetAccessMode(m_camera.handle(), entry, &mode), 0U);
        return mode;
    }
};

TEST_F(GalleryTest, IntegersHaveTheWhole64BitRange)
{
    constexpr auto kLeast = std::numeric_limits<std::int64_t>::min();
    constexpr auto kGreatest = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(m_camera.integer("IntegerInt64Minimum"), kLeast);
    EXPECT_EQ(m_camera.integer("IntegerInt64Maximum"), kGreatest);
    EXPECT_EQ(m_camera.greatest("IntegerInt64"), kGreatest);
    for (const std::int64_t value : {kLeast, kGreatest}) {
        m_camera.setInteger("IntegerInt64", value);
        EXPECT_EQ(m_camera.integer("IntegerInt64"), value);
    }
}

TEST_F(GalleryTest, BitFieldsArePartsOfARegister)
{
    m_camera.setInteger("IntegerBits", 0);
    m_camera.setInteger("IntegerMasked", 0xA5);
    m_camera.setInteger("IntegerMaskedSigned", -2);
    EXPECT_EQ(m_camera.integer("IntegerBits"), 0xFEA50);
    EXPECT_EQ(m_camera.integer("IntegerMasked"), 0xA5);
    EXPECT_EQ(m_camera.integer("IntegerMaskedSigned"), -2);
    m_camera.setInteger("IntegerBigEndian", 0x01020304);
    EXPECT_EQ(m_camera.integer("IntegerBigEndian"), 0x01020304);
}

TEST_F(GalleryTest, NumbersAreComputedAndConverted)
{
    m_camera.setInteger("IntegerLinear", 40);
    m_camera.setInteger("IntegerNegative", -100);
    EXPECT_EQ(m_camera.integer("IntegerSum"), -60);
    m_camera.setInteger("IntegerConverted", 80);
    EXPECT_EQ(m_camera.integer("IntegerConvertedBase"), 10);
    m_camera.setReal("FloatConverted", 36);
    EXPECT_DOUBLE_EQ(m_camera.real("FloatConvertedBase"), 10);
    m_camera.setReal("FloatLinear", 55);
    EXPECT_DOUBLE_EQ(m_camera.real("FloatQuotient"), 5);
    for (const auto& [index, constant] : {std::pair{0, 10}, {1, 20}, {2, 40}, {5, 0}}) {
        m_camera.setInteger("IntegerIndex", index);
        EXPECT_EQ(m_camera.integer("IntegerIndexed"), constant);
    }
}

TEST_F(GalleryTest, RangesDependOnOtherFeatures)
{
    m_camera.setInteger("IntegerDynamicMaximum", 100);
    m_camera.setInteger("IntegerDynamicIncrement", 5);
    EXPECT_EQ(m_camera.greatest("IntegerDynamic"), 100);
    EXPECT_EQ(Nd_SetIntValue(m_camera.handle(), m_camera.node("IntegerDynamic"), 1, true),
              CAM_API_STS_INVALID_PARAMETER);
    m_camera.setInteger("IntegerDynamic", 95);
    m_camera.setReal("FloatDynamicMaximum", 7.5);
    EXPECT_DOUBLE_EQ(m_camera.greatestReal("FloatDynamic"), 7.5);
}

TEST_F(GalleryTest, FloatsHaveAllMagnitudes)
{
    m_camera.setReal("FloatLargest", -DBL_MAX);
    EXPECT_DOUBLE_EQ(m_camera.real("FloatLargest"), -DBL_MAX);
    m_camera.setReal("FloatSmallest", 4.9e-324);
    EXPECT_GT(m_camera.real("FloatSmallest"), 0);
    EXPECT_FLOAT_EQ(static_cast<float>(m_camera.real("FloatSingle")), 0.1F);
    EXPECT_TRUE(std::isnan(m_camera.real("FloatNotANumber")));
    EXPECT_TRUE(std::isinf(m_camera.real("FloatInfinite")));
    bool has = false;
    double step = 0;
    EXPECT_EQ(Nd_GetFloatHasInc(m_camera.handle(), m_camera.node("FloatIncrement"), &has), CAM_API_STS_SUCCESS);
    EXPECT_TRUE(has);
    EXPECT_EQ(Nd_GetFloatInc(m_camera.handle(), m_camera.node("FloatIncrement"), &step), CAM_API_STS_SUCCESS);
    EXPECT_DOUBLE_EQ(step, 0.25);
}

TEST_F(GalleryTest, BooleansHaveTheirOwnOnAndOffValues)
{
    EXPECT_TRUE(m_camera.flag("BooleanPlain"));
    EXPECT_FALSE(m_camera.flag("BooleanInverted")); // its register is 1
    EXPECT_FALSE(m_camera.flag("BooleanOddValues"));
    for (const char* const name : {"BooleanPlain", "BooleanInverted", "BooleanOddValues"}) {
        for (const bool value : {true, false}) {
            m_camera.setFlag(name, value);
            EXPECT_EQ(m_camera.flag(name), value) << name;
        }
    }
}

TEST_F(GalleryTest, AvailabilityOfEntriesChanges)
{
    EXPECT_THAT(m_camera.entries("EnumerationChanging"), ElementsAre("First", "Second", "Third"));
    m_camera.setFlag("EnumerationSecondAvailable", false);
    EXPECT_EQ(entryAccess("EnumerationChanging", 1), NODE_ACCESS_MODE_NA);
    EXPECT_EQ(entryAccess("EnumerationChanging", 2), NODE_ACCESS_MODE_NI);
    EXPECT_EQ(Nd_SetEnumStrValue(m_camera.handle(), m_camera.node("EnumerationChanging"), "Third", true),
              CAM_API_STS_INVALID_PARAMETER);
    m_camera.setFlag("EnumerationSecondAvailable", true);
    m_camera.setFlag("EnumerationThirdImplemented", true);
    EXPECT_EQ(entryAccess("EnumerationChanging", 1), NODE_ACCESS_MODE_RO);
    EXPECT_EQ(entryAccess("EnumerationChanging", 2), NODE_ACCESS_MODE_RO);
    m_camera.choose("EnumerationChanging", "Third");
    EXPECT_EQ(m_camera.choice("EnumerationChanging"), "Third");
}

TEST_F(GalleryTest, EnumerationsHaveNoOrManyEntries)
{
    EXPECT_THAT(m_camera.entries("EnumerationEmpty"), IsEmpty());
    EXPECT_THAT(m_camera.entries("EnumerationLong"), SizeIs(64));
    m_camera.choose("EnumerationSparse", "Largest");
    EXPECT_EQ(m_camera.choice("EnumerationSparse"), "Largest");
}

TEST_F(GalleryTest, StringsHaveAllLengths)
{
    EXPECT_EQ(m_camera.text("StringEmpty"), "");
    EXPECT_THAT(m_camera.text("StringUnicode"), HasSubstr("привет"));
    const std::string text = m_camera.text("StringLong");
    EXPECT_THAT(text, SizeIs(65536));
    EXPECT_THAT(text, StartsWith("word1 word2 "));
    m_camera.setText("StringLong", std::string(65536, 'x'));
    EXPECT_EQ(m_camera.text("StringLong"), std::string(65536, 'x'));
    m_camera.setText("StringLong", "short");
    EXPECT_EQ(m_camera.text("StringLong"), "short");
}

TEST_F(GalleryTest, CommandsCount)
{
    EXPECT_EQ(m_camera.access("CommandWhenArmed"), NODE_ACCESS_MODE_NA);
    m_camera.execute("CommandPlain");
    m_camera.setFlag("CommandArmed", true);
    m_camera.execute("CommandWhenArmed");
    EXPECT_EQ(m_camera.integer("CommandCount"), 2);
    EXPECT_FALSE(m_camera.flag("CommandArmed"));
    EXPECT_EQ(m_camera.access("CommandWhenArmed"), NODE_ACCESS_MODE_NA);
}

TEST_F(GalleryTest, AccessModesChange)
{
    const std::pair<const char*, NodeAccessMode> modes[] = {
        {"NotImplemented", NODE_ACCESS_MODE_NI},
        {"NotAvailable", NODE_ACCESS_MODE_NA},
        {"ReadOnly", NODE_ACCESS_MODE_RO},
        {"ReadWrite", NODE_ACCESS_MODE_RW},
    };
    for (const auto& [name, mode] : modes) {
        m_camera.choose("AccessSwitch", name);
        EXPECT_EQ(m_camera.access("AccessSwitched"), mode) << name;
        EXPECT_EQ(m_camera.access("AccessSwitchedText"), mode) << name;
    }
    EXPECT_EQ(m_camera.access("AccessWriteOnlyFloat"), NODE_ACCESS_MODE_WO);
    EXPECT_EQ(m_camera.access("AccessImposedReadOnly"), NODE_ACCESS_MODE_RO);
    EXPECT_EQ(m_camera.access("AccessThroughNotAvailable"), NODE_ACCESS_MODE_NA);
}

TEST_F(GalleryTest, SelectorsChooseCells)
{
    for (int row = 0; row < 4; ++row) {
        m_camera.choose("SelectorRow", "Row" + std::to_string(row));
        m_camera.setText("SelectorRowName", "name " + std::to_string(row));
        for (int column = 0; column < 3; ++column) {
            m_camera.setInteger("SelectorColumn", column);
            m_camera.setInteger("SelectorCell", 10 * row + column);
        }
    }
    m_camera.choose("SelectorRow", "Row2");
    m_camera.setInteger("SelectorColumn", 1);
    EXPECT_EQ(m_camera.integer("SelectorCell"), 21);
    EXPECT_EQ(m_camera.text("SelectorRowName"), "name 2");
}

// Without the library's check, the camera itself refuses invalid values.
TEST_F(GalleryTest, CameraRefusesInvalidValues)
{
    const auto set = [&](const char* name, std::int64_t value) {
        return Nd_SetIntValue(m_camera.handle(), m_camera.node(name), value, false);
    };
    EXPECT_EQ(set("IntegerLinear", 256), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(set("Width", 1000000), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(set("Width", 641), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(set("OffsetX", 4), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(set("Width", 640), CAM_API_STS_SUCCESS);
    EXPECT_EQ(set("OffsetX", 4), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Nd_SetFloatValue(m_camera.handle(), m_camera.node("Gain"), 24.5, false), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(m_camera.integer("Width"), 640);
}

} // namespace

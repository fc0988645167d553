#include "tests/cameralibs/api/DescribedCamera.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <limits>

using namespace Orvo;

namespace {

constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();

std::string reg(const char* type, const char* name, unsigned address, unsigned length, const char* more = "")
{
    return std::string("<") + type + " Name=\"" + name + "\"><Address>" + std::to_string(address) +
           "</Address><Length>" + std::to_string(length) + "</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>" +
           more + "<Endianess>LittleEndian</Endianess></" + type + ">\n";
}

struct IntegerRange {
    const char* name;
    std::int64_t minimum;
    std::int64_t maximum;
    std::int64_t increment;
};

void expectRange(DescribedCamera& camera, const IntegerRange& row)
{
    std::int64_t value = 0;
    EXPECT_EQ(Nd_GetIntMin(camera.handle(), camera.node(row.name), &value), CAM_API_STS_SUCCESS) << row.name;
    EXPECT_EQ(value, row.minimum) << row.name;
    EXPECT_EQ(Nd_GetIntMax(camera.handle(), camera.node(row.name), &value), CAM_API_STS_SUCCESS) << row.name;
    EXPECT_EQ(value, row.maximum) << row.name;
    EXPECT_EQ(Nd_GetIntInc(camera.handle(), camera.node(row.name), &value), CAM_API_STS_SUCCESS) << row.name;
    EXPECT_EQ(value, row.increment) << row.name;
}

const std::string& numbers()
{
    static const std::string description = describe(
        reg("IntReg", "U8", 0, 8, "<Sign>Unsigned</Sign>") + reg("IntReg", "S8", 8, 8, "<Sign>Signed</Sign>") +
        reg("IntReg", "U4", 16, 4, "<Sign>Unsigned</Sign>") + reg("IntReg", "S2", 20, 2, "<Sign>Signed</Sign>") +
        reg("MaskedIntReg", "Masked", 24, 4, "<LSB>4</LSB><MSB>11</MSB><Sign>Unsigned</Sign>") +
        reg("FloatReg", "F4", 32, 4) + reg("FloatReg", "F8", 40, 8) + constant("Three", 3) +
        R"(<Integer Name="Stepped"><pValue>S8</pValue><Min>-10</Min><Max>11</Max><pInc>Three</pInc></Integer>
           <Integer Name="OddSteps"><pValue>S8</pValue><Inc>3</Inc></Integer>
           <Integer Name="Extreme"><pValue>S8</pValue></Integer>
           <Integer Name="Small"><pValue>U4</pValue></Integer>
           <IntSwissKnife Name="Formula"><Formula>5</Formula></IntSwissKnife>
           <SwissKnife Name="FloatFormula"><Formula>0.5</Formula></SwissKnife>
           <Float Name="Plain"><pValue>F8</pValue></Float>
           <Float Name="Ranged"><pValue>F8</pValue><Min>-1.5</Min><Max>2.5</Max><Inc>0.1</Inc></Float>
           <Float Name="Single"><pValue>F4</pValue></Float>
           <Float Name="OnInteger"><pValue>Stepped</pValue></Float>)");
    return description;
}

} // namespace

TEST(NodeRange, OfIntegers)
{
    DescribedCamera camera(numbers());
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    for (const IntegerRange& row : {
             IntegerRange{"U8", 0, kHighest, 1},
             {"S8", kLowest, kHighest, 1},
             {"U4", 0, 0xFFFFFFFF, 1},
             {"S2", -32768, 32767, 1},
             {"Masked", 0, 255, 1},
             {"Stepped", -10, 11, 3},
             {"Extreme", kLowest, kHighest, 1},
             {"Small", 0, 0xFFFFFFFF, 1},
             {"Three", kLowest, kHighest, 1},
             {"Formula", kLowest, kHighest, 1},
         })
        expectRange(camera, row);
}

TEST(NodeRange, IntegersAreCheckedBeforeTheyAreWritten)
{
    DescribedCamera camera(numbers());
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    const auto set = [&](const char* name, std::int64_t value, bool verify = true) {
        return Nd_SetIntValue(camera.handle(), camera.node(name), value, verify);
    };
    for (const std::int64_t good : {-10, -7, 2, 11}) {
        EXPECT_EQ(set("Stepped", good), CAM_API_STS_SUCCESS) << good;
        EXPECT_EQ(camera.integer("Stepped"), good);
    }
    for (const std::int64_t bad : {std::int64_t{-11}, std::int64_t{-9}, std::int64_t{0}, std::int64_t{12},
                                   std::int64_t{14}, kLowest, kHighest}) {
        EXPECT_EQ(set("Stepped", bad), CAM_API_STS_INVALID_PARAMETER) << bad;
        EXPECT_EQ(camera.integer("Stepped"), 11);
    }
    EXPECT_EQ(set("Stepped", 100, false), CAM_API_STS_SUCCESS) << "range and increment are left to the device";
    EXPECT_EQ(camera.integer("Stepped"), 100);
    // Increments count from 0 if there is no minimum.
    EXPECT_EQ(set("OddSteps", -9), CAM_API_STS_SUCCESS);
    EXPECT_EQ(set("OddSteps", 9), CAM_API_STS_SUCCESS);
    EXPECT_EQ(set("OddSteps", 10), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(set("Small", 0x1'0000'0000), CAM_API_STS_INVALID_PARAMETER);
    for (const std::int64_t extreme : {kLowest, kHighest}) {
        EXPECT_EQ(set("Extreme", extreme), CAM_API_STS_SUCCESS);
        EXPECT_EQ(camera.integer("Extreme"), extreme);
    }
}

TEST(NodeRange, OfFloats)
{
    DescribedCamera camera(numbers());
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    const struct {
        const char* name;
        double minimum;
        double maximum;
        double increment; ///< 0 if there is none
    } rows[] = {
        {"Plain", -DBL_MAX, DBL_MAX, 0},
        {"Single", -static_cast<double>(FLT_MAX), static_cast<double>(FLT_MAX), 0},
        {"Ranged", -1.5, 2.5, 0.1},
        {"OnInteger", -10, 11, 3},
        {"FloatFormula", -DBL_MAX, DBL_MAX, 0},
    };
    for (const auto& row : rows) {
        const CAM_NODE_HANDLE node = camera.node(row.name);
        double value = 0;
        bool has = row.increment == 0;
        EXPECT_EQ(Nd_GetFloatMin(camera.handle(), node, &value), CAM_API_STS_SUCCESS) << row.name;
        EXPECT_DOUBLE_EQ(value, row.minimum) << row.name;
        EXPECT_EQ(Nd_GetFloatMax(camera.handle(), node, &value), CAM_API_STS_SUCCESS) << row.name;
        EXPECT_DOUBLE_EQ(value, row.maximum) << row.name;
        EXPECT_EQ(Nd_GetFloatHasInc(camera.handle(), node, &has), CAM_API_STS_SUCCESS) << row.name;
        EXPECT_EQ(has, row.increment != 0) << row.name;
        value = 77;
        EXPECT_EQ(Nd_GetFloatInc(camera.handle(), node, &value),
                  has ? CAM_API_STS_SUCCESS : CAM_API_STS_INVALID_PARAMETER)
            << row.name;
        EXPECT_DOUBLE_EQ(value, has ? row.increment : 77) << row.name;
    }
}

TEST(NodeRange, FloatsAreCheckedBeforeTheyAreWritten)
{
    DescribedCamera camera(numbers());
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    const auto set = [&](const char* name, double value, bool verify = true) {
        return Nd_SetFloatValue(camera.handle(), camera.node(name), value, verify);
    };
    for (const double good : {-1.5, 0.0, 0.1, 0.3, 0.7, 2.4, 2.5}) {
        EXPECT_EQ(set("Ranged", good), CAM_API_STS_SUCCESS) << good;
        EXPECT_DOUBLE_EQ(camera.number("Ranged"), good);
    }
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double bad : {-1.6, 2.6, 0.05, 0.1001, std::nan(""), infinity, -infinity}) {
        EXPECT_EQ(set("Ranged", bad), CAM_API_STS_INVALID_PARAMETER) << bad;
        EXPECT_DOUBLE_EQ(camera.number("Ranged"), 2.5);
    }
    EXPECT_EQ(set("Ranged", 99.99, false), CAM_API_STS_SUCCESS);
    EXPECT_DOUBLE_EQ(camera.number("Ranged"), 99.99);
    EXPECT_EQ(set("Ranged", std::nan(""), false), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(set("Single", 1e300), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(set("Plain", 1e300), CAM_API_STS_SUCCESS);
    EXPECT_EQ(set("Plain", -5e-324), CAM_API_STS_SUCCESS);
    EXPECT_EQ(camera.number("Plain"), -5e-324);
}

TEST(NodeRange, IncrementsOfFloatsCountFromTheMinimum)
{
    DescribedCamera camera(describe(
        reg("FloatReg", "F4", 0, 4) + reg("FloatReg", "F8", 8, 8) + reg("IntReg", "S8", 16, 8, "<Sign>Signed</Sign>") +
        R"(<Float Name="Shifted"><pValue>F8</pValue><Min>0.05</Min><Max>9</Max><Inc>0.1</Inc></Float>
                    <Float Name="Endless"><pValue>F8</pValue><Inc>0.3</Inc></Float>
                    <Float Name="Single"><pValue>F4</pValue><Inc>0.75</Inc></Float>
                    <Float Name="Whole"><pValue>S8</pValue></Float>)"));
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    const struct {
        const char* name;
        double value;
        bool good;
    } rows[] = {
        {"Shifted", 0.05, true},
        {"Shifted", 0.15, true},
        {"Shifted", 8.95, true},
        {"Shifted", 0.1, false},
        {"Shifted", 1, false},
        // From 0 where there is no minimum, or one that is as far away as the type allows.
        {"Endless", 0.9, true},
        {"Endless", -0.3, true},
        {"Endless", 3e8, true}, // with the rounding error of its size
        {"Endless", 1, false},
        {"Single", 1.5, true},
        {"Single", -2.25, true},
        {"Single", 1, false},
        {"Whole", 3, true},
        {"Whole", -7, true},
        {"Whole", 2.5, false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Nd_SetFloatValue(camera.handle(), camera.node(row.name), row.value, true),
                  row.good ? CAM_API_STS_SUCCESS : CAM_API_STS_INVALID_PARAMETER)
            << row.name << " " << row.value;
    }
}

TEST(NodeRange, IsAvailableForNodesThatCannotBeRead)
{
    DescribedCamera camera(describe(
        constant("No", 0) + constant("Zero", 0) + intReg("RegWO", 0, "WO") +
        R"(<Integer Name="Gone"><pIsAvailable>No</pIsAvailable><Value>5</Value><Min>1</Min><Max>9</Max><Inc>2</Inc></Integer>
           <Integer Name="WriteOnly"><pValue>RegWO</pValue><Max>7</Max></Integer>
           <Float Name="GoneFloat"><pIsImplemented>No</pIsImplemented><Value>5</Value><Min>1</Min><Max>9</Max></Float>
           <IntSwissKnife Name="Broken"><pVariable Name="Z">Zero</pVariable><Formula>1 / Z</Formula></IntSwissKnife>
           <Integer Name="GoneAndUntold"><pIsAvailable>No</pIsAvailable><Value>5</Value><pMax>Broken</pMax></Integer>
           <Integer Name="Untold"><Value>5</Value><pMax>Broken</pMax></Integer>)"));
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    expectRange(camera, {"Gone", 1, 9, 2});
    expectRange(camera, {"WriteOnly", 0, 7, 1});
    double number = 0;
    EXPECT_EQ(Nd_GetFloatMax(camera.handle(), camera.node("GoneFloat"), &number), CAM_API_STS_SUCCESS);
    EXPECT_EQ(number, 9);
    std::int64_t value = 0;
    EXPECT_EQ(Nd_GetIntMax(camera.handle(), camera.node("GoneAndUntold"), &value), CAM_API_STS_NOT_AVAILABLE);
    EXPECT_EQ(Nd_GetIntMax(camera.handle(), camera.node("Untold"), &value), CAM_API_STS_GENICAM_ERR);
    EXPECT_EQ(camera.integer("Untold"), 5) << "the value needs no maximum";
    EXPECT_EQ(Nd_SetIntValue(camera.handle(), camera.node("WriteOnly"), 8), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Nd_SetIntValue(camera.handle(), camera.node("WriteOnly"), 7), CAM_API_STS_SUCCESS);
}

TEST(NodeRange, BooleansHaveTheirOwnValues)
{
    DescribedCamera camera(
        describe(reg("IntReg", "R", 0, 8, "<Sign>Signed</Sign>") +
                 R"(<Boolean Name="B"><pValue>R</pValue><OnValue>0x100000000</OnValue><OffValue>7</OffValue></Boolean>
           <Boolean Name="Constant"><Value>true</Value></Boolean>)"));
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    bool value = false;
    EXPECT_EQ(Nd_SetBoolValue(camera.handle(), camera.node("B"), true), CAM_API_STS_SUCCESS);
    EXPECT_EQ(camera.integer("R"), 0x100000000);
    EXPECT_EQ(Nd_GetBoolValue(camera.handle(), camera.node("B"), &value), CAM_API_STS_SUCCESS);
    EXPECT_TRUE(value);
    EXPECT_EQ(Nd_SetBoolValue(camera.handle(), camera.node("B"), false), CAM_API_STS_SUCCESS);
    EXPECT_EQ(camera.integer("R"), 7);
    EXPECT_EQ(Nd_GetBoolValue(camera.handle(), camera.node("B"), &value), CAM_API_STS_SUCCESS);
    EXPECT_FALSE(value);
    EXPECT_EQ(Nd_GetBoolValue(camera.handle(), camera.node("Constant"), &value), CAM_API_STS_SUCCESS);
    EXPECT_TRUE(value);
    EXPECT_EQ(Nd_SetBoolValue(camera.handle(), camera.node("Constant"), false), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Nd_GetBoolValue(camera.handle(), camera.node("Constant"), &value), CAM_API_STS_SUCCESS);
    EXPECT_FALSE(value);
}

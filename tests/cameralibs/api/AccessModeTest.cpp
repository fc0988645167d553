#include "tests/cameralibs/api/DescribedCamera.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Orvo;

namespace {

constexpr NodeAccessMode NI = NODE_ACCESS_MODE_NI;
constexpr NodeAccessMode NA = NODE_ACCESS_MODE_NA;
constexpr NodeAccessMode WO = NODE_ACCESS_MODE_WO;
constexpr NodeAccessMode RO = NODE_ACCESS_MODE_RO;
constexpr NodeAccessMode RW = NODE_ACCESS_MODE_RW;

struct ModeRow {
    const char* element;
    const char* content;
    NodeAccessMode mode;
};

// The rows refer to the registers RegRO, RegWO and RegRW, the flags Yes and No, and the nodes Gone (not available) and
// Missing (not implemented).
constexpr ModeRow kModes[] = {
    {"Category", "", RO},
    {"Integer", "<Value>1</Value>", RW},
    {"Integer", "<pValue>RegRO</pValue>", RO},
    {"Integer", "<pValue>RegWO</pValue>", WO},
    {"Integer", "<pValue>RegRW</pValue>", RW},
    {"IntReg", "<Address>0</Address><Length>4</Length><pPort>Device</pPort>", RO},
    {"Register", "<Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>", RW},
    {"StringReg", "<Address>0</Address><Length>4</Length><AccessMode>WO</AccessMode><pPort>Device</pPort>", WO},
    {"Integer", "<pValue>RegRW</pValue><ImposedAccessMode>RO</ImposedAccessMode>", RO},
    {"Integer", "<pValue>RegRW</pValue><ImposedAccessMode>WO</ImposedAccessMode>", WO},
    {"Integer", "<pValue>RegWO</pValue><ImposedAccessMode>RO</ImposedAccessMode>", NA},
    {"Integer", "<pValue>RegRO</pValue><ImposedAccessMode>WO</ImposedAccessMode>", NA},
    {"Integer", "<pValue>RegRO</pValue><ImposedAccessMode>RW</ImposedAccessMode>", RO},
    {"Integer", "<pIsImplemented>No</pIsImplemented><pValue>RegRW</pValue>", NI},
    {"Integer", "<pIsAvailable>No</pIsAvailable><pValue>RegRW</pValue>", NA},
    {"Integer", "<pIsImplemented>No</pIsImplemented><pIsAvailable>No</pIsAvailable><pValue>RegRW</pValue>", NI},
    {"Integer", "<pIsImplemented>Yes</pIsImplemented><pIsAvailable>Yes</pIsAvailable><pValue>RegRW</pValue>", RW},
    {"Integer", "<pIsLocked>Yes</pIsLocked><pValue>RegRW</pValue>", RO},
    {"Integer", "<pIsLocked>Yes</pIsLocked><pValue>RegRO</pValue>", RO},
    {"Integer", "<pIsLocked>No</pIsLocked><pValue>RegRW</pValue>", RW},
    {"IntReg",
     "<pIsLocked>Yes</pIsLocked><Address>0</Address><Length>4</Length><AccessMode>WO</AccessMode>"
     "<pPort>Device</pPort>",
     NA},
    {"Integer", "<pValue>Gone</pValue>", NA},
    {"Integer", "<pValue>Missing</pValue>", NI},
    {"Integer", "<pValue>BehindGone</pValue>", NA},
    {"Integer", "<pValue>Locked</pValue>", RO},
    {"Float", "<pValue>Gone</pValue>", NA},
    {"Boolean", "<pValue>RegRW</pValue>", RW},
    {"Boolean", "<pValue>Gone</pValue>", NA},
    {"Command", "<pValue>RegWO</pValue><CommandValue>1</CommandValue>", WO},
    {"Command", "<pValue>RegRW</pValue><CommandValue>1</CommandValue>", RW},
    {"Command", "<pIsAvailable>No</pIsAvailable><pValue>RegWO</pValue><CommandValue>1</CommandValue>", NA},
    {"Enumeration", "<EnumEntry Name=\"E\"><Value>0</Value></EnumEntry><pValue>RegRW</pValue>", RW},
    {"Enumeration", "<EnumEntry Name=\"E\"><Value>0</Value></EnumEntry><pValue>Missing</pValue>", NI},
    {"String", "<Value>text</Value>", RW},
    {"IntSwissKnife", "<pVariable Name=\"A\">RegRW</pVariable><Formula>A + 1</Formula>", RO},
    {"SwissKnife", "<pVariable Name=\"A\">RegRW</pVariable><Formula>A + 1</Formula>", RO},
    {"Converter", "<FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom><pValue>RegRW</pValue>", RW},
    {"Converter", "<FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom><pValue>RegRO</pValue>", RO},
    {"Integer",
     "<pIndex>Yes</pIndex><pValueIndexed Index=\"0\">RegRO</pValueIndexed>"
     "<pValueIndexed Index=\"1\">Gone</pValueIndexed><ValueDefault>1</ValueDefault>",
     NA},
    {"Integer",
     "<pIndex>No</pIndex><pValueIndexed Index=\"0\">RegRO</pValueIndexed>"
     "<pValueIndexed Index=\"1\">Gone</pValueIndexed><ValueDefault>1</ValueDefault>",
     RO},
    {"Integer", "<pIndex>Yes</pIndex><ValueIndexed Index=\"1\">7</ValueIndexed><ValueDefault>1</ValueDefault>", RW},
    {"Integer", "<pIndex>Yes</pIndex><ValueIndexed Index=\"1\">7</ValueIndexed><pValueDefault>RegRO</pValueDefault>",
     RW},
    {"Integer", "<pIndex>No</pIndex><ValueIndexed Index=\"1\">7</ValueIndexed><pValueDefault>RegRO</pValueDefault>",
     RO},
    {"Integer", "<pIsAvailable>TrueFlag</pIsAvailable><pValue>RegRW</pValue>", RW},
    {"Integer", "<pIsAvailable>FalseFlag</pIsAvailable><pValue>RegRW</pValue>", NA},
    {"IntReg", "<Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Chunk</pPort>", NA},
    {"IntReg", "<Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Event</pPort>", NA},
};

constexpr const char* kBehind = R"(
    <Integer Name="Yes"><Value>1</Value></Integer>
    <Integer Name="No"><Value>0</Value></Integer>
    <Boolean Name="TrueFlag"><Value>true</Value></Boolean>
    <Boolean Name="FalseFlag"><Value>false</Value></Boolean>
    <Integer Name="Gone"><pIsAvailable>No</pIsAvailable><pValue>RegRW</pValue></Integer>
    <Integer Name="Missing"><pIsImplemented>No</pIsImplemented><pValue>RegRW</pValue></Integer>
    <Integer Name="BehindGone"><pValue>Gone</pValue></Integer>
    <Integer Name="Locked"><pIsLocked>Yes</pIsLocked><pValue>RegRW</pValue></Integer>
    <Port Name="Chunk"><ChunkID>1</ChunkID></Port>
    <Port Name="Event"><EventID>1</EventID></Port>
)";

std::string nameOf(const ModeRow& row)
{
    return "Node" + std::to_string(&row - kModes);
}

std::string everything()
{
    std::string nodes = kBehind + intReg("RegRO", 0, "RO") + intReg("RegWO", 4, "WO") + intReg("RegRW", 8, "RW");
    for (const ModeRow& row : kModes) {
        nodes += "<" + std::string(row.element) + " Name=\"" + nameOf(row) + "\">" + row.content + "</" + row.element +
                 ">\n";
    }
    return describe(nodes);
}

} // namespace

TEST(AccessMode, EveryCombinationGivesItsMode)
{
    DescribedCamera camera(everything());
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    for (const ModeRow& row : kModes) {
        EXPECT_EQ(camera.access(nameOf(row).c_str()), row.mode) << row.element << " " << row.content;
        EXPECT_EQ(camera.lastStatus, CAM_API_STS_SUCCESS) << row.element << " " << row.content;
    }
}

TEST(AccessMode, IsCheckedBeforeTheValue)
{
    DescribedCamera camera(everything());
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    struct {
        NodeAccessMode mode;
        CAM_API_STATUS read;
        CAM_API_STATUS write;
    } const kStatuses[] = {
        {NI, CAM_API_STS_NOT_AVAILABLE, CAM_API_STS_NOT_AVAILABLE},
        {NA, CAM_API_STS_NOT_AVAILABLE, CAM_API_STS_NOT_AVAILABLE},
        {WO, CAM_API_STS_NOT_READABLE, CAM_API_STS_SUCCESS},
        {RO, CAM_API_STS_SUCCESS, CAM_API_STS_NOT_WRITABLE},
        {RW, CAM_API_STS_SUCCESS, CAM_API_STS_SUCCESS},
    };
    for (const ModeRow& row : kModes) {
        if (std::string(row.element) != "Integer")
            continue;
        const auto& expected = kStatuses[row.mode == RW ? 4 : static_cast<int>(row.mode)];
        const CAM_NODE_HANDLE node = camera.node(nameOf(row).c_str());
        std::int64_t value = 0;
        EXPECT_EQ(Nd_GetIntValue(camera.handle(), node, &value), expected.read) << row.content;
        EXPECT_EQ(Nd_SetIntValue(camera.handle(), node, 1, true), expected.write) << row.content;
        EXPECT_EQ(Nd_SetIntValue(camera.handle(), node, 1, false), expected.write) << row.content;
        // Neither the range nor the value is checked first.
        if (expected.write != CAM_API_STS_SUCCESS) {
            EXPECT_EQ(Nd_SetIntValue(camera.handle(), node, -5, true), expected.write) << row.content;
        }
    }
}

TEST(AccessMode, IsCheckedByEveryOperation)
{
    DescribedCamera camera(describe(constant("No", 0) + intReg("RegRO", 0, "RO") + intReg("RegWO", 4, "WO") +
                                    R"(<Float Name="F"><pIsAvailable>No</pIsAvailable><Value>1</Value></Float>
           <Float Name="FWO"><pValue>RegWO</pValue></Float>
           <Boolean Name="B"><pIsAvailable>No</pIsAvailable><Value>1</Value></Boolean>
           <Boolean Name="BRO"><pValue>RegRO</pValue></Boolean>
           <String Name="S"><pIsImplemented>No</pIsImplemented><Value>x</Value></String>
           <Command Name="C"><pIsAvailable>No</pIsAvailable><pValue>RegWO</pValue><CommandValue>1</CommandValue></Command>
           <Command Name="CRO"><pValue>RegRO</pValue><CommandValue>1</CommandValue></Command>
           <Enumeration Name="E"><EnumEntry Name="e"><Value>0</Value></EnumEntry><pValue>RegWO</pValue></Enumeration>
           <Enumeration Name="ERO"><EnumEntry Name="e"><Value>0</Value></EnumEntry><pValue>RegRO</pValue></Enumeration>)"));
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    const CAM_HANDLE c = camera.handle();
    double number = 0;
    bool flag = false;
    std::int64_t value = 0;
    EXPECT_EQ(Nd_GetFloatValue(c, camera.node("F"), &number), CAM_API_STS_NOT_AVAILABLE);
    EXPECT_EQ(Nd_SetFloatValue(c, camera.node("F"), 1.0), CAM_API_STS_NOT_AVAILABLE);
    EXPECT_EQ(Nd_GetFloatValue(c, camera.node("FWO"), &number), CAM_API_STS_NOT_READABLE);
    EXPECT_EQ(Nd_GetBoolValue(c, camera.node("B"), &flag), CAM_API_STS_NOT_AVAILABLE);
    EXPECT_EQ(Nd_SetBoolValue(c, camera.node("BRO"), true), CAM_API_STS_NOT_WRITABLE);
    EXPECT_EQ(camera.text(Nd_GetStrValue, "S"), "status 2056");
    EXPECT_EQ(Nd_SetStrValue(c, camera.node("S"), "y"), CAM_API_STS_NOT_AVAILABLE);
    EXPECT_EQ(Nd_CmdExecute(c, camera.node("C")), CAM_API_STS_NOT_AVAILABLE);
    EXPECT_EQ(Nd_CmdExecute(c, camera.node("CRO")), CAM_API_STS_NOT_WRITABLE);
    EXPECT_EQ(camera.text(Nd_GetEnumStrValue, "E"), "status 2054");
    EXPECT_EQ(Nd_GetEnumIntValue(c, camera.node("E"), &value), CAM_API_STS_NOT_READABLE);
    EXPECT_EQ(Nd_SetEnumStrValue(c, camera.node("E"), "e"), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Nd_SetEnumStrValue(c, camera.node("ERO"), "nonsense"), CAM_API_STS_NOT_WRITABLE) << "before the value";
    EXPECT_EQ(Nd_SetEnumIntValue(c, camera.node("ERO"), 77), CAM_API_STS_NOT_WRITABLE);
}

TEST(AccessMode, OfAnEntryShowsWhetherItCanBeChosen)
{
    DescribedCamera camera(describe(constant("No", 0) + intReg("Switch", 0) + intReg("Reg", 4) +
                                    R"(<Integer Name="On"><pValue>Switch</pValue></Integer>
           <Enumeration Name="E">
             <EnumEntry Name="Always"><Value>0</Value></EnumEntry>
             <EnumEntry Name="Sometimes"><pIsAvailable>On</pIsAvailable><Value>1</Value></EnumEntry>
             <EnumEntry Name="Never"><pIsImplemented>No</pIsImplemented><Value>2</Value></EnumEntry>
             <pValue>Reg</pValue>
           </Enumeration>)"));
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    const CAM_HANDLE c = camera.handle();
    const CAM_NODE_HANDLE e = camera.node("E");
    const auto modes = [&] {
        std::vector<NodeAccessMode> result;
        for (std::uint32_t i = 0; i < 3; ++i) {
            CAM_NODE_HANDLE entry = 0;
            EXPECT_EQ(Nd_GetEnumEntryByIndex(c, e, i, &entry), CAM_API_STS_SUCCESS);
            result.emplace_back();
            EXPECT_EQ(Nd_GetAccessMode(c, entry, &result.back()), CAM_API_STS_SUCCESS);
        }
        return result;
    };
    EXPECT_THAT(modes(), ::testing::ElementsAre(RO, NA, NI));
    EXPECT_EQ(Nd_SetEnumStrValue(c, e, "Sometimes"), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Nd_SetEnumIntValue(c, e, 1), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Nd_SetEnumIntValue(c, e, 1, false), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Nd_SetIntValue(c, camera.node("On"), 1), CAM_API_STS_SUCCESS);
    EXPECT_THAT(modes(), ::testing::ElementsAre(RO, RO, NI));
    EXPECT_EQ(Nd_SetEnumStrValue(c, e, "Sometimes"), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Nd_SetEnumStrValue(c, e, "Never"), CAM_API_STS_INVALID_PARAMETER);
    // An entry that can no longer be chosen still names the value.
    EXPECT_EQ(Nd_SetIntValue(c, camera.node("On"), 0), CAM_API_STS_SUCCESS);
    EXPECT_EQ(camera.text(Nd_GetEnumStrValue, "E"), "Sometimes");
}

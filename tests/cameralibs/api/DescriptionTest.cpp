#include "tests/cameralibs/api/DescribedCamera.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Orvo;
using ::testing::HasSubstr;

namespace {

struct RefusedRow {
    const char* what;
    std::string xml;
    CAM_API_STATUS status;
    const char* text; ///< part of the reason, such as the name of the node
};

std::string element(const std::string& name, const std::string& content)
{
    return "<" + name + ">" + content + "</" + name + ">";
}

std::string named(const char* type, const char* name, const std::string& content)
{
    return std::string("<") + type + " Name=\"" + name + "\">" + content + "</" + type + ">";
}

std::string masked(const char* bits)
{
    return named("MaskedIntReg", "Bits",
                 std::string("<Address>0</Address><Length>2</Length><pPort>Device</pPort>") + bits);
}

std::string sized(const char* type, const char* length)
{
    return named(type, "Sized",
                 std::string("<Address>0</Address><Length>") + length + "</Length><pPort>Device</pPort>");
}

/// Nested categories; the innermost one contains a feature.
std::string nested(int categories)
{
    std::string nodes = constant("Leaf", 1);
    for (int i = 1; i < categories; ++i) {
        nodes += named("Category", ("C" + std::to_string(i)).c_str(),
                       element("pFeature", i + 1 < categories ? "C" + std::to_string(i + 1) : "Leaf"));
    }
    return describe(categories > 1 ? "C1" : "Leaf", nodes);
}

/// `rows` rows below Root, most of them from listing one category many times.
std::string crowded(int rows)
{
    std::string thousand;
    for (int i = 0; i < 1023; ++i)
        thousand += element("pFeature", "Leaf");
    std::string features;
    for (int i = 0; i < rows / 1024; ++i)
        features += "Thousand ";
    for (int i = 0; i < rows % 1024; ++i)
        features += "Leaf ";
    return describe(features, constant("Leaf", 1) + named("Category", "Thousand", thousand));
}

std::string chain(int length)
{
    std::string nodes = constant("N0", 1);
    for (int i = 1; i < length; ++i)
        nodes += named("Integer", ("N" + std::to_string(i)).c_str(), element("pValue", "N" + std::to_string(i - 1)));
    return describe(nodes);
}

/// Every formula uses the previous one twice.
std::string doubling(int length)
{
    std::string nodes = constant("N0", 1);
    for (int i = 1; i < length; ++i) {
        const std::string before = "N" + std::to_string(i - 1);
        nodes += named("IntSwissKnife", ("N" + std::to_string(i)).c_str(),
                       "<pVariable Name=\"A\">" + before + "</pVariable><pVariable Name=\"B\">" + before +
                           "</pVariable><Formula>A+B</Formula>");
    }
    return describe(nodes);
}

} // namespace

TEST(Description, UnusableDescriptionsAreRefusedWithAReason)
{
    const std::string good = describe("");
    const RefusedRow rows[] = {
        {"empty", "", 257, "well-formed"},
        {"not XML", "Hello.", 257, "well-formed"},
        {"truncated", good.substr(0, good.size() / 2), 257, "line"},
        {"undefined entity", describe(named("String", "S", "<Value>&nothing;</Value>")), 257, "nothing"},
        {"invalid UTF-8", describe(named("String", "S", "<Value>\xFF\xFE</Value>")), 257, "UTF-8"},
        {"another root element", "<Description/>", 258, "Description"},
        {"document type", "<!DOCTYPE RegisterDescription [<!ENTITY e \"x\">]>" + good.substr(good.find("<Reg")), 258,
         "document type"},
        {"no Root", "<RegisterDescription/>", 258, "Root"},
        {"Root is no category", "<RegisterDescription><Integer Name=\"Root\"/></RegisterDescription>", 258, "Root"},
        {"category cycle",
         describe("A",
                  named("Category", "A", element("pFeature", "B")) + named("Category", "B", element("pFeature", "A"))),
         258, "[A]"},
        {"category in itself", describe("A", named("Category", "A", element("pFeature", "A"))), 258, "[A]"},
        {"unreachable category cycle", describe("", named("Category", "A", element("pFeature", "A"))), 258, "[A]"},
        {"categories too deep", nested(257), 258, "256"},
        {"too many rows", crowded(65537), 258, "65536"},
        {"value cycle",
         describe(named("Integer", "A", element("pValue", "B")) + named("Integer", "B", element("pValue", "A"))), 258,
         "[A]"},
        {"address cycle",
         describe(named("IntReg", "A", element("pAddress", "A") + "<Length>4</Length><pPort>Device</pPort>")), 258,
         "[A]"},
        {"formula cycle",
         describe(named("IntSwissKnife", "A", "<pVariable Name=\"X\">A</pVariable><Formula>X</Formula>")), 258, "[A]"},
        {"index cycle", describe(named("Integer", "A", element("pIndex", "A") + "<ValueDefault>1</ValueDefault>")), 258,
         "[A]"},
        {"evaluation too deep", chain(300), 258, "too deep"},
        {"endless evaluation", doubling(40), 258, "too many steps"},
        {"length 0", describe(sized("IntReg", "0")), 258, "[Sized]"},
        {"negative length", describe(sized("StringReg", "-1")), 258, "[Sized]"},
        {"absurd length", describe(sized("StringReg", "1000000000000000")), 258, "[Sized]"},
        {"length above the limit", describe(sized("Register", "65537")), 258, "[Sized]"},
        {"length is not a number", describe(sized("StringReg", "many")), 258, "[Sized]"},
        {"length beyond 64 bits", describe(sized("StringReg", "99999999999999999999")), 258, "[Sized]"},
        {"bit beyond the register", describe(masked("<LSB>0</LSB><MSB>16</MSB>")), 258, "[Bits]"},
        {"negative bit", describe(masked("<Bit>-1</Bit>")), 258, "[Bits]"},
        {"bit is not a number", describe(masked("<LSB>low</LSB><MSB>3</MSB>")), 258, "[Bits]"},
        {"name too long", describe(named("Integer", std::string(256, 'n').c_str(), "<Value>1</Value>")), 258, "[nnnn"},
        {"symbolic name too long",
         describe(named("Enumeration", "E",
                        "<EnumEntry Name=\"One\"><Value>1</Value><Symbolic>" + std::string(256, 's') +
                            "</Symbolic></EnumEntry><Value>1</Value>")),
         258, "[One]"},
    };
    for (const RefusedRow& row : rows) {
        const DescribedCamera camera(row.xml);
        EXPECT_EQ(camera.status(), row.status) << row.what;
        EXPECT_EQ(camera.handle(), 0U) << row.what;
        EXPECT_THAT(camera.error(), HasSubstr(row.text)) << row.what;
    }
}

TEST(Description, DescriptionsAtTheLimitsAreAccepted)
{
    for (const std::string& xml : {nested(256), crowded(65536), chain(256), describe(sized("StringReg", "65536")),
                                   describe(sized("Register", "1")), describe(sized("StringReg", "0x10")),
                                   describe(masked("<LSB>0</LSB><MSB>15</MSB>")), describe(masked("<Bit>15</Bit>")),
                                   describe(named("Integer", std::string(255, 'n').c_str(), "<Value>1</Value>"))}) {
        const DescribedCamera camera(xml);
        EXPECT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    }
}

TEST(Description, RefusalLeavesNothingOpenAndIsRepeated)
{
    const DescribedCamera camera("<RegisterDescription/>");
    CAM_HANDLE again = 0;
    EXPECT_EQ(Cam_Open(0, &again, 0, 1, nullptr, 1), CAM_API_STS_GENICAM_ERR) << "not CAM_API_STS_ALREADY_OPENED";
    EXPECT_EQ(Cam_Open(0, nullptr, 0, 1, nullptr, 1), CAM_API_STS_INVALID_PARAMETER)
        << "null pointers are checked first";
}

TEST(Description, RangesThatDependOnEachOtherAreNotACycle)
{
    DescribedCamera camera(
        describe("Width OffsetX",
                 intReg("WidthReg", 0) + intReg("OffsetReg", 4) +
                     R"(<Integer Name="Width"><pValue>WidthReg</pValue><Min>1</Min><pMax>WidthMax</pMax></Integer>
           <Integer Name="OffsetX"><pValue>OffsetReg</pValue><Min>0</Min><pMax>OffsetMax</pMax></Integer>
           <IntSwissKnife Name="WidthMax"><pVariable Name="O">OffsetX</pVariable><Formula>100-O</Formula></IntSwissKnife>
           <IntSwissKnife Name="OffsetMax"><pVariable Name="W">Width</pVariable><Formula>100-W</Formula></IntSwissKnife>)"));
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    const CAM_HANDLE c = camera.handle();
    EXPECT_EQ(Nd_SetIntValue(c, camera.node("OffsetX"), 0), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Nd_SetIntValue(c, camera.node("Width"), 60), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Nd_SetIntValue(c, camera.node("OffsetX"), 41), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Nd_SetIntValue(c, camera.node("OffsetX"), 40), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Nd_SetIntValue(c, camera.node("Width"), 61), CAM_API_STS_INVALID_PARAMETER);
}

TEST(Description, MissingFeaturesAreSkipped)
{
    const DescribedCamera camera(describe("A Nothing B", constant("A", 1) + constant("B", 2)));
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    EXPECT_THAT(featuresOf(camera.handle(), "Root"), ::testing::ElementsAre("A", "B"));
}

TEST(Description, OfSeveralNodesWithTheSameNameTheLastCounts)
{
    DescribedCamera camera(describe("A B", constant("A", 1) + "<Float Name=\"A\"><Value>2.5</Value></Float>" +
                                               "<Integer Name=\"B\"><pValue>Reg</pValue></Integer>" + intReg("Reg", 0) +
                                               constant("Reg", 7)));
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    EXPECT_THAT(featuresOf(camera.handle(), "Root"), ::testing::ElementsAre("A", "B"));
    EXPECT_EQ(camera.number("A"), 2.5);
    EXPECT_EQ(camera.integer("B"), 7);
}

TEST(Description, WhiteSpaceIsStrippedFromNamesButNotFromTexts)
{
    DescribedCamera camera(
        describe("\n  A\t", "<Integer Name=\" A\n\"><ToolTip> a b \n</ToolTip><Visibility> Guru </Visibility>"
                            "<pValue>\n Reg \n</pValue></Integer>" +
                                intReg(" Reg ", 0, " RW ") +
                                "<Enumeration Name=\"E\"><EnumEntry Name=\" One \"><Value> 1 </Value>"
                                "<Symbolic>\n Uno </Symbolic></EnumEntry><Value>1</Value></Enumeration>"));
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    EXPECT_THAT(featuresOf(camera.handle(), "Root"), ::testing::ElementsAre("A"));
    EXPECT_EQ(camera.access("A"), NODE_ACCESS_MODE_RW);
    EXPECT_EQ(Nd_SetIntValue(camera.handle(), camera.node("A"), 5), CAM_API_STS_SUCCESS);
    EXPECT_EQ(camera.integer("Reg"), 5);
    EXPECT_EQ(camera.text(Nd_GetToolTip, "A"), " a b \n");
    TC_NODE_VISIBILITY visibility = NODE_VISIBILITY_BEGINNER;
    EXPECT_EQ(Nd_GetVisibility(camera.handle(), camera.node("A"), &visibility), CAM_API_STS_SUCCESS);
    EXPECT_EQ(visibility, NODE_VISIBILITY_GURU);
    EXPECT_THAT(entriesOf(camera.handle(), "E"), ::testing::ElementsAre("Uno"));
    EXPECT_EQ(camera.text(Nd_GetEnumStrValue, "E"), "Uno");
}

TEST(Description, TextsMayConsistOfPieces)
{
    DescribedCamera camera(describe("A B", R"(<Integer Name="A">
        <ToolTip>a &lt;b&gt;<![CDATA[ <c> ]]><!-- not this -->&#100;</ToolTip><Value>1<!-- nor this -->2</Value></Integer>
        <IntSwissKnife Name="B"><pVariable Name="X">A</pVariable><Formula>(X &lt; 13) &amp;&amp; (X &gt; 11)</Formula>
        </IntSwissKnife>)"));
    EXPECT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    EXPECT_EQ(camera.text(Nd_GetToolTip, "A"), "a <b> <c> d");
    EXPECT_EQ(camera.integer("A"), 12);
    EXPECT_EQ(camera.integer("B"), 1);
}

TEST(Description, PaddingAndOtherEncodingsAreRead)
{
    std::string latin = describe("<Integer Name=\"A\"><ToolTip>gr\xFC\xDF</ToolTip><Value>1</Value></Integer>");
    if (const std::size_t declaration = latin.find("?>"); declaration != std::string::npos)
        latin.erase(0, declaration + 2);
    const std::string declared = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>" + latin + std::string(100, '\0');
    const DescribedCamera camera(declared);
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    EXPECT_EQ(camera.text(Nd_GetToolTip, "A"), "grüß");
}

TEST(Description, GroupsAndStructuresContainNodes)
{
    DescribedCamera camera(describe(
        "High Low", "<Group Comment=\"g\"><Group Comment=\"h\">" + intReg("Whole", 16) +
                        R"(</Group><StructReg><Address>16</Address><Length>4</Length><AccessMode>RW</AccessMode>
              <pPort>Device</pPort><Endianess>LittleEndian</Endianess>
              <StructEntry Name="Low"><LSB>0</LSB><MSB>7</MSB></StructEntry>
              <StructEntry Name="High"><AccessMode>RO</AccessMode><LSB>8</LSB><MSB>15</MSB></StructEntry>
              </StructReg></Group>)"));
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    EXPECT_EQ(Nd_SetIntValue(camera.handle(), camera.node("Whole"), 0x1234), CAM_API_STS_SUCCESS);
    EXPECT_EQ(camera.integer("Low"), 0x34);
    EXPECT_EQ(camera.integer("High"), 0x12);
    EXPECT_EQ(camera.access("Low"), NODE_ACCESS_MODE_RW);
    EXPECT_EQ(camera.access("High"), NODE_ACCESS_MODE_RO);
}

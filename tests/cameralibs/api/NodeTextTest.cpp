#include "tests/cameralibs/api/DescribedCamera.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Orvo;
using ::testing::ElementsAre;

namespace {

std::string withChild(const char* type, const char* name, const std::string& child)
{
    return std::string("<") + type + " Name=\"" + name + "\">" + child + "<Value>1</Value></" + type + ">";
}

template <class Value>
Value valueOf(CAM_API_STATUS (*operation)(CAM_HANDLE, CAM_NODE_HANDLE, Value*), const DescribedCamera& camera,
              const char* name)
{
    Value value = {};
    EXPECT_EQ(operation(camera.handle(), camera.node(name), &value), CAM_API_STS_SUCCESS) << name;
    return value;
}

/// A string in a separate register.
std::string stringReg(const char* name, unsigned address, unsigned length)
{
    return std::string("<StringReg Name=\"") + name + "\"><Address>" + std::to_string(address) + "</Address><Length>" +
           std::to_string(length) + "</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></StringReg>";
}

} // namespace

TEST(NodeText, IsCompleteAtAnyLength)
{
    const std::string longText(200000, 'd');
    const DescribedCamera camera(
        describe("<Integer Name=\"I\"><ToolTip>&lt;b&gt; &amp; &quot;%1&quot; µm</ToolTip><Description>" + longText +
                 "</Description><Value>1</Value><Unit>µs</Unit></Integer>"
                 "<Float Name=\"F\"><Value>1</Value><Unit>dB</Unit></Float>" +
                 constant("Bare", 1) + withChild("Boolean", "B", "<ToolTip>tip</ToolTip>")));
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    EXPECT_EQ(camera.text(Nd_GetToolTip, "I"), "<b> & \"%1\" µm");
    EXPECT_EQ(camera.text(Nd_GetDescription, "I"), longText);
    EXPECT_EQ(camera.text(Nd_GetUnit, "I"), "µs");
    EXPECT_EQ(camera.text(Nd_GetUnit, "F"), "dB");
    for (const TextOperation operation : {Nd_GetToolTip, Nd_GetDescription, Nd_GetUnit}) {
        EXPECT_EQ(camera.text(operation, "Bare"), "");
        EXPECT_EQ(camera.text(operation, "Root"), "");
    }
    EXPECT_EQ(camera.text(Nd_GetUnit, "B"), "");
    EXPECT_EQ(camera.text(Nd_GetToolTip, "B"), "tip");
    std::uint32_t size = 77;
    EXPECT_EQ(Nd_GetUnit(camera.handle(), camera.node("Bare"), nullptr, &size), CAM_API_STS_SUCCESS);
    EXPECT_EQ(size, 1U) << "an empty text needs its NUL";
}

TEST(NodeText, AttributesComeFromTheDescription)
{
    const DescribedCamera camera(describe(
        withChild("Integer", "Beginner", "<Visibility>Beginner</Visibility>") +
        withChild("Integer", "Expert", "<Visibility>Expert</Visibility>") +
        withChild("Integer", "Guru", "<Visibility>Guru</Visibility>") +
        withChild("Integer", "Invisible", "<Visibility>Invisible</Visibility>") +
        withChild("Integer", "Unclear", "<Visibility>Sometimes</Visibility>") +
        withChild("Integer", "Linear", "<Representation>Linear</Representation>") +
        withChild("Integer", "Logarithmic", "<Representation>Logarithmic</Representation>") +
        withChild("Integer", "Truth", "<Representation>Boolean</Representation>") +
        withChild("Integer", "Pure", "<Representation>PureNumber</Representation>") +
        withChild("Integer", "Hex", "<Representation>HexNumber</Representation>") +
        withChild("Integer", "IP", "<Representation>IPV4Address</Representation>") +
        withChild("Integer", "MAC", "<Representation>MACAddress</Representation>") +
        withChild("Boolean", "Other", "<Representation>Linear</Representation>") +
        withChild("Float", "F",
                  "<Representation>Logarithmic</Representation>"
                  "<DisplayNotation>Scientific</DisplayNotation><DisplayPrecision>3</DisplayPrecision>") +
        withChild("Float", "Fixed", "<DisplayNotation>Fixed</DisplayNotation>") + withChild("Float", "Plain", "")));
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    const auto visibility = [&](const char* name) { return valueOf(Nd_GetVisibility, camera, name); };
    EXPECT_EQ(visibility("Beginner"), 0);
    EXPECT_EQ(visibility("Expert"), 1);
    EXPECT_EQ(visibility("Guru"), 2);
    EXPECT_EQ(visibility("Invisible"), 3);
    EXPECT_EQ(visibility("Unclear"), 0);
    EXPECT_EQ(visibility("Root"), 0);
    const auto representation = [&](const char* name) { return valueOf(Nd_GetRepresentation, camera, name); };
    EXPECT_EQ(representation("Linear"), 0);
    EXPECT_EQ(representation("Logarithmic"), 1);
    EXPECT_EQ(representation("Truth"), 2);
    EXPECT_EQ(representation("Pure"), 3);
    EXPECT_EQ(representation("Hex"), 4);
    EXPECT_EQ(representation("IP"), 5);
    EXPECT_EQ(representation("MAC"), 6);
    EXPECT_EQ(representation("F"), 1);
    EXPECT_EQ(representation("Beginner"), 3) << "a node without one";
    EXPECT_EQ(representation("Other"), 3) << "neither Integer nor Float";
    EXPECT_EQ(representation("Root"), 3);
    EXPECT_EQ(valueOf(Nd_GetFloatDisplayNotation, camera, "F"), 2);
    EXPECT_EQ(valueOf(Nd_GetFloatDisplayNotation, camera, "Fixed"), 1);
    EXPECT_EQ(valueOf(Nd_GetFloatDisplayNotation, camera, "Plain"), 0);
    EXPECT_EQ(valueOf(Nd_GetFloatDisplayPrecision, camera, "F"), 3);
    EXPECT_EQ(valueOf(Nd_GetFloatDisplayPrecision, camera, "Plain"), 6);
}

TEST(NodeText, TypesAreThoseOfTheStandard)
{
    const std::string reg = "<Address>0</Address><Length>4</Length><pPort>Device</pPort>";
    const std::string formula = "<Formula>1</Formula>";
    const std::string conversion = "<FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom><pValue>IntReg</pValue>";
    const struct {
        const char* element;
        std::string content;
        NodeType type;
    } rows[] = {
        {"Integer", "<Value>1</Value>", NODE_TYPE_INTEGER},
        {"IntReg", reg, NODE_TYPE_INTEGER},
        {"MaskedIntReg", reg + "<Bit>1</Bit>", NODE_TYPE_INTEGER},
        {"IntSwissKnife", formula, NODE_TYPE_INTEGER},
        {"IntConverter", conversion, NODE_TYPE_INTEGER},
        {"Float", "<Value>1</Value>", NODE_TYPE_FLOAT},
        {"FloatReg", reg, NODE_TYPE_FLOAT},
        {"SwissKnife", formula, NODE_TYPE_FLOAT},
        {"Converter", conversion, NODE_TYPE_FLOAT},
        {"Boolean", "<Value>1</Value>", NODE_TYPE_BOOLEAN},
        {"Command", "<Value>1</Value>", NODE_TYPE_COMMAND},
        {"String", "<Value>1</Value>", NODE_TYPE_STRING},
        {"StringReg", reg, NODE_TYPE_STRING},
        {"Register", reg, NODE_TYPE_REGISTER},
        {"Category", "", NODE_TYPE_CATEGORY},
        {"Enumeration", "<EnumEntry Name=\"e\"><Value>1</Value></EnumEntry><Value>1</Value>", NODE_TYPE_ENUMERATION},
        {"Port", "", NODE_TYPE_PORT},
        {"Node", "", NODE_TYPE_BASE},
        {"ConfRom", "", NODE_TYPE_UNKNOWN},
    };
    std::string nodes;
    for (const auto& row : rows) {
        nodes +=
            std::string("<") + row.element + " Name=\"" + row.element + "\">" + row.content + "</" + row.element + ">";
    }
    const DescribedCamera camera(describe(nodes));
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    for (const auto& row : rows) {
        EXPECT_EQ(valueOf(Nd_GetType, camera, row.element), row.type) << row.element;
        EXPECT_EQ(camera.text(Nd_GetName, row.element), row.element);
    }
    CAM_NODE_HANDLE entry = 0;
    NodeType type = NODE_TYPE_UNKNOWN;
    ASSERT_EQ(Nd_GetEnumEntryByIndex(camera.handle(), camera.node("Enumeration"), 0, &entry), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Nd_GetType(camera.handle(), entry, &type), CAM_API_STS_SUCCESS);
    EXPECT_EQ(type, NODE_TYPE_ENUM_ENTRY);
}

TEST(NodeText, EntriesKeepTheirOrderAndHaveSymbolicNames)
{
    const DescribedCamera camera(describe(R"(
        <Integer Name="No"><Value>0</Value></Integer>
        <Enumeration Name="PixelFormat">
          <EnumEntry Name="EnumEntry_PixelFormat_Mono8"><ToolTip>tip</ToolTip><Visibility>Guru</Visibility>
            <Value>3</Value></EnumEntry>
          <EnumEntry Name="EnumEntry_Other_Mono10"><Value>2</Value></EnumEntry>
          <EnumEntry Name="Plain"><pIsImplemented>No</pIsImplemented><Value>1</Value></EnumEntry>
          <EnumEntry Name="EnumEntry_PixelFormat_Named"><Value>0</Value><Symbolic>Symbol</Symbolic></EnumEntry>
          <Value>0</Value>
        </Enumeration>
        <Enumeration Name="Empty"><Value>0</Value></Enumeration>)"));
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    EXPECT_THAT(entriesOf(camera.handle(), "PixelFormat"),
                ElementsAre("Mono8", "EnumEntry_Other_Mono10", "Plain", "Symbol"));
    EXPECT_EQ(camera.text(Nd_GetEnumStrValue, "PixelFormat"), "Symbol");
    const CAM_NODE_HANDLE format = camera.node("PixelFormat");
    EXPECT_EQ(Nd_SetEnumStrValue(camera.handle(), format, "Mono8"), CAM_API_STS_SUCCESS);
    EXPECT_EQ(valueOf(Nd_GetEnumIntValue, camera, "PixelFormat"), 3);
    EXPECT_EQ(Nd_SetEnumStrValue(camera.handle(), format, "EnumEntry_PixelFormat_Mono8"),
              CAM_API_STS_INVALID_PARAMETER);
    EXPECT_THAT(entriesOf(camera.handle(), "Empty"), ElementsAre());
    EXPECT_EQ(camera.text(Nd_GetEnumStrValue, "Empty"), "status 258");
    EXPECT_EQ(Nd_SetEnumIntValue(camera.handle(), camera.node("Empty"), 0), CAM_API_STS_INVALID_PARAMETER);
    // Entries are found only through their enumeration.
    CAM_NODE_HANDLE entry = 0;
    EXPECT_EQ(Nd_GetNode(camera.handle(), "Plain", &entry), CAM_API_STS_NOT_FOUND);
    CAM_NODE_HANDLE again = 0;
    ASSERT_EQ(Nd_GetEnumEntryByIndex(camera.handle(), format, 2, &entry), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Nd_GetEnumEntryByIndex(camera.handle(), format, 2, &again), CAM_API_STS_SUCCESS);
    EXPECT_EQ(entry, again);
    EXPECT_EQ(textOf(Nd_GetName, camera.handle(), entry), "Plain");
    ASSERT_EQ(Nd_GetEnumEntryByIndex(camera.handle(), format, 0, &entry), CAM_API_STS_SUCCESS);
    TC_NODE_VISIBILITY visibility = NODE_VISIBILITY_BEGINNER;
    EXPECT_EQ(Nd_GetVisibility(camera.handle(), entry, &visibility), CAM_API_STS_SUCCESS);
    EXPECT_EQ(visibility, NODE_VISIBILITY_GURU);
    EXPECT_EQ(textOf(Nd_GetToolTip, camera.handle(), entry), "tip");
    EXPECT_EQ(textOf(Nd_GetUnit, camera.handle(), entry), "");
}

TEST(NodeText, TheEntryOfANumberIsOneThatCanBeChosen)
{
    const DescribedCamera camera(describe(intReg("Reg", 0) + intReg("Moving", 4) + constant("No", 0) + R"(
        <Enumeration Name="E">
          <EnumEntry Name="Gone"><pIsAvailable>No</pIsAvailable><Value>1</Value></EnumEntry>
          <EnumEntry Name="Here"><Value>1</Value></EnumEntry>
          <EnumEntry Name="GoneToo"><pIsAvailable>No</pIsAvailable><Value>2</Value></EnumEntry>
          <EnumEntry Name="AndThis"><pIsAvailable>No</pIsAvailable><Value>2</Value></EnumEntry>
          <EnumEntry Name="Follows"><pValue>Moving</pValue></EnumEntry>
          <pValue>Reg</pValue>
        </Enumeration>)"));
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    const auto set = [&](const char* name, std::int64_t value) {
        EXPECT_EQ(Nd_SetIntValue(camera.handle(), camera.node(name), value, true), CAM_API_STS_SUCCESS);
    };
    set("Moving", 7);
    set("Reg", 1);
    EXPECT_EQ(camera.text(Nd_GetEnumStrValue, "E"), "Here");
    set("Reg", 2);
    EXPECT_EQ(camera.text(Nd_GetEnumStrValue, "E"), "GoneToo") << "the first, where none can be chosen";
    set("Reg", 7);
    EXPECT_EQ(camera.text(Nd_GetEnumStrValue, "E"), "Follows");
    set("Moving", 9);
    EXPECT_EQ(camera.text(Nd_GetEnumStrValue, "E"), "status 258");
    EXPECT_EQ(Nd_SetEnumStrValue(camera.handle(), camera.node("E"), "Follows", true), CAM_API_STS_SUCCESS);
    EXPECT_EQ(valueOf(Nd_GetEnumIntValue, camera, "E"), 9);
}

TEST(NodeText, StringsMayBeAsLongAsTheirRegister)
{
    const DescribedCamera camera(describe(
        stringReg("Short", 0, 8) + stringReg("Long", 0x10000, 65536) +
        "<String Name=\"S\"><pValue>Short</pValue></String><String Name=\"Own\"><Value> own </Value></String>"));
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    const CAM_HANDLE c = camera.handle();
    EXPECT_EQ(Nd_SetStrValue(c, camera.node("S"), "12345678"), CAM_API_STS_SUCCESS) << "the whole register";
    EXPECT_EQ(camera.text(Nd_GetStrValue, "Short"), "12345678");
    EXPECT_EQ(Nd_SetStrValue(c, camera.node("S"), "123456789"), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Nd_SetStrValue(c, camera.node("S"), "123456789", false), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(camera.text(Nd_GetStrValue, "S"), "12345678");
    EXPECT_EQ(Nd_SetStrValue(c, camera.node("S"), "abc"), CAM_API_STS_SUCCESS);
    EXPECT_EQ(camera.text(Nd_GetStrValue, "S"), "abc") << "nothing of the longer text is left";
    const std::string longText(65536, 'x');
    EXPECT_EQ(Nd_SetStrValue(c, camera.node("Long"), longText.c_str()), CAM_API_STS_SUCCESS);
    EXPECT_EQ(camera.text(Nd_GetStrValue, "Long"), longText);
    EXPECT_EQ(camera.text(Nd_GetStrValue, "Own"), " own ");
    EXPECT_EQ(Nd_SetStrValue(c, camera.node("Own"), "new"), CAM_API_STS_SUCCESS);
    EXPECT_EQ(camera.text(Nd_GetStrValue, "Own"), "new");
}

TEST(NodeText, SizeIsWrittenOnSuccessAndIfTheBufferIsTooSmall)
{
    const DescribedCamera camera(
        describe(constant("No", 0) + stringReg("S", 0, 8) + intReg("Reg", 8) + intReg("Secret", 12, "WO") +
                 R"(<String Name="Gone"><pIsAvailable>No</pIsAvailable><Value>x</Value></String>
           <Enumeration Name="Unknown"><EnumEntry Name="e"><Value>7</Value></EnumEntry><pValue>Reg</pValue></Enumeration>
           <Enumeration Name="Hidden"><EnumEntry Name="e"><Value>7</Value></EnumEntry><pValue>Secret</pValue></Enumeration>)"));
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    ASSERT_EQ(Nd_SetStrValue(camera.handle(), camera.node("S"), "abc"), CAM_API_STS_SUCCESS);
    const struct {
        CAM_API_STATUS status;
        TextOperation operation;
        CAM_HANDLE camera;
        CAM_NODE_HANDLE node;
        std::uint32_t capacity;
        std::uint32_t size; ///< afterwards
    } rows[] = {
        {0, Nd_GetStrValue, camera.handle(), camera.node("S"), 16, 4},
        {14, Nd_GetStrValue, camera.handle(), camera.node("S"), 3, 4},
        {7, Nd_GetStrValue, camera.handle() + 1000, camera.node("S"), 16, 16},
        {8, Nd_GetName, camera.handle(), 1, 16, 16},
        {13, Nd_GetStrValue, camera.handle(), camera.node("Unknown"), 16, 16},
        {258, Nd_GetEnumStrValue, camera.handle(), camera.node("Unknown"), 16, 16},
        {2054, Nd_GetEnumStrValue, camera.handle(), camera.node("Hidden"), 16, 16},
        {2056, Nd_GetStrValue, camera.handle(), camera.node("Gone"), 16, 16},
    };
    for (const auto& row : rows) {
        char buffer[16] = "unchanged";
        std::uint32_t size = row.capacity;
        EXPECT_EQ(row.operation(row.camera, row.node, buffer, &size), row.status);
        EXPECT_EQ(size, row.size) << "status " << row.status;
        EXPECT_STREQ(buffer, row.status == 0 ? "abc" : "unchanged") << "status " << row.status;
        if (row.status == CAM_API_STS_SUCCESS || row.status == CAM_API_STS_BUFFER_TOO_SMALL)
            continue;
        EXPECT_EQ(row.operation(row.camera, row.node, nullptr, &size), row.status);
        EXPECT_EQ(size, row.size) << "status " << row.status;
    }
}

TEST(NodeText, InvalidUtf8IsReplaced)
{
    const DescribedCamera camera(describe(stringReg("S", 0, 16)));
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    EXPECT_EQ(Nd_SetStrValue(camera.handle(), camera.node("S"),
                             "a\xFF"
                             "b\xC3"),
              CAM_API_STS_SUCCESS)
        << "stored unchanged";
    EXPECT_EQ(camera.text(Nd_GetStrValue, "S"), "a\uFFFDb\uFFFD");
    EXPECT_EQ(Nd_SetStrValue(camera.handle(), camera.node("S"), "grün"), CAM_API_STS_SUCCESS);
    EXPECT_EQ(camera.text(Nd_GetStrValue, "S"), "grün");
}

#include "tests/cameralibs/api/DescribedCamera.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

using namespace Orvo;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;

namespace {

struct FaultRow {
    const char* name;
    const char* type;
    const char* content;
    const char* reason;
};

// Errors in the description of one node, while the others are correct.
constexpr FaultRow kFaults[] = {
    {"NoTarget", "Integer", "<pValue>Nowhere</pValue>", "Nowhere"},
    {"NoMinimum", "Integer", "<Value>1</Value><pMin>Nowhere</pMin>", "Nowhere"},
    {"NoFlag", "Integer", "<pIsAvailable>Nowhere</pIsAvailable><Value>1</Value>", "Nowhere"},
    {"NoSelected", "Integer", "<Value>1</Value><pSelected>Nowhere</pSelected>", "Nowhere"},
    {"NoPort", "IntReg", "<Address>0</Address><Length>4</Length><pPort>Nowhere</pPort>", "Nowhere"},
    {"NoOffset", "IntReg", "<pIndex pOffset=\"Nowhere\">One</pIndex><Length>4</Length><pPort>Device</pPort>",
     "Nowhere"},
    {"BehindFault", "Integer", "<pValue>NoTarget</pValue>", "NoTarget"},
    {"BehindText", "Integer", "<pValue>Text</pValue>", "Text"},
    {"BehindCategory", "Integer", "<pValue>Root</pValue>", "Root"},
    {"BehindBoolean", "Integer", "<pValue>Flag</pValue>", "Flag"},
    {"WrongPort", "IntReg", "<Address>0</Address><Length>4</Length><pPort>One</pPort>", "One"},
    {"WithoutLength", "IntReg", "<Address>0</Address><pPort>Device</pPort>", "length"},
    {"TooLong", "IntReg", "<Address>0</Address><Length>16</Length><pPort>Device</pPort>", "8 bytes"},
    {"WithoutBits", "MaskedIntReg", "<Address>0</Address><Length>4</Length><pPort>Device</pPort>", "bit range"},
    {"NoFormula", "IntSwissKnife", "<Formula></Formula>", "empty"},
    {"BadFormula", "IntSwissKnife", "<pVariable Name=\"A\">One</pVariable><Formula>A + * 2</Formula>", "A + * 2"},
    {"Parentheses", "IntSwissKnife", "<pVariable Name=\"A\">One</pVariable><Formula>((A)</Formula>", "parenthes"},
    {"Unknown", "IntSwissKnife", "<pVariable Name=\"A\">One</pVariable><Formula>A + B</Formula>", "variable"},
    {"BooleanVariable", "IntSwissKnife", "<pVariable Name=\"A\">Flag</pVariable><Formula>A</Formula>", "Flag"},
    {"Limits", "IntSwissKnife", "<pVariable Name=\"A.Max\">One</pVariable><Formula>A.Max</Formula>", "A.Max"},
    {"Division", "IntSwissKnife", "<pVariable Name=\"A\">Zero</pVariable><Formula>1 / A</Formula>", "zero"},
    {"Remainder", "IntSwissKnife", "<pVariable Name=\"A\">Zero</pVariable><Formula>1 % A</Formula>", "zero"},
    {"BehindDivision", "Integer", "<pValue>BehindBehind</pValue>", "zero"},
    {"BehindBehind", "IntSwissKnife", "<pVariable Name=\"A\">Division</pVariable><Formula>A + 5</Formula>", "zero"},
    {"FromDivision", "IntConverter", "<FormulaTo>FROM</FormulaTo><FormulaFrom>TO / 0</FormulaFrom><pValue>One</pValue>",
     "zero"},
    {"AddressDivision", "IntReg",
     "<IntSwissKnife Name=\"Inner\"><pVariable Name=\"A\">Zero</pVariable><Formula>8 / A</Formula></IntSwissKnife>"
     "<Length>4</Length><pPort>Device</pPort>",
     "zero"},
    {"NoLength", "IntReg", "<Address>0</Address><pLength>Zero</pLength><pPort>Device</pPort>", "0 bytes"},
    {"AbsurdLength", "IntReg", "<Address>0</Address><pLength>Absurd</pLength><pPort>Device</pPort>", "bytes"},
    {"FlagDivision", "Integer", "<pIsLocked>Division</pIsLocked><Value>1</Value>", "zero"},
};

std::string faults()
{
    std::string names;
    std::string nodes = constant("One", 1) + constant("Zero", 0) + constant("Absurd", 1000000000000000) +
                        "<String Name=\"Text\"><Value>x</Value></String>"
                        "<Boolean Name=\"Flag\"><Value>1</Value></Boolean>";
    for (const FaultRow& row : kFaults) {
        names += std::string(row.name) + " ";
        nodes += std::string("<") + row.type + " Name=\"" + row.name + "\">" + row.content + "</" + row.type + ">\n";
    }
    return describe(names, nodes);
}

} // namespace

TEST(EvaluationError, AffectsTheNodeAndThoseThatDependOnIt)
{
    DescribedCamera camera(faults());
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    for (const FaultRow& row : kFaults) {
        std::int64_t value = 77;
        EXPECT_EQ(Nd_GetIntValue(camera.handle(), camera.node(row.name), &value), CAM_API_STS_GENICAM_ERR) << row.name;
        EXPECT_EQ(value, 77) << row.name;
        EXPECT_THAT(lastGenICamError(), HasSubstr(std::string("[") + row.name + "]")) << row.name;
        EXPECT_THAT(lastGenICamError(), HasSubstr(row.reason)) << row.name;
    }
    EXPECT_EQ(camera.integer("One"), 1);
    EXPECT_EQ(camera.lastStatus, CAM_API_STS_SUCCESS);
}

TEST(EvaluationError, DoesNotAffectStaticProperties)
{
    DescribedCamera camera(faults());
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    for (const FaultRow& row : kFaults) {
        EXPECT_EQ(camera.text(Nd_GetName, row.name), row.name);
        EXPECT_EQ(camera.text(Nd_GetToolTip, row.name), "");
        NodeType type = NODE_TYPE_UNKNOWN;
        EXPECT_EQ(Nd_GetType(camera.handle(), camera.node(row.name), &type), CAM_API_STS_SUCCESS);
        EXPECT_EQ(type, NODE_TYPE_INTEGER);
        double number = 0;
        EXPECT_EQ(Nd_GetFloatValue(camera.handle(), camera.node(row.name), &number), CAM_API_STS_INVALID_PARAMETER)
            << "a wrong type is checked first";
    }
    // A reference to a missing node makes the whole node unusable.
    (void)camera.access("NoSelected");
    EXPECT_EQ(camera.lastStatus, CAM_API_STS_GENICAM_ERR);
    (void)camera.access("FlagDivision");
    EXPECT_EQ(camera.lastStatus, CAM_API_STS_GENICAM_ERR);
    std::int64_t limit = 0;
    EXPECT_EQ(Nd_GetIntMin(camera.handle(), camera.node("NoTarget"), &limit), CAM_API_STS_GENICAM_ERR);
    EXPECT_EQ(Nd_SetIntValue(camera.handle(), camera.node("NoTarget"), 1), CAM_API_STS_GENICAM_ERR);
}

TEST(EvaluationError, ConditionalFormulasMayDivideByZeroInTheOtherBranch)
{
    DescribedCamera camera(describe(intReg("A", 0) +
                                    "<IntSwissKnife Name=\"Guarded\"><pVariable Name=\"A\">A</pVariable>"
                                    "<Formula>(A = 0) ? 0 : (100 / A)</Formula></IntSwissKnife>"));
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    EXPECT_EQ(camera.integer("Guarded"), 0);
    EXPECT_EQ(camera.lastStatus, CAM_API_STS_SUCCESS);
    EXPECT_EQ(Nd_SetIntValue(camera.handle(), camera.node("A"), 5), CAM_API_STS_SUCCESS);
    EXPECT_EQ(camera.integer("Guarded"), 20);
}

TEST(EvaluationError, FormulasUseVariablesConstantsAndExpressions)
{
    DescribedCamera camera(describe(
        constant("Two", 2) +
        R"(<Enumeration Name="E"><EnumEntry Name="e"><Value>30</Value></EnumEntry><Value>30</Value></Enumeration>
           <IntSwissKnife Name="All"><pVariable Name="A">Two</pVariable><pVariable Name="E">E</pVariable>
             <Constant Name="C">400</Constant><Expression Name="X">A * 1000</Expression>
             <Formula>A + E + C + X</Formula></IntSwissKnife>
           <SwissKnife Name="Half"><pVariable Name="A">All</pVariable><Formula>A / 5 + 0.25</Formula></SwissKnife>)"));
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    EXPECT_EQ(camera.integer("All"), 2432);
    EXPECT_DOUBLE_EQ(camera.number("Half"), 486.65);
}

TEST(EvaluationError, ConverterThatCannotConvertWritesNothing)
{
    DescribedCamera camera(
        describe(intReg("Reg", 0) +
                 R"(<IntConverter Name="Inverse"><FormulaTo>100 / FROM</FormulaTo><FormulaFrom>TO</FormulaFrom>
           <pValue>Reg</pValue></IntConverter><Integer Name="I"><pValue>Inverse</pValue></Integer>)"));
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    EXPECT_EQ(Nd_SetIntValue(camera.handle(), camera.node("I"), 5, false), CAM_API_STS_SUCCESS);
    EXPECT_EQ(camera.integer("Reg"), 20);
    EXPECT_EQ(Nd_SetIntValue(camera.handle(), camera.node("I"), 0, false), CAM_API_STS_GENICAM_ERR);
    EXPECT_EQ(camera.integer("Reg"), 20);
}

TEST(EvaluationError, EnumerationWithoutAnEntryForItsValue)
{
    DescribedCamera camera(describe(intReg("Reg", 0) +
                                    R"(<Enumeration Name="E"><EnumEntry Name="One"><Value>1</Value></EnumEntry>
           <EnumEntry Name="Odd"><pValue>Nowhere</pValue></EnumEntry>
           <EnumEntry Name="Two"><Value>2</Value></EnumEntry><pValue>Reg</pValue></Enumeration>)"));
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    const CAM_NODE_HANDLE e = camera.node("E");
    EXPECT_EQ(Nd_SetIntValue(camera.handle(), camera.node("Reg"), 9), CAM_API_STS_SUCCESS);
    EXPECT_EQ(camera.text(Nd_GetEnumStrValue, "E"), "status 258");
    EXPECT_THAT(lastGenICamError(), HasSubstr("[E]"));
    std::int64_t value = 0;
    EXPECT_EQ(Nd_GetEnumIntValue(camera.handle(), e, &value), CAM_API_STS_SUCCESS) << "the number is known";
    EXPECT_EQ(value, 9);
    // An entry without a value does not affect the others.
    EXPECT_EQ(Nd_SetEnumStrValue(camera.handle(), e, "Two"), CAM_API_STS_SUCCESS);
    EXPECT_EQ(camera.text(Nd_GetEnumStrValue, "E"), "Two");
    EXPECT_EQ(Nd_SetEnumStrValue(camera.handle(), e, "Odd"), CAM_API_STS_GENICAM_ERR);
}

TEST(EvaluationError, TextBelongsToTheThread)
{
    DescribedCamera camera(faults());
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    (void)camera.integer("Division");
    const std::string mine = lastGenICamError();
    std::thread([&] {
        EXPECT_EQ(lastGenICamError(), "");
        std::int64_t value = 0;
        EXPECT_EQ(Nd_GetIntValue(camera.handle(), camera.node("BadFormula"), &value), CAM_API_STS_GENICAM_ERR);
        EXPECT_THAT(lastGenICamError(), HasSubstr("BadFormula"));
    }).join();
    EXPECT_EQ(lastGenICamError(), mine);
    EXPECT_EQ(camera.integer("One"), 1);
    EXPECT_EQ(lastGenICamError(), mine) << "success leaves it";
}

TEST(EvaluationError, TextsHaveAtMost1000BytesAndNoPartialCharacters)
{
    // Four texts, each one byte longer than the previous one, so that the limit is at every position in a character.
    for (const char* before : {"", "x", "xx", "xxx"}) {
        std::string formula = before;
        for (int i = 0; i < 1000; ++i)
            formula += "\xF0\x9D\x84\x9E"; // a character of four bytes
        DescribedCamera camera(describe("<SwissKnife Name=\"Long\"><Formula>" + formula + "</Formula></SwissKnife>"));
        ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS);
        (void)camera.number("Long");
        EXPECT_EQ(camera.lastStatus, CAM_API_STS_GENICAM_ERR);
        const std::string text = lastGenICamError();
        EXPECT_LT(text.size(), 1000U);
        EXPECT_GT(text.size(), 900U);
        EXPECT_THAT(text, MatchesRegex("\\[Long\\] \"x*(\xF0\x9D\x84\x9E)+\\.\\.\\."));
    }
}

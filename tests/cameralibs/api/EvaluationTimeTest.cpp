// Descriptions whose evaluation costs time or memory.

#include "DescribedCamera.h"
#include "MemoryLimit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Orvo;
using ::testing::HasSubstr;

namespace {

std::string numbered(const char* name, int number)
{
    return name + std::to_string(number);
}

std::string sum(std::size_t bytes)
{
    std::string text = bytes % 2 == 0 ? "10" : "1";
    while (text.size() < bytes)
        text += "+1";
    return text;
}

std::string knife(const std::string& name, const std::string& text, const std::string& more = "")
{
    return "<IntSwissKnife Name=\"" + name + "\">" + more + "<Formula>" + text + "</Formula></IntSwissKnife>\n";
}

} // namespace

TEST(EvaluationTime, AFormulaHasAtMost64KiB)
{
    const std::string expression = "<Expression Name=\"X\">" + sum(1000) + "</Expression>";
    const auto timesExpression = [](int count) {
        std::string text = "X";
        for (int i = 1; i < count; ++i)
            text += " + X";
        return text;
    };
    std::string sixteen;
    for (int i = 0; i < 16; ++i)
        sixteen += knife(numbered("F", i), sum(65536));
    const struct {
        const char* what;
        std::string nodes;
        const char* reason; ///< empty where it is accepted
    } rows[] = {
        {"the limit", knife("F", sum(65536)), ""},
        {"a byte more", knife("F", sum(65537)), "[F] The formula has more than 65536 bytes"},
        {"an expression used often", knife("F", timesExpression(65), expression), ""},
        {"an expression used too often", knife("F", timesExpression(66), expression),
         "[F] The formula has more than 65536 bytes"},
        {"an expression too long", knife("F", "1", "<Expression Name=\"X\">" + sum(65537) + "</Expression>"),
         "[F] The formula has more than 65536 bytes"},
        {"all together", sixteen, ""},
        {"too many together", sixteen + knife("More", "1"), "[More] The formulas up to here"},
    };
    for (const auto& row : rows) {
        const DescribedCamera camera(describe("", row.nodes));
        const bool accepted = *row.reason == '\0';
        EXPECT_EQ(camera.status(), accepted ? CAM_API_STS_SUCCESS : CAM_API_STS_GENICAM_ERR) << row.what;
        EXPECT_THAT(camera.error(), HasSubstr(row.reason)) << row.what;
    }
}

TEST(EvaluationTime, AFormulaThatIsTooLongTakesNoMemory)
{
    if (!MemoryLimit::kPossible)
        GTEST_SKIP() << "sanitizers take all the addresses there are";
    const std::string xml = describe("F", knife("F", sum(4'000'000)));
    const MemoryLimit limit(rlim_t{200} << 20);
    const DescribedCamera camera(xml);
    EXPECT_EQ(camera.status(), CAM_API_STS_GENICAM_ERR);
    EXPECT_THAT(camera.error(), HasSubstr("[F] The formula has more than 65536 bytes"));
}

TEST(EvaluationTime, ADescriptionHasAtMost16MiB)
{
    std::string xml = describe("");
    const std::string end = "</RegisterDescription>";
    const auto padded = [&](std::size_t size) {
        std::string text = xml;
        text.insert(text.size() - end.size(), std::string(size - text.size() - 7, ' ') + "<!---->");
        return text;
    };
    constexpr std::size_t kLimit = 16777216;
    {
        const DescribedCamera largest(padded(kLimit));
        EXPECT_EQ(largest.status(), CAM_API_STS_SUCCESS) << largest.error();
    }
    const DescribedCamera larger(padded(kLimit + 1));
    EXPECT_EQ(larger.status(), CAM_API_STS_GENICAM_ERR);
    EXPECT_THAT(larger.error(), HasSubstr("16777216"));
}

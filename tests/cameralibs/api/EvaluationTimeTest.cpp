// Descriptions whose evaluation takes much time or memory. Times are processor times of the thread, with a margin for
// machines that are many times slower or faster.

#include "tests/cameralibs/api/DescribedCamera.h"
#include "tests/cameralibs/api/MemoryLimit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <thread>

#include <pthread.h>

using namespace Orvo;
using ::testing::HasSubstr;
using namespace std::chrono_literals;

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

Milliseconds processorTime()
{
    timespec time{};
    EXPECT_EQ(::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time), 0);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

Milliseconds timeOf(const std::function<void()>& call)
{
    const Milliseconds before = processorTime();
    call();
    return processorTime() - before;
}

std::string formula(const std::string& name, const std::string& a, const std::string& b, const std::string& text)
{
    return "<IntSwissKnife Name=\"" + name + "\"><pVariable Name=\"A\">" + a + "</pVariable><pVariable Name=\"B\">" +
           b + "</pVariable><Formula>" + text + "</Formula></IntSwissKnife>\n";
}

std::string numbered(const char* name, int number)
{
    return name + std::to_string(number);
}

/// N0 to N`count`, each of which uses the previous one twice.
std::string doublings(int count)
{
    std::string nodes = constant("N0", 1);
    for (int i = 1; i <= count; ++i)
        nodes += formula(numbered("N", i), numbered("N", i - 1), numbered("N", i - 1), "A+B");
    return nodes;
}

/// Features that all depend on the same chain of doublings.
std::string overDoublings(int features, int count)
{
    std::string names;
    std::string nodes = doublings(count);
    for (int i = 0; i < features; ++i) {
        names += numbered("F", i) + " ";
        nodes += "<Integer Name=\"" + numbered("F", i) + "\"><pValue>" + numbered("N", count) + "</pValue></Integer>\n";
    }
    return describe(names, nodes);
}

/// S0 to S239. Each takes more steps than the previous one, and contains a division, which is checked separately: some
/// seconds in total.
std::string slowNodes()
{
    std::string nodes = doublings(7) + constant("S0", 1);
    for (int i = 1; i < 240; ++i)
        nodes += formula(numbered("S", i), numbered("S", i - 1), "N7", "(A+B)/1");
    return nodes;
}

/// A formula of this many bytes that is parsed fast.
std::string spacious(std::size_t bytes)
{
    return "1+" + std::string(bytes - 3, ' ') + "1";
}

std::string knife(const std::string& name, const std::string& text, const std::string& more = "")
{
    return "<IntSwissKnife Name=\"" + name + "\">" + more + "<Formula>" + text + "</Formula></IntSwissKnife>\n";
}

} // namespace

TEST(EvaluationTime, DescriptionsThatTakeTooLongAsAWholeAreRefusedAtOnce)
{
    for (const int features : {100, 2000}) {
        const std::string xml = overDoublings(features, 15);
        const Milliseconds taken = timeOf([&] {
            const DescribedCamera camera(xml);
            EXPECT_EQ(camera.status(), CAM_API_STS_GENICAM_ERR) << features;
            EXPECT_THAT(camera.error(), HasSubstr("[Root] The evaluation of all features takes too many steps"));
        });
        EXPECT_LT(taken, 2000ms) << features;
    }
    const DescribedCamera fewer(overDoublings(10, 13));
    EXPECT_EQ(fewer.status(), CAM_API_STS_SUCCESS) << fewer.error();
}

TEST(EvaluationTime, OpeningEndsAfterTwoSeconds)
{
    std::string names;
    for (int i = 210; i < 240; ++i)
        names += numbered("S", i) + " ";
    const std::string xml = describe(names, slowNodes());
    const Milliseconds taken = timeOf([&] {
        const DescribedCamera camera(xml);
        EXPECT_EQ(camera.status(), CAM_API_STS_GENICAM_ERR);
        EXPECT_EQ(camera.handle(), 0U);
        EXPECT_THAT(camera.error(), HasSubstr("takes more than 2000 ms of processor time"));
        EXPECT_THAT(camera.error(), HasSubstr("[S")) << "the node is named";
    });
    EXPECT_GT(taken, 1900ms);
    EXPECT_LT(taken, 4000ms);
}

TEST(EvaluationTime, TerminatingEndsAnOpening)
{
    std::string names;
    for (int i = 210; i < 240; ++i)
        names += numbered("S", i) + " ";
    const DescriptionFile file(describe(names, slowNodes()));
    ::setenv("ORVO_SIMULATED_CAMERAS", ("0," + file.path()).c_str(), 1); // NOLINT(concurrency-mt-unsafe)
    ASSERT_EQ(Sys_Initialize(CAM_LAYER_SIMULATED), CAM_API_STS_SUCCESS);
    std::uint32_t count = 0;
    ASSERT_EQ(Sys_GetNumOfCameras(&count), CAM_API_STS_SUCCESS);
    std::atomic<bool> evaluating{false};
    CAM_API_STATUS opened = CAM_API_STS_SUCCESS;
    Milliseconds taken{};
    std::thread opening([&] {
        clockid_t clock{};
        EXPECT_EQ(::pthread_getcpuclockid(::pthread_self(), &clock), 0);
        std::thread watching([&, clock] {
            timespec time{};
            while (time.tv_sec == 0 && time.tv_nsec < 100'000'000) {
                std::this_thread::yield();
                (void)::clock_gettime(clock, &time);
            }
            evaluating = true;
        });
        CAM_HANDLE camera = 0;
        taken = timeOf([&] { opened = Cam_Open(0, &camera, 0, 1, nullptr, 1); });
        watching.join();
    });
    EXPECT_TRUE(becomes([&] { return evaluating.load(); }));
    EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    opening.join();
    EXPECT_EQ(opened, CAM_API_STS_NOT_INITIALIZED);
    EXPECT_LT(taken, 1500ms); // of 2000
}

TEST(EvaluationTime, CallsEndAfterFiftyMilliseconds)
{
    DescribedCamera camera(describe("", slowNodes() + "<Integer Name=\"Flagged\"><pIsAvailable>S239</pIsAvailable>" +
                                            "<Value>1</Value></Integer>" +
                                            "<Integer Name=\"Limited\"><Value>1</Value><pMax>S239</pMax></Integer>"));
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    const CAM_HANDLE handle = camera.handle();
    std::int64_t value = 0;
    NodeAccessMode mode = NODE_ACCESS_MODE_NI;
    const struct {
        const char* name;
        const char* node;
        std::function<CAM_API_STATUS(CAM_NODE_HANDLE)> run;
    } calls[] = {
        {"value", "S239", [&](CAM_NODE_HANDLE node) { return Nd_GetIntValue(handle, node, &value); }},
        {"access", "Flagged", [&](CAM_NODE_HANDLE node) { return Nd_GetAccessMode(handle, node, &mode); }},
        {"maximum", "Limited", [&](CAM_NODE_HANDLE node) { return Nd_GetIntMax(handle, node, &value); }},
        {"writing", "Limited", [&](CAM_NODE_HANDLE node) { return Nd_SetIntValue(handle, node, 1, true); }},
    };
    for (const auto& call : calls) {
        const CAM_NODE_HANDLE node = camera.node(call.node);
        const Milliseconds taken = timeOf([&] { EXPECT_EQ(call.run(node), CAM_API_STS_GENICAM_ERR) << call.name; });
        EXPECT_THAT(lastGenICamError(), HasSubstr("takes more than 50 ms of processor time")) << call.name;
        EXPECT_LT(taken, 500ms) << call.name;
    }
    EXPECT_EQ(camera.integer("N7"), 128) << "each call has its own time";
    EXPECT_EQ(camera.integer("S1"), 129);
    EXPECT_EQ(camera.lastStatus, CAM_API_STS_SUCCESS);
}

TEST(EvaluationTime, StartingAStreamEndsAfterFiftyMilliseconds)
{
    DescribedCamera camera(describe("", constant("Width", 64) + constant("Height", 64) + constant("PayloadSize", 4096) +
                                            slowNodes() +
                                            R"(<SwissKnife Name="AcquisitionFrameRate">
                                               <pVariable Name="A">S239</pVariable><Formula>A</Formula></SwissKnife>)"));
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    CAM_STRM_HANDLE stream = 0;
    ASSERT_EQ(Strm_OpenSimple(camera.handle(), &stream, nullptr, nullptr, 4, nullptr), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_Start(stream, 8), CAM_API_STS_GENICAM_ERR);
    EXPECT_THAT(lastGenICamError(), HasSubstr("takes more than 50 ms of processor time"));
}

TEST(EvaluationTime, SlowEvaluationsCountAsManySteps)
{
    std::string nodes = constant("N0", 1);
    for (int i = 1; i <= 8; ++i)
        nodes += formula(numbered("N", i), numbered("N", i - 1), numbered("N", i - 1), "A+B+" + spacious(30000));
    {
        const DescribedCamera longFormulas(describe(nodes));
        EXPECT_EQ(longFormulas.status(), CAM_API_STS_GENICAM_ERR);
        EXPECT_THAT(longFormulas.error(), HasSubstr("takes too many steps"));
    }
    std::string invalidators;
    for (int i = 0; i < 1000; ++i)
        invalidators += "<pInvalidator>N0</pInvalidator>";
    nodes = doublings(7);
    nodes.replace(0, constant("N0", 1).size(), intReg("N0", 0, "RW", invalidators));
    const DescribedCamera manyInvalidators(describe(nodes));
    EXPECT_EQ(manyInvalidators.status(), CAM_API_STS_GENICAM_ERR);
    EXPECT_THAT(manyInvalidators.error(), HasSubstr("takes too many steps"));
}

TEST(EvaluationTime, StepsOfAllEntriesOfAnEnumerationAreAdded)
{
    const auto enumeration = [](int entries) {
        std::string text = "<Enumeration Name=\"E\">";
        for (int i = 0; i < entries; ++i) {
            text += "<EnumEntry Name=\"" + numbered("Entry", i) + "\"><pIsAvailable>N9</pIsAvailable><Value>" +
                    std::to_string(i) + "</Value></EnumEntry>";
        }
        return describe("", doublings(9) + text + "<Value>0</Value></Enumeration>");
    };
    {
        const DescribedCamera few(enumeration(60));
        EXPECT_EQ(few.status(), CAM_API_STS_SUCCESS) << few.error();
        EXPECT_EQ(Nd_SetEnumIntValue(few.handle(), few.node("E"), 59), CAM_API_STS_SUCCESS);
    }
    const DescribedCamera many(enumeration(70));
    EXPECT_EQ(many.status(), CAM_API_STS_GENICAM_ERR);
    EXPECT_THAT(many.error(), HasSubstr("[E] The entries take too many steps"));
}

TEST(EvaluationTime, AFormulaHasAtMost64KiB)
{
    const std::string expression = "<Expression Name=\"X\">" + spacious(1000) + "</Expression>";
    const auto timesExpression = [](int count) {
        std::string text = "X";
        for (int i = 1; i < count; ++i)
            text += " + X";
        return text;
    };
    std::string sixteen;
    for (int i = 0; i < 16; ++i)
        sixteen += knife(numbered("F", i), spacious(65536));
    const struct {
        const char* what;
        std::string nodes;
        const char* reason; ///< empty if the description is accepted
    } rows[] = {
        {"the limit", knife("F", spacious(65536)), ""},
        {"a byte more", knife("F", spacious(65537)), "[F] The formula has more than 65536 bytes"},
        {"an expression used often", knife("F", timesExpression(65), expression), ""},
        {"an expression used too often", knife("F", timesExpression(66), expression),
         "[F] The formula has more than 65536 bytes"},
        {"an expression too long", knife("F", "1", "<Expression Name=\"X\">" + spacious(65537) + "</Expression>"),
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
        GTEST_SKIP() << "sanitizers use the whole address space";
    std::string text = "1";
    while (text.size() < 4'000'000)
        text += "+1";
    const std::string xml = describe("F", knife("F", text));
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

// The lines that ORVO_CAMERA_LOG writes to standard error.

#include "tests/cameralibs/api/CameraFixture.h"
#include "tests/cameralibs/api/DescribedCamera.h"
#include "tests/cameralibs/api/MemoryLimit.h"
#include "tests/cameralibs/api/StreamRecorder.h"

#include <pthread.h>

#include <cstdlib>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

using namespace Orvo;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::Not;
using ::testing::SizeIs;

namespace {

using Lines = std::vector<std::string>;

/// Sets the variable and collects standard error as long as it lives.
class Log {
public:
    explicit Log(const char* level)
    {
        if (level != nullptr)
            ::setenv("ORVO_CAMERA_LOG", level, 1); // NOLINT(concurrency-mt-unsafe)
        ::testing::internal::CaptureStderr();
    }
    ~Log()
    {
        ::unsetenv("ORVO_CAMERA_LOG"); // NOLINT(concurrency-mt-unsafe)
        if (!m_ended)
            (void)::testing::internal::GetCapturedStderr();
    }
    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;

    [[nodiscard]] Lines end()
    {
        m_ended = true;
        std::istringstream all(::testing::internal::GetCapturedStderr());
        Lines lines;
        for (std::string line; std::getline(all, line);)
            lines.push_back(line);
        return lines;
    }

private:
    bool m_ended = false;
};

/// The lines of the library, without those that Aravis writes in a different form.
Lines ours(const Lines& lines)
{
    Lines result;
    for (const std::string& line : lines) {
        if (line.find("OrvoCamera") == 0)
            result.push_back(line);
    }
    return result;
}

const std::string kRefused = describe("<Integer Name=\"Snake\"><pValue>Snake</pValue></Integer>"); // depends on itself

/// The lines that are written while a description is refused.
Lines linesOfRefusal(const char* level)
{
    Log log(level);
    {
        const DescribedCamera camera(kRefused);
        EXPECT_EQ(camera.status(), CAM_API_STS_GENICAM_ERR);
    }
    return log.end();
}

/// As long as it lives, new threads have a stack size that no address space can hold.
class NoMoreThreads {
public:
    NoMoreThreads()
    {
        EXPECT_EQ(::pthread_getattr_default_np(&m_before), 0);
        pthread_attr_t huge;
        EXPECT_EQ(::pthread_attr_init(&huge), 0);
        EXPECT_EQ(::pthread_attr_setstacksize(&huge, std::size_t{1} << 60), 0);
        EXPECT_EQ(::pthread_setattr_default_np(&huge), 0);
        ::pthread_attr_destroy(&huge);
    }
    ~NoMoreThreads()
    {
        EXPECT_EQ(::pthread_setattr_default_np(&m_before), 0);
        ::pthread_attr_destroy(&m_before);
    }
    NoMoreThreads(const NoMoreThreads&) = delete;
    NoMoreThreads& operator=(const NoMoreThreads&) = delete;

private:
    pthread_attr_t m_before = {};
};

class DiagnosticLogTest : public ::testing::Test {};

} // namespace

// The XML library reports bytes that it cannot decode outside its context for a document.
TEST(DescriptionLogTest, DescriptionCannotWriteToStandardError)
{
    Log log(nullptr);
    const DescribedCamera camera("<?xml version=\"1.0\" encoding=\"Shift_JIS\"?><a>\x80\xff\xfe </a>");
    EXPECT_EQ(camera.status(), CAM_API_STS_XML_LOAD_ERR);
    EXPECT_THAT(log.end(), IsEmpty());
}

TEST_F(DiagnosticLogTest, IsOffByDefaultAndForUnknownLevels)
{
    for (const char* level : {static_cast<const char*>(nullptr), "", "loud", "WARNING", "3"})
        EXPECT_THAT(linesOfRefusal(level), IsEmpty()) << (level == nullptr ? "unset" : level);
}

TEST_F(DiagnosticLogTest, RefusedDescriptionIsLoggedWithTimeCameraAndReason)
{
    const Lines lines = linesOfRefusal("warning");
    ASSERT_THAT(lines, SizeIs(1));
    EXPECT_THAT(lines.front(),
                MatchesRegex("OrvoCamera-Message: [0-9]+:[0-9]+:[0-9]+\\.[0-9]+: warning: Described XML-1: Cam_Open: "
                             "258 CAM_API_STS_GENICAM_ERR: \\[Snake\\] .*depends on itself.*"));
}

TEST_F(DiagnosticLogTest, EachLevelIncludesThePreviousOnes)
{
    struct Row {
        const char* level;
        bool opening;
        bool failedLookUp;
    };
    for (const Row& row : {Row{"warning", false, false}, Row{"info", true, false}, Row{"debug", true, true}}) {
        Log log(row.level);
        {
            const DescribedCamera camera(describe(constant("One", 1)));
            CAM_NODE_HANDLE node = 0;
            EXPECT_EQ(Nd_GetNode(camera.handle(), "Two", &node), CAM_API_STS_NOT_FOUND);
        }
        const Lines lines = log.end();
        const auto opening = Contains(HasSubstr("info: Described XML-1: opened"));
        const auto failedLookUp = Contains(HasSubstr("debug: Described XML-1: Nd_GetNode: 3 CAM_API_STS_NOT_FOUND"));
        EXPECT_EQ(::testing::Matches(opening)(lines), row.opening) << row.level;
        EXPECT_EQ(::testing::Matches(failedLookUp)(lines), row.failedLookUp) << row.level;
    }
}

TEST_F(DiagnosticLogTest, TooLargeImagesAreLoggedWithTheirSize)
{
    Log log("warning");
    {
        const DescribedCamera camera(describe(constant("PayloadSize", 1 << 30)));
        CAM_STRM_HANDLE stream = 0;
        EXPECT_EQ(Strm_OpenSimple(camera.handle(), &stream, nullptr, nullptr, 4, nullptr),
                  CAM_API_STS_INVALID_PARAMETER);
    }
    EXPECT_THAT(ours(log.end()),
                ElementsAre(HasSubstr("warning: Described XML-1: Strm_OpenSimple: 13 CAM_API_STS_INVALID_PARAMETER: "
                                      "4 buffers of 1073741824 bytes each would take 4 GiB or more")));
}

TEST_F(DiagnosticLogTest, CallsWithoutMemoryAreLogged)
{
    if (!MemoryLimit::kPossible)
        GTEST_SKIP() << "sanitizers do not work with a memory limit";
    Log log("debug");
    {
        const DescribedCamera camera(describe(constant("PayloadSize", 0x3FFFFFFF)));
        CAM_STRM_HANDLE stream = 0;
        const MemoryLimit limit(1U << 30);
        EXPECT_EQ(Strm_OpenSimple(camera.handle(), &stream, nullptr, nullptr, 3, nullptr), CAM_API_STS_NO_MEMORY);
    }
    EXPECT_THAT(ours(log.end()),
                Contains(HasSubstr("warning: Described XML-1: Strm_OpenSimple: 15 CAM_API_STS_NO_MEMORY: ")).Times(1));
}

TEST_F(DiagnosticLogTest, StatusOfSysInitializeIsLogged)
{
    ::setenv("ORVO_SIMULATED_CAMERAS", "1", 1); // NOLINT(concurrency-mt-unsafe)
    Log log("debug");
    ASSERT_EQ(Sys_Initialize(CAM_LAYER_SIMULATED), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Sys_Initialize(CAM_LAYER_SIMULATED), CAM_API_STS_ALREADY_INITIALIZED);
    EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    EXPECT_THAT(ours(log.end()),
                Contains(HasSubstr("debug: Sys_Initialize: 2 CAM_API_STS_ALREADY_INITIALIZED")).Times(1));
}

TEST_F(DiagnosticLogTest, ThreadsThatCannotBeStartedAreLogged)
{
    ::setenv("ORVO_SIMULATED_CAMERAS", "1", 1); // NOLINT(concurrency-mt-unsafe)
    std::uint32_t count = 0;
    CAM_HANDLE camera = 0;
    CAM_STRM_HANDLE stream = 0;
    Log log("warning");
    ASSERT_EQ(Sys_Initialize(CAM_LAYER_SIMULATED), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Sys_GetNumOfCameras(&count), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Cam_Open(0, &camera, 0, 1, nullptr, 1), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Strm_OpenSimple(camera, &stream, nullptr, nullptr, 4, nullptr), CAM_API_STS_SUCCESS);
    {
        const NoMoreThreads noMoreThreads;
        EXPECT_EQ(Strm_Start(stream, 8), CAM_API_STS_NO_MEMORY);
    }
    StreamRecorder recorder;
    recorder.attachTo(stream);
    EXPECT_EQ(Strm_Start(stream, 8), CAM_API_STS_SUCCESS);
    EXPECT_TRUE(recorder.waitForImages(1)) << "after threads can be started again";
    EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    EXPECT_THAT(ours(log.end()), Contains(HasSubstr("warning: SIM-M1280 SIM-1: Strm_Start: 15 CAM_API_STS_NO_MEMORY: "
                                                    "There are no more threads"))
                                     .Times(1));
}

TEST_F(DiagnosticLogTest, LevelIsReadAtSysInitialize)
{
    ::setenv("ORVO_SIMULATED_CAMERAS", "1", 1); // NOLINT(concurrency-mt-unsafe)
    ASSERT_EQ(Sys_Initialize(CAM_LAYER_SIMULATED), CAM_API_STS_SUCCESS);
    Log log("debug");
    EXPECT_EQ(Cam_Close(1), CAM_API_STS_INVALID_CAMERA_HANDLE);
    EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    EXPECT_THAT(log.end(), IsEmpty());
}

TEST_F(DiagnosticLogTest, EveryEventIsOneLineWhateverTheTexts)
{
    std::string xml = kRefused;
    xml.replace(xml.find("Described"), 9, "Two&#10;lines&#13;&#9;&#155;31m");
    Log log("warning");
    {
        const DescribedCamera camera(xml);
        EXPECT_EQ(camera.status(), CAM_API_STS_GENICAM_ERR);
    }
    const Lines lines = log.end();
    ASSERT_THAT(lines, SizeIs(1));
    EXPECT_THAT(lines.front(), HasSubstr("Two lines  "));
    EXPECT_THAT(lines.front(), Not(HasSubstr("\xC2\x9B")));
}

TEST_F(DiagnosticLogTest, IncludesAravis)
{
    Log log("warning");
    {
        DescribedCamera camera(describe("<SwissKnife Name=\"Half\"><Formula>1 +</Formula></SwissKnife>"));
        EXPECT_EQ(camera.status(), CAM_API_STS_SUCCESS);
    }
    EXPECT_THAT(log.end(), Contains(HasSubstr("evaluator> ")));
}

TEST_F(DiagnosticLogTest, FailedImagesAreLoggedOnceAndCounted)
{
    Log log("warning");
    {
        ::setenv("ORVO_SIMULATED_CAMERAS", "1", 1); // NOLINT(concurrency-mt-unsafe)
        StreamRecorder recorder;
        std::uint32_t count = 0;
        CAM_HANDLE camera = 0;
        CAM_STRM_HANDLE stream = 0;
        ASSERT_EQ(Sys_Initialize(CAM_LAYER_SIMULATED), CAM_API_STS_SUCCESS);
        ASSERT_EQ(Sys_GetNumOfCameras(&count), CAM_API_STS_SUCCESS);
        ASSERT_EQ(Cam_Open(0, &camera, 0, 1, nullptr, 1), CAM_API_STS_SUCCESS);
        setInt(camera, "SimulationIncompleteEvery", 2);
        ASSERT_EQ(Strm_OpenSimple(camera, &stream, nullptr, nullptr, 4, nullptr), CAM_API_STS_SUCCESS);
        recorder.attachTo(stream);
        ASSERT_EQ(Strm_Start(stream, 8), CAM_API_STS_SUCCESS);
        ASSERT_TRUE(recorder.waitForErrors(3));
        ASSERT_EQ(Strm_Stop(stream), CAM_API_STS_SUCCESS);
        const std::string failed = std::to_string(recorder.errors().size()) + " failed";
        const std::string received = std::to_string(recorder.images().size()) + " images received";
        const auto numbers = recorder.numbers();
        const std::uint64_t sent = numbers.back() - numbers.front() + 1;
        const std::string missing = " " + std::to_string(sent - numbers.size()) + " frame numbers missing";
        EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
        const Lines lines = ours(log.end());
        ASSERT_THAT(lines, SizeIs(2));
        EXPECT_THAT(lines[0], HasSubstr("SIM-M1280 SIM-1: image failed: 4106 CAM_API_STS_MISSING_PACKETS"));
        EXPECT_THAT(lines[1], HasSubstr(failed));
        EXPECT_THAT(lines[1], HasSubstr(received));
        EXPECT_THAT(lines[1], HasSubstr(missing));
    }
}

TEST_F(DiagnosticLogTest, StreamWithoutLossesIsNoWarning)
{
    Log log("info");
    {
        ::setenv("ORVO_SIMULATED_CAMERAS", "1", 1); // NOLINT(concurrency-mt-unsafe)
        StreamRecorder recorder;
        std::uint32_t count = 0;
        CAM_HANDLE camera = 0;
        CAM_STRM_HANDLE stream = 0;
        ASSERT_EQ(Sys_Initialize(CAM_LAYER_SIMULATED), CAM_API_STS_SUCCESS);
        ASSERT_EQ(Sys_GetNumOfCameras(&count), CAM_API_STS_SUCCESS);
        ASSERT_EQ(Cam_Open(0, &camera, 0, 1, nullptr, 1), CAM_API_STS_SUCCESS);
        setEntry(camera, "TriggerMode", "On");
        ASSERT_EQ(Strm_OpenSimple(camera, &stream, nullptr, nullptr, 4, nullptr), CAM_API_STS_SUCCESS);
        recorder.attachTo(stream);
        ASSERT_EQ(Strm_Start(stream, 8), CAM_API_STS_SUCCESS);
        ASSERT_EQ(Strm_Stop(stream), CAM_API_STS_SUCCESS);
        ASSERT_EQ(Strm_Start(stream, 8), CAM_API_STS_SUCCESS);
        execute(camera, "TriggerSoftware");
        ASSERT_TRUE(recorder.waitForImages(1));
        EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    }
    const Lines lines = ours(log.end());
    for (const std::string images : {"0", "1"}) {
        EXPECT_THAT(lines, Contains(MatchesRegex(".* info: SIM-M1280 SIM-1: stream stopped; " + images +
                                                 " images received, .*; 0 failed, 0 frame numbers missing")));
    }
    EXPECT_THAT(lines, Not(Contains(HasSubstr("warning"))));
}

TEST_F(DiagnosticLogTest, LostCameraIsLogged)
{
    Log log("warning");
    {
        ::setenv("ORVO_SIMULATED_CAMERAS", "1", 1); // NOLINT(concurrency-mt-unsafe)
        std::uint32_t count = 0;
        CAM_HANDLE camera = 0;
        ASSERT_EQ(Sys_Initialize(CAM_LAYER_SIMULATED), CAM_API_STS_SUCCESS);
        ASSERT_EQ(Sys_GetNumOfCameras(&count), CAM_API_STS_SUCCESS);
        ASSERT_EQ(Cam_Open(0, &camera, 0, 1, nullptr, 1), CAM_API_STS_SUCCESS);
        execute(camera, "SimulationUnplug");
        EXPECT_EQ(Cam_Close(camera), CAM_API_STS_SUCCESS);
        EXPECT_EQ(Cam_Open(0, &camera, 0, 1, nullptr, 1), CAM_API_STS_CAMERA_NOT_RESPONDING);
        EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    }
    const Lines lines = ours(log.end());
    ASSERT_THAT(lines, SizeIs(2));
    EXPECT_THAT(lines[0], HasSubstr("warning: SIM-M1280 SIM-1: lost: "));
    EXPECT_THAT(lines[1], HasSubstr("Cam_Open: 19 CAM_API_STS_CAMERA_NOT_RESPONDING: The camera is not plugged in"));
}

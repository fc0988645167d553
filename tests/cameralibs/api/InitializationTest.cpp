#include "tests/cameralibs/api/CameraFixture.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <thread>

using namespace Orvo;

namespace {

class InitializationTest : public ::testing::Test {
protected:
    /// Independent of the cameras that earlier tests have requested.
    InitializationTest() { ::setenv("ORVO_SIMULATED_CAMERAS", "1", 1); } // NOLINT(concurrency-mt-unsafe)
};

} // namespace

TEST_F(InitializationTest, OperationsBeforeItReturnNotInitialized)
{
    EXPECT_EQ(Sys_Terminate(), CAM_API_STS_NOT_INITIALIZED);
    // Null pointers are not even checked.
    EXPECT_EQ(Sys_GetInformation(nullptr), CAM_API_STS_NOT_INITIALIZED);
    EXPECT_EQ(Sys_GetNumOfCameras(nullptr), CAM_API_STS_NOT_INITIALIZED);
    EXPECT_EQ(Sys_CreateSignal(nullptr), CAM_API_STS_NOT_INITIALIZED);
    EXPECT_EQ(Sys_CloseSignal(1), CAM_API_STS_NOT_INITIALIZED);
    EXPECT_EQ(Sys_WaitForSignal(1, 0), CAM_API_STS_NOT_INITIALIZED);
    EXPECT_EQ(Cam_GetInformation(0, 0, nullptr), CAM_API_STS_NOT_INITIALIZED);
    EXPECT_EQ(Cam_Open(0, nullptr, 0, 1, nullptr, 1), CAM_API_STS_NOT_INITIALIZED);
    EXPECT_EQ(Cam_Close(1), CAM_API_STS_NOT_INITIALIZED);
    EXPECT_EQ(Strm_OpenSimple(1, nullptr, nullptr, nullptr, 8, nullptr), CAM_API_STS_NOT_INITIALIZED);
    EXPECT_EQ(Strm_Stop(1), CAM_API_STS_NOT_INITIALIZED);
    EXPECT_EQ(Strm_UnlockBuffer(1, 0), CAM_API_STS_NOT_INITIALIZED);
    EXPECT_EQ(Nd_GetNode(1, nullptr, nullptr), CAM_API_STS_NOT_INITIALIZED);
    EXPECT_EQ(Nd_GetIntValue(1, 1, nullptr), CAM_API_STS_NOT_INITIALIZED);
}

TEST_F(InitializationTest, GenICamErrorNeedsNoInitialization)
{
    const char* text = nullptr;
    EXPECT_EQ(Misc_GetLastGenICamError(&text), CAM_API_STS_SUCCESS);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(Misc_GetLastGenICamError(nullptr), CAM_API_STS_INVALID_PARAMETER);
}

TEST_F(InitializationTest, SecondInitializeAndTerminateAreRefused)
{
    EXPECT_EQ(Sys_Initialize(CAM_LAYER_SIMULATED), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Sys_Initialize(CAM_LAYER_SIMULATED), CAM_API_STS_ALREADY_INITIALIZED);
    EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Sys_Terminate(), CAM_API_STS_NOT_INITIALIZED);
    EXPECT_EQ(Sys_Initialize(CAM_LAYER_SIMULATED), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
}

TEST_F(InitializationTest, EveryLayerStarts)
{
    EXPECT_EQ(Sys_Initialize(65535), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
}

TEST_F(InitializationTest, OneOfManyThreadsInitializes)
{
    std::atomic<int> successes{0};
    std::atomic<int> refusals{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&] {
            const CAM_API_STATUS status = Sys_Initialize(CAM_LAYER_SIMULATED);
            successes += status == CAM_API_STS_SUCCESS ? 1 : 0;
            refusals += status == CAM_API_STS_ALREADY_INITIALIZED ? 1 : 0;
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(successes, 1);
    EXPECT_EQ(refusals, 7);
    EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
}

TEST_F(InitializationTest, EnumerationDuringTerminationSucceedsOrReturnsNotInitialized)
{
    std::atomic<bool> ends{false};
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            while (!ends) {
                std::uint32_t count = 0;
                const CAM_API_STATUS status = Sys_GetNumOfCameras(&count);
                const bool right = status == CAM_API_STS_SUCCESS ? count > 0 : status == CAM_API_STS_NOT_INITIALIZED;
                wrong += right ? 0 : 1;
            }
        });
    }
    for (int round = 0; round < 3000; ++round) {
        EXPECT_EQ(Sys_Initialize(CAM_LAYER_SIMULATED), CAM_API_STS_SUCCESS);
        EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    }
    ends = true;
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
}

TEST_F(InitializationTest, SystemInformationHasTextsPaddedWithZeros)
{
    ASSERT_EQ(Sys_Initialize(CAM_LAYER_SIMULATED), CAM_API_STS_SUCCESS);
    CAM_SYSTEM_INFO info = {};
    std::memset(&info, 0xFF, sizeof info);
    EXPECT_EQ(Sys_GetInformation(&info), CAM_API_STS_SUCCESS);
    for (const char* text : {info.driverVersion, info.u3vApi2Version, info.u3vCamApiVersion, info.camApiVersion}) {
        EXPECT_GT(::strnlen(text, 64), 0U);
        EXPECT_LT(::strnlen(text, 64), 64U);
    }
    EXPECT_THAT(info.reserved192, ::testing::Each(0));
    EXPECT_THAT(info.reserved448, ::testing::Each(0));
    EXPECT_EQ(Sys_GetInformation(nullptr), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
}

TEST(InitializationDeathTest, ProgramMayExitWithoutTerminate)
{
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            std::uint32_t count = 0;
            CAM_HANDLE camera = 0;
            CAM_STRM_HANDLE stream = 0;
            ::setenv("ORVO_SIMULATED_CAMERAS", "1", 1); // NOLINT(concurrency-mt-unsafe)
            const bool started =
                Sys_Initialize(CAM_LAYER_SIMULATED) == CAM_API_STS_SUCCESS &&
                Sys_GetNumOfCameras(&count) == CAM_API_STS_SUCCESS &&
                Cam_Open(0, &camera, 0, 1, nullptr, 1) == CAM_API_STS_SUCCESS &&
                Strm_OpenSimple(camera, &stream, nullptr, nullptr, 4, nullptr) == CAM_API_STS_SUCCESS &&
                Strm_Start(stream, 8) == CAM_API_STS_SUCCESS;
            std::exit(started ? 0 : 1); // NOLINT(concurrency-mt-unsafe)
        },
        ::testing::ExitedWithCode(0), "");
}

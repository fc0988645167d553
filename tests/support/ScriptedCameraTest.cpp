#include "tests/support/ScriptedCamera.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <dlfcn.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

using namespace Orvo;
using ::testing::ElementsAre;

namespace {

std::vector<std::string> texts(const std::vector<scripted::Call>& calls)
{
    std::vector<std::string> result;
    result.reserve(calls.size());
    for (const scripted::Call& call : calls)
        result.push_back(call.text());
    return result;
}

class ScriptedCamera : public ::testing::Test {
protected:
    void SetUp() override { scripted::reset(); }
    void TearDown() override { scripted::reset(); }

    void open()
    {
        std::uint32_t count = 0;
        ASSERT_EQ(Sys_Initialize(65535), 0U);
        ASSERT_EQ(Sys_GetNumOfCameras(&count), 0U);
        ASSERT_EQ(count, 1U);
        ASSERT_EQ(Sys_CreateSignal(&signal), 0U);
        ASSERT_EQ(Cam_Open(0, &camera, signal, 1, nullptr, 1), 0U);
    }

    void start()
    {
        open();
        ASSERT_EQ(Strm_OpenSimple(camera, &stream, nullptr, nullptr, 8, nullptr), 0U);
        ASSERT_EQ(Strm_Start(stream, 8), 0U);
    }

    CAM_NODE_HANDLE nodeHandle(const char* name) const
    {
        CAM_NODE_HANDLE node = 0;
        EXPECT_EQ(Nd_GetNode(camera, name, &node), 0U) << name;
        return node;
    }

    CAM_SIGNAL_HANDLE signal = 0;
    CAM_HANDLE camera = 0;
    CAM_STRM_HANDLE stream = 0;
};

TEST_F(ScriptedCamera, recordsEveryCallWithItsArgumentsInOrder)
{
    open();
    std::uint32_t size = 0;
    const CAM_NODE_HANDLE gain = nodeHandle("Gain");
    Nd_GetUnit(camera, gain, nullptr, &size);
    Nd_SetFloatValue(camera, gain, 0.1, false);
    Nd_SetIntValue(camera, gain, -5);
    Nd_SetStrValue(camera, gain, nullptr);

    const std::string id = std::to_string(gain);
    EXPECT_THAT(texts(scripted::calls()),
                ElementsAre("Sys_Initialize(65535)", "Sys_GetNumOfCameras(out)", "Sys_CreateSignal(out)",
                            "Cam_Open(0, out, 1001, 1, null, 1)", "Nd_GetNode(2001, \"Gain\", out)",
                            "Nd_GetUnit(2001, " + id + ", null, out)", "Nd_SetFloatValue(2001, " + id + ", 0.1, false)",
                            "Nd_SetIntValue(2001, " + id + ", -5, true)",
                            "Nd_SetStrValue(2001, " + id + ", null, true)"));
    EXPECT_EQ(scripted::calls().back().result, CAM_API_STS_INVALID_PARAMETER);
    EXPECT_THAT(texts(scripted::calls({"Cam_", "Nd_GetU"})),
                ElementsAre("Cam_Open(0, out, 1001, 1, null, 1)", "Nd_GetUnit(2001, " + id + ", null, out)"));
}

TEST_F(ScriptedCamera, callNamesOmitPolling)
{
    start();
    std::uint32_t index = 0;
    Sys_WaitForSignal(signal, 0);
    Strm_GetCurrentBufferIndex(stream, &index);
    EXPECT_THAT(scripted::callNames(), ElementsAre("Sys_Initialize", "Sys_GetNumOfCameras", "Sys_CreateSignal",
                                                   "Cam_Open", "Strm_OpenSimple", "Strm_Start"));
    scripted::clearCalls();
    EXPECT_EQ(scripted::count("Sys_WaitForSignal"), 0);
    EXPECT_TRUE(scripted::calls().empty());
}

TEST_F(ScriptedCamera, failsOnlyTheNthCallFromNow)
{
    Sys_Initialize(65535);
    std::uint32_t count = 77;
    scripted::failCall("Sys_GetNumOfCameras", CAM_API_STS_BUSY, 2);
    scripted::failCall("Sys_GetNumOfCameras", CAM_API_STS_TIMEOUT, 3);
    EXPECT_EQ(Sys_GetNumOfCameras(&count), 0U);
    count = 77;
    EXPECT_EQ(Sys_GetNumOfCameras(&count), CAM_API_STS_BUSY);
    EXPECT_EQ(count, 77U);
    EXPECT_EQ(Sys_GetNumOfCameras(&count), CAM_API_STS_TIMEOUT);
    EXPECT_EQ(Sys_GetNumOfCameras(&count), 0U);
    EXPECT_EQ(scripted::count("Sys_GetNumOfCameras"), 4);

    scripted::failCall("Sys_GetNumOfCameras", CAM_API_STS_BUSY);
    EXPECT_EQ(Sys_GetNumOfCameras(&count), CAM_API_STS_BUSY);
    EXPECT_EQ(Sys_GetNumOfCameras(&count), 0U);
}

TEST_F(ScriptedCamera, failsAlwaysUntilHealed)
{
    Sys_Initialize(65535);
    std::uint32_t count = 0;
    scripted::failAlways("Sys_GetNumOfCameras", CAM_API_STS_BUSY);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(Sys_GetNumOfCameras(&count), CAM_API_STS_BUSY);
    scripted::heal("Sys_GetNumOfCameras");
    EXPECT_EQ(Sys_GetNumOfCameras(&count), 0U);
}

TEST_F(ScriptedCamera, hookRunsAfterTheCallIsCountedAndMayScriptIt)
{
    Sys_Initialize(65535);
    int seen = 0;
    scripted::onCall("Sys_GetNumOfCameras", [&] {
        seen = scripted::count("Sys_GetNumOfCameras");
        scripted::setCameras({{}, {}, {}});
    });
    std::uint32_t count = 0;
    EXPECT_EQ(Sys_GetNumOfCameras(&count), 0U);
    EXPECT_EQ(seen, 1);
    EXPECT_EQ(count, 3U);
}

TEST_F(ScriptedCamera, refusesInvalidCallsLikeTheInterface)
{
    std::uint32_t count = 0;
    EXPECT_EQ(Sys_GetNumOfCameras(&count), CAM_API_STS_NOT_INITIALIZED);
    Sys_Initialize(65535);
    EXPECT_EQ(Sys_Initialize(65535), CAM_API_STS_ALREADY_INITIALIZED);
    EXPECT_EQ(Cam_Open(0, &camera, 0, 1, nullptr, 1), CAM_API_STS_INVALID_CAMERA_INDEX) << "not enumerated yet";
    Sys_Terminate();
    open();
    CAM_HANDLE second = 0;
    EXPECT_EQ(Cam_Open(0, &second, 0, 1, nullptr, 1), CAM_API_STS_ALREADY_OPENED);
    EXPECT_EQ(Cam_Close(camera), 0U);
    EXPECT_EQ(Cam_Close(camera), CAM_API_STS_INVALID_CAMERA_HANDLE);
    EXPECT_EQ(Sys_GetNumOfCameras(nullptr), CAM_API_STS_INVALID_PARAMETER);
}

TEST_F(ScriptedCamera, unplugSetsTheSignalAndDisconnectsTheCamera)
{
    start();
    EXPECT_EQ(Sys_WaitForSignal(signal, 0), CAM_API_STS_TIMEOUT);
    scripted::unplug();
    EXPECT_EQ(Sys_WaitForSignal(signal, 0), 0U);
    std::uint32_t value = 0;
    EXPECT_EQ(GetCamWidth(camera, &value), CAM_API_STS_CAMERA_NOT_RESPONDING);
    EXPECT_EQ(Strm_Stop(stream), 0U);
    EXPECT_EQ(Strm_Close(stream), 0U);
    EXPECT_EQ(Cam_Close(camera), 0U);
    EXPECT_EQ(Cam_Open(0, &camera, signal, 1, nullptr, 1), CAM_API_STS_CAMERA_NOT_RESPONDING);
    EXPECT_EQ(Sys_GetNumOfCameras(&value), 0U);
    EXPECT_EQ(value, 0U);

    scripted::plugIn();
    EXPECT_EQ(Sys_GetNumOfCameras(&value), 0U);
    EXPECT_EQ(value, 1U);
    EXPECT_EQ(Cam_Open(0, &camera, signal, 1, nullptr, 1), 0U);
    EXPECT_EQ(Sys_WaitForSignal(signal, 0), CAM_API_STS_TIMEOUT) << "opening clears the signal";
}

struct Received {
    std::vector<std::uint64_t> frames;
    std::vector<std::uint32_t> errors;
    std::vector<std::uint32_t> busy;
    std::thread::id thread;
};

void onImage(CAM_HANDLE, CAM_STRM_HANDLE, CAM_IMAGE_INFO* info, std::uint32_t, void* context)
{
    static_cast<Received*>(context)->frames.push_back(info->frameNumber);
    static_cast<Received*>(context)->thread = std::this_thread::get_id();
}

void onError(CAM_HANDLE, CAM_STRM_HANDLE, std::uint32_t status, std::uint32_t, void* context)
{
    static_cast<Received*>(context)->errors.push_back(status);
}

void onBusy(CAM_HANDLE, CAM_STRM_HANDLE, std::uint32_t index, void* context)
{
    static_cast<Received*>(context)->busy.push_back(index);
}

TEST_F(ScriptedCamera, deliversImagesOnAnotherThread)
{
    start();
    Received received;
    Strm_SetCallbackImageAcquired(stream, &received, onImage);
    std::uint32_t index = 99;
    EXPECT_EQ(Strm_GetCurrentBufferIndex(stream, &index), CAM_API_STS_NOT_READY);
    EXPECT_TRUE(scripted::deliverImage(7, 0xAB));
    EXPECT_TRUE(scripted::deliverImage(9, 0xCD, CAM_API_STS_MISSING_PACKETS));
    EXPECT_THAT(received.frames, ElementsAre(7U, 9U));
    EXPECT_NE(received.thread, std::this_thread::get_id());

    CAM_IMAGE_INFO info{};
    EXPECT_EQ(Strm_GetCurrentBufferIndex(stream, &index), 0U);
    EXPECT_EQ(index, 1U);
    EXPECT_EQ(Strm_LockBuffer(stream, index, &info), 0U);
    EXPECT_EQ(info.frameNumber, 9U);
    EXPECT_EQ(info.status, CAM_API_STS_MISSING_PACKETS);
    EXPECT_EQ(info.dataSize, 64U * 48U);
    EXPECT_EQ(static_cast<const std::uint8_t*>(info.data)[info.dataSize - 1], 0xCD);
    EXPECT_EQ(scripted::lockedBuffers(), 1);
    EXPECT_EQ(Strm_UnlockBuffer(stream, index), 0U);
    EXPECT_EQ(Strm_UnlockBuffer(stream, index), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(scripted::lockedBuffers(), 0);

    Strm_Stop(stream);
    EXPECT_FALSE(scripted::deliverImage(10));
    EXPECT_FALSE(scripted::streaming());
}

TEST_F(ScriptedCamera, neverWritesToALockedBuffer)
{
    start();
    Received received;
    CAM_IMAGE_INFO info{};
    Strm_SetCallbackBufferBusy(stream, &received, onBusy);
    scripted::deliverImage(1, 0x11);
    ASSERT_EQ(Strm_LockBuffer(stream, 0, &info), 0U);
    for (std::uint64_t frame = 2; frame <= 9; ++frame)
        scripted::deliverImage(frame, 0x22);
    EXPECT_THAT(received.busy, ElementsAre(0U));
    EXPECT_EQ(*static_cast<const std::uint8_t*>(info.data), 0x11);
}

TEST_F(ScriptedCamera, lateCallbacksAreDeliveredAfterTheStream)
{
    start();
    Received received;
    Strm_SetCallbackImageAcquired(stream, &received, onImage);
    Strm_SetCallbackImageError(stream, &received, onError);
    Strm_SetCallbackBufferBusy(stream, &received, onBusy);
    EXPECT_TRUE(scripted::deliverError(16));
    Strm_Close(stream);
    EXPECT_FALSE(scripted::deliverImage(1));
    EXPECT_FALSE(scripted::deliverError(17));
    scripted::lateImage(2);
    scripted::lateError(18);
    scripted::lateBusy(3);
    EXPECT_THAT(received.frames, ElementsAre(2U));
    EXPECT_THAT(received.errors, ElementsAre(16U, 18U));
    EXPECT_THAT(received.busy, ElementsAre(3U));
}

std::atomic<bool> releaseCallback{false};

void onImageThatWaits(CAM_HANDLE, CAM_STRM_HANDLE stream, CAM_IMAGE_INFO*, std::uint32_t, void* context)
{
    while (!releaseCallback)
        std::this_thread::yield();
    *static_cast<CAM_API_STATUS*>(context) = Strm_Stop(stream);
}

TEST_F(ScriptedCamera, stopWaitsForARunningCallbackAndIsRefusedInside)
{
    start();
    releaseCallback = false;
    CAM_API_STATUS inside = 0;
    Strm_SetCallbackImageAcquired(stream, &inside, onImageThatWaits);
    scripted::onCall("Strm_Stop", [] { releaseCallback = true; });
    std::thread deliverer([] { scripted::deliverImage(1); });
    while (scripted::count("Strm_SetCallbackImageAcquired") == 0)
        std::this_thread::yield();
    std::uint32_t index = 0;
    while (Strm_GetCurrentBufferIndex(stream, &index) != 0)
        std::this_thread::yield();
    EXPECT_EQ(Strm_Stop(stream), 0U);
    EXPECT_EQ(inside, CAM_API_STS_INVALID_PARAMETER);
    deliverer.join();
}

TEST_F(ScriptedCamera, convertsTheFirstByteOrAsScripted)
{
    const std::vector<std::uint8_t> source(4, 0x40);
    std::vector<std::uint32_t> pixels(4, 0);
    EXPECT_EQ(ConvImage(0, 0x01080001, 1, pixels.data(), source.data(), 2, 2), 0U);
    EXPECT_THAT(pixels, ::testing::Each(0xFF404040U));
    scripted::onConvImage(
        [](void* dst, const void*, std::uint32_t, std::uint32_t) { *static_cast<std::uint32_t*>(dst) = 5; });
    EXPECT_EQ(ConvImage(0, 0x01080001, 1, pixels.data(), source.data(), 2, 2), 0U);
    EXPECT_EQ(pixels[0], 5U);
}

TEST_F(ScriptedCamera, textsAreReadInTwoCalls)
{
    open();
    const CAM_NODE_HANDLE vendor = nodeHandle("DeviceVendorName");
    std::uint32_t size = 0;
    char buffer[16] = "untouched";
    EXPECT_EQ(Nd_GetStrValue(camera, vendor, nullptr, &size), 0U);
    EXPECT_EQ(size, 9U);
    size = 8;
    EXPECT_EQ(Nd_GetStrValue(camera, vendor, buffer, &size), CAM_API_STS_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, 9U);
    EXPECT_STREQ(buffer, "untouched");
    EXPECT_EQ(Nd_GetStrValue(camera, vendor, buffer, &size), 0U);
    EXPECT_STREQ(buffer, "Scripted");
}

TEST_F(ScriptedCamera, nodesCheckTypeAccessAndValue)
{
    open();
    const CAM_NODE_HANDLE width = nodeHandle("Width");
    const CAM_NODE_HANDLE address = nodeHandle("GevCurrentIPAddress");
    const CAM_NODE_HANDLE format = nodeHandle("PixelFormat");
    std::int64_t value = 0;
    double real = 0;
    EXPECT_EQ(Nd_GetFloatValue(camera, width, &real), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Nd_GetIntValue(camera, format, &value), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Nd_GetIntValue(camera, address, &value), CAM_API_STS_NOT_AVAILABLE);
    EXPECT_EQ(Nd_GetIntValue(camera, nodeHandle("DeviceRegistersStreamingStart"), &value), CAM_API_STS_NOT_READABLE);
    EXPECT_EQ(Nd_SetFloatValue(camera, nodeHandle("DeviceTemperature"), 1), CAM_API_STS_NOT_WRITABLE);
    EXPECT_EQ(Nd_SetIntValue(camera, width, 33), CAM_API_STS_INVALID_PARAMETER) << "off the increment";
    EXPECT_EQ(Nd_SetIntValue(camera, width, 5000), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Nd_SetIntValue(camera, width, 5000, false), 0U) << "not verified";
    EXPECT_EQ(Nd_SetIntValue(camera, width, 32), 0U);
    std::uint32_t reported = 0;
    EXPECT_EQ(GetCamWidth(camera, &reported), 0U);
    EXPECT_EQ(reported, 32U);
    EXPECT_EQ(Nd_GetFloatInc(camera, nodeHandle("Gain"), &real), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Nd_CmdExecute(camera, nodeHandle("TriggerSoftware")), 0U);
    EXPECT_EQ(ExecuteCamSoftwareTrigger(camera), 0U);
    EXPECT_EQ(scripted::node("TriggerSoftware").executed, 2);
    EXPECT_EQ(Nd_GetIntValue(camera, 0, &value), CAM_API_STS_INVALID_NODE_HANDLE);
}

TEST_F(ScriptedCamera, enumerationEntriesAreNodes)
{
    open();
    const CAM_NODE_HANDLE format = nodeHandle("PixelFormat");
    std::uint32_t count = 0;
    EXPECT_EQ(Nd_GetNumOfEnumEntries(camera, format, &count), 0U);
    EXPECT_EQ(count, 4U);
    CAM_NODE_HANDLE entry = 0;
    EXPECT_EQ(Nd_GetEnumEntryByIndex(camera, format, 2, &entry), 0U);
    EXPECT_EQ(entry, nodeHandle("EnumEntry_PixelFormat_RGB8"));
    char name[16];
    std::uint32_t size = sizeof name;
    EXPECT_EQ(Nd_GetEnumEntryStrValue(camera, entry, name, &size), 0U);
    EXPECT_STREQ(name, "RGB8");
    NodeAccessMode access = NODE_ACCESS_MODE_UNDEFINED;
    EXPECT_EQ(Nd_GetAccessMode(camera, entry, &access), 0U);
    EXPECT_EQ(access, NODE_ACCESS_MODE_RO);

    EXPECT_EQ(Nd_SetEnumStrValue(camera, format, "Mono12p"), CAM_API_STS_INVALID_PARAMETER) << "not selectable";
    EXPECT_EQ(Nd_SetEnumStrValue(camera, format, "Mono8"), 0U);
    std::uint32_t reported = 0;
    EXPECT_EQ(GetCamPixelFormat(camera, &reported), 0U);
    EXPECT_EQ(reported, 0x01080001U);
    scripted::changeNode("PixelFormat", [](scripted::NodeSpec& spec) { spec.entries[3].access = NODE_ACCESS_MODE_RO; });
    EXPECT_EQ(Nd_SetEnumIntValue(camera, format, 0x010C0047), 0U);
    size = sizeof name;
    EXPECT_EQ(Nd_GetEnumStrValue(camera, format, name, &size), 0U);
    EXPECT_STREQ(name, "Mono12p");
}

TEST_F(ScriptedCamera, failuresOfOneNodeDoNotAffectOthers)
{
    open();
    std::int64_t value = 0;
    scripted::failNode("Width", "Nd_GetIntValue", CAM_API_STS_TIMEOUT);
    EXPECT_EQ(Nd_GetIntValue(camera, nodeHandle("Width"), &value), CAM_API_STS_TIMEOUT);
    EXPECT_EQ(Nd_GetIntValue(camera, nodeHandle("Height"), &value), 0U);
    scripted::heal("Nd_GetIntValue");
    EXPECT_EQ(Nd_GetIntValue(camera, nodeHandle("Width"), &value), 0U);
}

TEST_F(ScriptedCamera, imageFormatAndNodesStayInStep)
{
    open();
    scripted::setImageFormat(640, 480, 0x01080001);
    scripted::setTrigger(1, CAM_TRIGGER_SOURCE_SOFTWARE);
    EXPECT_EQ(scripted::node("Width").intValue, 640);
    EXPECT_EQ(scripted::node("PixelFormat").intValue, 0x01080001);
    EXPECT_EQ(scripted::node("TriggerSource").intValue, 64);
    EXPECT_EQ(Nd_SetEnumStrValue(camera, nodeHandle("TriggerMode"), "Off"), 0U);
    bool on = true;
    EXPECT_EQ(GetCamTriggerMode(camera, &on), 0U);
    EXPECT_FALSE(on);
}

TEST_F(ScriptedCamera, walksTwentyThousandNodes)
{
    constexpr std::int64_t kCategories = 200;
    constexpr std::int64_t kPerCategory = 100;
    std::vector<scripted::NodeSpec> nodes{scripted::category("Root", {"Nowhere"})};
    for (std::int64_t c = 0; c < kCategories; ++c) {
        scripted::NodeSpec category = scripted::category("Category" + std::to_string(c), {});
        for (std::int64_t i = 0; i < kPerCategory; ++i) {
            category.features.push_back("Feature" + std::to_string(c * kPerCategory + i));
            scripted::NodeSpec feature;
            feature.name = category.features.back();
            feature.intValue = c * kPerCategory + i;
            nodes.push_back(feature);
        }
        nodes.front().features.push_back(category.name);
        nodes.push_back(category);
    }
    scripted::setNodes(nodes);
    open();
    scripted::setNodes({scripted::category("Root", {})}); // for the next opening

    const CAM_NODE_HANDLE root = nodeHandle("Root");
    CAM_NODE_HANDLE child = 1;
    EXPECT_EQ(Nd_GetFeatureByIndex(camera, root, 0, &child), CAM_API_STS_NOT_FOUND);
    EXPECT_EQ(child, 0U);
    scripted::clearCalls();
    std::int64_t sum = 0;
    for (std::uint32_t c = 1; c <= kCategories; ++c) {
        CAM_NODE_HANDLE category = 0;
        ASSERT_EQ(Nd_GetFeatureByIndex(camera, root, c, &category), 0U);
        for (std::uint32_t i = 0; i < kPerCategory; ++i) {
            std::int64_t value = 0;
            ASSERT_EQ(Nd_GetFeatureByIndex(camera, category, i, &child), 0U);
            ASSERT_EQ(Nd_GetIntValue(camera, child, &value), 0U);
            sum += value;
        }
    }
    constexpr std::int64_t kAll = kCategories * kPerCategory;
    EXPECT_EQ(sum, kAll * (kAll - 1) / 2);
    EXPECT_EQ(scripted::count("Nd_GetIntValue"), kAll);
    EXPECT_EQ(scripted::count("Nd_GetFeatureByIndex"), kAll + kCategories);

    Cam_Close(camera);
    ASSERT_EQ(Cam_Open(0, &camera, signal, 1, nullptr, 1), 0U);
    std::int64_t value = 0;
    EXPECT_EQ(Nd_GetIntValue(camera, child, &value), CAM_API_STS_INVALID_NODE_HANDLE) << "a handle from before";
    EXPECT_EQ(Nd_GetNode(camera, "Feature0", &child), CAM_API_STS_NOT_FOUND);
}

TEST_F(ScriptedCamera, sharedLibrariesHaveTheSonamesOfTheCameraLibraries)
{
    void* utility = dlopen(ORVO_MAKER_LIBS "/libOrvoCamUtl_64.so.1", RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(utility, nullptr) << "the shared libraries are built beside this program";
    // The second library loads the first.
    const auto initialize = reinterpret_cast<decltype(&Sys_Initialize)>(dlsym(utility, "Sys_Initialize"));
    const auto enumerate = reinterpret_cast<decltype(&Sys_GetNumOfCameras)>(dlsym(utility, "Sys_GetNumOfCameras"));
    const auto openCamera = reinterpret_cast<decltype(&Cam_Open)>(dlsym(utility, "Cam_Open"));
    const auto width = reinterpret_cast<decltype(&GetCamWidth)>(dlsym(utility, "GetCamWidth"));
    ASSERT_TRUE(initialize && enumerate && openCamera && width);
    std::uint32_t value = 0;
    EXPECT_EQ(initialize(65535), 0U);
    EXPECT_EQ(enumerate(&value), 0U);
    EXPECT_EQ(openCamera(0, &camera, 0, 1, nullptr, 1), 0U);
    EXPECT_EQ(width(camera, &value), 0U);
    EXPECT_EQ(value, 64U);
    EXPECT_TRUE(scripted::calls().empty()) << "separate state";
    dlclose(utility);
}

} // namespace

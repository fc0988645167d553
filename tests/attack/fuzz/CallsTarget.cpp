// Sequences of exported calls on built-in cameras, with handles that are good, stale or made up.

#include "camera/OrvoCamApi.h"
#include "camera/OrvoCamUtl.h"
#include "tests/attack/fuzz/FuzzInput.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

using namespace Orvo;

namespace {

constexpr int kMaxCalls = 64;

constexpr std::array kNames = {"Root",
                               "Width",
                               "Height",
                               "PixelFormat",
                               "ExposureTime",
                               "Gain",
                               "TriggerMode",
                               "TriggerSource",
                               "TriggerSoftware",
                               "UserSetLoad",
                               "UserSetSelector",
                               "LUTIndex",
                               "LUTValue",
                               "DeviceUserID",
                               "TestPattern",
                               "OffsetX",
                               "BinningHorizontal",
                               "DeviceReset",
                               "StringRW",
                               "SimulationUnplug",
                               "SimulationLoseEvery",
                               "SimulationRefuseAccess",
                               "Nothing",
                               ""};

/// What the calls have given so far, among which the next ones choose.
class Handles {
public:
    explicit Handles(FuzzInput& input)
        : m_input(input)
    {
    }

    void add(std::uint64_t handle) { m_handles.push_back(handle); }

    [[nodiscard]] std::uint64_t any()
    {
        const std::uint8_t choice = m_input.byte();
        if (choice >= 0xF8 || m_handles.empty())
            return choice == 0xFF ? m_input.number<std::uint64_t>() : choice & 7U;
        return m_handles[m_handles.size() - 1 - choice % m_handles.size()];
    }

private:
    FuzzInput& m_input;
    std::vector<std::uint64_t> m_handles;
};

void onImage(CAM_HANDLE /*camera*/, CAM_STRM_HANDLE stream, CAM_IMAGE_INFO* info, std::uint32_t index,
             void* /*context*/)
{
    REQUIRE(info != nullptr && info->data != nullptr);
    volatile const auto first = *static_cast<const std::uint8_t*>(info->data);
    (void)first;
    if (Strm_LockBuffer(stream, index, info) == CAM_API_STS_SUCCESS)
        (void)Strm_UnlockBuffer(stream, index);
    const CAM_API_STATUS stopped = Strm_Stop(stream);
    REQUIRE(stopped == CAM_API_STS_INVALID_PARAMETER || stopped == CAM_API_STS_CAMERA_NOT_RESPONDING ||
            stopped == CAM_API_STS_NOT_INITIALIZED || stopped == CAM_API_STS_INVALID_STREAM_HANDLE);
}

void call(FuzzInput& input, Handles& handles)
{
    std::uint64_t handle = 0;
    std::uint32_t number = 0;
    std::int64_t integer = 0;
    double real = 0;
    bool flag = false;
    std::array<char, 64> text{};
    auto size = static_cast<std::uint32_t>(input.byte() % (text.size() + 1));
    char* const buffer = size == 0 ? nullptr : text.data();
    CAM_INFO info{};
    CAM_SYSTEM_INFO system{};
    CAM_IMAGE_INFO image{};
    NodeType type{};
    NodeAccessMode access{};
    const std::uint64_t one = handles.any();
    const std::uint64_t other = handles.any();
    switch (input.below(48)) {
    case 0:
        (void)Sys_Terminate();
        break;
    case 1:
        (void)Sys_Initialize(CAM_LAYER_SIMULATED);
        break;
    case 2:
        (void)Sys_GetNumOfCameras(&number);
        break;
    case 3:
        (void)Sys_CreateSignal(&handle);
        break;
    case 4:
        (void)Sys_CloseSignal(one);
        break;
    case 5:
        (void)Sys_WaitForSignal(one, static_cast<std::uint32_t>(input.below(3)));
        break;
    case 6:
        (void)Cam_GetInformation(one, static_cast<std::uint32_t>(input.below(4)), &info);
        break;
    case 7:
    case 8:
    case 9:
        (void)Cam_Open(static_cast<std::uint32_t>(input.below(4)), &handle, input.below(2) != 0 ? one : 0, 1, nullptr,
                       1);
        break;
    case 10:
        (void)Cam_Close(one);
        break;
    case 11:
    case 12:
        (void)Strm_OpenSimple(one, &handle, &number, nullptr, static_cast<std::uint32_t>(input.below(6)), nullptr);
        break;
    case 13:
        (void)Strm_Close(one);
        break;
    case 14:
        (void)Strm_SetCallbackImageAcquired(one, nullptr, input.below(4) != 0 ? onImage : nullptr);
        break;
    case 15:
    case 16:
        (void)Strm_Start(one, static_cast<std::uint32_t>(input.below(10)));
        break;
    case 17:
        (void)Strm_Stop(one);
        break;
    case 18:
        (void)Strm_GetCurrentBufferIndex(one, &number);
        break;
    case 19:
        (void)Strm_LockBuffer(one, static_cast<std::uint32_t>(input.below(6)), &image);
        break;
    case 20:
        (void)Strm_UnlockBuffer(one, static_cast<std::uint32_t>(input.below(6)));
        break;
    case 21:
    case 22:
    case 23:
    case 24:
        (void)Nd_GetNode(one, kNames[input.below(kNames.size())], &handle);
        break;
    case 25:
        (void)Nd_GetFeatureByIndex(one, other, input.byte(), &handle);
        break;
    case 26:
        (void)Nd_GetEnumEntryByIndex(one, other, input.byte(), &handle);
        break;
    case 27:
        (void)Nd_GetType(one, other, &type);
        (void)Nd_GetAccessMode(one, other, &access);
        break;
    case 28:
        (void)Nd_GetName(one, other, buffer, &size);
        break;
    case 29:
        (void)Nd_GetStrValue(one, other, buffer, &size);
        break;
    case 30:
        (void)Nd_GetEnumStrValue(one, other, buffer, &size);
        break;
    case 31:
        (void)Nd_GetIntValue(one, other, &integer);
        break;
    case 32:
        (void)Nd_GetFloatValue(one, other, &real);
        break;
    case 33:
        (void)Nd_GetBoolValue(one, other, &flag);
        break;
    case 34:
        (void)Nd_SetIntValue(one, other, input.number<std::int16_t>(), input.below(2) != 0);
        break;
    case 35:
        (void)Nd_SetFloatValue(one, other, input.number<double>(), input.below(2) != 0);
        break;
    case 36:
        (void)Nd_SetBoolValue(one, other, input.below(2) != 0, true);
        break;
    case 37:
        (void)Nd_SetStrValue(one, other, std::string(input.bytes(input.byte())).c_str(), true);
        break;
    case 38:
        (void)Nd_SetEnumIntValue(one, other, input.byte(), true);
        break;
    case 39:
        (void)Nd_CmdExecute(one, other, true);
        break;
    case 40:
        (void)GetCamWidth(one, &number);
        (void)GetCamHeight(one, &number);
        (void)GetCamPixelFormat(one, &number);
        break;
    case 41:
        (void)GetCamTriggerMode(one, &flag);
        (void)GetCamTriggerSource(one, &number);
        break;
    case 42:
        (void)ExecuteCamSoftwareTrigger(one);
        break;
    case 43:
        (void)GetCamIndexFromCamHandle(one, &number);
        break;
    case 44:
        (void)Sys_GetInformation(&system);
        break;
    case 45:
        // Null pointers are refused, whatever else is wrong.
        REQUIRE(Nd_GetIntValue(one, other, nullptr) != CAM_API_STS_SUCCESS);
        REQUIRE(Strm_LockBuffer(one, 0, nullptr) != CAM_API_STS_SUCCESS);
        REQUIRE(Nd_SetStrValue(one, other, nullptr, true) != CAM_API_STS_SUCCESS);
        break;
    default:
        break;
    }
    if (handle != 0)
        handles.add(handle);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    ::setenv("ORVO_SIMULATED_CAMERAS", "2", 1); // NOLINT(concurrency-mt-unsafe): no other thread runs
    FuzzInput input(data, size);
    Handles handles(input);
    // Most sequences would do nothing without a camera.
    REQUIRE(Sys_Initialize(CAM_LAYER_SIMULATED) == CAM_API_STS_SUCCESS);
    std::uint32_t count = 0;
    REQUIRE(Sys_GetNumOfCameras(&count) == CAM_API_STS_SUCCESS);
    CAM_HANDLE camera = 0;
    if (Cam_Open(0, &camera, 0, 1, nullptr, 1) == CAM_API_STS_SUCCESS)
        handles.add(camera);
    for (int i = 0; i < kMaxCalls && !input.empty(); ++i)
        call(input, handles);
    (void)Sys_Terminate();
    return 0;
}

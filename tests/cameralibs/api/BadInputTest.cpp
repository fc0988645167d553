#include "tests/cameralibs/api/CameraFixture.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <functional>
#include <random>
#include <set>
#include <thread>

using namespace Orvo;

namespace {

constexpr int kThreads = 8;
constexpr std::uint64_t kCanary = 0xA5A5A5A5A5A5A5A5;

/// Wrong arguments: zero, small and large numbers, and valid and stale handles of all kinds.
class Handles {
public:
    explicit Handles(unsigned seed)
        : m_random(seed)
    {
    }

    void add(std::uint64_t handle) { m_handles.push_back(handle); }
    /// A handle that must stay valid.
    void addKept(std::uint64_t handle)
    {
        add(handle);
        m_kept.insert(handle);
    }
    [[nodiscard]] std::uint64_t any() { return m_handles[below(m_handles.size())]; }
    [[nodiscard]] std::uint64_t anyNotKept()
    {
        for (;;) {
            if (const std::uint64_t handle = any(); m_kept.count(handle) == 0)
                return handle;
        }
    }
    [[nodiscard]] std::uint32_t number() { return static_cast<std::uint32_t>(any()); }
    [[nodiscard]] std::size_t below(std::size_t limit)
    {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(m_random);
    }
    [[nodiscard]] bool coin() { return below(2) == 0; }

private:
    std::mt19937 m_random;
    std::vector<std::uint64_t> m_handles = {0, 1, 2, 0xFFFFFFFF, 0x10000, 0x7FFFFFFFFFFFFFFF, 0xFFFFFFFFFFFFFFFF};
    std::set<std::uint64_t> m_kept;
};

/// An output argument that must keep its canary unless the operation succeeds.
template <class Value> class Out {
public:
    explicit Out(bool null)
        : m_null(null)
    {
        m_bytes.fill(kByte);
    }

    [[nodiscard]] Value* pointer() { return m_null ? nullptr : reinterpret_cast<Value*>(m_bytes.data()); }
    [[nodiscard]] bool untouched() const
    {
        return std::all_of(m_bytes.begin(), m_bytes.end(), [](unsigned char byte) { return byte == kByte; });
    }

private:
    static constexpr unsigned char kByte = 0xA5;

    bool m_null;
    alignas(Value) std::array<unsigned char, sizeof(Value)> m_bytes;
};

template <class Value, class Operation> CAM_API_STATUS read(Handles& handles, Operation&& operation)
{
    Out<Value> out(handles.coin());
    const CAM_API_STATUS status = operation(out.pointer());
    EXPECT_TRUE(status == CAM_API_STS_SUCCESS || out.untouched()) << status;
    return status;
}

template <class Value>
CAM_API_STATUS readNode(Handles& h, CAM_API_STATUS (*operation)(CAM_HANDLE, CAM_NODE_HANDLE, Value*))
{
    return read<Value>(h, [&](Value* out) { return operation(h.any(), h.any(), out); });
}

CAM_API_STATUS readText(Handles& handles, TextOperation operation)
{
    char buffer[4];
    std::memset(buffer, '#', sizeof buffer);
    const auto capacity = static_cast<std::uint32_t>(handles.below(sizeof buffer));
    std::uint32_t size = capacity;
    const CAM_API_STATUS status =
        operation(handles.any(), handles.any(), handles.coin() ? buffer : nullptr, handles.coin() ? &size : nullptr);
    EXPECT_TRUE(status == CAM_API_STS_SUCCESS || std::string(buffer, sizeof buffer) == "####") << status;
    EXPECT_TRUE(status == CAM_API_STS_SUCCESS || status == CAM_API_STS_BUFFER_TOO_SMALL || size == capacity) << status;
    return status;
}

using Call = std::function<CAM_API_STATUS(Handles&)>;

/// Calls every operation, except those that change the library's state, with mostly wrong arguments.
std::vector<Call> calls()
{
    std::vector<Call> all = {
        [](Handles& h) { return read<CAM_SYSTEM_INFO>(h, Sys_GetInformation); },
        [](Handles& h) { return read<std::uint32_t>(h, Sys_GetNumOfCameras); },
        [](Handles&) { return Sys_CreateSignal(nullptr); },
        [](Handles& h) { return Sys_CloseSignal(h.any()); },
        [](Handles& h) { return Cam_Close(h.anyNotKept()); },
        [](Handles& h) { return Strm_Close(h.anyNotKept()); },
        [](Handles& h) { return Sys_WaitForSignal(h.any(), 0); },
        [](Handles& h) {
            return read<CAM_INFO>(h, [&](CAM_INFO* out) { return Cam_GetInformation(h.any(), h.number(), out); });
        },
        [](Handles& h) {
            CAM_HANDLE camera = kCanary;
            const auto index = static_cast<std::uint32_t>(2 + h.below(5));
            const CAM_API_STATUS status = Cam_Open(index, h.coin() ? &camera : nullptr, h.any(), 1, nullptr, 1);
            EXPECT_TRUE(status != CAM_API_STS_SUCCESS && camera == kCanary) << status;
            return status;
        },
        [](Handles& h) {
            CAM_STRM_HANDLE stream = kCanary;
            const CAM_API_STATUS status =
                Strm_OpenSimple(h.any(), h.coin() ? &stream : nullptr, nullptr, nullptr, 0, nullptr);
            EXPECT_TRUE(status != CAM_API_STS_SUCCESS && stream == kCanary) << status;
            return status;
        },
        [](Handles& h) { return Strm_SetCallbackImageAcquired(h.any(), nullptr, nullptr); },
        [](Handles& h) { return Strm_SetCallbackImageError(h.any(), nullptr, nullptr); },
        [](Handles& h) { return Strm_SetCallbackBufferBusy(h.any(), nullptr, nullptr); },
        [](Handles& h) { return Strm_Stop(h.any()); },
        [](Handles& h) { return Strm_Start(h.any(), 8); },
        [](Handles& h) {
            return read<std::uint32_t>(h, [&](std::uint32_t* out) { return Strm_GetCurrentBufferIndex(h.any(), out); });
        },
        [](Handles& h) {
            return read<CAM_IMAGE_INFO>(h,
                                        [&](CAM_IMAGE_INFO* out) { return Strm_LockBuffer(h.any(), h.number(), out); });
        },
        [](Handles& h) { return Strm_UnlockBuffer(h.any(), h.number()); },
        [](Handles& h) {
            CAM_NODE_HANDLE node = kCanary;
            const CAM_API_STATUS status =
                Nd_GetNode(h.any(), h.coin() ? "NoSuchNode" : nullptr, h.coin() ? &node : nullptr);
            EXPECT_TRUE(node == (status == CAM_API_STS_NOT_FOUND ? 0 : kCanary)) << status;
            return status;
        },
        [](Handles& h) { return readNode<std::uint32_t>(h, Nd_GetNumOfFeatures); },
        [](Handles& h) {
            return read<CAM_NODE_HANDLE>(
                h, [&](CAM_NODE_HANDLE* out) { return Nd_GetFeatureByIndex(h.any(), h.any(), h.number(), out); });
        },
        [](Handles& h) {
            return read<CAM_NODE_HANDLE>(
                h, [&](CAM_NODE_HANDLE* out) { return Nd_GetEnumEntryByIndex(h.any(), h.any(), h.number(), out); });
        },
        [](Handles& h) { return readNode<NodeType>(h, Nd_GetType); },
        [](Handles& h) { return readNode<NodeAccessMode>(h, Nd_GetAccessMode); },
        [](Handles& h) { return readNode<TC_NODE_VISIBILITY>(h, Nd_GetVisibility); },
        [](Handles& h) { return readNode<NodeRepresentation>(h, Nd_GetRepresentation); },
        [](Handles& h) { return readNode<FloatDisplayNotation>(h, Nd_GetFloatDisplayNotation); },
        [](Handles& h) { return readNode<std::uint32_t>(h, Nd_GetNumOfEnumEntries); },
        [](Handles& h) { return readNode<bool>(h, Nd_GetFloatHasInc); },
        [](Handles& h) { return readNode<bool>(h, Nd_GetBoolValue); },
        [](Handles& h) { return Nd_CmdExecute(h.any(), h.any()); },
        [](Handles& h) { return Nd_SetBoolValue(h.any(), h.any(), h.coin()); },
        [](Handles& h) { return Nd_SetIntValue(h.any(), h.any(), -1); },
        [](Handles& h) { return Nd_SetFloatValue(h.any(), h.any(), -1e300); },
        [](Handles& h) { return Nd_SetStrValue(h.any(), h.any(), nullptr); },
        [](Handles& h) { return Nd_SetEnumStrValue(h.any(), h.any(), h.coin() ? "NoSuchEntry" : nullptr); },
        [](Handles& h) { return Nd_SetEnumIntValue(h.any(), h.any(), -77); },
    };
    for (const TextOperation text : {Nd_GetName, Nd_GetDescription, Nd_GetToolTip, Nd_GetUnit, Nd_GetStrValue,
                                     Nd_GetEnumStrValue, Nd_GetEnumEntryStrValue})
        all.emplace_back([text](Handles& h) { return readText(h, text); });
    for (const auto operation :
         {Nd_GetIntValue, Nd_GetIntMin, Nd_GetIntMax, Nd_GetIntInc, Nd_GetEnumIntValue, Nd_GetFloatDisplayPrecision})
        all.emplace_back([operation](Handles& h) { return readNode<std::int64_t>(h, operation); });
    for (const auto operation : {Nd_GetFloatValue, Nd_GetFloatMin, Nd_GetFloatMax, Nd_GetFloatInc})
        all.emplace_back([operation](Handles& h) { return readNode<double>(h, operation); });
    return all;
}

const std::set<CAM_API_STATUS>& documentedStatuses()
{
    static const std::set<CAM_API_STATUS> statuses = {0,  1,  2,  3,  4,  5,    6,    7,    8,   9,  11,
                                                      13, 14, 18, 19, 21, 2054, 2055, 2056, 258, 257};
    return statuses;
}

void callFromManyThreads(const std::function<void(Handles&)>& prepare, int rounds)
{
    const std::vector<Call> all = calls();
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            Handles handles(i);
            prepare(handles);
            for (int round = 0; round < rounds; ++round) {
                const std::size_t which = handles.below(all.size());
                const CAM_API_STATUS status = all[which](handles);
                EXPECT_EQ(documentedStatuses().count(status), 1U) << "operation " << which << " gave " << status;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace

TEST(BadInput, BeforeInitializeAndAfterTerminate)
{
    for (int phase = 0; phase < 2; ++phase) {
        Handles handles(7);
        for (const Call& call : calls()) {
            for (int i = 0; i < 10; ++i)
                EXPECT_EQ(call(handles), CAM_API_STS_NOT_INITIALIZED);
        }
        ASSERT_EQ(Sys_Initialize(CAM_LAYER_SIMULATED), CAM_API_STS_SUCCESS);
        ASSERT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    }
}

class BadInputTest : public CameraTest {
protected:
    BadInputTest()
        : CameraTest("2")
    {
    }
};

TEST_F(BadInputTest, EightThreads)
{
    CAM_HANDLE second = 0;
    CAM_STRM_HANDLE stream = 0;
    ASSERT_EQ(Cam_Open(1, &second, 0, 1, nullptr, 1), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Strm_OpenSimple(second, &stream, nullptr, nullptr, 4, nullptr), CAM_API_STS_SUCCESS);
    const CAM_NODE_HANDLE stale = nodeOf(m_camera, "Width");
    ASSERT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    callFromManyThreads(
        [&](Handles& handles) {
            for (const std::uint64_t handle : {m_camera, std::uint64_t{stale}, std::uint64_t{m_signal}})
                handles.add(handle);
            handles.addKept(second);
            handles.addKept(stream);
            for (const char* name : {"Root", "Width", "ExposureTime", "PixelFormat", "ReverseX", "DeviceUserID",
                                     "AcquisitionStart", "DeviceTemperature"})
                handles.add(nodeOf(second, name));
        },
        1500);
    std::int64_t value = 0;
    EXPECT_EQ(Nd_GetIntValue(second, nodeOf(second, "Width"), &value), CAM_API_STS_SUCCESS) << "still works";
}

TEST_F(BadInputTest, WhileTheLibraryIsInitializedAndTerminated)
{
    const CAM_NODE_HANDLE width = nodeOf(m_camera, "Width");
    std::atomic<bool> done{false};
    std::thread restarter([&] {
        for (int round = 0; round < 20; ++round) {
            EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
            EXPECT_EQ(Sys_Initialize(CAM_LAYER_SIMULATED), CAM_API_STS_SUCCESS);
            std::uint32_t count = 0;
            EXPECT_EQ(Sys_GetNumOfCameras(&count), CAM_API_STS_SUCCESS);
            CAM_HANDLE camera = 0;
            CAM_STRM_HANDLE stream = 0;
            EXPECT_EQ(Cam_Open(0, &camera, 0, 1, nullptr, 1), CAM_API_STS_SUCCESS);
            EXPECT_EQ(Strm_OpenSimple(camera, &stream, nullptr, nullptr, 4, nullptr), CAM_API_STS_SUCCESS);
            EXPECT_EQ(Strm_Start(stream, 8), CAM_API_STS_SUCCESS);
        }
        done = true;
    });
    while (!done) {
        callFromManyThreads(
            [&](Handles& handles) {
                handles.add(m_camera);
                handles.add(width);
                handles.add(m_signal);
            },
            100);
    }
    restarter.join();
}

TEST_F(BadInputTest, OneCameraFromEightThreads)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            for (int round = 0; round < 40; ++round) {
                std::int64_t value = 0;
                EXPECT_EQ(Nd_GetIntValue(m_camera, node("Width"), &value), CAM_API_STS_SUCCESS);
                EXPECT_NE(textOf(Nd_GetEnumStrValue, m_camera, node("PixelFormat")), "status 258");
                EXPECT_EQ(Nd_SetStrValue(m_camera, node("DeviceUserID"),
                                         std::string(static_cast<std::size_t>(i), 'x').c_str()),
                          CAM_API_STS_SUCCESS);
                char buffer[64] = {};
                std::uint32_t size = sizeof buffer;
                EXPECT_EQ(Nd_GetStrValue(m_camera, node("DeviceUserID"), buffer, &size), CAM_API_STS_SUCCESS);
                EXPECT_EQ(buffer, std::string(size - 1, 'x'));
                EXPECT_FALSE(featuresOf(m_camera, "Root").empty());
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

TEST_F(BadInputTest, TwoCamerasAreOpenedAtTheSameTime)
{
    ASSERT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    std::vector<std::thread> threads;
    for (std::uint32_t index = 0; index < 2; ++index) {
        threads.emplace_back([index] {
            for (int round = 0; round < 8; ++round) {
                CAM_HANDLE camera = 0;
                EXPECT_EQ(Cam_Open(index, &camera, 0, 1, nullptr, 1), CAM_API_STS_SUCCESS);
                EXPECT_FALSE(featuresOf(camera, "Root").empty());
                EXPECT_EQ(Cam_Close(camera), CAM_API_STS_SUCCESS);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

TEST_F(BadInputTest, EightThreadsOpenAndClose)
{
    ASSERT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    std::vector<std::thread> threads;
    std::atomic<int> opened{0};
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 10; ++round) {
                CAM_HANDLE camera = 0;
                const CAM_API_STATUS status = Cam_Open(0, &camera, m_signal, 1, nullptr, 1);
                EXPECT_TRUE(status == CAM_API_STS_SUCCESS || status == CAM_API_STS_ALREADY_OPENED) << status;
                if (status != CAM_API_STS_SUCCESS)
                    continue;
                ++opened;
                CAM_STRM_HANDLE stream = 0;
                EXPECT_EQ(Strm_OpenSimple(camera, &stream, nullptr, nullptr, 4, nullptr), CAM_API_STS_SUCCESS);
                EXPECT_EQ(Strm_Start(stream, 8), CAM_API_STS_SUCCESS);
                EXPECT_EQ(Cam_Close(camera), CAM_API_STS_SUCCESS);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_GT(opened, 0);
}

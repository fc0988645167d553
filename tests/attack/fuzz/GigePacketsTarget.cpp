// The library with a GigE Vision camera that sends what it likes: answers to commands and searches, and the packets of
// images. They reach the library through a real transport, which may crash. To be run in a network of its own.
//
// An input tells whether its camera is searched for again, which takes a second, then some registers with their
// contents, then what happens to the packets of the camera of the tests.

#include "camera/OrvoCamApi.h"
#include "tests/attack/fuzz/CameraUse.h"
#include "tests/attack/fuzz/FuzzInput.h"
#include "tests/attack/fuzz/PacketDistortion.h"
#include "tests/cameralibs/transport/gige/GigeCamera.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <thread>

#include <unistd.h>

using namespace Orvo;

namespace {

class DistortedPackets : public gige::Behaviour {
public:
    explicit DistortedPackets(const FuzzInput& input)
        : m_input(input)
    {
    }

    void prepare(gige::CameraMemory& memory) override
    {
        for (std::size_t count = m_input.below(4); count > 0; --count) {
            const auto address = m_input.number<std::uint16_t>();
            memory.setValue(address, m_input.number<std::uint32_t>());
        }
        m_distortion = PacketDistortion(m_input, m_input.byte());
    }
    void answer(gige::Exchange& exchange) override { m_distortion.distort(exchange.answers); }
    void send(std::vector<gige::Packet>& packets) override { m_distortion.distort(packets); }

private:
    FuzzInput m_input;
    PacketDistortion m_distortion{FuzzInput(nullptr, 0)};
};

/// A camera on a thread of its own.
class RunningCamera {
public:
    explicit RunningCamera(const FuzzInput& input)
        : m_packets(input)
    {
        REQUIRE(::pipe(m_end.data()) == 0);
        m_thread = std::thread([this] { m_camera.run(m_end[0]); });
    }
    ~RunningCamera()
    {
        ::close(m_end[1]);
        m_thread.join();
        ::close(m_end[0]);
    }
    RunningCamera(const RunningCamera&) = delete;
    RunningCamera& operator=(const RunningCamera&) = delete;

private:
    DistortedPackets m_packets;
    gige::GigeCamera m_camera{{}, m_packets};
    std::array<int, 2> m_end = {-1, -1}; ///< closed to end the camera
    std::thread m_thread;
};

std::uint32_t search()
{
    std::uint32_t count = 0;
    REQUIRE(Sys_GetNumOfCameras(&count) == CAM_API_STS_SUCCESS && count <= 1000);
    for (std::uint32_t i = 0; i < count; ++i) {
        CAM_INFO info{};
        REQUIRE(Cam_GetInformation(0, i, &info) == CAM_API_STS_SUCCESS);
        REQUIRE(std::memchr(info.modelName, 0, sizeof info.modelName) != nullptr);
    }
    return count;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/)
{
    REQUIRE(Sys_Initialize(CAM_LAYER_GIGE_VISION) == CAM_API_STS_SUCCESS);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static bool s_listed = false;
    FuzzInput input(data, size);
    const bool searched = input.byte() >= 0xF0;
    if (!s_listed && !searched) {
        const RunningCamera correct{FuzzInput(nullptr, 0)};
        REQUIRE(search() == 1);
    }
    const RunningCamera camera{input};
    s_listed = !searched || search() == 1;
    const bool correct = size == 0;
    const unsigned images = useCamera(0, "TestText", correct ? kAnyTime : std::chrono::milliseconds(200));
    REQUIRE(images > 0 || !correct);
    s_listed = s_listed && !searched;
    return 0;
}

// The library with a transport that was taken over: it answers, or sends what it likes, in any order.
//
// The transport is a thread here. The process that the library starts, watches and kills for it does nothing.

#include "camera/OrvoCamApi.h"
#include "cameralibs/transport/Channel.h"
#include "tests/attack/fuzz/CameraUse.h"
#include "tests/attack/fuzz/FuzzInput.h"

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace cameralibs::transport;
using namespace Orvo;

namespace {

constexpr int kMaxSteps = 60;
constexpr int kPatience = 20; ///< milliseconds that a request is waited for

constexpr const char* kDescription =
    "<RegisterDescription ModelName='Fuzzed' VendorName='Test' StandardNameSpace='None' SchemaMajorVersion='1'"
    " SchemaMinorVersion='1' SchemaSubMinorVersion='0' MajorVersion='1' MinorVersion='0' SubMinorVersion='0'>"
    "<Category Name='Root'><pFeature>Width</pFeature><pFeature>Height</pFeature><pFeature>PixelFormat</pFeature>"
    "<pFeature>PayloadSize</pFeature><pFeature>Text</pFeature><pFeature>AcquisitionStart</pFeature></Category>"
    "<IntReg Name='Width'><Address>0</Address><Length>1</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
    "<Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>"
    "<Integer Name='Height'><Value>16</Value></Integer>"
    "<Enumeration Name='PixelFormat'><EnumEntry Name='Mono8'><Value>0x01080001</Value></EnumEntry>"
    "<Value>0x01080001</Value></Enumeration>"
    "<IntSwissKnife Name='PayloadSize'><pVariable Name='W'>Width</pVariable><Formula>W * 16</Formula></IntSwissKnife>"
    "<StringReg Name='Text'><Address>64</Address><Length>32</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
    "</StringReg><Command Name='AcquisitionStart'><pValue>Width</pValue><CommandValue>1</CommandValue></Command>"
    "<Port Name='Device'/></RegisterDescription>";

constexpr Kind kKinds[] = {Kind::hello, Kind::listed, Kind::described, Kind::done, Kind::progress, Kind::alive,
                           Kind::lost,  Kind::image,  Kind::failed,    Kind::free, Kind::close,    Kind::read};

/// What all transports of an input do, one after the other.
std::mutex s_mutex;
FuzzInput* s_input = nullptr;
std::vector<std::thread> s_players;

class Player {
public:
    Player(Descriptor control, Descriptor events)
        : m_control(std::move(control))
        , m_events(std::move(events))
    {
    }

    void play()
    {
        for (int step = 0; step < kMaxSteps; ++step) {
            const std::lock_guard lock(s_mutex); // also keeps the order of the input
            if (s_input->empty() || !act())
                return;
        }
    }

private:
    /// False where this transport is to end.
    bool act()
    {
        const std::uint8_t what = s_input->byte();
        if (what < 0xB0)
            return answer();
        if (what < 0xC8)
            return sendImage();
        if (what < 0xE0)
            return sendAnything(m_control);
        if (what < 0xEC)
            return sendAnything(m_events);
        if (what < 0xFC)
            return m_images.descriptor() < 0 || sendAnything(m_images);
        return false;
    }

    bool answer()
    {
        pollfd asked{m_control.descriptor(), POLLIN, 0};
        if (::poll(&asked, 1, kPatience) <= 0)
            return true;
        if (m_control.receive(m_packet, Clock::now(), Channel::Descriptors::accept) != Received::packet)
            return false;
        switch (m_packet.kind()) {
        case Kind::hello: {
            Hello hello{};
            setText(hello.build, ORVO_TRANSPORT_BUILD);
            return m_control.send(Kind::hello, hello);
        }
        case Kind::enumerate: {
            Listed camera{};
            camera.link = CAM_LINK_USB3_VISION;
            setText(camera.id, "fuzzed");
            return m_control.send(Kind::listed, camera) && m_control.send(Kind::done, Done{0, 0});
        }
        case Kind::describe:
            return m_control.send(Kind::described, Described{std::strlen(kDescription)}, kDescription);
        case Kind::read: {
            const auto read = m_packet.body<Read>(Kind::read);
            std::string bytes(s_input->bytes(std::min<std::size_t>(read ? read->size : 0, 4)));
            bytes.resize(read ? std::min<std::size_t>(read->size, kMaxData) : 0);
            return m_control.send(Kind::done, Done{0, 0}, bytes);
        }
        case Kind::start:
            m_images = Channel(m_packet.takeDescriptor());
            return m_control.send(Kind::done, Done{0, 0});
        default:
            return m_control.send(Kind::done, Done{s_input->below(8) == 7 ? s_input->byte() : 0U, 0});
        }
    }

    bool sendImage()
    {
        if (m_images.descriptor() < 0)
            return true;
        pollfd lent{m_images.descriptor(), POLLIN, 0};
        if (::poll(&lent, 1, 0) > 0 && m_images.receive(m_packet, Clock::now()) == Received::packet) {
            if (const auto buffer = m_packet.body<Free>(Kind::free))
                m_lent = *buffer;
        }
        // Usually a lent buffer, otherwise any other.
        const std::uint8_t how = s_input->byte();
        Image image{m_lent.offset, m_lent.capacity, ++m_blockId, 1};
        if (how > 0xE0) {
            image.offset = s_input->number<std::uint32_t>();
            image.size = s_input->number<std::uint64_t>();
        }
        if (how < 0x10)
            image.blockId = s_input->number<std::uint64_t>();
        return m_images.send(Kind::image, image);
    }

    bool sendAnything(const Channel& channel)
    {
        const std::uint8_t which = s_input->byte();
        const std::string_view bytes = s_input->bytes(s_input->byte());
        std::string packet(bytes);
        if (which < 0xE0) {
            // A consistent header, and a body of the most common size.
            Header header{kKinds[which % std::size(kKinds)], 0};
            packet.resize(std::max<std::size_t>(packet.size(), 8));
            header.dataSize = static_cast<std::uint32_t>(packet.size() - 8);
            packet.insert(0, reinterpret_cast<const char*>(&header), sizeof header);
        }
        return ::send(channel.descriptor(), packet.data(), packet.size(), MSG_NOSIGNAL | MSG_DONTWAIT) >= 0 ||
               errno == EAGAIN;
    }

    Channel m_control;
    Channel m_events;
    Channel m_images;
    Packet m_packet;
    Free m_lent{};
    std::uint64_t m_blockId = 0;
};

/// The descriptors that are given to the process to be started.
thread_local int s_control = -1;
thread_local int s_events = -1;

} // namespace

// Those of the C library are found after these.
extern "C" int posix_spawn_file_actions_adddup2(posix_spawn_file_actions_t* /*actions*/, int descriptor,
                                                int as) noexcept
{
    if (as == kControlDescriptor)
        s_control = ::fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
    if (as == kEventDescriptor)
        s_events = ::fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
    return 0;
}

extern "C" int posix_spawn(pid_t* pid, const char* /*path*/, const posix_spawn_file_actions_t* /*actions*/,
                           const posix_spawnattr_t* /*attributes*/, char* const* /*arguments*/,
                           char* const* /*environment*/)
{
    *pid = ::fork();
    if (*pid == 0) {
        ::close_range(0, ~0U, 0);
        for (;;)
            ::pause();
    }
    const std::lock_guard lock(s_mutex);
    s_players.emplace_back(
        [control = s_control, events = s_events] { Player(Descriptor(control), Descriptor(events)).play(); });
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput input(data, size);
    s_input = &input;
    REQUIRE(Sys_Initialize(CAM_LAYER_USB3_VISION) == CAM_API_STS_SUCCESS);
    std::uint32_t count = 0;
    REQUIRE(Sys_GetNumOfCameras(&count) == CAM_API_STS_SUCCESS && count <= 1000);
    for (std::uint32_t i = 0; i < count; ++i) {
        CAM_INFO info{};
        REQUIRE(Cam_GetInformation(0, i, &info) == CAM_API_STS_SUCCESS);
        REQUIRE(std::memchr(info.modelName, 0, sizeof info.modelName) != nullptr);
    }
    (void)useCamera(0, "Text", std::chrono::milliseconds(10));
    REQUIRE(Sys_Terminate() == CAM_API_STS_SUCCESS);
    for (std::thread& player : s_players)
        player.join();
    s_players.clear();
    return 0;
}

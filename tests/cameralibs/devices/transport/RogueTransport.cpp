// A transport that violates the protocol, as a compromised one might. It gets no arguments, so an environment variable
// selects the violation ("lie"); without one it behaves correctly.

#include "cameralibs/transport/Channel.h"

#include "camera/OrvoCamApi.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace cameralibs::transport;

namespace {

const std::string& lie()
{
    static const std::string theLie = [] {
        const char* const told = std::getenv("ORVO_ROGUE_LIE"); // NOLINT(concurrency-mt-unsafe)
        return std::string(told == nullptr ? "" : told);
    }();
    return theLie;
}

constexpr std::uint32_t kWidth = 64;
constexpr std::uint32_t kHeight = 32;

std::string integerRegister(const std::string& name, unsigned address)
{
    return "<Integer Name=\"" + name + "\"><pValue>" + name + "Reg</pValue></Integer><IntReg Name=\"" + name +
           "Reg\"><Address>" + std::to_string(address) +
           "</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Sign>Unsigned</Sign>"
           "<Endianess>LittleEndian</Endianess></IntReg>";
}

std::string description()
{
    return R"(<?xml version="1.0"?><RegisterDescription ModelName="Rogue" VendorName="Tests" SchemaMajorVersion="1"
        SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0" SubMinorVersion="0"
        StandardNameSpace="None" ProductGuid="0" VersionGuid="0" ToolTip=""
        xmlns="http://www.genicam.org/GenApi/Version_1_1"><Category Name="Root"><pFeature>Width</pFeature>
        <pFeature>Height</pFeature><pFeature>PayloadSize</pFeature></Category>)" +
           integerRegister("Width", 0) + integerRegister("Height", 4) + integerRegister("PayloadSize", 8) +
           R"(<Port Name="Device"/></RegisterDescription>)";
}

class Rogue {
public:
    int run()
    {
        // Enough threads to be faster than the reader.
        for (int i = 0; i < (isFlood() ? 4 : 1); ++i)
            std::thread([this] { tellEvents(); }).detach();
        for (int i = 0; lie() == "flood log" && i < 4; ++i)
            std::thread(writeLines).detach();
        if (lie() == "log in single bytes")
            std::thread(writeBytes).detach();
        Packet packet;
        while (m_control.receive(packet, Clock::time_point::max(), Channel::Descriptors::accept) == Received::packet) {
            answer(packet);
            if (packet.kind() == Kind::close)
                break;
        }
        ::_exit(0);
    }

private:
    void tellEvents()
    {
        for (;;) {
            if (lie() == "garbage event") {
                (void)!::send(kEventDescriptor, "x", 1, MSG_NOSIGNAL);
            } else if (lie() == "unknown event") {
                (void)m_events.send(Kind::image);
            } else if (lie() != "no sign of life" && lie() != "says nothing") {
                (void)m_events.send(Kind::alive);
            }
            if (!isFlood() || lie() == "flood log")
                std::this_thread::sleep_for(kAlivePeriod);
        }
    }

    /// A flood never pauses, so the reader always finds something to read.
    static bool isFlood() { return lie().rfind("flood", 0) == 0; }

    /// False while the pipe is full.
    static bool writeLine()
    {
        static const std::string line = std::string(1000, 'x') + '\n';
        return ::write(STDERR_FILENO, line.data(), line.size()) > 0;
    }

    /// Runs in threads of its own, which only the reader of the lines can delay.
    static void writeLines()
    {
        for (;;)
            (void)writeLine();
    }

    /// The pauses are long enough for the library to read each byte alone.
    static void writeBytes()
    {
        for (const char byte : std::string_view("<4>A line in single bytes\n")) {
            (void)!::write(STDERR_FILENO, &byte, 1);
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    }

    /// Exits, while a forked process goes on writing lines for longer than the library may read them.
    static void leaveLog()
    {
        if (::fork() == 0) {
            ::alarm(20);
            writeLines();
        }
        while (writeLine()) {
        }
        ::_exit(0);
    }

    /// Exits, while a forked process keeps the channels open until the library closes its ends.
    void leaveEnds() const
    {
        if (::fork() != 0)
            ::_exit(0);
        while (m_events.send(Kind::alive) && tellProgress())
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        ::_exit(0);
    }

    /// Never returns. Sends progress packets instead of an answer.
    void flood() const
    {
        (void)tellProgress();
        const auto tell = [this] {
            while (lie() == "flood progress" && tellProgress()) {
            }
            pauseForEver();
        };
        for (int i = 0; i < 4; ++i)
            std::thread(tell).detach();
        tell();
    }

    static void pauseForEver()
    {
        for (;;)
            ::pause();
    }

    [[nodiscard]] bool tellProgress() const { return m_control.send(Kind::progress, Progress{Answer::pending}); }

    void done(std::uint32_t status = 0, std::string_view data = {})
    {
        (void)m_control.send(Kind::done, Done{status, 0}, data);
    }

    void answer(Packet& packet)
    {
        switch (packet.kind()) {
        case Kind::hello:
            return answerHello();
        case Kind::enumerate:
            return answerEnumerate();
        case Kind::open:
            return done(lie() == "strange status" ? 12345 : 0, "It says so");
        case Kind::describe:
            return answerDescribe(packet.body<Describe>(Kind::describe)->offset);
        case Kind::read:
            return answerRead(*packet.body<Read>(Kind::read));
        case Kind::openSource:
            return done();
        case Kind::start:
            return start(packet.takeDescriptor());
        case Kind::close:
            return isFlood() ? flood() : done();
        default:
            return done();
        }
    }

    void answerHello()
    {
        Hello hello{};
        setText(hello.build, lie() == "other build" ? "0.0.0" : ORVO_TRANSPORT_BUILD);
        if (lie() == "ends at once")
            ::_exit(3);
        if (lie() == "crashes at once") {
            (void)std::signal(SIGSEGV, SIG_DFL); // a sanitizer handles it
            (void)::raise(SIGSEGV);
        }
        if (lie() == "says nothing")
            return;
        if (lie() == "slow search")
            std::this_thread::sleep_for(std::chrono::milliseconds(2800));
        if (lie() == "short packet") {
            (void)!::send(kControlDescriptor, "abc", 3, MSG_NOSIGNAL);
        } else if (lie() == "data without end") {
            const Header header{Kind::hello, 0xffffffff};
            (void)!::send(kControlDescriptor, &header, sizeof header, MSG_NOSIGNAL);
        } else if (lie() == "descriptor") {
            (void)m_control.send(Kind::hello, hello, {}, STDIN_FILENO);
        } else {
            (void)m_control.send(Kind::hello, hello);
        }
    }

    void answerEnumerate()
    {
        if (lie() == "many cameras")
            return answerWithMany();
        Listed camera{};
        camera.link = lie() == "unknown kind" ? 77U : std::uint32_t{Orvo::CAM_LINK_USB3_VISION};
        setText(camera.id, "rogue");
        setText(camera.model, "Rogue");
        if (lie() == "texts without end")
            std::memset(camera.id, 'x', sizeof camera - sizeof camera.link);
        for (int i = 0; lie() == "endless list" && m_control.send(Kind::listed, camera); ++i)
            setText(camera.id, std::to_string(i));
        const bool endless = lie() == "same camera for ever";
        bool sent = true;
        do {
            sent = m_control.send(Kind::listed, camera);
        } while (sent && endless);
        if (lie() != "slow search")
            done();
    }

    void answerWithMany()
    {
        Listed camera{};
        camera.link = Orvo::CAM_LINK_USB3_VISION;
        setText(camera.model, "Rogue");
        for (int i = 0; i < 20; ++i) {
            setText(camera.id, std::to_string(i));
            (void)m_control.send(Kind::listed, camera);
        }
        done();
    }

    void answerDescribe(std::uint64_t offset)
    {
        std::string text = description();
        if (lie() == "slow parts") {
            text.resize(16 * kMaxData + 1, '\n');
            std::this_thread::sleep_for(std::chrono::seconds(2));
        }
        std::uint64_t total = text.size();
        std::string_view part = std::string_view(text).substr(std::min<std::size_t>(offset, text.size()), kMaxData);
        if (lie() == "huge description") {
            total = ~0ULL;
        } else if (lie() == "empty parts") {
            part = {};
        } else if (lie() == "no description") {
            total = 0;
            part = {};
        } else if (lie() == "more than said") {
            total = 10;
        }
        (void)m_control.send(Kind::described, Described{total}, part);
    }

    void answerRead(const Read& read)
    {
        const std::array<std::uint32_t, 3> registers = {kWidth, kHeight, kWidth * kHeight};
        std::string bytes(read.size, '\0');
        if (read.address < sizeof registers) {
            std::memcpy(bytes.data(), reinterpret_cast<const char*>(registers.data()) + read.address,
                        std::min<std::size_t>(read.size, sizeof registers - read.address));
        }
        if (lie() == "no answer")
            return;
        while (lie() == "answers without receiving")
            done(0, bytes);
        if (lie() == "exits")
            ::_exit(3);
        if (lie() == "closes the control channel") {
            m_control.shutDown();
            return pauseForEver();
        }
        if (lie() == "reports a loss") {
            (void)m_events.send(Kind::lost, Nothing{}, "It says so");
            ::_exit(0);
        }
        if (lie() == "short read") {
            bytes.pop_back();
        } else if (lie() == "long read") {
            bytes.append(1000, 'x');
        } else if (lie() == "strange error") {
            return done(999, std::string(kMaxData, 'x'));
        } else if (lie() == "other answer") {
            return (void)m_control.send(Kind::described, Described{4}, bytes);
        } else if (lie() == "endless progress") {
            while (tellProgress())
                std::this_thread::sleep_for(std::chrono::milliseconds(100));
            return;
        } else if (isFlood()) {
            return flood();
        } else if (lie() == "leaves its log") {
            return leaveLog();
        } else if (lie() == "leaves its ends") {
            return leaveEnds();
        }
        done(0, bytes);
    }

    void start(Descriptor channel)
    {
        done();
        std::thread([this, images = Channel(std::move(channel))] { sendImages(images); }).detach();
    }

    void sendImages(const Channel& images)
    {
        Packet packet;
        std::uint64_t blockId = 1;
        while (images.receive(packet, Clock::time_point::max()) == Received::packet) {
            if (lie() == "short image packet") {
                (void)!::send(images.descriptor(), "x", 1, MSG_NOSIGNAL);
                return pauseForEver();
            }
            if (lie() == "descriptor with an image") {
                const auto lent = packet.body<Free>(Kind::free);
                (void)images.send(Kind::image, Image{lent->offset, lent->capacity, 1, 1}, {}, STDIN_FILENO);
                return pauseForEver();
            }
            if (lie() == "closes the image channel")
                return;
            const auto free = packet.body<Free>(Kind::free);
            Image image{free->offset, free->capacity, blockId++, 1};
            if (lie() == "foreign buffer") {
                image.offset = 1ULL << 40U;
            } else if (lie() == "odd offset") {
                image.offset += 1;
            } else if (lie() == "too large") {
                image.size = free->capacity + 1;
            } else if (lie() == "twice" || lie() == "far ids") {
                image.blockId = lie() == "far ids" ? ~0ULL - blockId % 2 * (1ULL << 63U) : image.blockId;
            } else if (lie() == "failed with success") {
                (void)images.send(Kind::failed, Failed{0, 0});
            } else if (lie() == "unknown packet") {
                (void)images.send(Kind::listed);
            }
            if (!images.send(Kind::image, image))
                return;
            if (lie() == "twice")
                (void)images.send(Kind::image, image);
        }
    }

    const Channel m_control{Descriptor(kControlDescriptor)};
    const Channel m_events{Descriptor(kEventDescriptor)};
};

} // namespace

int main()
{
    // A flood must not outlive a test that is killed.
    (void)::prctl(PR_SET_PDEATHSIG, SIGKILL, 0, 0, 0);
    return Rogue().run();
}

// Sessions with a GigE Vision camera that lies: whatever it says, the library goes on working in this process.
//
//     own-network gige_sessions liar|stranger FIRST LAST [STEP [LIE]]
//
// Each seed from FIRST to LAST is one session: a new liar is listed, opened, looked at, written to, started, stopped
// and closed, and an honest camera is opened after it. A line for each seed tells its lies, a line with FAILED what
// went wrong. The same seed by itself repeats its session; with the name of a lie all seeds tell that one.

#include "tests/cameralibs/transport/ChildProcess.h"
#include "tests/cameralibs/transport/gige/Random.h"
#include "tests/cameralibs/transport/gige/Resources.h"
#include "tests/cameralibs/transport/gige/Watched.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include <sys/resource.h>

using namespace Orvo;

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr const char* kHonestSerial = "HONEST";
constexpr std::uint32_t kBuffers = 4;
constexpr int kDeepestCategory = 8;
constexpr std::uint32_t kMostOfEach = 50; ///< features of a category, entries of an enumeration

/// How long a session looks at a camera that answers slowly, and changes it.
constexpr milliseconds kBrowsing{1500};

/// How long it waits for images of a camera that may send none.
constexpr milliseconds kStreaming{400};

/// How long it waits for what has to come.
constexpr milliseconds kPatience{30'000};

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kMemoryTells = false; // sanitizers keep what is given back
#else
constexpr bool kMemoryTells = true;
#endif

constexpr rlim_t kMostMemory = rlim_t{6} << 30U;

/// By how many kilobytes the process may grow in all its sessions. The first ones add about 200, such as type tables of
/// GLib and the heaps of threads; after that it stays there for hundreds of sessions.
constexpr std::size_t kGrowth = 512;

/// What the callbacks of one start bring.
struct Seen {
    std::atomic<unsigned> images{0};
    std::atomic<unsigned> errors{0};
    std::atomic<unsigned> unnamed{0};   ///< errors with a status that is none
    std::atomic<unsigned> disorder{0};  ///< frame numbers that do not rise
    std::atomic<unsigned> byteSum{0};   ///< so that every byte is read
    std::atomic<bool> stopped{false};   ///< nothing may come any more
    std::atomic<unsigned> afterStop{0}; ///< what comes nevertheless
    std::uint64_t lastNumber = 0;
};

void onImage(CAM_HANDLE, CAM_STRM_HANDLE, CAM_IMAGE_INFO* info, std::uint32_t, void* context)
{
    auto& seen = *static_cast<Seen*>(context);
    unsigned sum = 0;
    for (std::uint64_t i = 0; i < info->dataSize; ++i)
        sum += static_cast<const std::uint8_t*>(info->data)[i];
    seen.byteSum += sum;
    seen.disorder += seen.images != 0 && info->frameNumber <= seen.lastNumber ? 1 : 0;
    seen.afterStop += seen.stopped ? 1 : 0;
    seen.lastNumber = info->frameNumber;
    ++seen.images;
}

void onError(CAM_HANDLE, CAM_STRM_HANDLE, std::uint32_t status, std::uint32_t, void* context)
{
    auto& seen = *static_cast<Seen*>(context);
    seen.unnamed += hasName(status) ? 0 : 1;
    seen.afterStop += seen.stopped ? 1 : 0;
    ++seen.errors;
}

template <class Done> bool waitFor(milliseconds time, Done&& done)
{
    for (const auto deadline = Clock::now() + time; !done(); std::this_thread::sleep_for(milliseconds(5))) {
        if (Clock::now() > deadline)
            return false;
    }
    return true;
}

/// One camera, opened and used as a viewer does it. Nothing is expected of what it says.
class Session {
public:
    Session(Watched& watched, gige::Random& random)
        : m_watched(watched)
        , m_random(random)
    {
    }

    /// Whether it is open.
    [[nodiscard]] bool open(std::uint32_t index)
    {
        (void)m_watched.call("Sys_CreateSignal", kAccess, [&] { return Sys_CreateSignal(&m_signal); });
        const CAM_API_STATUS status =
            m_watched.call("Cam_Open", kOpening, [&] { return Cam_Open(index, &m_camera, m_signal, 1, nullptr, 1); });
        if ((status == CAM_API_STS_SUCCESS) != (m_camera != 0)) {
            m_watched.complain("Cam_Open gives status %u and handle %llu", status,
                               static_cast<unsigned long long>(m_camera));
        }
        std::printf("  open: %u\n", status);
        if (m_camera == 0)
            closeSignal();
        return m_camera != 0;
    }

    void use()
    {
        m_deadline = Clock::now() + kBrowsing;
        CAM_NODE_HANDLE root = 0;
        if (access("Nd_GetNode", [&] { return Nd_GetNode(m_camera, "Root", &root); }))
            browse(root, 0);
        if (access("Strm_OpenSimple", kOpening,
                   [&] { return Strm_OpenSimple(m_camera, &m_stream, nullptr, nullptr, kBuffers, nullptr); }))
            stream();
    }

    void close()
    {
        if (m_stream != 0 && m_random.oneIn(2))
            expectClosed("Strm_Close", [&] { return Strm_Close(m_stream); });
        expectClosed("Cam_Close", [&] { return Cam_Close(m_camera); });
        closeSignal();
        expectNothingMore();
    }

    /// Leaves closing to the library's end.
    void terminate()
    {
        expectClosed("Sys_Terminate", [] { return Sys_Terminate(); });
        expectNothingMore();
    }

private:
    template <class Operation> bool access(const char* what, Operation&& operation)
    {
        return access(what, kAccess, operation);
    }

    template <class Operation> bool access(const char* what, std::chrono::seconds limit, Operation&& operation)
    {
        // Nothing waits for a camera that is known to be gone.
        const CAM_API_STATUS status = m_watched.call(what, m_gone ? kAtOnce : limit, operation);
        m_gone = m_gone || status == CAM_API_STS_CAMERA_NOT_RESPONDING;
        if (m_gone && Sys_WaitForSignal(m_signal, 0) != CAM_API_STS_SUCCESS)
            m_watched.complain("%s tells of a removal before the signal does", what);
        return status == CAM_API_STS_SUCCESS;
    }

    void closeSignal()
    {
        expectClosed("Sys_CloseSignal", [&] { return Sys_CloseSignal(m_signal); });
    }

    template <class Operation> void expectClosed(const char* what, Operation&& operation)
    {
        if (const CAM_API_STATUS status = m_watched.call(what, kClosing, operation); status != CAM_API_STS_SUCCESS)
            m_watched.complain("%s gives %u", what, status);
    }

    void expectNothingMore()
    {
        m_seen.stopped = true;
        if (m_seen.afterStop != 0)
            m_watched.complain("a callback after the end");
        if (m_seen.disorder != 0)
            m_watched.complain("%u frame numbers do not rise", m_seen.disorder.load());
        if (m_seen.unnamed != 0)
            m_watched.complain("%u errors without a status", m_seen.unnamed.load());
    }

    [[nodiscard]] bool late() const { return Clock::now() > m_deadline; }

    void browse(CAM_NODE_HANDLE category, int depth)
    {
        std::uint32_t count = 0;
        access("Nd_GetNumOfFeatures", [&] { return Nd_GetNumOfFeatures(m_camera, category, &count); });
        for (std::uint32_t i = 0; i < count && i < kMostOfEach && !late(); ++i) {
            CAM_NODE_HANDLE node = 0;
            NodeType type = NODE_TYPE_UNKNOWN;
            if (!access("Nd_GetFeatureByIndex", [&] { return Nd_GetFeatureByIndex(m_camera, category, i, &node); }) ||
                !access("Nd_GetType", [&] { return Nd_GetType(m_camera, node, &type); }))
                continue;
            if (type != NODE_TYPE_CATEGORY) {
                look(node, type);
            } else if (depth < kDeepestCategory) {
                browse(node, depth + 1);
            }
        }
    }

    /// What a row of a feature browser shows, and sometimes a change.
    void look(CAM_NODE_HANDLE node, NodeType type)
    {
        NodeAccessMode mode = NODE_ACCESS_MODE_NA;
        access("Nd_GetAccessMode", [&] { return Nd_GetAccessMode(m_camera, node, &mode); });
        text("Nd_GetName", Nd_GetName, node);
        text("Nd_GetToolTip", Nd_GetToolTip, node);
        switch (type) {
        case NODE_TYPE_INTEGER:
            lookAtInteger(node);
            break;
        case NODE_TYPE_FLOAT:
            lookAtFloat(node);
            break;
        case NODE_TYPE_BOOLEAN: {
            bool value = false;
            access("Nd_GetBoolValue", [&] { return Nd_GetBoolValue(m_camera, node, &value); });
            change("Nd_SetBoolValue", [&] { return Nd_SetBoolValue(m_camera, node, !value, true); });
            break;
        }
        case NODE_TYPE_STRING:
            text("Nd_GetStrValue", Nd_GetStrValue, node);
            change("Nd_SetStrValue", [&] { return Nd_SetStrValue(m_camera, node, "changed", true); });
            break;
        case NODE_TYPE_ENUMERATION:
            lookAtEntries(node);
            break;
        case NODE_TYPE_COMMAND:
            change("Nd_CmdExecute", [&] { return Nd_CmdExecute(m_camera, node, true); });
            break;
        default:
            break;
        }
    }

    void lookAtInteger(CAM_NODE_HANDLE node)
    {
        std::int64_t value = 0;
        std::int64_t minimum = 0;
        std::int64_t number = 0;
        access("Nd_GetIntValue", [&] { return Nd_GetIntValue(m_camera, node, &value); });
        access("Nd_GetIntMin", [&] { return Nd_GetIntMin(m_camera, node, &minimum); });
        access("Nd_GetIntMax", [&] { return Nd_GetIntMax(m_camera, node, &number); });
        access("Nd_GetIntInc", [&] { return Nd_GetIntInc(m_camera, node, &number); });
        const std::int64_t other = m_random.pick({value, minimum, std::int64_t{64}});
        change("Nd_SetIntValue", [&] { return Nd_SetIntValue(m_camera, node, other, true); });
    }

    void lookAtFloat(CAM_NODE_HANDLE node)
    {
        double value = 0;
        double number = 0;
        access("Nd_GetFloatValue", [&] { return Nd_GetFloatValue(m_camera, node, &value); });
        access("Nd_GetFloatMin", [&] { return Nd_GetFloatMin(m_camera, node, &number); });
        access("Nd_GetFloatMax", [&] { return Nd_GetFloatMax(m_camera, node, &number); });
        change("Nd_SetFloatValue", [&] { return Nd_SetFloatValue(m_camera, node, 100, true); });
    }

    void lookAtEntries(CAM_NODE_HANDLE node)
    {
        text("Nd_GetEnumStrValue", Nd_GetEnumStrValue, node);
        std::uint32_t count = 0;
        access("Nd_GetNumOfEnumEntries", [&] { return Nd_GetNumOfEnumEntries(m_camera, node, &count); });
        for (std::uint32_t i = 0; i < count && i < kMostOfEach && !late(); ++i) {
            CAM_NODE_HANDLE entry = 0;
            if (access("Nd_GetEnumEntryByIndex", [&] { return Nd_GetEnumEntryByIndex(m_camera, node, i, &entry); }))
                text("Nd_GetEnumEntryStrValue", Nd_GetEnumEntryStrValue, entry);
        }
    }

    template <class Operation> void change(const char* what, Operation&& operation)
    {
        if (m_random.oneIn(3) && !late())
            access(what, operation);
    }

    void text(const char* what, CAM_API_STATUS (*operation)(CAM_HANDLE, CAM_NODE_HANDLE, char*, std::uint32_t*),
              CAM_NODE_HANDLE node)
    {
        std::array<char, 4096> buffer = {};
        std::uint32_t size = buffer.size();
        access(what, [&] { return operation(m_camera, node, buffer.data(), &size); });
    }

    void stream()
    {
        (void)Strm_SetCallbackImageAcquired(m_stream, &m_seen, onImage);
        (void)Strm_SetCallbackImageError(m_stream, &m_seen, onError);
        const bool started = access("Strm_Start", [&] { return Strm_Start(m_stream, kBuffers); });
        // A lie that takes a few images to be told is to be heard, too.
        waitFor(started ? kStreaming : milliseconds(0), [this] { return m_seen.images > 20 || m_seen.errors > 40; });
        std::printf("  start: %s, %u images, %u errors\n", started ? "ok" : "failed", m_seen.images.load(),
                    m_seen.errors.load());
        CAM_NODE_HANDLE width = 0;
        if (access("Nd_GetNode", [&] { return Nd_GetNode(m_camera, "Width", &width); }))
            lookAtInteger(width);
        if (started && m_random.oneIn(2)) {
            access("Strm_Stop", [&] { return Strm_Stop(m_stream); });
            m_seen.stopped = true;
        }
    }

    Watched& m_watched;
    gige::Random& m_random;
    CAM_SIGNAL_HANDLE m_signal = 0;
    CAM_HANDLE m_camera = 0;
    CAM_STRM_HANDLE m_stream = 0;
    Seen m_seen;
    bool m_gone = false;
    Clock::time_point m_deadline;
};

/// The library of this process, with the honest camera beside the liars.
class Sessions {
public:
    Sessions(std::string liar, std::string lie)
        : m_liar(std::move(liar))
        , m_lie(std::move(lie))
    {
        (void)m_honest.readLine();
        initialize();
        useHonestCamera();
        m_atFirst = Resources::now();
    }

    void run(std::uint64_t seed)
    {
        {
            ChildProcess liar({GIGE_CAMERA, "--" + m_liar, std::to_string(seed), "--serial", "LIAR", "--lie", m_lie});
            const std::string lies = liar.readLine();
            std::printf("%s %llu: %s\n", m_liar.c_str(), static_cast<unsigned long long>(seed), lies.c_str());
            std::fflush(stdout);
            if (lies.empty())
                m_watched.complain("the liar does not start");
            gige::Random random(~seed);
            const auto begin = Clock::now();
            list();
            if (m_count > 1) // one of the others
                runOne(static_cast<std::uint32_t>(m_honestIndex + 1 + random.below(m_count - 1)) % m_count, random);
            useHonestCamera();
            std::printf("  %.1f s", std::chrono::duration<double>(Clock::now() - begin).count());
        }
        // The library keeps a list of many cameras until the next search.
        if (m_count > 2)
            list();
        Resources now;
        (void)waitFor(kPatience / 2, [&] {
            now = Resources::now();
            return now.within(m_atFirst) && hasNotGrown(now);
        });
        std::printf(", %zu KB\n", now.memory);
        if (!now.within(m_atFirst)) {
            m_watched.complain("%zu descriptors, %zu threads, %zu children; at first %zu, %zu, %zu", now.descriptors,
                               now.threads, now.children, m_atFirst.descriptors, m_atFirst.threads, m_atFirst.children);
        }
        if (!hasNotGrown(now))
            m_watched.complain("%zu KB; at first %zu", now.memory, m_atFirst.memory);
        std::fflush(stdout);
    }

    /// Whether everything went well.
    [[nodiscard]] bool end()
    {
        const CAM_API_STATUS status = m_watched.call("Sys_Terminate", kClosing, [] { return Sys_Terminate(); });
        return status == CAM_API_STS_SUCCESS && m_watched.complaints() == 0;
    }

private:
    void initialize()
    {
        if (const CAM_API_STATUS status = Sys_Initialize(CAM_LAYER_GIGE_VISION); status != CAM_API_STS_SUCCESS)
            m_watched.complain("Sys_Initialize gives %u", status);
    }

    /// Finds the honest camera's place, at a busy machine not at once.
    void list()
    {
        const bool found = waitFor(kPatience, [this] {
            (void)m_watched.call("Sys_GetNumOfCameras", kListing, [this] { return Sys_GetNumOfCameras(&m_count); });
            for (m_honestIndex = 0; m_honestIndex < m_count; ++m_honestIndex) {
                CAM_INFO info = {};
                (void)m_watched.call("Cam_GetInformation", kAtOnce,
                                     [&] { return Cam_GetInformation(0, m_honestIndex, &info); });
                if (std::strcmp(info.serialNumber, kHonestSerial) == 0)
                    return true;
            }
            return false;
        });
        if (!found)
            m_watched.complain("the honest camera is not among %u", m_count);
    }

    void runOne(std::uint32_t index, gige::Random& random)
    {
        Session session(m_watched, random);
        if (!session.open(index))
            return;
        session.use();
        if (random.oneIn(3))
            useHonestCamera(Beside::liar);
        if (!random.oneIn(4)) {
            session.close();
        } else {
            session.terminate();
            initialize();
            m_count = 0;
        }
    }

    [[nodiscard]] bool hasNotGrown(const Resources& now) const
    {
        return !kMemoryTells || now.memory <= m_atFirst.memory + kGrowth;
    }

    enum class Beside { nothing, liar };

    /// A liar that is open may be the honest camera itself, under whose address it is listed.
    void useHonestCamera(Beside beside = Beside::nothing)
    {
        if (m_count == 0)
            list();
        CAM_HANDLE camera = 0;
        CAM_STRM_HANDLE stream = 0;
        CAM_NODE_HANDLE height = 0;
        Seen seen;
        const auto expect = [this](const char* what, std::chrono::seconds limit,
                                   const std::function<CAM_API_STATUS()>& operation) {
            if (const CAM_API_STATUS status = m_watched.call(what, limit, operation); status != CAM_API_STS_SUCCESS)
                m_watched.complain("honest camera: %s gives %u", what, status);
        };
        expect("Cam_Open", kOpening, [&] {
            const CAM_API_STATUS status = Cam_Open(m_honestIndex, &camera, 0, 1, nullptr, 1);
            return status == CAM_API_STS_ACCESS_DENIED && beside == Beside::liar ? CAM_API_STS_SUCCESS : status;
        });
        if (camera == 0)
            return;
        expect("Nd_GetNode", kAccess, [&] { return Nd_GetNode(camera, "Height", &height); });
        expect("Nd_SetIntValue", kAccess, [&] { return Nd_SetIntValue(camera, height, 64, true); });
        expect("Strm_OpenSimple", kAccess,
               [&] { return Strm_OpenSimple(camera, &stream, nullptr, nullptr, kBuffers, nullptr); });
        (void)Strm_SetCallbackImageAcquired(stream, &seen, onImage);
        (void)Strm_SetCallbackImageError(stream, &seen, onError);
        expect("Strm_Start", kAccess, [&] { return Strm_Start(stream, kBuffers); });
        if (!waitFor(kPatience, [&] { return seen.images > 0; }))
            m_watched.complain("honest camera: no image");
        expect("Strm_Stop", kAccess, [&] { return Strm_Stop(stream); });
        expect("Strm_Close", kClosing, [&] { return Strm_Close(stream); });
        expect("Cam_Close", kClosing, [&] { return Cam_Close(camera); });
    }

    const std::string m_liar;
    const std::string m_lie;
    Watched m_watched;
    ChildProcess m_honest{
        {GIGE_CAMERA, "--address", "127.0.0.2", "--foreign-address", "127.0.0.4", "--serial", kHonestSerial}};
    std::uint32_t m_count = 0;
    std::uint32_t m_honestIndex = 0;
    Resources m_atFirst;
};

/// A library that lets a camera fill the memory fails here, not the machine.
void limitMemory()
{
    const rlimit limit{kMostMemory, kMostMemory};
    if (kMemoryTells)
        (void)::setrlimit(RLIMIT_AS, &limit);
}

} // namespace

int main(int count, char** arguments)
{
    if (count < 4) {
        std::fprintf(stderr, "usage: %s liar|stranger FIRST LAST [STEP [LIE]]\n", arguments[0]);
        return 2;
    }
    const std::uint64_t last = std::stoull(arguments[3]);
    const std::uint64_t step = count > 4 ? std::stoull(arguments[4]) : 1;
    limitMemory();
    Sessions sessions(arguments[1], count > 5 ? arguments[5] : "");
    for (std::uint64_t seed = std::stoull(arguments[2]); seed <= last; seed += step)
        sessions.run(seed);
    return sessions.end() ? 0 : 1;
}

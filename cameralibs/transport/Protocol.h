#pragma once

/// What the camera library and orvocam-transport say to each other, over three kinds of socket pairs (SOCK_SEQPACKET):
///
/// - control: the library requests, the transport replies; one request at a time.
/// - events: what the transport tells unasked.
/// - images: one pair for each start. Filled buffers go to the library, free ones to the transport.
///
/// Lines of the log go through the transport's standard error, "<n>" before each: the priority as the system log has
/// it.
///
/// A packet is a header, the body that belongs to its kind, and data of any size up to kMaxData. docs/transport.md
/// tells who sends what when, and what each side checks.

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace cameralibs::transport {

// Where a transport finds its ends of the first two.
constexpr int kControlDescriptor = 3;
constexpr int kEventDescriptor = 4;

constexpr std::size_t kMaxData = 65536;

/// How often a transport says that it is alive.
constexpr std::chrono::milliseconds kAlivePeriod{500};

/// A larger description is refused.
constexpr std::uint64_t kMaxDescription = 16U << 20;

/// Of all texts that are told, such as reasons.
constexpr std::size_t kMaxText = 1000;

enum class Kind : std::uint32_t {
    // Requests.
    hello = 1,  ///< Hello; answered by a Hello
    enumerate,  ///< Enumerate; answered by a listed for each camera, then done
    open,       ///< Open; answered by done
    describe,   ///< Describe; answered by described
    read,       ///< Read; answered by done with the bytes
    write,      ///< Write, with the bytes; answered by done
    openSource, ///< OpenSource, with the memory's descriptor; answered by done
    start,      ///< Nothing, with the descriptor of the image channel; answered by done
    stop,       ///< Nothing; answered by done once no buffer is written any more
    close,      ///< Nothing; answered by done once the camera was given back

    // Replies.
    progress = 100, ///< Progress: the answer takes longer
    listed,         ///< Listed
    described,      ///< Described, with the bytes
    done,           ///< Done; where something failed, with the reason as text

    // Events.
    alive = 200, ///< Nothing: sent every kAlivePeriod
    lost,        ///< Nothing, with the reason as text: the camera is gone, and so is the transport

    // Images.
    image = 300, ///< Image: a buffer was filled
    failed,      ///< Failed: an image did not arrive whole
    free         ///< Free: a buffer may be filled
};

struct Header {
    Kind kind;
    std::uint32_t dataSize;
};

struct Nothing {
    std::uint64_t reserved;
};

/// Both ends belong to the same build.
struct Hello {
    char build[80];
    std::uint32_t log; ///< 0: nobody reads a log; else 1 + the Severity up to which lines are wanted
    std::uint32_t reserved;
};

struct Enumerate {
    std::uint32_t usb; ///< whether to look for them
    std::uint32_t gige;
};

struct Listed {
    std::uint32_t link; ///< CAM_LINK
    char id[260];
    char vendor[128];
    char model[128];
    char serial[128];
    char address[64]; ///< of a GigE Vision camera
};

struct Open {
    std::uint32_t link;
    char name[260]; ///< the id of a USB3 Vision camera, the address of a GigE Vision one
};

struct Describe {
    std::uint64_t offset;
};

struct Described {
    std::uint64_t total;
};

struct Read {
    std::uint64_t address;
    std::uint64_t size;
};

struct Write {
    std::uint64_t address;
};

struct OpenSource {
    std::uint64_t memorySize;
};

enum class Answer : std::uint32_t { useful, pending };

struct Progress {
    Answer answer; ///< what the camera sent last
    std::uint32_t reserved;
};

/// A CAM_API_STATUS, but for accesses to registers: those have 0 or 1 + the number of an ArvDeviceError.
struct Done {
    std::uint32_t status;
    std::uint32_t reserved;
};

struct Image {
    std::uint64_t offset; ///< of the buffer, in the memory
    std::uint64_t size;
    std::uint64_t blockId;
    std::uint64_t timestampNs;
};

struct Failed {
    std::uint32_t status; ///< CAM_API_STATUS
    std::uint32_t reserved;
};

struct Free {
    std::uint64_t offset;
    std::uint64_t capacity;
};

} // namespace cameralibs::transport

#pragma once

/// The protocol between the camera library and orvocam-transport. It uses three kinds of socket pairs (SOCK_SEQPACKET):
///
/// - control: the library sends requests, one at a time, and the transport replies.
/// - events: what the transport reports on its own.
/// - images: one pair per start. Filled buffers go to the library, free ones to the transport.
///
/// The transport writes log lines to its standard error, each with "<n>" in front: its syslog priority.
///
/// A packet consists of a header, a body of fixed size for its kind, and up to kMaxData bytes of data.
/// docs/transport.md describes the sequence of packets and the checks on both sides.

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace cameralibs::transport {

// The transport's ends of the control and event channels.
constexpr int kControlDescriptor = 3;
constexpr int kEventDescriptor = 4;

constexpr std::size_t kMaxData = 65536;

/// How often a transport sends an alive event.
constexpr std::chrono::milliseconds kAlivePeriod{500};

/// Larger descriptions are refused.
constexpr std::uint64_t kMaxDescription = 16U << 20;

/// The length limit of texts, such as reasons.
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
    stop,       ///< Nothing; answered by done when no buffer is written any more
    close,      ///< Nothing; answered by done when the camera has been released

    // Replies.
    progress = 100, ///< Progress: the camera has answered, but the request is not complete
    listed,         ///< Listed
    described,      ///< Described, with the bytes
    done,           ///< Done; after a failure, with the reason as text

    // Events.
    alive = 200, ///< Nothing: sent every kAlivePeriod
    lost,        ///< Nothing, with the reason as text: the camera is gone, and the transport exits

    // Images.
    image = 300, ///< Image: a buffer was filled
    failed,      ///< Failed: an image is incomplete
    free         ///< Free: a buffer may be filled
};

struct Header {
    Kind kind;
    std::uint32_t dataSize;
};

struct Nothing {
    std::uint64_t reserved;
};

/// Both ends must have the same build.
struct Hello {
    char build[80];
    std::uint32_t log; ///< 0: no log; else 1 + the least important Severity that is logged
    std::uint32_t reserved;
};

struct Enumerate {
    std::uint32_t usb; ///< whether to search for these cameras
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
    Answer answer; ///< the last answer of the camera; pending: a pending acknowledgement
};

/// The status is a CAM_API_STATUS. For register accesses it is 0 or 1 + an ArvDeviceError.
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

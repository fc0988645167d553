#include "cameralibs/transport/Reporting.h"

#include "cameralibs/transport/Channel.h"

#include <algorithm>

#include <sys/socket.h>
#include <unistd.h>

namespace cameralibs::transport {

namespace {

/// The priorities of syslog.
char priorityOf(Severity severity)
{
    switch (severity) {
    case Severity::warning:
        return '4';
    case Severity::info:
        return '6';
    default:
        return '7';
    }
}

} // namespace

void note(Severity severity, const std::string& text)
{
    std::string line = std::string("<") + priorityOf(severity) + ">" + text.substr(0, kMaxText);
    std::replace(line.begin(), line.end(), '\n', ' ');
    line += '\n';
    // A line that cannot be written is dropped: logging must not block.
    (void)!::write(STDERR_FILENO, line.data(), line.size());
}

void leaveAsLost(const std::string& reason)
{
    // Several threads may get here. The descriptor stays open until the process exits.
    const Header header{Kind::lost, static_cast<std::uint32_t>(std::min(reason.size(), kMaxText))};
    const Nothing body{};
    std::string packet(reinterpret_cast<const char*>(&header), sizeof header);
    packet.append(reinterpret_cast<const char*>(&body), sizeof body);
    packet.append(reason, 0, header.dataSize);
    (void)::send(kEventDescriptor, packet.data(), packet.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    ::_exit(0);
}

} // namespace cameralibs::transport

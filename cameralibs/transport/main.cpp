#include "cameralibs/transport/Restrictions.h"
#include "cameralibs/transport/connection/Session.h"

#include <csignal>
#include <cstdio>

#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace cameralibs::transport;

namespace {

bool isChannel(int descriptor)
{
    int type = 0;
    socklen_t size = sizeof type;
    return ::getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &type, &size) == 0 && type == SOCK_SEQPACKET;
}

/// The process that created the channel.
pid_t libraryOf(int channel)
{
    ucred peer{};
    socklen_t size = sizeof peer;
    return ::getsockopt(channel, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 ? peer.pid : -1;
}

/// Makes the kernel kill this process when the library's process ends. Closed channels are not enough: a compromised
/// transport may ignore them, and a forked process may keep the library's ends open. False if the library's process has
/// ended already.
bool endWithLibrary()
{
    return ::prctl(PR_SET_PDEATHSIG, SIGKILL, 0, 0, 0) == 0 && ::getppid() == libraryOf(kControlDescriptor);
}

} // namespace

int main()
{
    if (!isChannel(kControlDescriptor) || !isChannel(kEventDescriptor)) {
        std::fputs("orvocam-transport is started by the camera library, one for each camera.\n", stderr);
        return 2;
    }
    if (!endWithLibrary())
        return 1;
    restrictProcess();
    Session session{Descriptor(kControlDescriptor), Descriptor(kEventDescriptor)};
    session.run();
}

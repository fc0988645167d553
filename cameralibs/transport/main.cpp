#include "cameralibs/transport/Restrictions.h"
#include "cameralibs/transport/connection/Session.h"

#include <cstdio>

#include <sys/socket.h>

using namespace cameralibs::transport;

namespace {

bool isChannel(int descriptor)
{
    int type = 0;
    socklen_t size = sizeof type;
    return ::getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &type, &size) == 0 && type == SOCK_SEQPACKET;
}

} // namespace

int main()
{
    if (!isChannel(kControlDescriptor) || !isChannel(kEventDescriptor)) {
        std::fputs("orvocam-transport is started by the camera library, one for each camera.\n", stderr);
        return 2;
    }
    restrictProcess();
    Session session{Descriptor(kControlDescriptor), Descriptor(kEventDescriptor)};
    session.run();
}

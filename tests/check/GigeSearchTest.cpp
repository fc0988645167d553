#include "check/cameras/GigeSearch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/socket.h>

using namespace check;

namespace {

constexpr std::uint16_t kId = 0x1234;

/// Of a camera at 192.168.5.20.
std::vector<std::uint8_t> goodAnswer()
{
    std::vector<std::uint8_t> bytes(256);
    const std::vector<std::uint8_t> header = {0, 0, 0, 3, 0, 0xf8, 0x12, 0x34};
    std::copy(header.begin(), header.end(), bytes.begin());
    const auto put = [&](std::size_t offset, const std::string& text) {
        std::copy(text.begin(), text.end(), bytes.begin() + 8 + static_cast<std::ptrdiff_t>(offset));
    };
    put(0x0a, "\x01\x02\x03\x04\x05\x06");
    put(0x24, "\xc0\xa8\x05\x14");
    put(0x34, "\xff\xff\xff");
    put(0x48, "Maker");
    put(0x68, "Model");
    put(0xd8, "0123456789abcdef"); // without a NUL
    put(0xe8, "left");
    return bytes;
}

std::optional<GigeAnswer> parsed(const std::vector<std::uint8_t>& bytes)
{
    return answerIn(bytes.data(), bytes.size(), kId);
}

/// The UDP sockets of this process.
std::vector<int> udpSockets()
{
    std::vector<int> sockets;
    for (int descriptor = 0; descriptor < 256; ++descriptor) {
        int domain = 0;
        int type = 0;
        socklen_t size = sizeof domain;
        if (::getsockopt(descriptor, SOL_SOCKET, SO_DOMAIN, &domain, &size) == 0 && domain == AF_INET &&
            ::getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &type, &size) == 0 && type == SOCK_DGRAM)
            sockets.push_back(descriptor);
    }
    return sockets;
}

/// Nothing can be sent on it.
Interface missingInterface()
{
    Interface missing;
    missing.name = "missing0";
    missing.up = true;
    return missing;
}

} // namespace

TEST(GigeSearchTest, TellsTheCamera)
{
    const auto answer = parsed(goodAnswer());
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->mac, 0x010203040506U);
    EXPECT_EQ(answer->address, 0xc0a80514U);
    EXPECT_EQ(answer->mask, 0xffffff00U);
    EXPECT_EQ(answer->vendor, "Maker");
    EXPECT_EQ(answer->model, "Model");
    EXPECT_EQ(answer->serial, "0123456789abcdef");
    EXPECT_EQ(answer->userName, "left");
}

TEST(GigeSearchTest, EverythingElseIsNoAnswer)
{
    for (std::size_t size = 0; size < 256; ++size) {
        auto shorter = goodAnswer();
        shorter.resize(size);
        shorter.shrink_to_fit();
        EXPECT_FALSE(parsed(shorter)) << size << " bytes";
    }
    for (std::size_t i = 0; i < 8; ++i) {
        auto changed = goodAnswer();
        changed[i] ^= 1;
        EXPECT_FALSE(parsed(changed)) << "byte " << i << " of the header";
    }
}

TEST(GigeSearchTest, InterfaceOnWhichNothingCanBeSentIsTold)
{
    Interface off;
    off.name = "off0";
    const GigeSearch search = searchGige({missingInterface(), off});
    ASSERT_EQ(search.silent.size(), 1U) << "nobody expects a search on an interface that is switched off";
    EXPECT_EQ(search.silent[0].name, "missing0");
    EXPECT_EQ(search.silent[0].reason, "No such device");
}

// A packet with a wrong checksum wakes the search, but there is nothing to receive.
TEST(GigeSearchTest, SocketsNeitherBlockNorReachOtherPrograms)
{
    const std::vector<Interface> interfaces = {missingInterface()};
    ASSERT_TRUE(udpSockets().empty());
    const auto search = std::async(std::launch::async, [&] { return searchGige(interfaces); });
    std::vector<int> sockets;
    while (sockets.empty() && search.wait_for(std::chrono::milliseconds(1)) == std::future_status::timeout)
        sockets = udpSockets();
    ASSERT_EQ(sockets.size(), 1U);
    EXPECT_NE(::fcntl(sockets[0], F_GETFL) & O_NONBLOCK, 0);
    EXPECT_NE(::fcntl(sockets[0], F_GETFD) & FD_CLOEXEC, 0);
    search.wait();
    EXPECT_TRUE(udpSockets().empty());
}

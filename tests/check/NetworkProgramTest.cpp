// orvocam-check itself, on an interface whose other end lies in another network namespace, with a camera.

#include "tests/check/ProgramRun.h"

#include "tests/cameralibs/transport/ChildProcess.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <functional>
#include <memory>

#include <sys/socket.h>
#include <unistd.h>

using nlohmann::json;
using ::testing::AnyOf;
using ::testing::Contains;
using ::testing::ElementsAre;

namespace {

MATCHER_P3(Says, severity, subject, text, "")
{
    return arg["severity"] == severity &&
           arg["subject"].template get<std::string>().find(subject) != std::string::npos &&
           arg["text"].template get<std::string>().find(text) != std::string::npos;
}

void shell(const std::string& command)
{
    ASSERT_EQ(std::system(command.c_str()), 0) << command; // NOLINT(concurrency-mt-unsafe): there is one thread
}

/// 192.168.5.1/24 on cam0, and a camera at 192.168.5.20 behind it.
class NetworkProgramTest : public ::testing::Test {
public:
    NetworkProgramTest(const NetworkProgramTest&) = delete;
    NetworkProgramTest& operator=(const NetworkProgramTest&) = delete;

protected:
    NetworkProgramTest() = default;
    ~NetworkProgramTest() override
    {
        m_camera.reset();
        // The pair goes with the camera's network, which the kernel takes down when it likes.
        shell("ip link del cam0 2>/dev/null || true");
    }

    void SetUp() override
    {
        ASSERT_NO_FATAL_FAILURE(shell("ip link add cam0 type veth peer name cam1"));
        // Tells the number that its process has in /proc, which may belong to another namespace of processes.
        m_camera = std::make_unique<ChildProcess>(
            std::vector<std::string>{"unshare", "--net", "sh", "-c",
                                     "read -r number rest </proc/self/stat; echo $number;"
                                     "until ip link set cam1 up 2>/dev/null; do sleep 0.05; done;"
                                     "ip address add 192.168.5.20/24 dev cam1; ip address add 192.168.5.21/24 dev cam1;"
                                     "ip route add default dev cam1;"
                                     "exec " GIGE_CAMERA " --address 192.168.5.20 --foreign-address 192.168.5.21"});
        // Its process is in a network of its own from then on.
        ASSERT_NO_FATAL_FAILURE(shell("ip link set cam1 netns /proc/" + m_camera->readLine() + "/ns/net"));
        ASSERT_NO_FATAL_FAILURE(shell("ip link set cam0 up && ip address add 192.168.5.1/24 dev cam0"));
        ASSERT_EQ(m_camera->readLine(), "honest");
    }

    /// A busy machine may miss an answer.
    [[nodiscard]] static ProgramRun runUntilListed(const std::string& options = {})
    {
        ProgramRun run = runCheck("--json " + options);
        for (int i = 0; i < 10 && run.report().value("cameras", json::array()).empty(); ++i)
            run = runCheck("--json " + options);
        return run;
    }

    std::unique_ptr<ChildProcess> m_camera;
};

} // namespace

TEST_F(NetworkProgramTest, InterfaceOfTheCameraIsTold)
{
    const ProgramRun found = runUntilListed("--stream");
    EXPECT_THAT(found.linesOf("interface"), ElementsAre(Says("ok", "cam0", "192.168.5.1/24, MTU 1500")));
    EXPECT_THAT(found.linesOf("camera"), ElementsAre(Says("ok", "GV-Test", "is listed at 192.168.5.20 on cam0")));
    EXPECT_THAT(found.linesOf("firewall"), ElementsAre(Says("ok", "cam0", "no nftables rule drops UDP")));
    // Its packets come in pieces, so that a busy machine may lose some.
    EXPECT_THAT(found.linesOf("mtu"),
                ElementsAre(AnyOf(Says("note", "GV-Test", "8000 bytes exceed the MTU of cam0, 1500"),
                                  Says("wrong", "GV-Test", "8000 bytes exceed the MTU of cam0"))));
}

TEST_F(NetworkProgramTest, CameraInAnotherNetworkIsFound)
{
    shell("ip address add 10.0.0.1/24 dev cam0 && ip address del 192.168.5.1/24 dev cam0");
    const ProgramRun found = runUntilListed();
    EXPECT_THAT(found.linesOf("address"),
                ElementsAre(Says("wrong", "GV-Test", "192.168.5.20 is outside the network of cam0")));
    EXPECT_NE(found.status, 0); // 2 on a machine without USB

    shell("sysctl --quiet --write net.ipv4.conf.cam0.rp_filter=1");
    const ProgramRun strict = runCheck("--json");
    EXPECT_THAT(strict.linesOf("reverse-path-filter"), ElementsAre(Says("wrong", "cam0", "is strict")));
    EXPECT_THAT(strict.linesOf("camera"), ElementsAre(Says("wrong", "cameras", "none")));
}

TEST_F(NetworkProgramTest, FirewallThatDropsIsFound)
{
    shell("nft add table inet filter");
    shell("nft 'add chain inet filter input { type filter hook input priority 0; policy drop; }'");
    shell("nft add rule inet filter input ct state established,related accept");
    const ProgramRun found = runCheck("--json");
    ASSERT_THAT(found.linesOf("firewall"), ElementsAre(Says("wrong", "cam0", "drops UDP")));
    EXPECT_THAT(found.linesOf("camera"), ElementsAre(Says("wrong", "cameras", "none")));
    // The cure cures.
    std::string cure = found.linesOf("firewall")[0]["cure"];
    ASSERT_EQ(cure.rfind("sudo nft insert rule ", 0), 0U) << cure;
    shell(cure.substr(5));
    const ProgramRun cured = runUntilListed();
    EXPECT_THAT(cured.linesOf("firewall"), ElementsAre(Says("ok", "cam0", "no nftables rule drops UDP")));
    EXPECT_THAT(cured.linesOf("camera"), ElementsAre(Says("ok", "GV-Test", "is listed")));
    shell("nft delete table inet filter");
}

TEST_F(NetworkProgramTest, FirewallThatForbidsTheSearchIsTold)
{
    shell("nft add table inet filter");
    shell("nft 'add chain inet filter output { type filter hook output priority 0; policy drop; }'");
    const ProgramRun found = runCheck("--json");
    EXPECT_THAT(found.linesOf("interface"), Contains(Says("failed", "cam0", "Operation not permitted")));
    EXPECT_EQ(found.status, 2);
    shell("nft delete table inet filter");
}

// The kernel names an address with a label after the label, which is no interface.
TEST_F(NetworkProgramTest, LabelledAddressBelongsToItsInterface)
{
    shell("ip address add 10.0.0.1/24 dev cam0 label cam0:1");
    const ProgramRun found = runCheck("--json");
    EXPECT_THAT(found.linesOf("interface"), ElementsAre(Says("ok", "cam0", "10.0.0.1/24")));
    EXPECT_THAT(found.linesOf("interface"), ElementsAre(Says("ok", "cam0", "192.168.5.1/24")));
}

// The kernel hides the limit in this network namespace, or it can be read here as well.
TEST_F(NetworkProgramTest, LimitOfTheReceiveBufferIsTold)
{
    const int descriptor = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    int size = 1 << 30;
    socklen_t length = sizeof size;
    ASSERT_EQ(::setsockopt(descriptor, SOL_SOCKET, SO_RCVBUF, &size, sizeof size), 0);
    ASSERT_EQ(::getsockopt(descriptor, SOL_SOCKET, SO_RCVBUF, &size, &length), 0);
    ::close(descriptor);
    const auto lines = runCheck("--json").linesOf("receive-buffer");
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_NE(lines[0]["severity"], "failed");
    EXPECT_EQ(lines[0]["text"].get<std::string>().rfind("at most " + std::to_string(size / 2) + " bytes", 0), 0U)
        << lines[0];
}

TEST_F(NetworkProgramTest, InterfaceWithoutAddressIsFound)
{
    shell("ip address del 192.168.5.1/24 dev cam0");
    const ProgramRun found = runCheck("--json");
    EXPECT_THAT(found.linesOf("interface"), Contains(Says("note", "cam0", "no IPv4 address")));
}

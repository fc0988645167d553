#pragma once

#include "tests/cameralibs/transport/gige/Behaviour.h"
#include "tests/cameralibs/transport/gige/UdpSocket.h"

#include <chrono>
#include <deque>
#include <limits>
#include <map>
#include <optional>
#include <string>

namespace gige {

struct CameraSettings {
    std::string address = "127.0.0.1";
    std::string foreignAddress = "127.0.0.3"; ///< the source of packets from another address
    std::string serialNumber = "T1";
    std::uint32_t largestPacket = 8000;                 ///< the largest one that its network passes
    bool resends = true;                                ///< packets on request
    std::uint32_t loseEvery = 0;                        ///< every n-th data packet is only sent on a resend request
    bool zipped = false;                                ///< its description
    std::string url;                                    ///< of its description; empty for the correct one
    std::size_t discoveryAnswer = kDiscoveryAnswerSize; ///< its size

    /// How many commands of other clients it answers while it has a controller, apart from searches.
    std::uint32_t answersToOthers = std::numeric_limits<std::uint32_t>::max();
};

/// A GigE Vision camera with one stream channel. Byte i of image n, which has the block id n mod 65535, is the low byte
/// of n + i. Lives on one thread.
class GigeCamera {
public:
    GigeCamera(const CameraSettings& settings, Behaviour& behaviour);

    /// Serves until the descriptor ends or has something to read.
    void run(int until);

private:
    using Clock = std::chrono::steady_clock;

    struct Delayed {
        Packet packet;
        Peer to;
        bool control; ///< from the control port
    };

    [[nodiscard]] Clock::time_point nextEvent() const;
    void receive(UdpSocket& socket);
    [[nodiscard]] Bytes answerTo(const Bytes& command, const Peer& client);
    [[nodiscard]] Bytes readRegisters(const Bytes& command, std::uint16_t& status) const;
    [[nodiscard]] Bytes readMemory(const Bytes& command, std::uint16_t& status) const;
    [[nodiscard]] Bytes writeRegisters(const Bytes& command, const Peer& client, std::uint16_t& status);
    [[nodiscard]] std::uint16_t write(std::uint32_t address, const Bytes& data, const Peer& client);
    [[nodiscard]] bool ignores(const Bytes& command, const Peer& client);
    [[nodiscard]] bool owesControllerAnAnswer() const;
    void giveControlBack();
    void resend(const Bytes& command);

    void beginAcquisition();
    void sendImage();
    void sendTestPacket(std::size_t size);
    [[nodiscard]] std::vector<Packet> imagePackets() const;
    [[nodiscard]] Bytes packet(Part part, std::uint32_t id, std::size_t size) const;
    void sendStream(const Packet& packet);

    void sendNow(const Packet& packet, const Peer& to, bool control);
    void send(Packet packet, const Peer& to, bool control);

    const CameraSettings m_settings;
    Behaviour& m_behaviour;
    CameraMemory m_memory;
    UdpSocket m_control;
    UdpSocket m_broadcast;
    UdpSocket m_stream;
    UdpSocket m_foreignControl;
    UdpSocket m_foreignStream;

    std::optional<Peer> m_controller;
    std::uint32_t m_answeredOthers = 0;
    Clock::time_point m_heardOfController;
    Clock::time_point m_awake;
    std::multimap<Clock::time_point, Delayed> m_delayed;

    bool m_acquiring = false;
    Clock::time_point m_nextImage;
    std::uint64_t m_image = 0;
    std::uint32_t m_dataPackets = 0;
    std::deque<std::vector<Packet>> m_kept; ///< the last images, for resend requests
};

} // namespace gige

#pragma once

#include "tests/cameralibs/transport/gige/Lies.h"

#include <cstdint>
#include <string>
#include <vector>

namespace gige {

enum class Liars { camera, stranger };

/// Tells one lie of the tables, sometimes two, chosen by a seed: as many seeds in a row as there are lies tell them
/// all. A stranger leaves the camera's own packets as they are and sends its own from another address.
class Liar : public Behaviour {
public:
    Liar(Liars who, std::uint64_t seed);

    /// Throws std::runtime_error for a lie that is in no table.
    Liar(Liars who, std::uint64_t seed, const std::string& lie);

    [[nodiscard]] std::string description() const;

    void prepare(CameraMemory& memory) override;
    void answer(Exchange& exchange) override;
    void send(std::vector<Packet>& packets) override;

private:
    struct Told {
        Lie lie;
        std::uint64_t from = 0;  ///< so many commands or images are answered honestly
        std::uint64_t oneIn = 1; ///< of the others
    };

    void add(const Lie& lie);
    [[nodiscard]] bool isTime(const Told& told, std::uint64_t count);
    template <typename Tell> void tellPackets(std::vector<Packet>& packets, Tell&& tell);

    const Liars m_who;
    Random m_random;
    std::vector<Told> m_told;
    std::uint64_t m_commands = 0;
    std::uint64_t m_images = 0;
};

} // namespace gige

#pragma once

#include <cstdint>
#include <vector>

namespace cameralibs::simulated {

class Attachment;
class RegisterMemory;

/// The user sets of a built-in camera, and what else it remembers without power.
class UserSets {
public:
    UserSets(RegisterMemory& memory, Attachment& attachment);

    /// At power-up, with the registers as they leave the factory: loads what was remembered.
    void powerUp();

    /// Loads or saves the set that is selected.
    void load();
    void save();

    /// Remembers those registers that are kept as soon as they are written.
    void keep();

private:
    [[nodiscard]] std::uint32_t selected() const;
    void loadSet(std::uint32_t number);

    RegisterMemory& m_memory;
    Attachment& m_attachment;
    std::vector<std::uint8_t> m_factory;
};

} // namespace cameralibs::simulated

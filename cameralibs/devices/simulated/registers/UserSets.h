#pragma once

#include <cstdint>
#include <vector>

namespace cameralibs::simulated {

class Attachment;
class RegisterMemory;

/// The user sets and other non-volatile settings of a built-in camera.
class UserSets {
public:
    UserSets(RegisterMemory& memory, Attachment& attachment);

    /// Loads the non-volatile settings. To be called at power-up, when the registers have their factory defaults.
    void powerUp();

    /// Loads or saves the selected set.
    void load();
    void save();

    /// Saves the registers that are non-volatile without a user set.
    void keep();

private:
    [[nodiscard]] std::uint32_t selected() const;
    void loadSet(std::uint32_t number);

    RegisterMemory& m_memory;
    Attachment& m_attachment;
    std::vector<std::uint8_t> m_factory;
};

} // namespace cameralibs::simulated

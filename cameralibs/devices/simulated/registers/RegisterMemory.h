#pragma once

/// The register contents of one built-in camera. Not thread-safe: the camera's mutex guards register accesses.

#include "cameralibs/devices/simulated/registers/RegisterEntry.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace cameralibs::simulated {

/// Decodes the bytes of one element.
[[nodiscard]] std::int64_t decodeInteger(const RegisterEntry& entry, const void* element);
[[nodiscard]] double decodeReal(const RegisterEntry& entry, const void* element);

class RegisterMemory {
public:
    RegisterMemory();

    /// Sets the initial values of the table.
    void reset();

    /// The register that contains `size` bytes at `address`, or null. The range may be a part of the register.
    [[nodiscard]] static const RegisterEntry* find(std::uint64_t address, std::uint32_t size);

    void read(std::uint64_t address, void* buffer, std::uint32_t size) const;
    void write(std::uint64_t address, const void* buffer, std::uint32_t size);

    [[nodiscard]] std::int64_t integer(const RegisterEntry& entry, std::uint32_t index = 0) const;
    [[nodiscard]] double real(const RegisterEntry& entry, std::uint32_t index = 0) const;
    [[nodiscard]] std::string text(const RegisterEntry& entry, std::uint32_t index = 0) const;
    [[nodiscard]] bool flag(const RegisterEntry& entry) const { return integer(entry) != 0; }

    void set(const RegisterEntry& entry, std::int64_t value, std::uint32_t index = 0);
    void setReal(const RegisterEntry& entry, double value, std::uint32_t index = 0);
    void setText(const RegisterEntry& entry, std::string_view value, std::uint32_t index = 0);

    /// The contents of a user set: all registers that are writable and stored.
    [[nodiscard]] std::vector<std::uint8_t> save() const;
    void load(const std::vector<std::uint8_t>& saved);

private:
    [[nodiscard]] const std::uint8_t* at(const RegisterEntry& entry, std::uint32_t index) const;
    [[nodiscard]] std::uint8_t* at(const RegisterEntry& entry, std::uint32_t index);

    std::vector<std::uint8_t> m_bytes;
};

} // namespace cameralibs::simulated

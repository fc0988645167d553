#pragma once

#include <cstdint>

/// A flag that a camera library writes: one byte, true if it is not 0. A library may write any value, and a value other
/// than 0 and 1 must not be read as a C++ bool.
class Flag {
public:
    explicit Flag(bool set = false)
        : m_byte(set ? 1 : 0)
    {
    }

    /// For the library, whose functions declare the byte as a bool.
    [[nodiscard]] bool* out() { return reinterpret_cast<bool*>(&m_byte); }
    [[nodiscard]] bool isSet() const { return m_byte != 0; }

private:
    std::uint8_t m_byte;
};

#pragma once

#include <cstdint>
#include <string_view>

namespace cameralibs::simulated {

enum class RegisterKind { Unsigned, Signed, Real, Text, Bytes };
enum class RegisterAccess { ReadOnly, ReadWrite, WriteOnly };

/// One register of the built-in cameras, or an array of registers indexed by a selector. The memory, the register nodes
/// and the limits in the description are all made from these rows, so they cannot disagree.
struct RegisterEntry {
    std::string_view name;
    RegisterKind kind = RegisterKind::Unsigned;
    RegisterAccess access = RegisterAccess::ReadWrite;
    std::uint32_t length = 4; ///< bytes of one element
    std::uint32_t count = 1;
    std::string_view selector; ///< the register that holds the index of the element

    std::int64_t integer = 0; ///< initial value if Unsigned or Signed
    double real = 0;          ///< initial value if Real
    std::string_view text;    ///< initial value if Text

    bool limited = false; ///< the camera refuses numbers outside minimum..maximum
    double minimum = 0;
    double maximum = 0;
    bool stored = true; ///< saved in user sets if writable

    std::uint32_t address = 0;

    [[nodiscard]] constexpr std::uint32_t size() const { return length * count; }

    // Modifiers for the rows of the table.

    [[nodiscard]] constexpr RegisterEntry between(double low, double high) const
    {
        RegisterEntry row = *this;
        row.limited = true;
        row.minimum = low;
        row.maximum = high;
        return row;
    }

    [[nodiscard]] constexpr RegisterEntry times(std::uint32_t elements, std::string_view selectedBy) const
    {
        RegisterEntry row = *this;
        row.count = elements;
        row.selector = selectedBy;
        return row;
    }

    [[nodiscard]] constexpr RegisterEntry readOnly() const
    {
        RegisterEntry row = *this;
        row.access = RegisterAccess::ReadOnly;
        return row;
    }

    [[nodiscard]] constexpr RegisterEntry notStored() const
    {
        RegisterEntry row = *this;
        row.stored = false;
        return row;
    }
};

} // namespace cameralibs::simulated

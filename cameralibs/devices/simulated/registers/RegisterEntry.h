#pragma once

#include <cstdint>
#include <string_view>

namespace cameralibs::simulated {

enum class RegisterKind { Unsigned, Signed, Real, Text, Bytes };
enum class RegisterAccess { ReadOnly, ReadWrite, WriteOnly };

/// One register of the built-in cameras, or an array of them of which a selector chooses one element. The memory, the
/// register nodes of the description and the limits named in it are all made from these rows, so they cannot disagree.
struct RegisterEntry {
    std::string_view name;
    RegisterKind kind = RegisterKind::Unsigned;
    RegisterAccess access = RegisterAccess::ReadWrite;
    std::uint32_t length = 4; ///< bytes of one element
    std::uint32_t count = 1;
    std::string_view selector; ///< the register that holds the index of the element

    std::int64_t integer = 0; ///< initial value of an Unsigned or Signed one
    double real = 0;          ///< initial value of a Real one
    std::string_view text;    ///< initial value of a Text one

    bool limited = false; ///< the camera itself refuses numbers outside minimum..maximum
    double minimum = 0;
    double maximum = 0;
    bool stored = true; ///< belongs to the user sets, where it can be written

    std::uint32_t address = 0;

    [[nodiscard]] constexpr std::uint32_t size() const { return length * count; }

    // What a row of the table says beyond its kind.

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

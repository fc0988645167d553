#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
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

/// Constructors for the rows of RegisterTable.h.
namespace rows {

constexpr auto RO = RegisterAccess::ReadOnly;
constexpr auto RW = RegisterAccess::ReadWrite;
constexpr auto WO = RegisterAccess::WriteOnly;

constexpr std::int64_t kLeastInteger = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kGreatestInteger = std::numeric_limits<std::int64_t>::max();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinite = std::numeric_limits<double>::infinity();

constexpr RegisterEntry integer(std::string_view name, RegisterKind kind, std::uint32_t length, RegisterAccess access,
                                std::int64_t initial)
{
    RegisterEntry row;
    row.name = name;
    row.kind = kind;
    row.length = length;
    row.access = access;
    row.integer = initial;
    return row;
}

constexpr RegisterEntry u32(std::string_view name, RegisterAccess access, std::int64_t initial = 0)
{
    return integer(name, RegisterKind::Unsigned, 4, access, initial);
}

constexpr RegisterEntry i32(std::string_view name, RegisterAccess access, std::int64_t initial = 0)
{
    return integer(name, RegisterKind::Signed, 4, access, initial);
}

constexpr RegisterEntry i64(std::string_view name, RegisterAccess access, std::int64_t initial = 0)
{
    return integer(name, RegisterKind::Signed, 8, access, initial);
}

constexpr RegisterEntry flag(std::string_view name, RegisterAccess access, bool initial = false)
{
    return u32(name, access, initial ? 1 : 0).between(0, 1);
}

constexpr RegisterEntry choice(std::string_view name, std::int64_t entries, std::int64_t initial = 0)
{
    return u32(name, RW, initial).between(0, static_cast<double>(entries - 1));
}

constexpr RegisterEntry command(std::string_view name)
{
    return u32(name, WO);
}

constexpr RegisterEntry real(std::string_view name, RegisterAccess access, double initial = 0)
{
    RegisterEntry row;
    row.name = name;
    row.kind = RegisterKind::Real;
    row.length = 8;
    row.access = access;
    row.real = initial;
    return row;
}

constexpr RegisterEntry single(std::string_view name, RegisterAccess access, double initial = 0)
{
    RegisterEntry row = real(name, access, initial);
    row.length = 4;
    return row;
}

constexpr RegisterEntry text(std::string_view name, RegisterAccess access, std::uint32_t length,
                             std::string_view initial = {})
{
    RegisterEntry row;
    row.name = name;
    row.kind = RegisterKind::Text;
    row.length = length;
    row.access = access;
    row.text = initial;
    return row;
}

constexpr RegisterEntry bytes(std::string_view name, RegisterAccess access, std::uint32_t length)
{
    RegisterEntry row;
    row.name = name;
    row.kind = RegisterKind::Bytes;
    row.length = length;
    row.access = access;
    return row;
}

/// Assigns consecutive addresses, aligned to eight bytes.
template <std::size_t N> constexpr std::array<RegisterEntry, N> withAddresses(std::array<RegisterEntry, N> table)
{
    std::uint32_t next = 0x1000;
    for (RegisterEntry& row : table) {
        row.address = next;
        next += (row.size() + 7) / 8 * 8;
    }
    return table;
}

} // namespace rows

} // namespace cameralibs::simulated

#include "cameralibs/devices/simulated/registers/RegisterMemory.h"

#include "cameralibs/devices/simulated/registers/RegisterTable.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace cameralibs::simulated {

namespace {

constexpr std::uint32_t kBase = kRegisters.front().address;
constexpr std::uint32_t kEnd = kRegisters.back().address + kRegisters.back().size();

bool isInUserSet(const RegisterEntry& entry)
{
    return entry.stored && entry.access == RegisterAccess::ReadWrite;
}

} // namespace

std::int64_t decodeInteger(const RegisterEntry& entry, const void* element)
{
    // Works because both the registers and the processor are little-endian.
    std::uint64_t bits = 0;
    std::memcpy(&bits, element, entry.length);
    if (entry.kind == RegisterKind::Signed) {
        const unsigned unused = 64 - 8 * entry.length;
        return static_cast<std::int64_t>(bits << unused) >> unused;
    }
    return static_cast<std::int64_t>(bits);
}

double decodeReal(const RegisterEntry& entry, const void* element)
{
    if (entry.length == sizeof(float)) {
        float value = 0;
        std::memcpy(&value, element, sizeof value);
        return static_cast<double>(value);
    }
    double value = 0;
    std::memcpy(&value, element, sizeof value);
    return value;
}

RegisterMemory::RegisterMemory()
{
    reset();
}

void RegisterMemory::reset()
{
    m_bytes.assign(kEnd - kBase, 0);
    for (const RegisterEntry& entry : kRegisters) {
        for (std::uint32_t index = 0; index < entry.count; ++index) {
            switch (entry.kind) {
            case RegisterKind::Unsigned:
            case RegisterKind::Signed:
                set(entry, entry.integer, index);
                break;
            case RegisterKind::Real:
                setReal(entry, entry.real, index);
                break;
            case RegisterKind::Text:
                setText(entry, entry.text, index);
                break;
            case RegisterKind::Bytes:
                break;
            }
        }
    }
}

const RegisterEntry* RegisterMemory::find(std::uint64_t address, std::uint32_t size)
{
    const auto next = std::upper_bound(kRegisters.begin(), kRegisters.end(), address,
                                       [](std::uint64_t a, const RegisterEntry& entry) { return a < entry.address; });
    if (next == kRegisters.begin())
        return nullptr;
    const RegisterEntry& entry = *std::prev(next);
    const std::uint64_t offset = address - entry.address;
    return offset < entry.size() && size <= entry.size() - offset ? &entry : nullptr;
}

void RegisterMemory::read(std::uint64_t address, void* buffer, std::uint32_t size) const
{
    std::memcpy(buffer, &m_bytes[address - kBase], size);
}

void RegisterMemory::write(std::uint64_t address, const void* buffer, std::uint32_t size)
{
    std::memcpy(&m_bytes[address - kBase], buffer, size);
}

const std::uint8_t* RegisterMemory::at(const RegisterEntry& entry, std::uint32_t index) const
{
    return &m_bytes[entry.address - kBase + index * entry.length];
}

std::uint8_t* RegisterMemory::at(const RegisterEntry& entry, std::uint32_t index)
{
    return &m_bytes[entry.address - kBase + index * entry.length];
}

std::int64_t RegisterMemory::integer(const RegisterEntry& entry, std::uint32_t index) const
{
    return decodeInteger(entry, at(entry, index));
}

double RegisterMemory::real(const RegisterEntry& entry, std::uint32_t index) const
{
    return decodeReal(entry, at(entry, index));
}

std::string RegisterMemory::text(const RegisterEntry& entry, std::uint32_t index) const
{
    const auto* const begin = at(entry, index);
    return {begin, std::find(begin, begin + entry.length, 0)};
}

void RegisterMemory::set(const RegisterEntry& entry, std::int64_t value, std::uint32_t index)
{
    std::memcpy(at(entry, index), &value, entry.length);
}

void RegisterMemory::setReal(const RegisterEntry& entry, double value, std::uint32_t index)
{
    if (entry.length == sizeof(float)) {
        const auto single = static_cast<float>(value);
        std::memcpy(at(entry, index), &single, sizeof single);
    } else {
        std::memcpy(at(entry, index), &value, sizeof value);
    }
}

void RegisterMemory::setText(const RegisterEntry& entry, std::string_view value, std::uint32_t index)
{
    auto* const begin = at(entry, index);
    std::memset(begin, 0, entry.length);
    // Not memcpy, which must not be given the null pointer of an empty text.
    value.copy(reinterpret_cast<char*>(begin), entry.length);
}

std::vector<std::uint8_t> RegisterMemory::save() const
{
    return m_bytes;
}

void RegisterMemory::load(const std::vector<std::uint8_t>& saved)
{
    for (const RegisterEntry& entry : kRegisters) {
        if (isInUserSet(entry))
            write(entry.address, &saved[entry.address - kBase], entry.size());
    }
}

} // namespace cameralibs::simulated

#pragma once

#include "tests/support/ScriptedCamera.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

namespace scripted {

/// One argument of a call. It is converted to text only on demand, because a feature browser with 20,000 nodes makes
/// hundreds of thousands of calls.
class Argument {
public:
    struct Word {
        const char* literal;
    };
    struct Text {
        const char* bytes;
    };
    using Value = std::variant<std::uint64_t, std::int64_t, double, bool, Word, Text>;

    explicit Argument(Value value) noexcept
        : m_value(value)
    {
    }

    /// The text argument's bytes, or null.
    [[nodiscard]] const char* textBytes() const noexcept;
    [[nodiscard]] std::string toString() const;

private:
    Value m_value;
};

[[nodiscard]] Argument number(std::uint64_t value);
[[nodiscard]] Argument integer(std::int64_t value);
[[nodiscard]] Argument real(double value);
[[nodiscard]] Argument flag(bool value);
[[nodiscard]] Argument text(const char* value);
[[nodiscard]] Argument out(const void* pointer);
[[nodiscard]] Argument in(const void* pointer);
template <typename Callback> [[nodiscard]] Argument callback(Callback* function)
{
    return in(reinterpret_cast<const void*>(function));
}

/// Recorded calls and scripted failures. Guarded by the lock of the World that owns it.
class Recorder {
public:
    struct Operation {
        std::string name;
        int countSinceClear = 0;
        int countEver = 0;
        std::map<int, Orvo::CAM_API_STATUS> failures; // by the total count of the call that fails
        std::optional<Orvo::CAM_API_STATUS> failsAlways;
        std::function<void()> hook;

        /// Removes and returns the scripted status for the call with this count.
        [[nodiscard]] std::optional<Orvo::CAM_API_STATUS> plannedStatus(int count);
    };

    [[nodiscard]] Operation& operation(std::string_view name);

    /// Counts and records a call; the result becomes known with finish().
    std::uint64_t begin(Operation& operation, std::initializer_list<Argument> arguments);
    void finish(std::uint64_t sequence, Orvo::CAM_API_STATUS result);

    [[nodiscard]] std::size_t size() const { return m_entries.size(); }
    [[nodiscard]] std::vector<Call> calls(std::size_t first = 0) const;
    void clear();
    void heal(); // every operation
    void reset();

private:
    struct Entry {
        const Operation* operation;
        std::size_t firstArgument;
        std::size_t argumentCount;
        Orvo::CAM_API_STATUS result;
    };

    std::unordered_map<std::string_view, Operation> m_operations; // never erased: calls refer to them
    std::deque<std::string> m_names;                              // storage of the keys
    std::vector<Entry> m_entries;
    std::vector<Argument> m_arguments;
    std::deque<std::string> m_texts; // a deque: the arguments point into it
    std::uint64_t m_firstSequence = 0;
};

} // namespace scripted

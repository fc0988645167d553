#include "tests/support/ScriptedRecorder.h"

#include <array>
#include <charconv>

namespace scripted {

namespace {

struct ToString {
    std::string operator()(std::uint64_t value) const { return std::to_string(value); }
    std::string operator()(std::int64_t value) const { return std::to_string(value); }
    std::string operator()(bool value) const { return value ? "true" : "false"; }
    std::string operator()(Argument::Word word) const { return word.literal; }
    std::string operator()(Argument::Text text) const { return '"' + std::string(text.bytes) + '"'; }
    std::string operator()(double value) const
    {
        std::array<char, 64> buffer{};
        return {buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr};
    }
};

} // namespace

Argument number(std::uint64_t value)
{
    return Argument(value);
}
Argument integer(std::int64_t value)
{
    return Argument(value);
}
Argument real(double value)
{
    return Argument(value);
}
Argument flag(bool value)
{
    return Argument(value);
}
Argument out(const void* pointer)
{
    return Argument(Argument::Word{pointer == nullptr ? "null" : "out"});
}
Argument in(const void* pointer)
{
    return Argument(Argument::Word{pointer == nullptr ? "null" : "ptr"});
}

Argument text(const char* value)
{
    return value == nullptr ? out(nullptr) : Argument(Argument::Text{value});
}

const char* Argument::textBytes() const noexcept
{
    const Text* text = std::get_if<Text>(&m_value);
    return text == nullptr ? nullptr : text->bytes;
}

std::string Argument::toString() const
{
    return std::visit(ToString{}, m_value);
}

std::string Call::text() const
{
    std::string line = operation + '(';
    for (std::size_t i = 0; i < arguments.size(); ++i)
        line += (i == 0 ? "" : ", ") + arguments[i];
    return line + ')';
}

std::optional<Orvo::CAM_API_STATUS> Recorder::Operation::plannedStatus(int count)
{
    const auto due = failures.find(count);
    if (due == failures.end())
        return failsAlways;
    const Orvo::CAM_API_STATUS status = due->second;
    failures.erase(due);
    return status;
}

Recorder::Operation& Recorder::operation(std::string_view name)
{
    const auto known = m_operations.find(name);
    if (known != m_operations.end())
        return known->second;
    Operation& added = m_operations[m_names.emplace_back(name)];
    added.name = name;
    return added;
}

std::uint64_t Recorder::begin(Operation& operation, std::initializer_list<Argument> arguments)
{
    ++operation.countSinceClear;
    ++operation.countEver;
    m_entries.push_back({&operation, m_arguments.size(), arguments.size(), Orvo::CAM_API_STS_UNSUCCESSFUL});
    for (const Argument& argument : arguments) {
        const char* bytes = argument.textBytes();
        m_arguments.push_back(bytes == nullptr ? argument : text(m_texts.emplace_back(bytes).c_str()));
    }
    return m_firstSequence + m_entries.size() - 1;
}

void Recorder::finish(std::uint64_t sequence, Orvo::CAM_API_STATUS result)
{
    // Clearing the record removes the entry of a call in progress.
    if (sequence >= m_firstSequence)
        m_entries[sequence - m_firstSequence].result = result;
}

std::vector<Call> Recorder::calls(std::size_t first) const
{
    std::vector<Call> result;
    if (first >= m_entries.size())
        return result;
    result.reserve(m_entries.size() - first);
    for (auto at = m_entries.begin() + static_cast<std::ptrdiff_t>(first); at != m_entries.end(); ++at) {
        const Entry& entry = *at;
        Call& call = result.emplace_back();
        call.operation = entry.operation->name;
        for (std::size_t i = 0; i < entry.argumentCount; ++i)
            call.arguments.push_back(m_arguments[entry.firstArgument + i].toString());
        call.result = entry.result;
    }
    return result;
}

void Recorder::clear()
{
    m_firstSequence += m_entries.size();
    m_entries.clear();
    m_arguments.clear();
    m_texts.clear();
    for (auto& [name, operation] : m_operations)
        operation.countSinceClear = 0;
}

void Recorder::heal()
{
    for (auto& [name, operation] : m_operations) {
        operation.failures.clear();
        operation.failsAlways.reset();
    }
}

void Recorder::reset()
{
    clear();
    heal();
    for (auto& [name, operation] : m_operations)
        operation.hook = nullptr;
}

} // namespace scripted

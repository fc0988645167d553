#include "tests/support/ScriptedRecorder.h"

#include <array>
#include <charconv>

namespace scripted {

namespace {

Argument word(const char* value)
{
    Argument argument;
    argument.kind = Argument::Kind::Word;
    argument.asText = value;
    return argument;
}

} // namespace

Argument number(std::uint64_t value)
{
    Argument argument;
    argument.asUnsigned = value;
    return argument;
}

Argument integer(std::int64_t value)
{
    Argument argument;
    argument.kind = Argument::Kind::Signed;
    argument.asSigned = value;
    return argument;
}

Argument real(double value)
{
    Argument argument;
    argument.kind = Argument::Kind::Real;
    argument.asReal = value;
    return argument;
}

Argument flag(bool value)
{
    Argument argument;
    argument.kind = Argument::Kind::Flag;
    argument.asFlag = value;
    return argument;
}

Argument text(const char* value)
{
    Argument argument = word("null");
    if (value != nullptr) {
        argument.kind = Argument::Kind::Text;
        argument.asText = value;
    }
    return argument;
}

Argument out(const void* pointer)
{
    return word(pointer == nullptr ? "null" : "out");
}
Argument in(const void* pointer)
{
    return word(pointer == nullptr ? "null" : "ptr");
}

std::string Argument::toString() const
{
    switch (kind) {
    case Kind::Unsigned:
        return std::to_string(asUnsigned);
    case Kind::Signed:
        return std::to_string(asSigned);
    case Kind::Real: {
        std::array<char, 64> buffer{};
        return {buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), asReal).ptr};
    }
    case Kind::Flag:
        return asFlag ? "true" : "false";
    case Kind::Text:
        return '"' + std::string(asText) + '"';
    case Kind::Word:
        break;
    }
    return asText;
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
    for (Argument argument : arguments) {
        if (argument.kind == Argument::Kind::Text)
            argument.asText = m_texts.emplace_back(argument.asText).c_str();
        m_arguments.push_back(argument);
    }
    return m_firstSequence + m_entries.size() - 1;
}

void Recorder::finish(std::uint64_t sequence, Orvo::CAM_API_STATUS result)
{
    // A call that was under way while the record was cleared has no entry any more.
    if (sequence >= m_firstSequence)
        m_entries[sequence - m_firstSequence].result = result;
}

std::vector<Call> Recorder::calls() const
{
    std::vector<Call> result;
    result.reserve(m_entries.size());
    for (const Entry& entry : m_entries) {
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

void Recorder::reset()
{
    clear();
    for (auto& [name, operation] : m_operations) {
        operation.failures.clear();
        operation.failsAlways.reset();
        operation.hook = nullptr;
    }
}

} // namespace scripted

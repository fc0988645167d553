// What the registers of a camera contain, under a description that is valid: every read may tell something else, or
// fail.

#include "cameralibs/base/Outcome.h"
#include "cameralibs/devices/simulated/registers/RegisterDevice.h"
#include "cameralibs/genicam/EvaluationBudget.h"
#include "cameralibs/genicam/nodes/AccessRule.h"
#include "cameralibs/genicam/nodes/NodeOperations.h"
#include "tests/attack/fuzz/FuzzInput.h"

#include <chrono>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

using namespace cameralibs;

namespace {

class FuzzedRegisters : public simulated::RegisterSpace {
public:
    explicit FuzzedRegisters(FuzzInput& input)
        : m_input(input)
    {
    }

    [[nodiscard]] simulated::AccessResult read(std::uint64_t /*address*/, void* buffer, std::uint32_t size) override
    {
        std::memset(buffer, 0, size);
        const std::uint8_t how = m_input.byte();
        if (how < 0xF0) { // the first byte of a value, which is often all that counts
            std::memset(buffer, how & 1 ? how : 0, size);
            static_cast<std::uint8_t*>(buffer)[how & 2 ? size - 1 : 0] = how;
        } else if (how < 0xFA) {
            const std::string_view bytes = m_input.bytes(size);
            std::memcpy(buffer, bytes.data(), bytes.size());
        } else {
            return how == 0xFA ? simulated::AccessResult::Refused : simulated::AccessResult::InvalidAddress;
        }
        return simulated::AccessResult::Done;
    }
    [[nodiscard]] simulated::AccessResult write(std::uint64_t /*address*/, const void* /*buffer*/,
                                                std::uint32_t /*size*/) override
    {
        return m_input.byte() < 0xFA ? simulated::AccessResult::Done : simulated::AccessResult::WriteProtected;
    }

private:
    FuzzInput& m_input;
};

const std::string& xml()
{
    static const std::string text = [] {
        std::ifstream file(FUZZED_DESCRIPTION);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }();
    return text;
}

/// Like the interface's barrier: only Failure may be thrown.
template <class Operation> void attempt(Operation&& operation)
{
    EvaluationBudget budget(std::chrono::milliseconds(50));
    try {
        operation();
    } catch (const Failure& failure) {
        REQUIRE(failure.status() != Orvo::CAM_API_STS_SUCCESS);
    }
}

void tryNode(NodeMap& nodes, NodeId id, FuzzInput& input)
{
    constexpr std::int64_t kHalf = 128;
    const std::int64_t number = input.byte() - kHalf;
    attempt([&] { (void)accessMode(nodes, id); });
    switch (nodes.node(id).type) {
    case Orvo::NODE_TYPE_INTEGER:
        attempt([&] { (void)readInteger(nodes, id); });
        attempt([&] { (void)integerMinimum(nodes, id); });
        attempt([&] { (void)integerMaximum(nodes, id); });
        attempt([&] { (void)integerIncrement(nodes, id); });
        attempt([&] { writeInteger(nodes, id, number, number > 0); });
        break;
    case Orvo::NODE_TYPE_FLOAT:
        attempt([&] { (void)readFloat(nodes, id); });
        attempt([&] { (void)floatMinimum(nodes, id); });
        attempt([&] { (void)floatMaximum(nodes, id); });
        attempt([&] { (void)floatHasIncrement(nodes, id); });
        attempt([&] { (void)floatIncrement(nodes, id); });
        attempt([&] { writeFloat(nodes, id, static_cast<double>(number) / 4, number > 0); });
        break;
    case Orvo::NODE_TYPE_ENUMERATION:
        attempt([&] { (void)readEnumerationNumber(nodes, id); });
        attempt([&] { (void)readEnumerationName(nodes, id); });
        attempt([&] { writeEnumerationNumber(nodes, id, number); });
        for (const NodeId entry : nodes.node(id).entries)
            attempt([&] { writeEnumerationName(nodes, id, nodes.node(entry).symbolic); });
        break;
    case Orvo::NODE_TYPE_BOOLEAN:
        attempt([&] { (void)readBoolean(nodes, id); });
        attempt([&] { writeBoolean(nodes, id, number > 0); });
        break;
    case Orvo::NODE_TYPE_STRING:
        attempt([&] { (void)readText(nodes, id); });
        attempt([&] { writeText(nodes, id, std::string(input.bytes(4)).c_str()); });
        break;
    case Orvo::NODE_TYPE_COMMAND:
        attempt([&] { executeCommand(nodes, id); });
        break;
    default:
        break;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const std::shared_ptr<const Description> description = readDescription(xml());
    FuzzInput input(data, size);
    FuzzedRegisters registers(input);
    const auto device = simulated::makeRegisterDevice(registers, xml());
    NodeMap nodes(description, device.get());
    while (!input.empty())
        tryNode(nodes, static_cast<NodeId>(input.byte() % description->size()), input);
    return 0;
}

// Texts that a user types into features of every type and notation. The scripted camera has the range -100 to 1000.

#include "features/item/GenAPINodeItem.h"
#include "features/item/NodeValueText.h"
#include "tests/attack/fuzz/FuzzInput.h"
#include "tests/features/NodeBench.h"

#include <QApplication>
#include <QString>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace {

std::vector<scripted::NodeSpec> nodesOfEveryType()
{
    using namespace Orvo;
    std::vector<scripted::NodeSpec> nodes;
    for (int representation = 0; representation <= NODE_REPRESENTATION_MAC_ADDRESS; ++representation) {
        scripted::NodeSpec spec = integerNode(7, "Integer" + std::to_string(representation));
        spec.representation = static_cast<NodeRepresentation>(representation);
        spec.unit = representation == 0 ? "us" : "";
        spec.intMin = -100;
        spec.intMax = 1000;
        nodes.push_back(spec);
    }
    for (int notation = 0; notation <= FLOAT_DISPLAY_NOTATION_SCIENTIFIC; ++notation) {
        scripted::NodeSpec spec = floatNode(7, "Float" + std::to_string(notation));
        spec.notation = static_cast<FloatDisplayNotation>(notation);
        spec.unit = notation == 0 ? "dB" : "";
        spec.floatMin = -100;
        spec.floatMax = 1000;
        nodes.push_back(spec);
    }
    nodes.push_back(nodeOf(NODE_TYPE_BOOLEAN, "Boolean"));
    nodes.push_back(nodeOf(NODE_TYPE_COMMAND, "Command"));
    nodes.push_back(stringNode("text", "String"));
    nodes.push_back(enumNode({NODE_ACCESS_MODE_RO, NODE_ACCESS_MODE_RO, NODE_ACCESS_MODE_NA}, "Enumeration"));
    nodes.push_back(nodeOf(NODE_TYPE_REGISTER, "Register"));
    nodes.push_back(nodeOf(NODE_TYPE_CATEGORY, "Category"));
    return nodes;
}

struct Bench {
    NodeBench bench{nodesOfEveryType(), OpeLogRead};
    std::vector<std::unique_ptr<GenAPINodeItem>> items;

    Bench()
    {
        for (const scripted::NodeSpec& spec : nodesOfEveryType())
            items.push_back(bench.item(spec.name));
    }
};

} // namespace

extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments)
{
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1); // NOLINT(concurrency-mt-unsafe): the only thread
    // Never destroyed: the toolkit does not free all of its set-up, which the fuzzer would report at its end.
    static auto* const application = std::make_unique<QApplication>(*count, *arguments).release();
    (void)application;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static Bench bench;
    FuzzInput input(data, size);
    GenAPINodeItem& item = *bench.items[input.below(bench.items.size())];
    const std::string_view bytes = input.rest();
    const QString text = QString::fromUtf8(bytes.data(), static_cast<int>(bytes.size()));
    const int status = item.setNodeValue(text);
    const bool number = item.getNodeType() == Orvo::NODE_TYPE_INTEGER || item.getNodeType() == Orvo::NODE_TYPE_FLOAT;
    if (status == Orvo::CAM_API_STS_SUCCESS && number) {
        // What was written is in the range, and what is shown of it is understood when it is typed again. Addresses are
        // deliberately typed in another notation than they are shown in.
        REQUIRE(item.getValInt(true) >= -100 && item.getValInt(true) <= 1000);
        REQUIRE(!(item.getValFloat(true) < -100) && !(item.getValFloat(true) > 1000));
        if (item.getRepresentation() >= Orvo::NODE_REPRESENTATION_HEX_NUMBER)
            return 0;
        const QString shown = item.getNodeValue(false, true);
        const int again = item.setNodeValue(shown);
        if (again != Orvo::CAM_API_STS_SUCCESS)
            std::fprintf(stderr, "'%s' is shown as '%s'\n", qPrintable(text), qPrintable(shown));
        REQUIRE(again == Orvo::CAM_API_STS_SUCCESS);
    }
    (void)item.getNodeValue(true, true);
    (void)item.getAdditionalInfo();
    scripted::clearCalls();
    bench.bench.log.clear();
    return 0;
}

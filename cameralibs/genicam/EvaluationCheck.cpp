#include "cameralibs/genicam/Failure.h"
#include "cameralibs/genicam/Graph.h"
#include "cameralibs/genicam/Validator.h"

#include <algorithm>
#include <string>

namespace orvo {

using namespace Orvo;

namespace {

/// Which question needs which reference, and what it asks of the node there.
struct DependencyRow {
    Question question;
    const char* property;
    Question asked;
};

constexpr DependencyRow kDependencies[] = {
    {Question::value, "pValue", Question::value},
    {Question::value, "pIndex", Question::value},
    {Question::value, "pValueIndexed", Question::value},
    {Question::value, "pValueDefault", Question::value},
    {Question::value, "pOffset", Question::value},
    {Question::value, "pAddress", Question::value},
    {Question::value, "pLength", Question::value},
    {Question::value, "pPort", Question::value},
    {Question::value, "pVariable", Question::value},
    {Question::value, "pCommandValue", Question::value},
    {Question::range, "pMin", Question::value},
    {Question::range, "pMax", Question::value},
    {Question::range, "pInc", Question::value},
    {Question::range, "pLength", Question::value},
    {Question::range, "pVariable", Question::value},
    {Question::range, "pValue", Question::range},
    {Question::access, "pIsImplemented", Question::value},
    {Question::access, "pIsAvailable", Question::value},
    {Question::access, "pIsLocked", Question::value},
    {Question::access, "pIndex", Question::value},
    {Question::access, "pValue", Question::access},
    {Question::access, "pValueIndexed", Question::access},
    {Question::access, "pValueDefault", Question::access},
};

/// Each step of an evaluation takes room on the stack, and each asks anew for what it needs.
constexpr std::uint32_t kMaxDepth = 256;
constexpr std::uint64_t kMaxSteps = 65536;

// A vertex of the graph is a node and a question.
NodeId nodeOf(std::size_t vertex)
{
    return static_cast<NodeId>(vertex / kQuestions);
}
Question questionOf(std::size_t vertex)
{
    return static_cast<Question>(vertex % kQuestions);
}
std::size_t vertexOf(NodeId node, Question question)
{
    return node * kQuestions + static_cast<std::size_t>(question);
}

std::vector<std::size_t> dependencies(const Description& description, std::size_t vertex)
{
    std::vector<std::size_t> edges;
    for (const Reference& reference : description.node(nodeOf(vertex)).references) {
        if (reference.target == kNoNode)
            continue;
        for (const DependencyRow& row : kDependencies)
            if (row.question == questionOf(vertex) && reference.property == row.property)
                edges.push_back(vertexOf(reference.target, row.asked));
    }
    return edges;
}

[[noreturn]] void refuse(const Description& description, std::size_t vertex, const char* reason)
{
    throw Failure(CAM_API_STS_GENICAM_ERR, "[" + description.node(nodeOf(vertex)).name + "] " + reason);
}

/// Whether asking the node for its value can go wrong in a way that Aravis does not tell.
bool needsCheck(const DescribedNode& node)
{
    if (node.link("pLength") != kNoNode)
        return true;
    // Converters tell of their own errors where they are read.
    return node.element != Element::converter && node.element != Element::intConverter &&
           std::any_of(node.formulas.begin(), node.formulas.end(), [](const Formula& f) { return f.mayFail(); });
}

void passOn(Description& description, std::size_t vertex)
{
    DescribedNode& node = description.node(nodeOf(vertex));
    Answerable& answerable = node.to(questionOf(vertex));
    const bool needsLength = questionOf(vertex) == Question::range && node.link("pLength") != kNoNode;
    for (const std::size_t behind : dependencies(description, vertex)) {
        const Answerable& other = description.node(nodeOf(behind)).to(questionOf(behind));
        if (answerable.fault.empty() && !other.fault.empty())
            answerable.fault = "[" + node.name + "] " + other.fault;
        for (const NodeId check : other.checks)
            if (std::find(answerable.checks.begin(), answerable.checks.end(), check) == answerable.checks.end())
                answerable.checks.push_back(check);
    }
    if (needsLength || (questionOf(vertex) == Question::value && needsCheck(node)))
        answerable.checks.push_back(nodeOf(vertex));
}

} // namespace

void checkEvaluation(Description& description)
{
    const GraphReport report = examineGraph(description.size() * kQuestions,
                                            [&](std::size_t vertex) { return dependencies(description, vertex); });
    if (report.onCycle)
        refuse(description, *report.onCycle, "The node's evaluation needs itself");
    for (const std::size_t vertex : report.order) {
        if (report.depth[vertex] > kMaxDepth)
            refuse(description, vertex, "The node's evaluation is nested too deep");
        if (report.reached[vertex] > kMaxSteps)
            refuse(description, vertex, "The node's evaluation takes too many steps");
        passOn(description, vertex);
    }
}

} // namespace orvo

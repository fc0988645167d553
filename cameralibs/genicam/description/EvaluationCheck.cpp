#include "cameralibs/base/Outcome.h"
#include "cameralibs/genicam/EvaluationBudget.h"
#include "cameralibs/genicam/description/Graph.h"
#include "cameralibs/genicam/description/Validator.h"

#include <algorithm>
#include <string>

namespace cameralibs {

using namespace Orvo;

namespace {

/// Aravis evaluates recursively and does not reuse results, so both the depth and the number of steps need a limit. A
/// step takes about a quarter of a microsecond, more if it reads a register.
constexpr std::uint32_t kMaxDepth = 256;
constexpr std::uint64_t kMaxSteps = 65536;

/// For evaluating every feature once, which takes about a second.
constexpr std::uint64_t kMaxStepsOfAll = 64 * kMaxSteps;

/// Bytes of a formula that take as long as one step.
constexpr std::size_t kBytesPerStep = 4;

[[noreturn]] void refuse(const Description& description, std::size_t vertex, const char* reason)
{
    const DescribedNode& node = description.node(Evaluation::of(vertex).node);
    throw Failure(CAM_API_STS_GENICAM_ERR, "[" + node.name + "] " + reason);
}

/// Whether evaluating the node itself may fail without Aravis reporting an error.
bool needsCheck(const DescribedNode& node, Question question)
{
    if (question != Question::access && node.link("pLength") != kNoNode)
        return true;
    // Aravis does report errors of converters when they are read.
    return question == Question::value && node.element != Element::converter && node.element != Element::intConverter &&
           std::any_of(node.formulas.begin(), node.formulas.end(), [](const Formula& f) { return f.mayFail(); });
}

/// Steps of the node itself, without the nodes it depends on.
std::uint64_t ownSteps(const DescribedNode& node)
{
    std::uint64_t steps = 1;
    for (const Formula& formula : node.formulas)
        steps += formula.expandedSize() / kBytesPerStep + formula.constants.size() + formula.expressions.size();
    for (const Reference& reference : node.references)
        steps += reference.property == "pInvalidator" ? 1 : 0;
    return steps;
}

std::uint64_t stepsOf(const DescribedNode& node)
{
    return node.to(Question::value).steps + node.to(Question::range).steps + node.to(Question::access).steps;
}

/// Aravis evaluates all entries to find the selected one.
std::uint64_t stepsOfEntries(const Description& description, const DescribedNode& node)
{
    std::uint64_t steps = 0;
    for (const NodeId id : node.entries) {
        const DescribedNode& entry = description.node(id);
        steps += entry.to(Question::value).steps + entry.to(Question::access).steps;
    }
    return steps;
}

void checkTotal(const Description& description)
{
    std::vector<bool> seen(description.size(), false);
    std::uint64_t steps = 0;
    for (NodeId category = 0; category < description.size(); ++category) {
        for (const NodeId id : description.node(category).features) {
            if (seen[id])
                continue;
            seen[id] = true;
            const DescribedNode& node = description.node(id);
            steps += stepsOf(node) + stepsOfEntries(description, node);
        }
    }
    if (steps > kMaxStepsOfAll)
        throw Failure(CAM_API_STS_GENICAM_ERR, "[Root] The evaluation of all features takes too many steps");
}

void propagate(Description& description, const Evaluation& evaluation)
{
    DescribedNode& node = description.node(evaluation.node);
    Answerable& answerable = node.to(evaluation.question);
    answerable.checksItself = needsCheck(node, evaluation.question);
    answerable.needsChecks = answerable.checksItself;
    if (!node.fault.empty())
        answerable.faulty = evaluation.node;
    for (const Evaluation& behind : dependencies(description, evaluation)) {
        const Answerable& other = description.node(behind.node).to(behind.question);
        answerable.needsChecks = answerable.needsChecks || other.needsChecks;
        if (answerable.faulty == kNoNode)
            answerable.faulty = other.faulty;
    }
}

} // namespace

void checkEvaluation(Description& description)
{
    const auto edges = [&](std::size_t vertex) {
        EvaluationBudget::check();
        std::vector<std::size_t> targets;
        for (const Evaluation& behind : dependencies(description, Evaluation::of(vertex)))
            targets.push_back(behind.vertex());
        return targets;
    };
    const auto weight = [&](std::size_t vertex) -> std::uint64_t {
        const auto [node, question] = Evaluation::of(vertex);
        return question == Question::access ? 1 : ownSteps(description.node(node));
    };
    const GraphReport report = examineGraph(description.size() * kQuestions, edges, weight);
    if (report.onCycle)
        refuse(description, *report.onCycle, "The node depends on itself");
    for (const std::size_t vertex : report.order) {
        if (report.depth[vertex] > kMaxDepth)
            refuse(description, vertex, "The node's evaluation is nested too deep");
        if (report.reached[vertex] > kMaxSteps)
            refuse(description, vertex, "The node's evaluation takes too many steps");
        const Evaluation evaluation = Evaluation::of(vertex);
        description.node(evaluation.node).to(evaluation.question).steps = report.reached[vertex];
        propagate(description, evaluation);
    }
    for (NodeId id = 0; id < description.size(); ++id) {
        if (stepsOfEntries(description, description.node(id)) > kMaxSteps)
            refuse(description, Evaluation{id, Question::value}.vertex(), "The entries take too many steps");
    }
    checkTotal(description);
}

} // namespace cameralibs

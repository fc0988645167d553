#include "cameralibs/genicam/Dependencies.h"
#include "cameralibs/genicam/Failure.h"
#include "cameralibs/genicam/Graph.h"
#include "cameralibs/genicam/Validator.h"

#include <algorithm>
#include <string>

namespace orvo {

using namespace Orvo;

namespace {

/// Each step of an evaluation takes room on the stack, and each asks anew for what it needs.
constexpr std::uint32_t kMaxDepth = 256;
constexpr std::uint64_t kMaxSteps = 65536;

[[noreturn]] void refuse(const Description& description, std::size_t vertex, const char* reason)
{
    const DescribedNode& node = description.node(Evaluation::of(vertex).node);
    throw Failure(CAM_API_STS_GENICAM_ERR, "[" + node.name + "] " + reason);
}

/// Whether the node itself can go wrong while it answers, in a way that Aravis does not tell.
bool needsCheck(const DescribedNode& node, Question question)
{
    if (question != Question::access && node.link("pLength") != kNoNode)
        return true;
    // Converters tell of their own errors where they are read.
    return question == Question::value && node.element != Element::converter && node.element != Element::intConverter &&
           std::any_of(node.formulas.begin(), node.formulas.end(), [](const Formula& f) { return f.mayFail(); });
}

void passOn(Description& description, const Evaluation& evaluation)
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
    const GraphReport report = examineGraph(description.size() * kQuestions, [&](std::size_t vertex) {
        std::vector<std::size_t> edges;
        for (const Evaluation& behind : dependencies(description, Evaluation::of(vertex)))
            edges.push_back(behind.vertex());
        return edges;
    });
    if (report.onCycle)
        refuse(description, *report.onCycle, "The node's evaluation needs itself");
    for (const std::size_t vertex : report.order) {
        if (report.depth[vertex] > kMaxDepth)
            refuse(description, vertex, "The node's evaluation is nested too deep");
        if (report.reached[vertex] > kMaxSteps)
            refuse(description, vertex, "The node's evaluation takes too many steps");
        passOn(description, Evaluation::of(vertex));
    }
}

} // namespace orvo

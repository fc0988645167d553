#pragma once

#include "cameralibs/genicam/description/Description.h"

#include <cstddef>
#include <vector>

namespace cameralibs {

/// A question about a node: a vertex of the graph of all evaluations.
struct Evaluation {
    NodeId node;
    Question question;

    [[nodiscard]] std::size_t vertex() const noexcept { return node * kQuestions + static_cast<std::size_t>(question); }
    [[nodiscard]] static Evaluation of(std::size_t vertex) noexcept
    {
        return {static_cast<NodeId>(vertex / kQuestions), static_cast<Question>(vertex % kQuestions)};
    }
};

/// The evaluations that this one needs directly. References to missing nodes are skipped.
[[nodiscard]] std::vector<Evaluation> dependencies(const Description& description, const Evaluation& evaluation);

} // namespace cameralibs

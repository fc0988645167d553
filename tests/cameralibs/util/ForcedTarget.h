#pragma once

#include <hwy/highway.h>

#include <cstdint>
#include <string>
#include <vector>

/// As long as it lives, ConvImage uses the code for one instruction set. Highway stores the choice for the whole
/// process in a library that the tests share with the library under test.
class ForcedTarget {
public:
    explicit ForcedTarget(std::int64_t target) { choose(target); }
    ~ForcedTarget() { choose(0); }
    ForcedTarget(const ForcedTarget&) = delete;
    ForcedTarget& operator=(const ForcedTarget&) = delete;

    /// The instruction sets that the processor supports and that the library contains code for.
    [[nodiscard]] static std::vector<std::int64_t> all() { return hwy::SupportedAndGeneratedTargets(); }

private:
    static void choose(std::int64_t target)
    {
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    }
};

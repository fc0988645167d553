#pragma once

#include <hwy/highway.h>

#include <cstdint>
#include <string>
#include <vector>

/// Makes ConvImage use the code for one instruction set, as long as it lives. Highway keeps one choice for the whole
/// process, in a library that the tests and the library under test share.
class ForcedTarget {
public:
    explicit ForcedTarget(std::int64_t target) { choose(target); }
    ~ForcedTarget() { choose(0); }
    ForcedTarget(const ForcedTarget&) = delete;
    ForcedTarget& operator=(const ForcedTarget&) = delete;

    /// Those that the processor has and the library has code for.
    [[nodiscard]] static std::vector<std::int64_t> all() { return hwy::SupportedAndGeneratedTargets(); }

    /// The one that the plain code stands in for.
    [[nodiscard]] static std::int64_t scalar() { return HWY_STATIC_TARGET; }

private:
    static void choose(std::int64_t target)
    {
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    }
};

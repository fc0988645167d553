#pragma once

#include <sys/resource.h>

/// As long as it lives, limits the address space of the process to its present size plus this many bytes. Does not work
/// with sanitizers, which reserve the whole address space.
class MemoryLimit {
public:
    explicit MemoryLimit(rlim_t more);
    ~MemoryLimit();
    MemoryLimit(const MemoryLimit&) = delete;
    MemoryLimit& operator=(const MemoryLimit&) = delete;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    static constexpr bool kPossible = false;
#else
    static constexpr bool kPossible = true;
#endif

private:
    rlimit m_before = {};
};

#pragma once

#include <sys/resource.h>

/// Lets the process have so many bytes of addresses more than it has, as long as this lives. Not with sanitizers, which
/// take all the addresses there are.
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

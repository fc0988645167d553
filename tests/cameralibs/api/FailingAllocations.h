#pragma once

/// As long as it lives, every C++ allocation fails, except on threads that have created such an object: the threads of
/// the library run out of memory. Replaces operator new of the program.
class FailingAllocations {
public:
    FailingAllocations();
    ~FailingAllocations();
    FailingAllocations(const FailingAllocations&) = delete;
    FailingAllocations& operator=(const FailingAllocations&) = delete;

    /// Number of failed allocations so far.
    [[nodiscard]] static int count();
};

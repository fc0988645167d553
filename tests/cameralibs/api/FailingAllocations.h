#pragma once

/// Lets every allocation of C++ fail on all threads but those that make one of these, as long as it lives: what the
/// library does on threads of its own has no memory. For the program that it is linked into, whose operator new it
/// replaces.
class FailingAllocations {
public:
    FailingAllocations();
    ~FailingAllocations();
    FailingAllocations(const FailingAllocations&) = delete;
    FailingAllocations& operator=(const FailingAllocations&) = delete;

    /// How many have failed so far.
    [[nodiscard]] static int count();
};

#include "tests/cameralibs/api/FailingAllocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<bool> failing{false};
std::atomic<int> failed{0};
thread_local bool spared = false;

} // namespace

FailingAllocations::FailingAllocations()
{
    spared = true;
    failed = 0;
    failing = true;
}

FailingAllocations::~FailingAllocations()
{
    failing = false;
    spared = false;
}

int FailingAllocations::count()
{
    return failed;
}

void* operator new(std::size_t size)
{
    const bool fails = failing && !spared;
    void* const memory = fails ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) {
        ++failed;
        throw std::bad_alloc();
    }
    return memory;
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

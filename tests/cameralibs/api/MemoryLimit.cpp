#include "tests/cameralibs/api/MemoryLimit.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>

MemoryLimit::MemoryLimit(rlim_t more)
{
    EXPECT_EQ(::getrlimit(RLIMIT_AS, &m_before), 0);
    rlim_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    const rlimit limit{pages * static_cast<rlim_t>(::sysconf(_SC_PAGESIZE)) + more, m_before.rlim_max};
    EXPECT_EQ(::setrlimit(RLIMIT_AS, &limit), 0);
}

MemoryLimit::~MemoryLimit()
{
    EXPECT_EQ(::setrlimit(RLIMIT_AS, &m_before), 0);
}

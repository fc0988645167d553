// The memory of a stream's buffers, also as seen by another process.

#include "cameralibs/base/ImageMemory.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/asan_interface.h>
#endif

using cameralibs::ImageMemory;

TEST(ImageMemoryTest, BuffersAreZeroAtFirst)
{
    const ImageMemory memory(3, 10'000);
    for (std::size_t i = 0; i < memory.count(); ++i) {
        std::uint8_t* const data = memory.data(i);
        EXPECT_TRUE(std::all_of(data, data + 10'000, [](std::uint8_t byte) { return byte == 0; }));
        std::memset(data, 0xFF, 10'000);
    }
}

TEST(ImageMemoryTest, BuffersStartAtPagesWithAPageBetweenThem)
{
    const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    for (const std::size_t bytes : {std::size_t{1}, page - 1, page, page + 1}) {
        const ImageMemory memory(2, bytes);
        EXPECT_EQ(memory.bytesOfEach(), bytes);
        EXPECT_EQ(memory.offset(0), 0U);
        EXPECT_EQ(memory.offset(1) % page, 0U);
        EXPECT_GE(memory.offset(1), bytes + page);
        EXPECT_EQ(memory.size(), 2 * memory.offset(1));
        EXPECT_EQ(memory.data(1), memory.data(0) + memory.offset(1));
    }
}

TEST(ImageMemoryTest, MappingTheDescriptorShowsTheBuffersAtTheirOffsets)
{
    const ImageMemory memory(2, 5000);
    auto* const other = static_cast<std::uint8_t*>(
        ::mmap(nullptr, memory.size(), PROT_READ | PROT_WRITE, MAP_SHARED, memory.descriptor(), 0));
    ASSERT_NE(other, MAP_FAILED);
    other[memory.offset(1) + 4999] = 42;
    EXPECT_EQ(memory.data(1)[4999], 42);
    EXPECT_EQ(::munmap(other, memory.size()), 0);
}

TEST(ImageMemoryTest, SizeIsSealed)
{
    const ImageMemory memory(2, 5000);
    EXPECT_EQ(::ftruncate(memory.descriptor(), 0), -1);
    EXPECT_EQ(::ftruncate(memory.descriptor(), static_cast<off_t>(memory.size()) + 1), -1);
    EXPECT_EQ(::fcntl(memory.descriptor(), F_GET_SEALS), F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL);
}

TEST(ImageMemoryTest, DescriptorIsClosedOnExecAndWithTheMemory)
{
    int descriptor = -1;
    {
        const ImageMemory memory(1, 1);
        descriptor = memory.descriptor();
        EXPECT_NE(::fcntl(descriptor, F_GETFD) & FD_CLOEXEC, 0);
    }
    EXPECT_EQ(::fcntl(descriptor, F_GETFD), -1);
}

TEST(ImageMemoryTest, StandardDescriptorsThatAreClosedAreNotUsed)
{
    for (int standard = STDIN_FILENO; standard <= STDERR_FILENO; ++standard) {
        const int kept = ::fcntl(standard, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
        ASSERT_GT(kept, STDERR_FILENO);
        ::close(standard);
        int descriptor = -1;
        bool stillClosed = false;
        {
            const ImageMemory memory(1, 1);
            descriptor = memory.descriptor();
            stillClosed = ::fcntl(standard, F_GETFD) == -1;
        }
        ::dup2(kept, standard);
        ::close(kept);
        EXPECT_GT(descriptor, STDERR_FILENO) << standard;
        EXPECT_TRUE(stillClosed) << standard;
    }
}

TEST(ImageMemoryTest, UntouchedMemoryTakesNoPages)
{
    const ImageMemory memory(16, std::size_t{1} << 32); // more than the machine has
    memory.data(15)[0] = 1;
    EXPECT_EQ(memory.data(15)[0], 1);
}

TEST(ImageMemoryTest, AbsurdSizesAreRefused)
{
    constexpr auto kAll = std::numeric_limits<std::size_t>::max();
    EXPECT_THROW(ImageMemory(1, kAll), std::bad_alloc);
    EXPECT_THROW(ImageMemory(1, kAll / 2), std::bad_alloc);
    EXPECT_THROW(ImageMemory(kAll / 2, 4096), std::bad_alloc);
    EXPECT_THROW(ImageMemory(1024, std::size_t{1} << 40), std::bad_alloc) << "larger than any address space";
}

TEST(ImageMemoryTest, AddressSanitizerDetectsAccessesBesideABuffer)
{
#ifdef __SANITIZE_ADDRESS__
    void* freed = nullptr;
    {
        const ImageMemory memory(2, 4099);
        EXPECT_EQ(__asan_region_is_poisoned(memory.data(0), 4099), nullptr);
        EXPECT_TRUE(__asan_address_is_poisoned(memory.data(0) + 4099));
        EXPECT_TRUE(__asan_address_is_poisoned(memory.data(1) - 1));
        EXPECT_TRUE(__asan_address_is_poisoned(memory.data(1) + 4099));
        freed = memory.data(0) + 4099;
    }
    EXPECT_FALSE(__asan_address_is_poisoned(freed)) << "the addresses may be used again";
#else
    GTEST_SKIP() << "needs the address sanitizer";
#endif
}

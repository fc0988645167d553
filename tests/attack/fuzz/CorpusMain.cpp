// Runs a fuzz target without a fuzzer, over the given files and folders. An input may take 2 s of
// processor time and all of them 256 MiB.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <sys/resource.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" [[gnu::weak]] int LLVMFuzzerInitialize(int* count, char*** arguments);

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

constexpr double kSeconds = kSanitized ? 20 : 2;
constexpr long kKibibytes = 256L << 10;

double processorTime()
{
    timespec now{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

std::vector<std::string> filesOf(const std::string& path)
{
    if (!std::filesystem::is_directory(path))
        return {path};
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
        if (entry.is_regular_file())
            files.push_back(entry.path().string());
    }
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace

int main(int argc, char** argv)
{
    if (LLVMFuzzerInitialize != nullptr)
        LLVMFuzzerInitialize(&argc, &argv);
    int count = 0;
    double longest = 0;
    bool good = true;
    for (int i = 1; i < argc; ++i) {
        for (const std::string& path : filesOf(argv[i])) {
            std::ifstream file(path, std::ios::binary);
            const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
            if (!file) {
                std::fprintf(stderr, "%s cannot be read\n", path.c_str());
                return 2;
            }
            std::printf("%s\n", path.c_str());
            std::fflush(stdout); // the last line names the culprit
            const double before = processorTime();
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
            const double taken = processorTime() - before;
            if (taken > kSeconds)
                std::printf("takes %.1f s\n", taken);
            good = good && taken <= kSeconds;
            longest = std::max(longest, taken);
            ++count;
        }
    }
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    good = good && (kSanitized || usage.ru_maxrss <= kKibibytes);
    std::printf("%d inputs, %.2f s at most, %ld MiB\n", count, longest, usage.ru_maxrss >> 10);
    return good && count > 0 ? 0 : 1;
}

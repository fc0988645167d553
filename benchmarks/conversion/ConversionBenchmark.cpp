#include "benchmarks/Process.h"
#include "benchmarks/Report.h"
#include "benchmarks/conversion/Peers.h"
#include "benchmarks/conversion/Quality.h"
#include "camera/OrvoCamUtl.h"
#include "cameralibs/util/conversion/Conversion.h"

#include <hwy/highway.h>
#include <opencv2/core.hpp>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <iterator>
#include <new>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <sys/mman.h>

// ConvImage beside its peers on one thread. In every round each of them converts the same image into the same memory,
// in turn. The memory is new in every round, because its place decides how well it fits the caches. What counts is the
// processor time of the thread, and of the ratios of all rounds the median and the quartiles. A peer's time divided by
// ours is to be large, ours divided by that of a memcpy of the result small. The status is 1 where a median misses its
// goal, unless other programs used the processors.

namespace {

struct Size {
    int width;
    int height;
};

constexpr std::array<Size, 4> kSizes{{{640, 480}, {1920, 1200}, {2448, 2048}, {5472, 3648}}};

/// Formats that take the same time as the one before them in the list of contests: measured at one size.
constexpr std::string_view kLikeOthers[] = {"Mono10",     "Mono16", "Mono10p",       "BayerRG10", "BayerRG16",
                                            "BayerRG10p", "BGR8",   "YUV422_8_UYVY", "YCbCr422_8"};
constexpr std::size_t kSizeOfLikeOthers = 1;

/// The scalar code, or vector code.
struct Target {
    const char* name;
    std::int64_t highway; ///< 0: the scalar code
    bool hasGoals;
};

constexpr Target kTargets[] = {
#if HWY_ARCH_X86
    {"avx512", HWY_AVX3, true}, {"avx2", HWY_AVX2, true}, {"sse4", HWY_SSE4, false}, {"ssse3", HWY_SSSE3, false},
#elif HWY_ARCH_ARM
    {"neon", HWY_NEON, false},
#endif
    {"scalar", 0, false},
};

bool isPresent(const Target& target)
{
    const std::vector<std::int64_t> present = hwy::SupportedAndGeneratedTargets();
    return target.highway == 0 || std::find(present.begin(), present.end(), target.highway) != present.end();
}

/// Memory of its own pages, zeroed. The bytes start `offset` bytes into a page.
class Pages {
public:
    Pages(std::size_t size, std::size_t offset)
        : m_size(size + offset)
        , m_offset(offset)
        , m_begin(mmap(nullptr, m_size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_POPULATE, -1, 0))
    {
        if (m_begin == MAP_FAILED) {
            throw std::bad_alloc();
        }
    }
    ~Pages() { munmap(m_begin, m_size); }
    Pages(const Pages&) = delete;
    Pages& operator=(const Pages&) = delete;

    [[nodiscard]] std::uint8_t* bytes() const { return static_cast<std::uint8_t*>(m_begin) + m_offset; }

private:
    std::size_t m_size;
    std::size_t m_offset;
    void* m_begin;
};

/// Milliseconds that a call takes.
template <typename Convert> double timeOf(Convert convert, int calls)
{
    const double start = process::threadSeconds();
    for (int i = 0; i < calls; ++i) {
        convert();
    }
    return 1e3 * (process::threadSeconds() - start) / calls;
}

struct Result {
    std::vector<double> ours; // milliseconds
    std::vector<double> copies;
    std::vector<double> ratioToCopies;
    std::vector<std::vector<double>> ratios; // one per peer
    double otherPrograms = 0;
};

Result measure(const Contest& contest, const Target& target, Size size, int rounds)
{
    constexpr double kMillisecondsAtOnce = 3;
    const auto width = static_cast<std::uint32_t>(size.width);
    const auto height = static_cast<std::uint32_t>(size.height);
    const std::size_t pixels = std::size_t{width} * height;
    std::vector<std::uint8_t> content(pixels * contest.bitsPerPixel / 8 + 8);
    std::minstd_rand random;
    std::generate(content.begin(), content.end(), [&] { return static_cast<std::uint8_t>(random() >> 8); });

    const process::OtherPrograms others;
    Result result;
    result.ratios.resize(contest.peers.size());
    int calls = 1;
    for (int round = -1; round < rounds; ++round) {
        // Places that a stream's buffers and the viewer's buffer may have: whole cache lines.
        const auto place = [&] { return random() % 64 * 64; };
        const Pages source(content.size(), place());
        const Pages bgra(pixels * 4, place());
        const Pages copied(pixels * 4, place());
        std::memcpy(source.bytes(), content.data(), content.size());
        std::memset(copied.bytes(), 77, pixels * 4);
        const Work work{source.bytes(), size.width, size.height, bgra.bytes()};
        const auto ours = [&] {
            const Orvo::CAM_API_STATUS status =
                target.highway == 0 ? cameralibs::convertImage(cameralibs::scalarRowKernels(), contest.pfnc, work.bgra,
                                                               work.source, width, height)
                                    : Orvo::ConvImage(0, contest.pfnc, 1, work.bgra, work.source, width, height);
            if (status != Orvo::CAM_API_STS_SUCCESS) {
                std::fprintf(stderr, "%s: status %u\n", contest.format.c_str(), status);
                std::exit(2); // NOLINT(concurrency-mt-unsafe): nobody else ends the program
            }
        };
        const auto copy = [&] { std::memcpy(bgra.bytes(), copied.bytes(), pixels * 4); };
        if (round < 0) { // how many calls take a few milliseconds: reading the clock takes time, too
            ours();
            calls = std::max(1, static_cast<int>(kMillisecondsAtOnce / timeOf(ours, 1)));
        }
        std::vector<std::function<void()>> contestants{ours, copy};
        for (const Peer& peer : contest.peers) {
            contestants.emplace_back([&] { peer.convert(work); });
        }
        // Each goes first in turn: the caches know the memory better after every one of them. A call before those that
        // count warms them up.
        std::vector<double> times(contestants.size());
        for (std::size_t i = 0; i < contestants.size(); ++i) {
            const std::size_t next = (i + static_cast<std::size_t>(round + 1)) % contestants.size();
            contestants[next]();
            times[next] = timeOf(contestants[next], calls);
        }
        if (round < 0) {
            continue; // that one warmed up
        }
        result.ours.push_back(times[0]);
        result.copies.push_back(times[1]);
        result.ratioToCopies.push_back(times[0] / times[1]);
        for (std::size_t i = 0; i < contest.peers.size(); ++i) {
            result.ratios[i].push_back(times[i + 2] / times[0]);
        }
    }
    result.otherPrograms = others.processors();
    return result;
}

/// Measures again while other programs use the processors, a few times.
Result measureInQuiet(const Contest& contest, const Target& target, Size size, int rounds)
{
    constexpr int kMostTries = 3;
    Result best = measure(contest, target, size, rounds);
    for (int i = 1; i < kMostTries && best.otherPrograms > process::kBusy; ++i) {
        Result next = measure(contest, target, size, rounds);
        if (next.otherPrograms < best.otherPrograms) {
            best = std::move(next);
        }
    }
    return best;
}

report::Goal goalIf(bool holds, report::Goal goal)
{
    return holds && goal.bound != 0 ? goal : report::Goal();
}

/// The times of memcpy at each size, of all formats.
using Copies = std::array<std::vector<double>, kSizes.size()>;

void print(const Contest& contest, const Target& target, int rounds, Copies& copies)
{
    const bool withAvx512 = std::string_view(target.name) == "avx512";
    const bool isLikeOthers =
        std::find(std::begin(kLikeOthers), std::end(kLikeOthers), contest.format) != std::end(kLikeOthers);
    for (std::size_t i = 0; i < kSizes.size(); ++i) {
        if (isLikeOthers && i != kSizeOfLikeOthers) {
            continue;
        }
        const Size& size = kSizes[i];
        const Result result = measureInQuiet(contest, target, size, rounds);
        const std::string name = contest.format + " " + std::to_string(size.width) + " x " +
                                 std::to_string(size.height) + ", " + target.name + ": ";
        report::setMachineBusy(result.otherPrograms > process::kBusy);
        report::print(name + "ours", report::figureOf(result.ours), "ms");
        for (std::size_t peer = 0; peer < contest.peers.size(); ++peer) {
            const Peer& other = contest.peers[peer];
            const Goals& goals = withAvx512 ? other.goalsAvx512 : other.goalsAvx2;
            report::print(name + other.name + " / ours", report::figureOf(result.ratios[peer]), "",
                          goalIf(target.hasGoals, report::atLeast(goals[i])));
        }
        const bool copiesCount = i == 1 || i == 2;
        report::print(name + "ours / memcpy", report::figureOf(result.ratioToCopies), "",
                      goalIf(target.hasGoals && copiesCount,
                             report::atMost(withAvx512 ? contest.copiesAvx512 : contest.copiesAvx2)));
        report::setMachineBusy(false);
        copies[i].insert(copies[i].end(), result.copies.begin(), result.copies.end());
    }
}

void print(const Target& target, const std::string& format, int rounds)
{
    if (target.highway != 0) {
        hwy::SetSupportedTargetsForTest(target.highway);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    }
    Copies copies;
    for (const Contest& contest : contests()) {
        if (format.empty() || contest.format == format) {
            print(contest, target, rounds, copies);
        }
    }
    for (std::size_t i = 0; i < kSizes.size(); ++i) {
        if (!copies[i].empty()) {
            report::print("memcpy of a result of " + std::to_string(kSizes[i].width) + " x " +
                              std::to_string(kSizes[i].height) + " beside " + target.name,
                          report::figureOf(copies[i]), "ms");
        }
    }
    hwy::SetSupportedTargetsForTest(0);
}

int usage()
{
    std::fprintf(stderr, "usage: benchmark_conversion [--target NAME] [--format NAME] [--rounds N]\ntargets:");
    for (const Target& target : kTargets) {
        if (isPresent(target)) {
            std::fprintf(stderr, " %s", target.name);
        }
    }
    std::fprintf(stderr, "\nformats:");
    for (const Contest& contest : contests()) {
        std::fprintf(stderr, " %s", contest.format.c_str());
    }
    std::fprintf(stderr, "\n");
    return 2;
}

} // namespace

int main(int argc, char** argv)
{
    // Without a choice those that have goals, else the fastest one.
    std::vector<Target> chosen;
    std::copy_if(std::begin(kTargets), std::end(kTargets), std::back_inserter(chosen),
                 [](const Target& target) { return target.hasGoals && isPresent(target); });
    if (chosen.empty()) {
        chosen.push_back(*std::find_if(std::begin(kTargets), std::end(kTargets), isPresent));
    }
    std::string format;
    int rounds = 15;
    for (int i = 1; i < argc; i += 2) {
        const std::string_view option = argv[i];
        const char* const value = i + 1 < argc ? argv[i + 1] : "";
        if (option == "--target") {
            const Target* const target =
                std::find_if(std::begin(kTargets), std::end(kTargets),
                             [value](const Target& named) { return std::string_view(named.name) == value; });
            if (target == std::end(kTargets) || !isPresent(*target)) {
                return usage();
            }
            chosen = {*target};
        } else if (option == "--format") {
            format = value;
            const std::vector<Contest> all = contests();
            if (std::none_of(all.begin(), all.end(),
                             [&](const Contest& contest) { return contest.format == format; })) {
                return usage();
            }
        } else if (option == "--rounds") {
            rounds = std::atoi(value);
        } else {
            return usage();
        }
    }
    if (rounds < 1) {
        return usage();
    }
    cv::setNumThreads(1);
    for (const Target& target : chosen) {
        print(target, format, rounds);
    }
    if (format.empty()) {
        printQuality();
    }
    return report::exitStatus();
}

#include "benchmarks/Report.h"
#include "benchmarks/conversion/Peers.h"
#include "benchmarks/conversion/Quality.h"
#include "camera/OrvoCamUtl.h"

#include <hwy/highway.h>
#include <opencv2/core.hpp>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

// ConvImage beside its peers on one thread. In every round each of them converts the same image into the same memory,
// in turn; what counts is the processor time of the thread, and of the ratios of all rounds the median and the
// quartiles. A peer's time divided by ours is to be large, ours divided by that of a memcpy of the result small. The
// status is 1 where a median misses its goal.

namespace {

struct Size {
    int width;
    int height;
};

constexpr std::array<Size, 4> sizes{{{640, 480}, {1920, 1200}, {2448, 2048}, {5472, 3648}}};

/// Formats of one kind take the same time: these are measured where nothing else is asked for.
constexpr std::string_view oneOfEachKind[] = {"Mono8",     "Mono12",     "Mono12p", "Mono12Packed", "BayerRG8",
                                              "BayerRG12", "BayerRG12p", "RGB8",    "YUV422_8",     "YCbCr411_8"};

struct Target {
    const char* name;
    std::int64_t highway;
};

constexpr Target targets[] = {
#if HWY_ARCH_X86
    {"avx512", HWY_AVX3},         {"avx2", HWY_AVX2}, {"sse4", HWY_SSE4}, {"ssse3", HWY_SSSE3},
#endif
    {"plain", HWY_STATIC_TARGET},
};

double milliseconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return 1e3 * static_cast<double>(now.tv_sec) + 1e-6 * static_cast<double>(now.tv_nsec);
}

template <typename Convert> double timeOf(Convert convert, int calls)
{
    const double start = milliseconds();
    for (int i = 0; i < calls; ++i) {
        convert();
    }
    return (milliseconds() - start) / calls;
}

struct Result {
    report::Figure milliseconds;
    report::Figure copies;
    std::vector<report::Figure> ratios; // one for each peer
};

Result measure(const Contest& contest, Size size, int rounds)
{
    const std::size_t pixels = static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height);
    std::vector<std::uint8_t> source(pixels * contest.bitsPerPixel / 8 + 8);
    std::minstd_rand random;
    std::generate(source.begin(), source.end(), [&] { return static_cast<std::uint8_t>(random() >> 8); });
    std::vector<std::uint8_t> bgra(pixels * 4);
    const std::vector<std::uint8_t> copied(bgra.size(), 77);
    const Work work{source.data(), size.width, size.height, bgra.data()};

    const auto ours = [&] {
        const Orvo::CAM_API_STATUS status =
            Orvo::ConvImage(0, contest.pfnc, 1, work.bgra, work.source, static_cast<std::uint32_t>(size.width),
                            static_cast<std::uint32_t>(size.height));
        if (status != Orvo::CAM_API_STS_SUCCESS) {
            std::fprintf(stderr, "%s: status %u\n", contest.format.c_str(), status);
            std::exit(2);
        }
    };
    // A millisecond or more at a time: the clock is not asked too often.
    ours();
    const int calls = std::max(1, static_cast<int>(1.5 / timeOf(ours, 1)));

    std::vector<double> ourTimes;
    std::vector<double> copies;
    std::vector<std::vector<double>> ratios(contest.peers.size());
    for (int round = -1; round < rounds; ++round) {
        const double our = timeOf(ours, calls);
        const double copy = timeOf([&] { std::memcpy(bgra.data(), copied.data(), bgra.size()); }, calls);
        std::vector<double> theirs;
        for (const Peer& peer : contest.peers) {
            theirs.push_back(timeOf([&] { peer.convert(work); }, std::max(1, calls / 2)));
        }
        if (round < 0) {
            continue; // the first one warms up
        }
        ourTimes.push_back(our);
        copies.push_back(our / copy);
        for (std::size_t i = 0; i < theirs.size(); ++i) {
            ratios[i].push_back(theirs[i] / our);
        }
    }
    Result result{report::figureOf(ourTimes), report::figureOf(copies), {}};
    std::transform(ratios.begin(), ratios.end(), std::back_inserter(result.ratios), report::figureOf);
    return result;
}

report::Goal goalIf(bool holds, report::Goal goal)
{
    return holds && goal.bound != 0 ? goal : report::Goal();
}

void print(const Contest& contest, const Target& target, int rounds)
{
    const bool withAvx512 = std::string_view(target.name) == "avx512";
    const bool goalsHold = withAvx512 || std::string_view(target.name) == "avx2";
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        const Size& size = sizes[i];
        const Result result = measure(contest, size, rounds);
        const std::string name = contest.format + " " + std::to_string(size.width) + " x " +
                                 std::to_string(size.height) + ", " + target.name + ": ";
        report::print(name + "ours", result.milliseconds, "ms");
        for (std::size_t peer = 0; peer < contest.peers.size(); ++peer) {
            const Peer& other = contest.peers[peer];
            const Goals& goals = withAvx512 ? other.goalsAvx512 : other.goalsAvx2;
            report::print(name + other.name + " / ours", result.ratios[peer], "",
                          goalIf(goalsHold, report::atLeast(goals[i])));
        }
        const bool copiesCount = i == 1 || i == 2;
        report::print(
            name + "ours / memcpy", result.copies, "",
            goalIf(goalsHold && copiesCount, report::atMost(withAvx512 ? contest.copiesAvx512 : contest.copiesAvx2)));
    }
}

int usage()
{
    std::fprintf(stderr, "usage: benchmark_conversion [--target avx512|avx2|sse4|ssse3|plain] "
                         "[--format NAME|all] [--rounds N]\n");
    return 2;
}

} // namespace

int main(int argc, char** argv)
{
    const std::vector<std::int64_t> present = hwy::SupportedAndGeneratedTargets();
    const auto isPresent = [&present](const Target& target) {
        return std::find(present.begin(), present.end(), target.highway) != present.end();
    };
    const Target* target = std::find_if(std::begin(targets), std::end(targets), isPresent);
    std::string only;
    int rounds = 15;
    for (int i = 1; i < argc; i += 2) {
        const std::string_view option = argv[i];
        const char* const value = i + 1 < argc ? argv[i + 1] : "";
        if (option == "--target") {
            target = std::find_if(std::begin(targets), std::end(targets),
                                  [value](const Target& named) { return std::string_view(named.name) == value; });
        } else if (option == "--format") {
            only = value;
        } else if (option == "--rounds") {
            rounds = std::atoi(value);
        } else {
            return usage();
        }
    }
    if (rounds < 1 || target == std::end(targets) || !isPresent(*target)) {
        return usage();
    }
    hwy::SetSupportedTargetsForTest(target->highway);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    cv::setNumThreads(1);

    for (const Contest& contest : contests()) {
        const bool wanted = only.empty() ? std::find(std::begin(oneOfEachKind), std::end(oneOfEachKind),
                                                     contest.format) != std::end(oneOfEachKind)
                                         : only == "all" || contest.format == only;
        if (wanted) {
            print(contest, *target, rounds);
        }
    }
    if (only.empty() || only == "all") {
        printQuality();
    }
    return report::exitStatus();
}

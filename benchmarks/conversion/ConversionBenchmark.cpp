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
// quartiles. The status is 1 where a median misses its goal.

namespace {

struct Size {
    int width;
    int height;
};

constexpr std::array<Size, 4> sizes{{{640, 480}, {1920, 1200}, {2448, 2048}, {5472, 3648}}};

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

struct Figure {
    double lower;
    double median;
    double upper;
};

Figure figureOf(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const auto at = [&values](std::size_t quarter) { return values[(values.size() - 1) * quarter / 4]; };
    return {at(1), at(2), at(3)};
}

struct Result {
    Figure milliseconds;
    Figure copies;
    std::vector<Figure> ratios; // one for each peer
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
    Result result{figureOf(ourTimes), figureOf(copies), {}};
    std::transform(ratios.begin(), ratios.end(), std::back_inserter(result.ratios), figureOf);
    return result;
}

// A cell of the table; what misses its goal is marked.
std::string cell(const Figure& figure, double goal, bool met)
{
    std::array<char, 80> text{};
    std::snprintf(text.data(), text.size(), "%.2f (%.2f-%.2f", figure.median, figure.lower, figure.upper);
    std::string result = text.data();
    if (goal != 0) {
        std::snprintf(text.data(), text.size(), "; goal %g", goal);
        result += text.data();
    }
    return met ? result + ")" : "**" + result + ", MISSED)**";
}

class Table {
public:
    Table(const Target& target, int rounds)
        : m_withAvx512(std::string_view(target.name) == "avx512")
        , m_goalsHold(m_withAvx512 || std::string_view(target.name) == "avx2")
        , m_rounds(rounds)
    {
        std::printf("\nInstruction set %s, one thread, %d rounds: median (quartiles; goal)\n\n", target.name, rounds);
        std::printf("| format | figure |");
        for (const Size& size : sizes) {
            std::printf(" %d x %d |", size.width, size.height);
        }
        std::printf("\n|---|---|---|---|---|---|\n");
    }

    void add(const Contest& contest)
    {
        std::vector<Result> results;
        for (const Size& size : sizes) {
            results.push_back(measure(contest, size, m_rounds));
        }
        startRow(contest, "ours, ms");
        for (const Result& result : results) {
            std::printf(" %.3f |", result.milliseconds.median);
        }
        std::printf("\n");
        for (std::size_t peer = 0; peer < contest.peers.size(); ++peer) {
            startRow(contest, contest.peers[peer].name + " / ours");
            const Goals& goals = m_withAvx512 ? contest.peers[peer].goalsAvx512 : contest.peers[peer].goalsAvx2;
            for (std::size_t i = 0; i < sizes.size(); ++i) {
                const Figure& ratio = results[i].ratios[peer];
                printCell(ratio, m_goalsHold ? goals[i] : 0, ratio.median >= goals[i]);
            }
            std::printf("\n");
        }
        startRow(contest, "ours / memcpy of the result");
        for (std::size_t i = 0; i < sizes.size(); ++i) {
            const bool hasGoal = m_goalsHold && (i == 1 || i == 2);
            const double goal = hasGoal ? (m_withAvx512 ? contest.copiesAvx512 : contest.copiesAvx2) : 0;
            printCell(results[i].copies, goal, results[i].copies.median <= goal);
        }
        std::printf("\n");
        std::fflush(stdout);
    }

    [[nodiscard]] int missed() const { return m_missed; }

private:
    static void startRow(const Contest& contest, const std::string& figure)
    {
        std::printf("| %s | %s |", contest.format.c_str(), figure.c_str());
    }

    void printCell(const Figure& figure, double goal, bool met)
    {
        met = met || goal == 0;
        m_missed += met ? 0 : 1;
        std::printf(" %s |", cell(figure, goal, met).c_str());
    }

    bool m_withAvx512;
    bool m_goalsHold;
    int m_rounds;
    int m_missed = 0;
};

int usage()
{
    std::fprintf(stderr, "usage: benchmark_conversion [--target avx512|avx2|sse4|ssse3|plain] [--format NAME] "
                         "[--rounds N]\n");
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

    Table table(*target, rounds);
    for (const Contest& contest : contests()) {
        if (only.empty() || contest.format == only) {
            table.add(contest);
        }
    }
    printQuality();
    std::printf("\n%d goals missed\n", table.missed());
    return table.missed() == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

#include "cameralibs/util/BayerFilters.h"

#include <algorithm>

namespace orvo {

namespace {

inline std::uint8_t fromSixteenths(int sum)
{
    return static_cast<std::uint8_t>(std::clamp((sum + 8) >> 4, 0, 255));
}

} // namespace

void interpolateAtColour(const SiteRows& own, const SiteRows& beside, std::size_t sites, std::uint8_t* __restrict green,
                         std::uint8_t* __restrict opposite) noexcept
{
    const std::uint8_t* const here = own[2];
    for (std::size_t k = 0; k < sites; ++k) {
        const int far = own[0][k] + own[4][k] + here[k - 1] + here[k + 1];
        const int near = own[1][k] + own[3][k] + beside[2][k] + beside[2][k + 1];
        const int diagonal = beside[1][k] + beside[1][k + 1] + beside[3][k] + beside[3][k + 1];
        green[k] = fromSixteenths(8 * here[k] + 4 * near - 2 * far);
        opposite[k] = fromSixteenths(12 * here[k] + 4 * diagonal - 3 * far);
    }
}

void interpolateAtGreen(const SiteRows& own, const SiteRows& beside, std::size_t sites,
                        std::uint8_t* __restrict rowColour, std::uint8_t* __restrict columnColour) noexcept
{
    const std::uint8_t* const here = own[2];
    for (std::size_t k = 0; k < sites; ++k) {
        const int diagonal = beside[1][k] + beside[1][k + 1] + beside[3][k] + beside[3][k + 1];
        const int inRow = beside[2][k] + beside[2][k + 1];
        const int inColumn = own[1][k] + own[3][k];
        const int farInRow = here[k - 1] + here[k + 1];
        const int farInColumn = own[0][k] + own[4][k];
        rowColour[k] = fromSixteenths(10 * here[k] + 8 * inRow - 2 * (diagonal + farInRow) + farInColumn);
        columnColour[k] = fromSixteenths(10 * here[k] + 8 * inColumn - 2 * (diagonal + farInColumn) + farInRow);
    }
}

} // namespace orvo

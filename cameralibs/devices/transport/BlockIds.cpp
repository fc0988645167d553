#include "cameralibs/devices/transport/BlockIds.h"

#include <algorithm>

namespace cameralibs {

namespace {

constexpr std::uint64_t kHighestShortId = 65535;

/// No camera loses more images in a row. Larger steps could make the frame numbers overflow.
constexpr std::uint64_t kLargestStep = 1ULL << 32U;
constexpr std::uint64_t kHighestFirst = 1ULL << 62U;

/// The number of images from `lastId` to `id`; at least 1, because no image is delivered twice.
std::uint64_t step(std::uint64_t lastId, std::uint64_t id)
{
    if (lastId > kHighestShortId || id > kHighestShortId)
        return id > lastId && id - lastId <= kLargestStep ? id - lastId : 1;
    const auto distance = static_cast<std::int16_t>(id - lastId);
    if (distance < 1)
        return 1;
    const bool wrapped = id < lastId;
    // A 16-bit id wraps from 65535 to 1; there is no id 0.
    return static_cast<std::uint64_t>(distance - (wrapped && distance > 1 ? 1 : 0));
}

} // namespace

std::uint64_t BlockIds::next(std::uint64_t id)
{
    m_number = m_lastId ? m_number + step(*m_lastId, id) : std::min(id, kHighestFirst);
    m_lastId = id;
    return m_number;
}

} // namespace cameralibs

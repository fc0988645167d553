#include "cameralibs/devices/simulated/images/FrameSettings.h"

#include <tuple>

namespace cameralibs::simulated {

namespace {

auto members(const ImageSettings& s)
{
    return std::tie(s.sensorWidth, s.sensorHeight, s.color, s.format, s.packing, s.width, s.height, s.offsetX,
                    s.offsetY, s.binningX, s.binningY, s.reverseX, s.reverseY, s.pattern, s.red, s.green, s.blue,
                    s.blackLevel, s.gamma, s.useTable, s.table);
}

} // namespace

bool ImageSettings::operator==(const ImageSettings& other) const
{
    return members(*this) == members(other);
}

} // namespace cameralibs::simulated

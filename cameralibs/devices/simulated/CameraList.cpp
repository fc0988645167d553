#include "cameralibs/devices/simulated/CameraList.h"

#include "cameralibs/devices/simulated/registers/CameraModel.h"

#include <charconv>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

namespace cameralibs::simulated {

namespace {

constexpr std::size_t kMaxBuiltIn = 100;

std::optional<std::size_t> number(std::string_view part)
{
    std::size_t value = 0;
    const char* const end = part.data() + part.size();
    const auto [stop, error] = std::from_chars(part.data(), end, value);
    if (error != std::errc() || stop != end || value > kMaxBuiltIn)
        return std::nullopt;
    return value;
}

void readPart(const std::string& part, CameraList& list)
{
    if (const auto count = number(part)) {
        list.builtIn = *count;
    } else if (auto file = readDescriptionFile(part)) {
        list.files.push_back(std::move(*file));
    } else {
        std::fprintf(stderr,
                     "ORVO_SIMULATED_CAMERAS: \"%s\" is neither a number of cameras from 0 to %zu nor a description "
                     "file that can be read\n",
                     part.c_str(), kMaxBuiltIn);
    }
}

} // namespace

CameraList readCameraList(const char* value)
{
    CameraList list;
    list.builtIn = kCameraModels.size();
    if (value == nullptr || *value == '\0')
        return list;
    for (std::string_view rest = value;;) {
        const std::size_t comma = rest.find(',');
        readPart(std::string(rest.substr(0, comma)), list);
        if (comma == std::string_view::npos)
            return list;
        rest.remove_prefix(comma + 1);
    }
}

} // namespace cameralibs::simulated

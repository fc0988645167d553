#include "check/Report.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iomanip>
#include <iterator>
#include <sstream>

namespace check {

namespace {

using nlohmann::json;

struct SeverityName {
    Severity severity;
    const char* inText;
    const char* inJson;
};

constexpr SeverityName kSeverityNames[] = {
    {Severity::good, "ok", "ok"},
    {Severity::note, "note", "note"},
    {Severity::wrong, "WRONG", "wrong"},
    {Severity::failed, "FAILED", "failed"},
};

const SeverityName& nameOf(Severity severity)
{
    return *std::find_if(std::begin(kSeverityNames), std::end(kSeverityNames),
                         [&](const SeverityName& name) { return name.severity == severity; });
}

auto countOf(const std::vector<Line>& lines, Severity severity)
{
    return std::count_if(lines.begin(), lines.end(), [&](const Line& line) { return line.severity == severity; });
}

std::string printable(const std::string& text)
{
    std::ostringstream result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= ' ' && byte < 0x7f) {
            result << c;
        } else {
            result << "\\x" << std::hex << std::setw(2) << std::setfill('0') << unsigned{byte};
        }
    }
    return result.str();
}

const char* nameOf(Orvo::CAM_LINK link)
{
    return link == Orvo::CAM_LINK_USB3_VISION   ? "USB3 Vision"
           : link == Orvo::CAM_LINK_GIGE_VISION ? "GigE Vision"
                                                : "other";
}

json jsonOf(const StreamResult& stream)
{
    const double seconds = stream.seconds > 0 ? stream.seconds : 1;
    json result = {
        {"status", stream.status},
        {"images", stream.images},
        {"lost", stream.lost},
        {"incomplete", stream.incomplete},
        {"seconds", stream.seconds},
        {"imagesPerSecond", static_cast<double>(stream.images) / seconds},
        {"bytesPerSecond", static_cast<double>(stream.bytes) / seconds},
    };
    if (stream.packetSize)
        result["packetSize"] = *stream.packetSize;
    return result;
}

json jsonOf(const Camera& camera)
{
    json result = {
        {"link", nameOf(camera.link)},   {"vendor", camera.vendor},     {"model", camera.model},
        {"serialNumber", camera.serial}, {"userName", camera.userName}, {"listed", camera.listed},
    };
    if (camera.answer) {
        result["address"] = textOf(camera.answer->address);
        result["interface"] = camera.answer->interface;
    }
    if (camera.opened)
        result["openStatus"] = *camera.opened;
    if (camera.packetSize)
        result["packetSize"] = *camera.packetSize;
    if (camera.stream)
        result["stream"] = jsonOf(*camera.stream);
    return result;
}

} // namespace

int exitStatusOf(const std::vector<Line>& lines)
{
    if (countOf(lines, Severity::failed) != 0)
        return 2;
    return countOf(lines, Severity::wrong) != 0 ? 1 : 0;
}

void writeText(std::ostream& to, const std::vector<Line>& lines)
{
    for (const Line& line : lines) {
        to << std::left << std::setw(7) << nameOf(line.severity).inText << printable(line.subject) << ": "
           << printable(line.text);
        if (!line.cure.empty())
            to << ". Cure: " << printable(line.cure);
        to << '\n';
    }
    const auto wrong = countOf(lines, Severity::wrong);
    if (countOf(lines, Severity::failed) != 0) {
        to << (wrong == 0 ? "Could not look at everything; nothing else is wrong.\n"
                          : "Could not look at everything.\n");
    } else if (wrong == 0) {
        to << "Nothing wrong was found.\n";
    }
    if (wrong != 0)
        to << wrong << (wrong == 1 ? " finding.\n" : " findings.\n");
}

void writeJson(std::ostream& to, const std::vector<Line>& lines, const std::vector<Camera>& cameras,
               const std::string& version)
{
    json report = {
        {"version", version},
        {"status", exitStatusOf(lines)},
        {"lines", json::array()},
        {"cameras", json::array()},
    };
    for (const Line& line : lines) {
        report["lines"].push_back({
            {"check", line.check},
            {"severity", nameOf(line.severity).inJson},
            {"subject", line.subject},
            {"text", line.text},
            {"cure", line.cure},
        });
    }
    for (const Camera& camera : cameras)
        report["cameras"].push_back(jsonOf(camera));
    // Texts of a camera may not be UTF-8.
    to << report.dump(2, ' ', true, json::error_handler_t::replace) << '\n';
}

} // namespace check

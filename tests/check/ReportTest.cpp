#include "tests/check/Views.h"

#include <nlohmann/json.hpp>

#include <sstream>

using namespace check;
using ::testing::HasSubstr;

namespace {

std::string textOf(const Lines& lines)
{
    std::ostringstream text;
    writeText(text, lines);
    return text.str();
}

nlohmann::json jsonOf(const Lines& lines, const std::vector<Camera>& cameras = {})
{
    std::ostringstream text;
    writeJson(text, lines, cameras, "1.2.3");
    return nlohmann::json::parse(text.str());
}

} // namespace

TEST(ReportTest, StatusIsThatOfTheGravestLine)
{
    EXPECT_EQ(exitStatusOf({}), 0);
    EXPECT_EQ(exitStatusOf({{Severity::good, "", ""}, {Severity::note, "", ""}}), 0);
    EXPECT_EQ(exitStatusOf({{Severity::good, "", ""}, {Severity::wrong, "", ""}}), 1);
    EXPECT_EQ(exitStatusOf({{Severity::failed, "", ""}, {Severity::wrong, "", ""}}), 2);
}

TEST(ReportTest, LinesHaveTheirCures)
{
    EXPECT_EQ(textOf({{Severity::good, "this", "is so"}, {Severity::wrong, "that", "is not", "do so"}}),
              "ok     this: is so\nWRONG  that: is not. Cure: do so\n1 finding.\n");
    EXPECT_EQ(textOf({{Severity::note, "this", "is so"}}), "note   this: is so\nNothing wrong was found.\n");
    EXPECT_EQ(textOf({{Severity::failed, "this", "is hidden"}}),
              "FAILED this: is hidden\nCould not look at everything; nothing else is wrong.\n");
    EXPECT_THAT(textOf({{Severity::failed, "this", "is hidden"}, {Severity::wrong, "that", "is not", "do so"}}),
                HasSubstr("Could not look at everything.\n1 finding.\n"));
}

TEST(ReportTest, TextsOfCamerasCannotCommandTheTerminal)
{
    const std::string text = textOf({{Severity::good, "evil\x1b[2J\r\nWRONG", "\x7f\xc2\x9b"}});
    EXPECT_EQ(text, "ok     evil\\x1b[2J\\x0d\\x0aWRONG: \\x7f\\xc2\\x9b\nNothing wrong was found.\n");
}

TEST(ReportTest, JsonHasLinesAndCameras)
{
    Camera camera = workingCamera("\xff\x1b");
    camera.stream.emplace();
    camera.stream->images = 50;
    camera.stream->seconds = 2;
    camera.stream->bytes = 1000;
    camera.stream->packetSize = 1400;
    const auto report = jsonOf({{Severity::wrong, "this", "is so", "do", "mtu"}}, {camera});
    EXPECT_EQ(report["version"], "1.2.3");
    EXPECT_EQ(report["status"], 1);
    EXPECT_EQ(report["lines"][0],
              nlohmann::json(
                  {{"check", "mtu"}, {"severity", "wrong"}, {"subject", "this"}, {"text", "is so"}, {"cure", "do"}}));
    const auto& shown = report["cameras"][0];
    EXPECT_EQ(shown["serialNumber"], "\xef\xbf\xbd\x1b") << "not UTF-8";
    EXPECT_EQ(shown["address"], "192.168.5.20");
    EXPECT_EQ(shown["openStatus"], 0);
    EXPECT_EQ(shown["stream"]["imagesPerSecond"], 25.0);
    EXPECT_EQ(shown["stream"]["bytesPerSecond"], 500.0);
    EXPECT_EQ(shown["stream"]["packetSize"], 1400);
}

TEST(ReportTest, JsonHasLinkAndPacketSizeOfEachCamera)
{
    Camera other = workingCamera("S1");
    other.link = Orvo::CAM_LINK_SIMULATED;
    other.packetSize = 1400;
    const auto report = jsonOf({}, {listedAs(workingDevice()), workingCamera(), other});
    EXPECT_FALSE(report["cameras"][1].contains("packetSize"));
    EXPECT_EQ(report["cameras"][2]["packetSize"], 1400);
    EXPECT_EQ(report["cameras"][0]["link"], "USB3 Vision");
    EXPECT_EQ(report["cameras"][1]["link"], "GigE Vision");
    EXPECT_EQ(report["cameras"][2]["link"], "other");
}

TEST(ReportTest, JsonIsPlainAscii)
{
    std::ostringstream text;
    writeJson(text, {{Severity::good, "\x1b\xc2\x9b", ""}}, {}, "1");
    EXPECT_THAT(text.str(), HasSubstr("\"\\u001b\\u009b\""));
}

#include "tests/check/ProgramRun.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>

#include <sys/wait.h>

ProgramRun runCheck(const std::string& options, const std::string& before)
{
    const std::string command = before + " " CHECK_PROGRAM " " + options + " 2>&1";
    ProgramRun run;
    std::FILE* const pipe = ::popen(command.c_str(), "r");
    EXPECT_NE(pipe, nullptr) << command;
    if (pipe == nullptr)
        return run;
    std::array<char, 4096> part{};
    std::size_t size = 0;
    while ((size = std::fread(part.data(), 1, part.size(), pipe)) > 0)
        run.output.append(part.data(), size);
    const int status = ::pclose(pipe);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

nlohmann::json ProgramRun::report() const
{
    auto report = nlohmann::json::parse(output, nullptr, false);
    EXPECT_TRUE(report.is_object()) << output;
    return report.is_object() ? report : nlohmann::json::object();
}

std::vector<nlohmann::json> ProgramRun::linesOf(const std::string& check) const
{
    std::vector<nlohmann::json> lines;
    for (const auto& line : report().value("lines", nlohmann::json::array())) {
        if (line["check"] == check)
            lines.push_back(line);
    }
    return lines;
}

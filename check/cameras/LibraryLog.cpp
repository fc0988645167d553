#include "check/cameras/LibraryLog.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <sstream>
#include <string_view>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace check {

namespace {

constexpr const char* kVariable = "ORVO_CAMERA_LOG";

constexpr std::string_view kWarning = "warning: ";

// How the library begins the warnings about its searches.
constexpr std::string_view kFailures[] = {"No real cameras are listed", "The search for cameras ended early"};

} // namespace

LibraryLog::LibraryLog()
    : m_wanted(std::getenv(kVariable) != nullptr) // NOLINT(concurrency-mt-unsafe)
    , m_file(::memfd_create("log", MFD_CLOEXEC))
{
    if (m_file < 0)
        return;
    m_standard = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
    (void)::dup2(m_file, STDERR_FILENO);
    if (!m_wanted)
        ::setenv(kVariable, "warning", 0); // NOLINT(concurrency-mt-unsafe)
}

LibraryLog::~LibraryLog()
{
    if (m_file < 0)
        return;
    const std::string log = m_wanted ? text() : std::string();
    if (m_standard >= 0) {
        (void)::dup2(m_standard, STDERR_FILENO);
        ::close(m_standard);
    } else {
        ::close(STDERR_FILENO);
    }
    ::close(m_file);
    std::cerr << log;
}

std::vector<std::string> LibraryLog::failedSearches() const
{
    std::vector<std::string> failures;
    std::istringstream lines(m_file < 0 ? std::string() : text());
    for (std::string line; std::getline(lines, line);) {
        // A line begins with the name of the program and the time.
        const std::size_t at = line.find(kWarning);
        const std::string text = at == std::string::npos ? "" : line.substr(at + kWarning.size());
        if (std::any_of(std::begin(kFailures), std::end(kFailures),
                        [&](std::string_view failure) { return text.rfind(failure, 0) == 0; }))
            failures.push_back(text);
    }
    return failures;
}

std::string LibraryLog::text() const
{
    std::string text;
    std::array<char, 4096> part{};
    ssize_t size = 0;
    while ((size = ::pread(m_file, part.data(), part.size(), static_cast<off_t>(text.size()))) > 0)
        text.append(part.data(), static_cast<std::size_t>(size));
    return text;
}

} // namespace check

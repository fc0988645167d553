#include "tests/cameralibs/transport/gige/Watched.h"

#include "camera/StatusName.h"

#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>

using namespace Orvo;

namespace {

/// What a busy machine may add.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::chrono::seconds kMargin{15};
#else
constexpr std::chrono::seconds kMargin{4};
#endif

constexpr std::chrono::seconds kPatience{90};

const char* s_operation = "";

void tellAndEnd(int)
{
    for (const char* text : {"FAILED: ", s_operation, " does not come back\n"})
        (void)!::write(STDOUT_FILENO, text, std::strlen(text));
    std::abort(); // which a fuzzer records
}

} // namespace

bool hasName(CAM_API_STATUS status)
{
    return std::strcmp(cameraStatusName(status), "UNKNOWN") != 0;
}

CAM_API_STATUS Watched::call(const char* what, std::chrono::seconds limit,
                             const std::function<CAM_API_STATUS()>& operation)
{
    s_operation = what;
    (void)std::signal(SIGALRM, tellAndEnd);
    (void)::alarm(static_cast<unsigned>((limit + kPatience).count()));
    const auto begin = std::chrono::steady_clock::now();
    const CAM_API_STATUS status = operation();
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    (void)::alarm(0);
    if (taken > limit + kMargin)
        complain("%s takes %.1f s", what, taken.count());
    if (!hasName(status))
        complain("%s gives %u, which is no status", what, status);
    return status;
}

void Watched::complain(const char* format, ...)
{
    ++m_complaints;
    std::fputs("FAILED: ", stdout);
    std::va_list arguments;
    va_start(arguments, format);
    std::vprintf(format, arguments);
    va_end(arguments);
    std::fputs("\n", stdout);
    std::fflush(stdout);
}

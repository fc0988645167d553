// Preloaded into the viewer by the end-to-end tests: operates features of the camera that the viewer has open. It reads
// one command per line from the FIFO that REMOTE_CONTROL names.
//
//     SimulationUnplug            executes the command
//     TriggerMode=On              sets the enumeration

#include "tests/support/OpenedCamera.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

namespace {

void obey(const std::string& line)
{
    const auto equals = line.find('=');
    const Orvo::CAM_API_STATUS status =
        equals == std::string::npos ? opened::execute(line.c_str())
                                    : opened::set(line.substr(0, equals).c_str(), line.substr(equals + 1).c_str());
    if (status != Orvo::CAM_API_STS_SUCCESS)
        std::fprintf(stderr, "remote control: %s gives %u\n", line.c_str(), status);
}

[[gnu::constructor]] void listen()
{
    const char* const path = std::getenv("REMOTE_CONTROL"); // NOLINT(concurrency-mt-unsafe): no other thread yet
    if (!path)
        return;
    // Runs until the program exits; nothing waits for it.
    std::thread([fifo = std::string(path)] {
        for (;;) {
            std::ifstream lines(fifo);
            for (std::string line; std::getline(lines, line);)
                obey(line);
        }
    }).detach();
}

} // namespace

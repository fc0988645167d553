// A camera of the tests in a process of its own. Prints a line once it is on the network, and ends with its input.

#include "tests/cameralibs/devices/gige/GigeCamera.h"

#include <cstdio>
#include <exception>
#include <unistd.h>

int main(int count, char** arguments)
try {
    gige::CameraSettings settings;
    for (int i = 1; i + 1 < count; i += 2) {
        const std::string option = arguments[i];
        const std::string value = arguments[i + 1];
        if (option == "--address") {
            settings.address = value;
        } else if (option == "--serial") {
            settings.serialNumber = value;
        } else if (option == "--largest-packet") {
            settings.largestPacket = static_cast<std::uint32_t>(std::stoul(value));
        } else if (option == "--lose-every") {
            settings.loseEvery = static_cast<std::uint32_t>(std::stoul(value));
        } else {
            std::fprintf(stderr, "%s: unknown option %s\n", arguments[0], option.c_str());
            return 2;
        }
    }
    gige::Behaviour honest;
    gige::GigeCamera camera(settings, honest);
    std::puts("honest");
    std::fflush(stdout);
    camera.run(STDIN_FILENO);
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", arguments[0], error.what());
    return 1;
}

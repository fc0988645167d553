// A camera of the tests in a process of its own. Prints a line once it is on the network, and ends with its input.
//
// --address A --serial S           what it is known by
// --foreign-address A              where packets from another address come from
// --largest-packet N               that gets through its network
// --resend no                      it sends no packets again
// --lose-every N                   every n-th data packet is only sent when it is asked for again
// --description zip                zipped
// --url URL                        where it says that its description is
// --discovery-answer N             so many bytes of its answer to a search
// --delay N                        it answers every command so many milliseconds late,
// --pending yes                    and asks for patience meanwhile
// --liar SEED | --stranger SEED    it lies, or somebody else does who sends from another address
// --lie NAME                       this lie, instead of those that the seed chooses

#include "tests/cameralibs/transport/gige/GigeCamera.h"
#include "tests/cameralibs/transport/gige/Liar.h"
#include "tests/cameralibs/transport/gige/Slowness.h"

#include <cstdio>
#include <exception>
#include <memory>
#include <unistd.h>

int main(int count, char** arguments)
try {
    gige::CameraSettings settings;
    gige::Slowness::Delay delay;
    std::optional<gige::Liars> liar;
    std::uint64_t seed = 0;
    std::string lie;
    for (int i = 1; i + 1 < count; i += 2) {
        const std::string option = arguments[i];
        const std::string value = arguments[i + 1];
        if (option == "--address") {
            settings.address = value;
        } else if (option == "--foreign-address") {
            settings.foreignAddress = value;
        } else if (option == "--serial") {
            settings.serialNumber = value;
        } else if (option == "--largest-packet") {
            settings.largestPacket = static_cast<std::uint32_t>(std::stoul(value));
        } else if (option == "--resend") {
            settings.resends = value != "no";
        } else if (option == "--lose-every") {
            settings.loseEvery = static_cast<std::uint32_t>(std::stoul(value));
        } else if (option == "--description") {
            settings.zipped = value == "zip";
        } else if (option == "--url") {
            settings.url = value;
        } else if (option == "--discovery-answer") {
            settings.discoveryAnswer = std::stoul(value);
        } else if (option == "--delay") {
            delay.time = std::chrono::milliseconds(std::stoul(value));
        } else if (option == "--pending") {
            delay.pending = value == "yes";
        } else if (option == "--liar" || option == "--stranger") {
            liar = option == "--liar" ? gige::Liars::camera : gige::Liars::stranger;
            seed = std::stoull(value);
        } else if (option == "--lie") {
            lie = value;
        } else {
            std::fprintf(stderr, "%s: unknown option %s\n", arguments[0], option.c_str());
            return 2;
        }
    }
    gige::Slowness honest(delay);
    std::optional<gige::Liar> liarsBehaviour;
    if (liar && lie.empty()) {
        liarsBehaviour.emplace(*liar, seed);
    } else if (liar) {
        liarsBehaviour.emplace(*liar, seed, lie);
    }
    gige::GigeCamera camera(settings, liarsBehaviour ? static_cast<gige::Behaviour&>(*liarsBehaviour) : honest);
    std::puts(liarsBehaviour ? liarsBehaviour->description().c_str() : "honest");
    std::fflush(stdout);
    camera.run(STDIN_FILENO);
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", arguments[0], error.what());
    return 1;
}

// The GigE Vision camera of the tests as a program. Prints a line once it is reachable, and exits at the end of its
// input.
//
// --address A --serial S           its address and serial number
// --foreign-address A              the source of packets from another address
// --largest-packet N               the largest packet that its network passes
// --resend no                      it does not resend packets
// --lose-every N                   every n-th data packet is only sent on a resend request
// --description zip                its description is zipped
// --url URL                        the URL of its description
// --discovery-answer N             the size of its answer to a search
// --answers-to-others N            it answers so many commands of clients that do not control it
// --delay N                        it answers every command N ms late
// --pending yes                    and sends pending acknowledgements meanwhile
// --liar SEED | --stranger SEED    it sends wrong packets, or another host does
// --lie NAME                       a certain kind of wrong packets, instead of those that the seed selects

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
        } else if (option == "--answers-to-others") {
            settings.answersToOthers = static_cast<std::uint32_t>(std::stoul(value));
        } else if (option == "--delay") {
            delay.time = std::chrono::milliseconds(std::stoul(value));
        } else if (option == "--pending") {
            using Pending = gige::Slowness::PendingAnswers;
            delay.pending = value == "yes" ? Pending::periodic : Pending::none;
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

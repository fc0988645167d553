#include "check/Checks.h"

#include <cstdio>
#include <exception>
#include <iostream>
#include <optional>
#include <string>

#include <getopt.h>

namespace {

constexpr int kCouldNotLook = 2;

constexpr const char* kHelp = R"(Usage: orvocam-check [--stream] [--json]
Tells why no camera is listed or no image comes. Prints a line for each check,
with the cure if something is wrong.

  --stream   stream from each camera for two seconds
  --json     print a JSON object instead of lines
  --help     print this text
  --version  print the version

The exit status is 0 if nothing is wrong, 1 with findings, and 2 if something
could not be checked, even with findings.
)";

struct Options {
    check::Streaming streaming = check::Streaming::no;
    bool json = false;
    bool help = false;
    bool version = false;
    std::string root; ///< for tests: a folder that contains their /sys, /proc, /dev and /etc
};

/// No value if the options are invalid; then the reason has been printed.
std::optional<Options> optionsOf(int count, char** arguments)
{
    enum Option { stream = 1, json, help, version, root };
    constexpr option kOptions[] = {
        {"stream", no_argument, nullptr, stream},   {"json", no_argument, nullptr, json},
        {"help", no_argument, nullptr, help},       {"version", no_argument, nullptr, version},
        {"root", required_argument, nullptr, root}, {nullptr, 0, nullptr, 0},
    };
    Options options;
    int found = 0;
    // There is only one thread so far.
    while ((found = ::getopt_long(count, arguments, "", kOptions, nullptr)) != -1) { // NOLINT(concurrency-mt-unsafe)
        switch (found) {
        case stream:
            options.streaming = check::Streaming::yes;
            break;
        case json:
            options.json = true;
            break;
        case help:
            options.help = true;
            break;
        case version:
            options.version = true;
            break;
        case root:
            options.root = optarg;
            break;
        default: // getopt_long has printed which option is invalid
            return {};
        }
    }
    if (optind < count) {
        std::fprintf(stderr, "%s: unexpected argument '%s'\n", arguments[0], arguments[optind]);
        return {};
    }
    return options;
}

int look(const Options& options)
{
    const check::SystemFiles files(options.root);
    check::View view;
    view.machine = check::readMachine(files);
    view.search = check::searchCameras(view.machine.interfaces.value_or(std::vector<check::Interface>()), files,
                                       options.streaming);
    const check::Lines lines = check::runChecks(view);
    if (options.json) {
        check::writeJson(std::cout, lines, view.search.cameras, ORVO_CHECK_VERSION);
    } else {
        check::writeText(std::cout, lines);
    }
    return check::exitStatusOf(lines);
}

} // namespace

int main(int count, char** arguments)
try {
    const auto options = optionsOf(count, arguments);
    if (!options) {
        std::fprintf(stderr, "Try '%s --help'.\n", arguments[0]);
        return kCouldNotLook;
    }
    int status = 0;
    if (options->help) {
        std::cout << kHelp;
    } else if (options->version) {
        std::cout << "orvocam-check " ORVO_CHECK_VERSION "\n";
    } else {
        status = look(*options);
    }
    if (!std::cout.flush()) {
        std::fprintf(stderr, "%s: cannot write the report\n", arguments[0]);
        return kCouldNotLook;
    }
    return status;
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", arguments[0], error.what());
    return kCouldNotLook;
}

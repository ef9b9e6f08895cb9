#include "simulation.h"

#include "scene/scene.h"
#include "wire/tapdevice.h"

#include <array>
#include <cstdio>
#include <exception>

#include <getopt.h>

namespace {

enum ExitCode { Ended = 0, Failed = 1, WrongScene = 2, WrongPlace = 3, NoTap = 4 };

constexpr char usage[] =
    "usage: gige-simulator SCENE.json\n"
    "Simulates the GigE Vision cameras of a scene until SIGTERM or SIGINT.\n"
    "Runs only in a private network namespace, for example: unshare -Urn gige-simulator SCENE.json\n"
    "\n"
    "  -h, --help     show this help\n"
    "  -V, --version  show the version\n"
    "\n"
    "SIGUSR1 prints the state of every camera.\n";

int fail(ExitCode code, const std::string& text)
{
    std::fprintf(stderr, "gige-simulator: %s\n", text.c_str());
    return code;
}

int play(const std::string& file)
{
    try {
        sim::Simulation simulation(sim::loadScene(file));
        simulation.run();
        return Ended;
    } catch (const sim::SceneError& error) {
        return fail(WrongScene, file + ": " + error.what());
    } catch (const sim::WrongNamespace& error) {
        return fail(WrongPlace, error.what());
    } catch (const wire::NoTapDevices& error) {
        return fail(NoTap, error.what());
    } catch (const std::exception& error) {
        return fail(Failed, error.what());
    }
}

} // namespace

int main(int argc, char** argv)
{
    constexpr std::array<option, 3> options{{{"help", no_argument, nullptr, 'h'},
                                             {"version", no_argument, nullptr, 'V'},
                                             {nullptr, 0, nullptr, 0}}};
    // NOLINTNEXTLINE(concurrency-mt-unsafe): there is only one thread
    for (int chosen = 0; (chosen = ::getopt_long(argc, argv, "hV", options.data(), nullptr)) != -1;) {
        switch (chosen) {
        case 'h':
            std::fputs(usage, stdout);
            return Ended;
        case 'V':
            std::puts("gige-simulator " LANVIC_VERSION);
            return Ended;
        default: // getopt_long has printed what is wrong
            std::fputs(usage, stderr);
            return WrongScene;
        }
    }
    if (argc - optind != 1) {
        std::fputs(usage, stderr);
        return WrongScene;
    }
    return play(argv[optind]);
}

#include "simulation.h"

#include "scene/scene.h"
#include "wire/tapdevice.h"

#include <cstdio>
#include <exception>

namespace {

enum ExitCode { Ended = 0, Failed = 1, WrongScene = 2, WrongPlace = 3, NoTap = 4 };

int complain(ExitCode code, const std::string& text)
{
    std::fprintf(stderr, "gige-simulator: %s\n", text.c_str());
    return code;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: gige-simulator SCENE.json\n");
        return WrongScene;
    }
    const std::string file = argv[1];
    try {
        sim::Simulation simulation(sim::loadScene(file));
        simulation.run();
        return Ended;
    } catch (const sim::SceneError& error) {
        return complain(WrongScene, file + ": " + error.what());
    } catch (const sim::WrongNamespace& error) {
        return complain(WrongPlace, error.what());
    } catch (const wire::NoTapDevices& error) {
        return complain(NoTap, error.what());
    } catch (const std::exception& error) {
        return complain(Failed, error.what());
    }
}

// kestrix-plant: plays a plant of devices over real sockets and a real serial line.
#include "devices/simulation/PlantModel.h"
#include "devices/simulation/PlantServer.h"
#include "platform/CommandInput.h"
#include "platform/StopSignals.h"

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <chrono>
#include <cstdio>
#include <limits>
#include <string>
#include <vector>

namespace {

constexpr int kBadInput = 2;
// How soon signals and commands are looked at; frames don't wait for it.
constexpr std::chrono::milliseconds kSlice{50};

struct Settings {
    std::string plantFile;
    zr::PlantOptions plant;
    std::string truth;
    std::string readyFile;
    std::string linkFolder = ".";
    double seconds = 0.0;  // 0: until a signal
    bool untilEndOfInput = false;
};

void Define(CLI::App& app, Settings& settings)
{
    app.add_option("PLANTFILE", settings.plantFile, "Description of the plant, see docs/plant.md")->required();
    app.add_option("--truth", settings.truth, "Write what is served, and when, to this CSV file");
    app.add_option("--speed", settings.plant.speed, "Measured minutes that pass in a minute (1)")
        ->check(CLI::Range(0.0, zr::PlantOptions::kMaxSpeed));
    app.add_option("--start", settings.plant.start,
                   "Measured minute to begin with, YYYY-MM-DDThh:mm (the present time of day)");
    app.add_option("--fault", settings.plant.faults,
                   "Switch on a fault, as \"DEVICE late 1500 0.5\": device or all, then mute, late [MILLISECONDS], "
                   "doubled, corrupt or cut, then the probability; may be repeated")
        ->allow_extra_args(false);
    app.add_option("--seed", settings.plant.seed, "Of the random numbers of the faults (1)");
    app.add_option("--for", settings.seconds, "End after so many seconds")->check(CLI::Range(0.0, 1e9));
    app.add_option("--ready-file", settings.readyFile,
                   "Write the endpoints to this file once all are open, then a line \"ready\"");
    app.add_option("--link-dir", settings.linkFolder, "Folder of the links to the serial lines (.)");
    app.add_flag("--until-eof", settings.untilEndOfInput, "End when standard input ends");
}

void PrintLine(const std::string& line)
{
    fmt::print("{}\n", line);
    std::fflush(stdout);
}

void Warn(const std::string& line)
{
    fmt::print(stderr, "kestrix-plant: {}\n", line);
}

bool WriteReadyFile(const std::string& path, const std::vector<std::string>& endpoints)
{
    std::FILE* file = std::fopen(path.c_str(), "w");
    if (file == nullptr) {
        return false;
    }
    for (const std::string& endpoint : endpoints) {
        fmt::print(file, "{}\n", endpoint);
    }
    fmt::print(file, "ready\n");
    return std::fclose(file) == 0;
}

bool Begin(const Settings& settings, zr::PlantModel& plant, zr::PlantServer& server)
{
    std::string error;
    if (!server.Open(settings.linkFolder, error)) {
        Warn(error);
        return false;
    }
    for (const auto* warnings : {&plant.Warnings(), &server.Warnings()}) {
        for (const std::string& warning : *warnings) {
            Warn(warning);
        }
    }
    for (const std::string& endpoint : server.Endpoints()) {
        PrintLine(endpoint);
    }
    PrintLine("ready");
    if (!settings.readyFile.empty() && !WriteReadyFile(settings.readyFile, server.Endpoints())) {
        Warn(settings.readyFile + ": can't be written");
        return false;
    }
    return true;
}

void Obey(const std::vector<std::string>& commands, zr::PlantModel& plant)
{
    for (const std::string& command : commands) {
        std::string answer;
        const bool understood = command.empty() || plant.Command(command, answer);
        if (!command.empty()) {
            PrintLine((understood ? "ok: " : "error: ") + answer);
        }
    }
}

void Serve(const Settings& settings, zr::StopSignals& signals, zr::PlantModel& plant, zr::PlantServer& server)
{
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    zr::CommandInput input;
    for (;;) {
        server.RunFor(kSlice);
        const zr::StopSignal signal = signals.WaitForSignal(std::chrono::milliseconds(0));
        const bool isOver =
            settings.seconds > 0.0 && Clock::now() - start >= std::chrono::duration<double>(settings.seconds);
        std::vector<std::string> commands;
        const bool isOpen = input.Take(commands);
        Obey(commands, plant);
        const bool isAsked = signal == zr::StopSignal::Interrupt || signal == zr::StopSignal::Terminate ||
                             signal == zr::StopSignal::HangUp;
        if (isAsked || isOver || (settings.untilEndOfInput && !isOpen)) {
            return;
        }
    }
}

}  // namespace

int main(int argc, char** argv)
{
    CLI::App app("Plays a plant of metering devices that replay measured values.", "kestrix-plant");
    Settings settings;
    app.allow_windows_style_options(false);  // one command line on every system, and paths that begin with a slash
    Define(app, settings);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : kBadInput;
    }
    if (!settings.truth.empty()) {
        settings.plant.truth = settings.truth;
    }
    // Before the endpoints are told: whoever reads them may send a signal at once.
    zr::StopSignals signals;
    zr::PlantModel plant;
    std::string error;
    if (!plant.Load(settings.plantFile, settings.plant, error)) {
        Warn(error);
        return kBadInput;
    }
    zr::PlantServer server(plant);
    if (!Begin(settings, plant, server)) {
        return kBadInput;
    }
    Serve(settings, signals, plant, server);
    return 0;
}

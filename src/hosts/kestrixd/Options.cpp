#include "hosts/kestrixd/Options.h"

#include "dde/DdeIds.h"
#include "platform/FileReplace.h"
#include "siblings/tools/Utf.h"

#include <charconv>
#include <CLI/CLI.hpp>

namespace zr::service {
namespace {

// "N=PATH" with N from 1 up; an explanation on failure, empty on success.
std::string AddPort(const std::string& text, std::map<int, std::string>& ports)
{
    const std::size_t equals = text.find('=');
    int number = 0;
    if (equals != std::string::npos) {
        std::from_chars(text.data(), text.data() + equals, number);
    }
    if (number < 1 || equals + 1 >= text.size()) {
        return "--port: '" + text + "' is not NUMBER=DEVICE, as in 1=/dev/ttyUSB0";
    }
    ports[number] = text.substr(equals + 1);
    return {};
}

}  // namespace

ParsedOptions ParseOptions(int argc, char** argv)
{
    Options options;
    options.serviceName = Utf16ToUtf8(zr::dde::kDefaultService);
    long seconds = 0;
    long update = std::chrono::milliseconds(zr::dde::kDefaultUpdatePeriod).count();
    bool publishesNothing = false;
    std::vector<std::string> ports;
    std::string document;
    std::string dataFolder;
    CLI::App app(
        "Supervises the devices of a configuration document: polls them, shows their values and reports what "
        "goes wrong on standard error. Ends on SIGINT or SIGTERM; SIGHUP reads the document again.",
        "kestrixd");
    app.allow_windows_style_options(false);  // one command line on every system, and paths that begin with a slash
    app.add_option("CONFIG", document, "the configuration document (XML)")->required();
    app.add_option("--data", dataFolder, "folder of the filter files (default: the user's data folder)");
    CLI::Option* span = app.add_option("--for", seconds, "supervise that many seconds, then end")
                            ->type_name("SECONDS")
                            ->check(CLI::Range(1L, 1000000000L));
    app.add_flag("--json", options.json, "print the figures of the run as one line of JSON at the end");
    app.add_option("--port", ports, "device file of serial port N; may be given several times")
        ->type_name("N=DEVICE")
        ->allow_extra_args(false);
    app.add_option("--service", options.serviceName, "name under which the values are published")
        ->capture_default_str();
    app.add_option("--update", update, "milliseconds between two looks for changed values")
        ->capture_default_str()
        ->check(CLI::Range(10L, 60000L));
    app.add_flag("--no-publication", publishesNothing, "publish nothing");
    app.footer(
        "Exit status: 0 ended as asked, 2 bad input or command line, 3 another process supervises the document.");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return {std::nullopt, app.exit(error) == 0 ? 0 : 2};
    }
    options.document = PathFromText(document);
    options.dataFolder = PathFromText(dataFolder);
    options.updatePeriod = std::chrono::milliseconds(update);
    if (publishesNothing) {
        options.serviceName.clear();
    }
    if (*span) {
        options.span = std::chrono::seconds(seconds);
    }
    for (const std::string& text : ports) {
        if (const std::string problem = AddPort(text, options.ports); !problem.empty()) {
            std::cerr << problem << '\n';
            return {std::nullopt, 2};
        }
    }
    return {options, 0};
}

}  // namespace zr::service

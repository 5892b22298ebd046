#include "hosts/supervision/SupervisionArguments.h"

#include "dde/DdeIds.h"
#include "platform/FileReplace.h"
#include "siblings/tools/Utf.h"

#include <charconv>
#include <CLI/CLI.hpp>

namespace zr::supervision {
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

SupervisionArguments::SupervisionArguments(CLI::App& app) : m_updatePeriod(dde::kDefaultUpdatePeriod)
{
    m_options.serviceName = Utf16ToUtf8(dde::kDefaultService);
    app.allow_windows_style_options(false);  // one command line on every system, and paths that begin with a slash
    app.add_option("CONFIG", m_document, "the configuration document (XML)")->required();
    app.add_option("--data", m_dataFolder,
                   "folder of the filter files and of logged data (default: the user's data folder)");
    app.add_option("--port", m_ports, "device file of serial port N; may be given several times")
        ->type_name("N=DEVICE")
        ->allow_extra_args(false);
    app.add_option("--service", m_options.serviceName, "name under which the values are published")
        ->capture_default_str();
    app.add_option("--update", m_updatePeriod, "milliseconds between two looks for changed values")
        ->capture_default_str()
        ->check(CLI::Range(10L, 60000L));
    CLI::Option* const recording =
        app.add_option("--recording", m_recording,
                       "what is recorded (XML; default: CONFIG with .recording.xml in place of .xml, if there is one)")
            ->type_name("FILE");
    app.add_flag("--no-recording", m_options.recordsNothing, "record nothing")->excludes(recording);
    app.add_flag("--no-publication", m_publishesNothing, "publish nothing");
}

std::string SupervisionArguments::Take(SupervisionOptions& options) const
{
    options = m_options;
    options.document = PathFromText(m_document);
    options.dataFolder = PathFromText(m_dataFolder);
    options.recording = PathFromText(m_recording);
    options.updatePeriod = std::chrono::milliseconds(m_updatePeriod);
    if (m_publishesNothing) {
        options.serviceName.clear();
    }
    for (const std::string& text : m_ports) {
        if (std::string problem = AddPort(text, options.ports); !problem.empty()) {
            return problem;
        }
    }
    return {};
}

}  // namespace zr::supervision

#include "hosts/kestrixd/Options.h"

#include "hosts/kestrixd/Commands.h"
#include "hosts/supervision/SupervisionArguments.h"

#include <CLI/CLI.hpp>

namespace zr::service {

ParsedOptions ParseOptions(int argc, char** argv)
{
    Options options;
    long seconds = 0;
    CLI::App app(
        "Supervises the devices of a configuration document: polls them, shows their values and reports what "
        "goes wrong on standard error. Ends on SIGINT or SIGTERM; SIGHUP reads the document again.",
        "kestrixd");
    const supervision::SupervisionArguments arguments(app);
    CLI::Option* span = app.add_option("--for", seconds, "supervise that many seconds, then end")
                            ->type_name("SECONDS")
                            ->check(CLI::Range(1L, 1000000000L));
    app.add_flag("--json", options.json, "print the figures of the run as one line of JSON at the end");
    app.footer(
        std::string("Exit status: 0 ended as asked, 2 bad input or command line, 3 another process supervises the "
                    "document.\n\n") +
        CommandsHelp());
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return {std::nullopt, app.exit(error) == 0 ? 0 : 2};
    }
    if (*span) {
        options.span = std::chrono::seconds(seconds);
    }
    if (const std::string problem = arguments.Take(options.supervision); !problem.empty()) {
        std::cerr << problem << '\n';
        return {std::nullopt, 2};
    }
    return {options, 0};
}

}  // namespace zr::service

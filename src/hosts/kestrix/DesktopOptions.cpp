#include "hosts/kestrix/DesktopOptions.h"

#include "hosts/supervision/SupervisionArguments.h"

#include <CLI/CLI.hpp>

namespace zr::desktop {

ParsedOptions ParseOptions(int argc, char** argv)
{
    DesktopOptions options;
    long after = static_cast<long>(options.snapshotAfter.count());
    CLI::App app(
        "Shows the devices of a configuration document in windows: supervises them, and publishes their values. A "
        "document that another program supervises is shown without polling.",
        "kestrix");
    const supervision::SupervisionArguments arguments(app);
    CLI::Option* const snapshot =
        app.add_option("--snapshot", options.snapshotFolder,
                       "show nothing, put pictures of the windows into that folder (PNG, light and dark), and end")
            ->type_name("DIR");
    app.add_option("--after", after, "seconds of supervision before the pictures are taken")
        ->type_name("SECONDS")
        ->capture_default_str()
        ->needs(snapshot)
        ->check(CLI::Range(0L, 86400L));
    app.add_option("--language", options.language, "language of the texts (default: the one chosen last)")
        ->type_name("NAME")
        ->check(CLI::IsMember({"en", "de", "es"}));
    app.footer("Exit status: 0 ended as asked, 2 bad input or command line, or no display.");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return {std::nullopt, app.exit(error) == 0 ? kEndedAsAsked : kBadInput};
    }
    options.snapshotAfter = std::chrono::seconds(after);
    if (const std::string problem = arguments.Take(options.supervision); !problem.empty()) {
        std::cerr << "kestrix: " << problem << '\n';
        return {std::nullopt, kBadInput};
    }
    return {options, kEndedAsAsked};
}

}  // namespace zr::desktop

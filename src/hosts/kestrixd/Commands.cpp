#include "hosts/kestrixd/Commands.h"

#include "hosts/kestrixd/CheckStoreCommand.h"
#include "hosts/kestrixd/ExportCommand.h"
#include "hosts/kestrixd/ImportCommand.h"

#include <algorithm>
#include <string_view>

namespace zr::service {
namespace {

struct Command {
    std::string_view name;
    int (*run)(int argc, char** argv);
};
constexpr Command kCommands[] = {{"import", RunImport}, {"export", RunExport}, {"check-store", RunCheckStore}};

}  // namespace

std::optional<int> RunCommand(int argc, char** argv)
{
    if (argc < 2) {
        return std::nullopt;
    }
    const auto* const found = std::find_if(std::begin(kCommands), std::end(kCommands),
                                           [&](const Command& command) { return command.name == argv[1]; });
    if (found == std::end(kCommands)) {
        return std::nullopt;
    }
    return found->run(argc - 1, argv + 1);
}

const char* CommandsHelp()
{
    return "Commands on logged data; kestrixd COMMAND --help tells more:\n"
           "  import       brings the values of a CSV file into the store\n"
           "  export       writes logged data as a CSV file\n"
           "  check-store  verifies a store and tells what is in it";
}

}  // namespace zr::service

// The commands of kestrixd beside its supervision: `kestrixd import ...` and the like.
#pragma once

#include <optional>

namespace zr::service {

// Exit statuses of the commands.
inline constexpr int kCommandDone = 0;
inline constexpr int kCommandFound = 1;  // with findings, or with something left out
inline constexpr int kCommandFailed = 2;
inline constexpr int kCommandCancelled = 130;  // as shells tell of Ctrl+C

// Runs the command that the first word names, and returns its exit status; nothing when that is no command.
std::optional<int> RunCommand(int argc, char** argv);
// One line a command, for the program's help.
const char* CommandsHelp();

}  // namespace zr::service

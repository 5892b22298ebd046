// The folders of the system. None is made here; MakePrivateFolder() of FileReplace.h does that.
#pragma once

#include <filesystem>

namespace zr {

// Each reads the environment anew. Empty when the system tells no home folder. Any thread, as long as none changes the
// environment.

// Settings of the user: $XDG_CONFIG_HOME/kestrix, else ~/.config/kestrix; on Windows %APPDATA%\Kestrix.
std::filesystem::path ConfigFolder();
// Data of the user, as the logged ones: $XDG_DATA_HOME/kestrix, else ~/.local/share/kestrix; on Windows
// %LOCALAPPDATA%\Kestrix.
std::filesystem::path DataFolder();
// Locks and sockets, which mean nothing after a restart: $XDG_RUNTIME_DIR/kestrix, else /run/user/UID/kestrix where the
// system has made that folder, else kestrix-UID in the folder for temporary files; on Windows
// %LOCALAPPDATA%\Kestrix\run.
std::filesystem::path RuntimeFolder();
// Language files, device profiles, images: $KESTRIX_RESOURCES, else ../share/kestrix beside the program's folder.
std::filesystem::path ResourceFolder();
// The file of the running program.
std::filesystem::path ProgramFile();

}  // namespace zr

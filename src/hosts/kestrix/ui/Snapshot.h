// Pictures of the windows.
#pragma once

#include <filesystem>
#include <string>

namespace zr::desktop {

class MainFrame;

// Shows one page after the other and writes a PNG of each, in light and in dark, then the dialogs of the help menu
// and the windows on logged data. The folder is made. Prints the name of each file on standard output. False when one
// can't be written.
bool SaveSnapshots(MainFrame& frame, const std::filesystem::path& folder, std::string& problem);

}  // namespace zr::desktop

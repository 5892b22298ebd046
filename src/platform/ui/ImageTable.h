// The pictures of the suite: number to the title of the file that draws it.
#pragma once

#include <array>

namespace zr::ui {

struct ImageEntry {
    unsigned number;
    int position;  // in a strip of several pictures; 0 for a picture by itself
    const char* title;
};

// Add a line here and a file TITLE.svg to resources/images; 24 by 24, seen on light and on dark.
inline constexpr std::array kImageTable = {
    // Buttons.
    ImageEntry{65, 0, "cancel"},
    ImageEntry{66, 0, "ok"},
    ImageEntry{73, 0, "next"},
    ImageEntry{78, 0, "settings"},
    ImageEntry{79, 0, "add"},
    ImageEntry{81, 0, "remove"},
    ImageEntry{99, 0, "limits"},
    ImageEntry{118, 0, "back"},
    ImageEntry{125, 0, "select"},
    // Groups of the device catalogue, closed and open.
    ImageEntry{102, 0, "folder"},
    ImageEntry{103, 0, "folder-open"},
    // The suite.
    ImageEntry{128, 0, "kestrix"},
    // Toolbar of the explorer of logged data: usual, under the mouse and disabled. The drawings are the same; the
    // window's style greys what is disabled.
    ImageEntry{63, 0, "back"},
    ImageEntry{63, 1, "next"},
    ImageEntry{63, 11, "groupby"},
    ImageEntry{63, 12, "goto"},
    ImageEntry{63, 13, "period"},
    ImageEntry{64, 0, "back"},
    ImageEntry{64, 1, "next"},
    ImageEntry{64, 11, "groupby"},
    ImageEntry{64, 12, "goto"},
    ImageEntry{64, 13, "period"},
    ImageEntry{98, 0, "back"},
    ImageEntry{98, 1, "next"},
    ImageEntry{98, 11, "groupby"},
    ImageEntry{98, 12, "goto"},
    ImageEntry{98, 13, "period"},
};

}  // namespace zr::ui

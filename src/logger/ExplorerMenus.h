// The commands of an explorer of logged data, and what its menus hold.
#pragma once

#include "logger/LoggerIds.h"
#include "siblings/tools/ZRBasicString.h"
#include "siblings/tools/ZRDateTime.h"

#include <array>
#include <functional>
#include <span>
#include <vector>

namespace zr::logger {

inline constexpr unsigned kCommandPrevious = 31858;
inline constexpr unsigned kCommandNext = 31859;
inline constexpr unsigned kCommandGoTo = 31849;
inline constexpr unsigned kCommandGroupBy = 31851;
inline constexpr unsigned kCommandPeriod = 31852;
inline constexpr unsigned kCommandConfig = 31844;
inline constexpr unsigned kCommandCopy = 57634;

inline constexpr unsigned kTextLoading = 609;  // title of the progress dialog
inline constexpr const wchar* kLoadingText = u"...";

struct ExplorerButton {
    unsigned command = 0;
    unsigned text = 0;
    int image = 0;
    bool isDropDown = false;
};
inline constexpr std::array<ExplorerButton, 5> kExplorerButtons = {{{kCommandPrevious, 234, 0, false},
                                                                    {kCommandNext, 235, 1, false},
                                                                    {kCommandGoTo, 413, 12, false},
                                                                    {kCommandGroupBy, 233, 11, true},
                                                                    {kCommandPeriod, 232, 13, true}}};
// Of the toolbar and the strip around it.
inline constexpr unsigned kToolBarId = 59392;
inline constexpr unsigned kReBarId = 1025;
inline constexpr unsigned kViewerId = 100;

struct ExplorerMenuEntry {
    unsigned command = 0;
    ZRBasicString text;
    bool isEnabled = true;
    bool isChecked = false;                  // the one in force
    std::vector<ExplorerMenuEntry> subMenu;  // empty for a plain entry

    friend bool operator==(const ExplorerMenuEntry&, const ExplorerMenuEntry&) = default;
};
using ExplorerMenu = std::vector<ExplorerMenuEntry>;

// The units, the one in force marked.
ExplorerMenu GroupByMenu(int groupBy);
// The sample periods, likewise; at most 255 characters a text.
ExplorerMenu PeriodMenu(const ZRDateTimeSpan& period);

// From left to right, exclusive.
struct HorizontalSpan {
    int left = 0;
    int right = 0;
};

// A button of the toolbar as the chevron sees it.
struct ShownButton {
    unsigned command = 0;
    ZRBasicString text;
    bool isDropDown = false;
    bool isEnabled = true;
    HorizontalSpan place;  // in the coordinates of the visible part
};

// What the chevron of a narrow toolbar offers: all from the first button on that isn't wholly visible. A drop-down
// button gives the menu that subMenu makes for its command, and nothing where it makes none.
ExplorerMenu ChevronMenu(std::span<const ShownButton> buttons, const HorizontalSpan& visible,
                         const std::function<bool(unsigned command, ExplorerMenu& menu)>& subMenu);

// Unit and period as the user has last chosen them, for a host to start with; the present week at 30 minutes where
// nothing is recorded, or what can't be understood. Meant: refused choices are recorded as well, so that unit and
// period may not go together; the period is then automatic.
struct LastChoice {
    int groupBy = kGroupByWeek;
    ZRDateTimeSpan samplePeriod{1800, 0};
};
LastChoice ReadLastChoice();

}  // namespace zr::logger

// How the windows on logged data were arranged, from one start to the next.
#pragma once

#include "siblings/tools/XmlDocument.h"
#include "siblings/tools/ZRBasicString.h"

#include <cstddef>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace zr::desktop {

// One view a device or group, by the path of its node. Kept in a file of the user's
// (docs/formats/logged-data-windows.md), which several programs may have in use: what this one has not touched is left
// as another one wrote it. UI thread only.
class LoggedDataSettings {
public:
    struct View {
        XmlDocument tree;  // of viewer settings, see LoggerExplorer::Config(); empty until there are any
        int viewer = 0;    // the number of the viewer in use; 0: none was chosen
    };

    using Views = std::vector<std::pair<ZRBasicString, View>>;

    static constexpr std::size_t kMaxBytes = std::size_t{4} * 1024 * 1024;
    static constexpr std::size_t kMaxViews = 500;        // the ones that were used last
    static constexpr std::size_t kMaxElements = 10'000;  // of one view: reading its settings grows with the square

    // Without a file nothing is read or kept.
    LoggedDataSettings() = default;

    // From now on they are kept in that file. False when it is not fit: it is then put aside, not a view of it is
    // taken, and problem says why and where it is now. A file that isn't there yet is fit. Blocks on the disk.
    bool Load(const std::filesystem::path& file, std::string& problem);
    // False when the file can't be written, or the old one neither read nor put aside; problem says why. Blocks on the
    // disk.
    bool Store(std::string& problem);

    // The same for as long as this lives; a new one where there is none of that name.
    View& Of(const ZRBasicString& name);

private:
    struct Entry {
        View view;
        std::size_t used = 0;  // the larger, the later; 0: not by this program
    };
    using Entries = std::map<ZRBasicString, Entry>;

    // The views of the file as it is now, in its order. False as in Load().
    bool Read(Views& views, std::string& problem);
    void TakeOwn(Views& views) const;
    // Of a file that is not fit: always false, with the problem.
    bool PutAside(const std::string& why, std::string& problem);

    std::filesystem::path m_file;  // empty: none
    Entries m_entries;
    std::size_t m_uses = 0;
    bool m_isStuck = false;  // a file that is not fit and stays where it is: it is not written over
};

}  // namespace zr::desktop

// The pictures of the suite, by number.
#pragma once

#include <filesystem>
#include <QIcon>

namespace zr::ui {

// Where the picture files are; the host sets it before the first window. Without it every picture is empty.
void SetImageFolder(const std::filesystem::path& folder);
// The picture of a number in ImageTable.h; of a strip of several, the one at that position. An empty icon for one that
// isn't there. Drawn from vectors, at any scale. UI thread only.
QIcon Image(unsigned number, int position = 0);
// The picture of a file's title in that folder, such as the icon name of a device profile. An empty icon where there is
// no such file, or where the name has more than letters, digits, hyphens and underscores: it leads out of the folder.
QIcon NamedImage(const QString& name);

}  // namespace zr::ui

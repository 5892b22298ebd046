#include "platform/ui/Images.h"

#include <algorithm>
#include <iterator>
#include <QFile>

namespace zr::ui {
namespace {

struct Entry {
    unsigned number;
    const char* name;
};
// Image numbers to the title of the file that draws them.
constexpr Entry kImages[] = {
    {65, "cancel"},
    {66, "ok"},
};

QString& Folder()
{
    static QString folder;
    return folder;
}

}  // namespace

void SetImageFolder(const std::filesystem::path& folder)
{
    Folder() = QString::fromStdU16String(folder.u16string());
}

QIcon Image(unsigned number)
{
    const auto* const entry =
        std::find_if(std::begin(kImages), std::end(kImages), [number](const Entry& e) { return e.number == number; });
    return entry != std::end(kImages) ? NamedImage(QString::fromLatin1(entry->name)) : QIcon();
}

QIcon NamedImage(const QString& name)
{
    const QString file = Folder() + QLatin1Char('/') + name + QLatin1String(".svg");
    return !Folder().isEmpty() && QFile::exists(file) ? QIcon(file) : QIcon();
}

}  // namespace zr::ui

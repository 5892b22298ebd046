#include "platform/ui/Images.h"

#include "platform/ui/ImageTable.h"

#include <algorithm>
#include <QFile>

namespace zr::ui {
namespace {

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

QIcon Image(unsigned number, int position)
{
    const auto entry = std::find_if(kImageTable.begin(), kImageTable.end(),
                                    [&](const ImageEntry& e) { return e.number == number && e.position == position; });
    return entry != kImageTable.end() ? NamedImage(QString::fromLatin1(entry->title)) : QIcon();
}

QIcon NamedImage(const QString& name)
{
    const bool isTitle = !name.isEmpty() && std::all_of(name.begin(), name.end(), [](QChar character) {
        return character.isLetterOrNumber() || character == QLatin1Char('-') || character == QLatin1Char('_');
    });
    const QString file = Folder() + QLatin1Char('/') + name + QLatin1String(".svg");
    return isTitle && !Folder().isEmpty() && QFile::exists(file) ? QIcon(file) : QIcon();
}

}  // namespace zr::ui

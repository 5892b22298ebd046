// Pictures that tests leave for people to look at.
#pragma once

#include <QApplication>
#include <QDir>
#include <QImage>
#include <QString>

namespace zr::test {

// Into pictures/ of the build folder. False when it can't be written.
inline bool KeepPicture(const QImage& image, const QString& name)
{
    const QDir folder(QApplication::applicationDirPath() + QStringLiteral("/../pictures"));
    return folder.mkpath(QStringLiteral(".")) && image.save(folder.filePath(name));
}

}  // namespace zr::test

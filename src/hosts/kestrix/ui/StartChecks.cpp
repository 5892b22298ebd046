#include "hosts/kestrix/ui/StartChecks.h"

#include "hosts/kestrix/DesktopOptions.h"

#include <cstdio>
#include <cstdlib>
#include <QApplication>
#include <QByteArray>
#include <QFont>
#include <QRawFont>
#include <QString>
#include <QStringList>
#include <QtGlobal>

namespace zr::desktop {
namespace {

// Qt's own way to say that a display can't be reached is several lines and an abort.
void OnQtMessage(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type == QtFatalMsg) {
        const QByteArray display = qgetenv("DISPLAY");
        std::fprintf(stderr, "kestrix: no window can be shown: the display \"%s\" can't be reached\n",
                     display.constData());
        std::fflush(stderr);
        std::_Exit(kBadInput);
    }
    // What the platform has to say before that goes with it.
    const bool isOfPlatform = text.startsWith(QLatin1String("qt.qpa")) || text.contains(QLatin1String("plugin")) ||
                              text.contains(QLatin1String("connect to display")) ||
                              text.contains(QLatin1String("XDG_RUNTIME_DIR"));
    if (type == QtCriticalMsg || (type == QtWarningMsg && !isOfPlatform)) {
        std::fprintf(stderr, "%s\n", text.toUtf8().constData());
    }
}

}  // namespace

bool CheckDisplay(bool isOffScreen, std::string& problem)
{
    qInstallMessageHandler(&OnQtMessage);
#ifndef _WIN32
    const bool isChosen = !qgetenv("QT_QPA_PLATFORM").isEmpty();
    const bool hasDisplay = !qgetenv("DISPLAY").isEmpty() || !qgetenv("WAYLAND_DISPLAY").isEmpty();
    if (isChosen) {
        return true;
    }
    if (isOffScreen) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        return true;
    }
    if (!hasDisplay) {
        problem = "there is no display (DISPLAY is not set); --snapshot DIR takes pictures without one";
        return false;
    }
#endif
    return true;
}

bool CheckFonts(std::string& problem)
{
    // Qt lists families for its generic names even where no file stands behind any, and draws boxes then.
    const QRawFont font = QRawFont::fromFont(QApplication::font());
    if (font.isValid() && !font.fontTable("cmap").isEmpty()) {
        return true;
    }
    problem = "there is no font on this machine; scripts/setup installs fonts-dejavu-core";
    return false;
}

}  // namespace zr::desktop

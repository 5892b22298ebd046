#include "platform/ui/Clipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <utility>

namespace zr::ui {
namespace {

std::function<bool()>& ClipboardHook()
{
    static std::function<bool()> hook;
    return hook;
}

}  // namespace

void SetClipboardHook(std::function<bool()> opens)
{
    ClipboardHook() = std::move(opens);
}

bool OpenClipboard()
{
    return QGuiApplication::clipboard() != nullptr && (!ClipboardHook() || ClipboardHook()());
}

void SetClipboardData(std::unique_ptr<QMimeData> data)
{
    QGuiApplication::clipboard()->setMimeData(data.release());
}

}  // namespace zr::ui

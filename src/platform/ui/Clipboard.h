// The clipboard of the desktop, at its edge.
#pragma once

#include <functional>
#include <memory>

class QMimeData;

namespace zr::ui {

// False: there is none, or another program holds it. UI thread only.
bool OpenClipboard();
// In the place of what is there; after OpenClipboard. UI thread only.
void SetClipboardData(std::unique_ptr<QMimeData> data);

// Tests only: says whether the clipboard can be opened while it is set. Null to end it.
void SetClipboardHook(std::function<bool()> opens);

}  // namespace zr::ui

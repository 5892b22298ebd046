// How long work tells how far it is.
#pragma once

#include "siblings/tools/ZRBasicString.h"

namespace zr {

// Whoever shows it. Called on the thread that does the work.
class Progress {
public:
    // What is being done.
    virtual void SetText(const wchar* text) = 0;
    // How much is done, 0 to 100.
    virtual void SetPos(int percent) = 0;
    // Whether the work is to stop, which it does at its next block.
    [[nodiscard]] virtual bool IsCancelled() const { return false; }

protected:
    ~Progress() = default;
};

}  // namespace zr

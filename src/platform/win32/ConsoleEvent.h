// What an event of the console means to a program.
#pragma once

#include "platform/StopSignals.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

namespace zr {

// The closing of the console, the end of the session and the shutdown all ask for the same: to end.
inline StopSignal SignalOfConsoleEvent(DWORD event)
{
    switch (event) {
        case CTRL_C_EVENT:
            return StopSignal::Interrupt;
        case CTRL_BREAK_EVENT:
            return StopSignal::HangUp;
        default:
            return StopSignal::Terminate;
    }
}

}  // namespace zr

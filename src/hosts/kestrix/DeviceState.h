// How a device stands, as the tree and the pages show it.
#pragma once

namespace zr::desktop {

// In order of how much it asks for attention; a group stands as the worst of its devices.
enum class DeviceState {
    OnLine,
    NotPolled,  // another program supervises it
    NotAsked,   // no answer yet, and no time-out either
    Silent,
    Alarm,  // on line, with a value beyond an alarm limit
};

}  // namespace zr::desktop

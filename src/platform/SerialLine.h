// Serial ports, as far as the systems differ.
#pragma once

#include <cstddef>
#include <string>

namespace zr {

#ifdef _WIN32
using SerialHandle = void*;
#else
using SerialHandle = int;
#endif

// Throws away what the open port has received; returns the number of bytes, or of anything above 0 where the system
// doesn't tell. Doesn't block.
std::size_t DropSerialInput(SerialHandle port);
// Throws away what the open port has not sent yet.
void DropSerialOutput(SerialHandle port);

// The usual name of the port of that number, counted from 1.
std::string SerialDeviceName(int port);

}  // namespace zr

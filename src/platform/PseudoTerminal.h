// A serial line without hardware: what is written at one end is read at the other.
#pragma once

#include <memory>
#include <string>

namespace zr {

// The end of the device, and the name under which a program opens the other end. Not on Windows, which has none.
class PseudoTerminal {
public:
    PseudoTerminal();
    ~PseudoTerminal();
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    // Whether the system has such terminals.
    static bool IsAvailable();
    // Makes the pair, both ends raw: 8 data bits, no echo, no line discipline. False with a reason in error.
    bool Open(std::string& error);
    // Puts a symbolic link to the other end at path, in the place of an older link; anything else there is left alone,
    // with false and a reason in error. The link goes with this object, if it is still its own. At most one.
    bool Link(const std::string& path, std::string& error);
    // Path of the other end's device; empty unless open.
    [[nodiscard]] std::string Name() const;
    // Reads at once what has come, without blocking: the number of bytes, 0 if there is none.
    std::size_t Read(void* bytes, std::size_t room);
    // Writes without blocking what there is room for, and forgets the rest: on a serial line, nobody is waited for.
    void Write(const void* bytes, std::size_t size);
    // A new descriptor of the device's end, owned by the caller, to wait for bytes on; -1 unless open.
    [[nodiscard]] int DuplicateDescriptor() const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace zr

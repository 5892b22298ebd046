#include "platform/PseudoTerminal.h"

namespace zr {
namespace {

constexpr const char* kReason = "serial lines can't be simulated on Windows";

}  // namespace

struct PseudoTerminal::State {};

PseudoTerminal::PseudoTerminal() = default;

PseudoTerminal::~PseudoTerminal() = default;

bool PseudoTerminal::IsAvailable()
{
    return false;
}

bool PseudoTerminal::Open(std::string& error)
{
    error = kReason;
    return false;
}

bool PseudoTerminal::Link(const std::string&, std::string& error)
{
    error = kReason;
    return false;
}

std::string PseudoTerminal::Name() const
{
    return {};
}

std::size_t PseudoTerminal::Read(void*, std::size_t)
{
    return 0;
}

void PseudoTerminal::Write(const void*, std::size_t) {}

int PseudoTerminal::DuplicateDescriptor() const
{
    return -1;
}

}  // namespace zr

#include "platform/Paths.h"

#include <windows.h>
#include <string>

namespace zr {
namespace {

std::filesystem::path PathIn(const wchar_t* variable)
{
    std::wstring text(32768, L'\0');
    text.resize(::GetEnvironmentVariableW(variable, text.data(), static_cast<DWORD>(text.size())));
    return text;
}

std::filesystem::path Below(const wchar_t* variable)
{
    const std::filesystem::path base = PathIn(variable);
    return base.empty() ? base : base / L"Kestrix";
}

}  // namespace

std::filesystem::path ConfigFolder()
{
    return Below(L"APPDATA");
}

std::filesystem::path DataFolder()
{
    return Below(L"LOCALAPPDATA");
}

std::filesystem::path RuntimeFolder()
{
    const std::filesystem::path folder = DataFolder();
    return folder.empty() ? folder : folder / L"run";
}

std::filesystem::path ResourceFolder()
{
    const std::filesystem::path told = PathIn(L"KESTRIX_RESOURCES");
    return told.empty() ? ProgramFile().parent_path().parent_path() / L"share" / L"kestrix" : told;
}

std::filesystem::path ProgramFile()
{
    std::wstring text(32768, L'\0');
    text.resize(::GetModuleFileNameW(nullptr, text.data(), static_cast<DWORD>(text.size())));
    return text;
}

}  // namespace zr

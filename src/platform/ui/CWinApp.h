// Settings of the user that windows keep.
#pragma once

#include <string>
#include <string_view>

// A section is a key below the suite's, below HKEY_CURRENT_USER; it may hold "\" for keys in keys. A host makes one
// object, which AfxGetApp() returns. UI thread only; blocks on the disk.
class CWinApp {
public:
    // registryKey: the suite's, with no separator at either end.
    explicit CWinApp(std::u16string_view registryKey);
    ~CWinApp();
    CWinApp(const CWinApp&) = delete;
    CWinApp& operator=(const CWinApp&) = delete;

    // What is not there or is of another kind gives the default.
    [[nodiscard]] int GetProfileIntW(std::u16string_view section, std::u16string_view entry, int byDefault) const;
    // False when it can't be kept.
    bool WriteProfileInt(std::u16string_view section, std::u16string_view entry, int value);

private:
    [[nodiscard]] std::u16string PathOf(std::u16string_view section) const;

    std::u16string m_registryKey;
};

// The application object; null while there is none.
CWinApp* AfxGetApp();

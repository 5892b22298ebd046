// A file that a printer writes, put in place when it is whole.
#pragma once

#include <filesystem>

class QPrinter;

namespace zr::ui {

// A printer that prints into a file prints into one beside it from the construction on. What isn't put in place by the
// end of its life leaves no trace, and the old file is as it was. Does nothing to a printer that prints on paper. UI
// thread only.
class PrintedFile {
public:
    // Not owned; must outlive this, and not be printing at either end.
    explicit PrintedFile(QPrinter& printer);
    PrintedFile(const PrintedFile&) = delete;
    PrintedFile& operator=(const PrintedFile&) = delete;
    ~PrintedFile();

    // The user's alone to read. False where not all of it is there, as on a full disk, of which a printer doesn't tell.
    bool PutInPlace();

private:
    QPrinter& m_printer;
    std::filesystem::path m_target;  // empty: nothing to do
    std::filesystem::path m_part;
};

}  // namespace zr::ui

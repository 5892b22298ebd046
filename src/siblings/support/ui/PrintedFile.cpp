#include "siblings/support/ui/PrintedFile.h"

#include "platform/FileReplace.h"
#include "platform/ui/UiText.h"
#include "siblings/tools/Utf.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <QPrinter>
#include <string>
#include <system_error>

namespace zr::ui {
namespace {

constexpr std::streamoff kTail = 64;  // bytes that hold the last three lines

std::string ReadAt(std::ifstream& file, std::streamoff place, std::streamsize length)
{
    std::string bytes(static_cast<std::size_t>(length), '\0');
    file.seekg(place);
    file.read(bytes.data(), length);
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    file.clear();
    return bytes;
}

// The end of a PDF tells the byte at which its table of objects stands: it does where none of it was lost. ISO 32000-1,
// 7.5.5.
bool IsWholePdf(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    const std::streamoff size = file.tellg();
    const std::string tail = ReadAt(file, std::max<std::streamoff>(size - kTail, 0), kTail);
    const std::string word = "startxref\n";
    const std::size_t at = tail.rfind(word);
    if (at == std::string::npos || tail.find("%%EOF", at) == std::string::npos) {
        return false;
    }
    return ReadAt(file, std::atoll(tail.c_str() + at + word.size()), 4) == "xref";
}

// Where the file goes; empty for what isn't a file, which is written as it is.
std::filesystem::path TargetOf(const QPrinter& printer)
{
    const std::filesystem::path named = PathFromText(FromQt(printer.outputFileName()));
    std::error_code failed;
    const std::filesystem::path target = std::filesystem::weakly_canonical(named, failed);
    const auto type = std::filesystem::status(target, failed).type();
    const bool isFile = type == std::filesystem::file_type::regular || type == std::filesystem::file_type::not_found;
    return printer.outputFormat() == QPrinter::PdfFormat && isFile ? target : std::filesystem::path();
}

}  // namespace

PrintedFile::PrintedFile(QPrinter& printer) : m_printer(printer), m_target(TargetOf(printer))
{
    if (!m_target.empty()) {
        m_part = m_target;
        m_part += ".part";
        m_printer.setOutputFileName(ToQt(Utf8ToUtf16(TextOfPath(m_part)).Text()));
    }
}

PrintedFile::~PrintedFile()
{
    if (!m_target.empty()) {
        std::error_code ignored;
        std::filesystem::remove(m_part, ignored);
        m_printer.setOutputFileName(ToQt(Utf8ToUtf16(TextOfPath(m_target)).Text()));
    }
}

bool PrintedFile::PutInPlace()
{
    if (m_target.empty()) {
        return true;
    }
    if (!IsWholePdf(m_part)) {
        return false;
    }
    std::string ignored;
    return PutFileInPlace(m_part, m_target, ignored);
}

}  // namespace zr::ui

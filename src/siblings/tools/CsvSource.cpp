#include "siblings/tools/CsvSource.h"

#include "platform/FileReplace.h"

#include <cerrno>
#include <cstring>
#include <iostream>
#include <system_error>

namespace zr {

bool CsvFileSource::Open(const std::filesystem::path& path, std::string& error)
{
    std::error_code ignored;
    m_error.clear();
    m_size = 0;
    if (path == "-") {
        m_name = "standard input";
        m_stream = &std::cin;
        return true;
    }
    m_name = TextOfPath(path);
    if (std::filesystem::is_directory(path, ignored)) {
        error = m_name + ": is a folder";
        return false;
    }
    errno = 0;
    m_file.close();
    m_file.clear();
    m_file.open(path, std::ios::in | std::ios::binary);
    if (!m_file.is_open()) {
        error = m_name + ": can't be opened: " + std::strerror(errno);
        return false;
    }
    if (std::filesystem::is_regular_file(path, ignored)) {
        m_size = std::filesystem::file_size(path, ignored);
    }
    m_stream = &m_file;
    return true;
}

std::size_t CsvFileSource::Read(std::span<char> room)
{
    if (m_stream == nullptr || !m_stream->good()) {
        return 0;
    }
    errno = 0;
    m_stream->read(room.data(), static_cast<std::streamsize>(room.size()));
    const auto got = static_cast<std::size_t>(m_stream->gcount());
    if (m_stream->bad()) {
        m_error = std::string("can't be read: ") + (errno != 0 ? std::strerror(errno) : "the device fails");
    }
    return got;
}

bool CsvFileSource::Rewind()
{
    if (m_stream != &m_file || m_size == 0) {
        return false;
    }
    m_file.clear();
    m_file.seekg(0);
    return m_file.good();
}

}  // namespace zr

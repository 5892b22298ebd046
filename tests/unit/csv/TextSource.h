// A CSV file in memory that comes in pieces.
#pragma once

#include "siblings/tools/CsvSource.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

namespace zr::test {

class TextSource final : public CsvSource {
public:
    // piece: the most bytes that one call gives.
    explicit TextSource(std::string text, std::size_t piece = 65536) : m_text(std::move(text)), m_piece(piece) {}

    std::size_t Read(std::span<char> room) override
    {
        const std::size_t size = std::min({room.size(), m_piece, m_text.size() - m_at});
        std::memcpy(room.data(), m_text.data() + m_at, size);
        m_at += size;
        return size;
    }
    bool Rewind() override
    {
        m_at = 0;
        return isRewindable;
    }
    [[nodiscard]] std::uint64_t Size() const override { return m_text.size(); }
    [[nodiscard]] std::string Name() const override { return "t.csv"; }
    [[nodiscard]] std::string Error() const override { return m_at == m_text.size() ? error : ""; }

    bool isRewindable = true;
    std::string error;  // told at the end

private:
    std::string m_text;
    std::size_t m_piece;
    std::size_t m_at = 0;
};

}  // namespace zr::test

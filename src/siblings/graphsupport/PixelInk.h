// One colour, blended onto pixels, several of a row at a time.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zr::graph {

// Numbers side by side that are worked on as one: the compilers of all systems know them, and every processor.
inline constexpr std::size_t kLanes = 4;
using Floats = float __attribute__((vector_size(16)));
using Pixels = std::uint32_t __attribute__((vector_size(16)));

inline Floats Least(Floats one, Floats other)
{
    return one < other ? one : other;
}
inline Floats Largest(Floats one, Floats other)
{
    return one > other ? one : other;
}

// Pixels are as in PixelArea. All four bytes of a pixel are worked on as halves of 16 bits, the even and the odd ones.
class PixelInk {
public:
    // As a pixel, not multiplied by its alpha.
    explicit PixelInk(std::uint32_t colour)
    {
        const std::uint32_t alpha = colour >> 24U;
        m_whole += colour | 0xFF000000U;
        m_isOpaque = alpha == 255U;
        const auto halves = std::bit_cast<Halves>(m_whole);
        m_alpha += static_cast<std::uint16_t>(alpha);
        m_even = Divided((halves & kLow) * m_alpha);
        m_odd = Divided((halves >> 8) * m_alpha);
    }

    // kLanes pixels in a row, each by how much of it is covered, 0 to 1.
    void Blend(std::uint32_t* pixels, Floats coverage) const
    {
        Halves ground;
        std::memcpy(&ground, pixels, sizeof ground);
        ground = Blended(ground, coverage);
        std::memcpy(pixels, &ground, sizeof ground);
    }
    // The first of them only.
    void Blend(std::uint32_t* pixels, Floats coverage, std::size_t count) const
    {
        Halves ground{};
        std::memcpy(&ground, pixels, count * sizeof *pixels);
        ground = Blended(ground, coverage);
        std::memcpy(pixels, &ground, count * sizeof *pixels);
    }
    // kLanes pixels in a row, covered wholly.
    void Fill(std::uint32_t* pixels) const
    {
        if (m_isOpaque) {
            std::memcpy(pixels, &m_whole, sizeof m_whole);
        } else {
            Blend(pixels, Floats{} + 1.0F);
        }
    }
    void FillOne(std::uint32_t& pixel) const
    {
        if (m_isOpaque) {
            pixel = m_whole[0];
        } else {
            Blend(&pixel, Floats{} + 1.0F, 1);
        }
    }

private:
    using Halves = std::uint16_t __attribute__((vector_size(16)));
    using Parts = std::int32_t __attribute__((vector_size(16)));
    static constexpr Halves kLow = {255, 255, 255, 255, 255, 255, 255, 255};
    static constexpr Halves kHalf = {128, 128, 128, 128, 128, 128, 128, 128};

    // By 255, rounded to the nearest; of up to 255 * 256.
    static Halves Divided(Halves product)
    {
        product += kHalf;
        return (product + (product >> 8)) >> 8;
    }
    [[nodiscard]] Halves Blended(Halves ground, Floats coverage) const
    {
        const Parts part = __builtin_convertvector(coverage * 255.0F + 0.5F, Parts);
        const auto parts = std::bit_cast<Halves>(part | (part << 16));
        const Halves rest = kLow - Divided(m_alpha * parts);
        const Halves even = Divided(m_even * parts + (ground & kLow) * rest);
        const Halves odd = Divided(m_odd * parts + (ground >> 8) * rest);
        return even | (odd << 8);
    }

    Pixels m_whole{};  // the colour, not multiplied
    bool m_isOpaque;
    Halves m_alpha{};
    Halves m_even{};  // bytes of the colour, multiplied
    Halves m_odd{};
};

}  // namespace zr::graph

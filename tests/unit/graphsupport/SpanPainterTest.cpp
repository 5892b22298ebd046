#include "siblings/graphsupport/SpanPainter.h"

#include "siblings/graphsupport/CurveInfo.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace zr::graph {
namespace {

constexpr std::uint32_t kWhite = 0xFFFFFFFFU;
constexpr std::uint32_t kBlack = 0xFF000000U;
constexpr std::uint32_t kGuard = 0x12345678U;

// A picture with pixels around it that nobody may touch.
class Canvas {
public:
    Canvas(int width, int height, std::uint32_t ground = kWhite)
        : m_width(width),
          m_height(height),
          m_pixels(static_cast<std::size_t>((width + 2 * kRing) * (height + 2 * kRing)), kGuard)
    {
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                At(x, y) = ground;
            }
        }
    }

    [[nodiscard]] PixelArea Area() { return {&At(0, 0), m_width, m_height, m_width + 2 * kRing}; }
    std::uint32_t& At(int x, int y)
    {
        return m_pixels[static_cast<std::size_t>((y + kRing) * (m_width + 2 * kRing) + x + kRing)];
    }
    // Black that was painted onto white, 0 to 1.
    double Coverage(int x, int y) { return 1.0 - (At(x, y) & 0xFFU) / 255.0; }
    double ColumnCoverage(int x)
    {
        double sum = 0.0;
        for (int y = 0; y < m_height; ++y) {
            sum += Coverage(x, y);
        }
        return sum;
    }
    double AllCoverage()
    {
        double sum = 0.0;
        for (int x = 0; x < m_width; ++x) {
            sum += ColumnCoverage(x);
        }
        return sum;
    }
    bool IsRingUntouched()
    {
        for (int y = -kRing; y < m_height + kRing; ++y) {
            for (int x = -kRing; x < m_width + kRing; ++x) {
                const bool isInside = x >= 0 && x < m_width && y >= 0 && y < m_height;
                if (!isInside && At(x, y) != kGuard) {
                    return false;
                }
            }
        }
        return true;
    }

private:
    static constexpr int kRing = 12;

    int m_width;
    int m_height;
    std::vector<std::uint32_t> m_pixels;
};

// Of a straight line through the columns.
std::vector<RowSpan> Straight(int columns, double first, double slope)
{
    std::vector<RowSpan> spans;
    for (int x = 0; x < columns; ++x) {
        const double one = first + slope * x;
        const double other = one + slope;
        spans.push_back({static_cast<float>(std::min(one, other)), static_cast<float>(std::max(one, other))});
    }
    return spans;
}

struct Stroke {
    double slope;
    int width;
};

class SpanPainterSlopeTest : public testing::TestWithParam<Stroke> {};

TEST_P(SpanPainterSlopeTest, AStraightLineCoversWhatAPenOfItsWidthCovers)
{
    const auto [slope, width] = GetParam();
    constexpr int kSize = 60;
    Canvas canvas(kSize, 400);
    const double first = 200.3 - slope * kSize / 2;
    PaintLine(canvas.Area(), Straight(kSize, first, slope), {PS_SOLID, width, kBlack});
    double difference = 0.0;
    double wanted = 0.0;
    for (int x = 20; x < 40; ++x) {
        for (int y = 0; y < 400; ++y) {
            int inside = 0;
            for (int sample = 0; sample < 256; ++sample) {
                const double px = x + (sample % 16 + 0.5) / 16.0;
                const double py = y + (sample / 16 + 0.5) / 16.0;
                const double apart = std::abs(first + slope * px - py) / std::sqrt(1.0 + slope * slope);
                inside += apart <= width / 2.0 ? 1 : 0;
            }
            const double exact = inside / 256.0;
            difference += std::abs(canvas.Coverage(x, y) - exact);
            wanted += exact;
            ASSERT_NEAR(canvas.Coverage(x, y), exact, 0.2) << x << " " << y;
        }
    }
    EXPECT_LE(difference, 0.06 * wanted);
    EXPECT_NEAR(canvas.ColumnCoverage(30), width * std::sqrt(1.0 + slope * slope),
                0.05 * width * (1.0 + std::abs(slope)));
}

INSTANTIATE_TEST_SUITE_P(Slopes, SpanPainterSlopeTest,
                         testing::Values(Stroke{0.0, 1}, Stroke{0.1, 1}, Stroke{-0.4, 1}, Stroke{1.0, 1},
                                         Stroke{-3.0, 1}, Stroke{5.0, 1}, Stroke{0.3, 2}, Stroke{2.0, 2},
                                         Stroke{-0.7, 3}, Stroke{4.0, 3}, Stroke{0.2, 9}, Stroke{-1.0, 9},
                                         Stroke{4.0, 9}, Stroke{0.5, 4}, Stroke{-2.0, 4}, Stroke{1.5, 5},
                                         Stroke{-0.2, 6}, Stroke{3.0, 6}, Stroke{0.8, 7}, Stroke{-1.5, 8}));

TEST(SpanPainterTest, NothingIsWrittenOutsideTheArea)
{
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();
    const std::array<float, 14> places = {-kInfinity, -1e30F, -5000.0F, -3.0F,  -0.5F, 0.0F,      0.3F,
                                          7.0F,       25.5F,  40.0F,    600.0F, 1e30F, kInfinity, kNoNumber};
    std::mt19937 random(7);
    for (int round = 0; round < 400; ++round) {
        const int width = round % 8 == 0 ? 1 : 1 + static_cast<int>(random() % 40);
        const int height = round % 8 == 1 ? 1 : 1 + static_cast<int>(random() % 30);
        Canvas canvas(width, height);
        std::vector<RowSpan> spans;
        // Now and then fewer or more than there are columns.
        for (unsigned i = 0; i < static_cast<unsigned>(width) + random() % 3 - random() % 2; ++i) {
            spans.push_back({places[random() % places.size()], places[random() % places.size()]});
        }
        PaintLine(canvas.Area(), spans,
                  {static_cast<unsigned>(random() % 6), static_cast<int>(random() % 12), kBlack, round % 3 == 0});
        PaintFill(canvas.Area(), spans, 0x80FF0000U);
        ASSERT_TRUE(canvas.IsRingUntouched()) << round;
    }
}

// A curve of some pieces: level, steep, with spikes and gaps, partly outside.
std::vector<RowSpan> RandomSpans(std::mt19937& random, std::size_t columns, int height)
{
    std::vector<RowSpan> spans;
    const auto below = [&random](int limit) { return static_cast<float>(random() % static_cast<unsigned>(limit)); };
    float row = below(height);
    while (spans.size() < columns) {
        const float to =
            std::clamp(row + below(7) - 3.0F + below(100) / 100.0F, -20.0F, static_cast<float>(height) + 20.0F);
        RowSpan span{std::min(row, to), std::max(row, to)};
        switch (random() % 24) {
            case 0:
                span.top -= below(height);
                break;
            case 1:
                span.bottom += below(height);
                break;
            case 2:
                span = RowSpan();
                break;
            default:
                break;
        }
        spans.push_back(span);
        row = to;
    }
    return spans;
}

TEST(SpanPainterTest, ACurveLooksTheSameWhereverItsAreaBegins)
{
    // Columns and rows are painted in groups; nobody is to see where these begin.
    std::mt19937 random(11);
    for (int round = 0; round < 120; ++round) {
        const int width = 1 + static_cast<int>(random() % 200);
        const int height = 1 + static_cast<int>(random() % 120);
        const std::vector<RowSpan> spans = RandomSpans(random, static_cast<std::size_t>(width), height);
        const SpanPen pen{static_cast<unsigned>(random() % 5), 1 + round % 9, round % 2 == 0 ? kBlack : 0x90204060U,
                          round % 3 == 0};
        const int aside = 20 + static_cast<int>(random() % 70);
        const int down = 20 + static_cast<int>(random() % 40);
        Canvas alone(width, height);
        Canvas within(width + 2 * aside, height + 2 * down);
        std::vector<RowSpan> moved(static_cast<std::size_t>(aside));
        for (const RowSpan& span : spans) {
            const auto rows = static_cast<float>(down);
            moved.push_back(span.top <= span.bottom ? RowSpan{span.top + rows, span.bottom + rows} : RowSpan());
        }
        PaintLine(alone.Area(), spans, pen);
        PaintFill(alone.Area(), spans, 0x60FF0000U);
        PaintLine(within.Area(), moved, pen);
        PaintFill(within.Area(), moved, 0x60FF0000U);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                for (unsigned shift = 0; shift < 32; shift += 8) {
                    const auto one = static_cast<int>(alone.At(x, y) >> shift & 0xFFU);
                    const auto other = static_cast<int>(within.At(x + aside, y + down) >> shift & 0xFFU);
                    // Sums of other sizes are rounded otherwise.
                    ASSERT_NEAR(one, other, 1) << "round " << round << " at " << x << " " << y;
                }
            }
        }
    }
}

TEST(SpanPainterTest, AFillCoversOfEachPixelWhatItsSpanDoes)
{
    std::mt19937 random(5);
    for (int round = 0; round < 60; ++round) {
        const int width = 1 + static_cast<int>(random() % 150);
        const int height = 1 + static_cast<int>(random() % 100);
        const std::vector<RowSpan> spans = RandomSpans(random, static_cast<std::size_t>(width), height);
        Canvas canvas(width, height);
        PaintFill(canvas.Area(), spans, kBlack);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const RowSpan& span = spans[static_cast<std::size_t>(x)];
                const double top = std::max(static_cast<double>(span.top), static_cast<double>(y));
                const double bottom = std::min(static_cast<double>(span.bottom), y + 1.0);
                const double covered = span.top <= span.bottom ? std::clamp(bottom - top, 0.0, 1.0) : 0.0;
                ASSERT_NEAR(canvas.Coverage(x, y), covered, 1.0 / 255) << "round " << round << " at " << x << " " << y;
            }
        }
    }
}

TEST(SpanPainterTest, AnAreaWithoutPixelsIsLeftAlone)
{
    const std::vector<RowSpan> spans = {{0.0F, 5.0F}};
    PaintLine({}, spans, {PS_SOLID, 1, kBlack});
    PaintFill({}, spans, kBlack);
    Canvas canvas(3, 3);
    PaintLine(canvas.Area(), {}, {PS_SOLID, 1, kBlack});
    EXPECT_EQ(canvas.AllCoverage(), 0.0);
}

TEST(SpanPainterTest, ADenseCurveCoversItsColumnsOverTheirWidth)
{
    std::mt19937 random(3);
    for (int width = 1; width <= 9; ++width) {
        constexpr int kColumns = 150;
        constexpr int kRows = 120;
        std::vector<RowSpan> spans;
        for (int x = 0; x < kColumns; ++x) {
            const float top = 10.0F + static_cast<float>(random() % 4000) / 100.0F;
            spans.push_back({top, top + 40.0F + static_cast<float>(random() % 2000) / 100.0F});
        }
        Canvas canvas(kColumns, kRows);
        PaintLine(canvas.Area(), spans, {PS_SOLID, width, kBlack, true});
        for (int x = 0; x < kColumns; ++x) {
            // The pen's disc at whole columns aside.
            double top = kRows;
            double bottom = 0.0;
            for (int aside = -(width - 1) / 2; aside <= (width - 1) / 2; ++aside) {
                if (x + aside >= 0 && x + aside < kColumns) {
                    const RowSpan& span = spans[static_cast<std::size_t>(x + aside)];
                    const double height = std::sqrt(width * width / 4.0 - aside * aside);
                    top = std::min(top, static_cast<double>(span.top) - height);
                    bottom = std::max(bottom, static_cast<double>(span.bottom) + height);
                }
            }
            for (int y = 0; y < kRows; ++y) {
                const double covered = std::clamp(std::min(bottom, y + 1.0) - std::max(top, y + 0.0), 0.0, 1.0);
                ASSERT_NEAR(canvas.Coverage(x, y), covered, 1.0 / 255) << width << " at " << x << " " << y;
            }
        }
    }
}

TEST(SpanPainterTest, ADenseSlopeIsASlopeStill)
{
    for (const double slope : {0.0, 0.3, -2.0, 6.0}) {
        Canvas dense(60, 400);
        Canvas line(60, 400);
        const std::vector<RowSpan> spans = Straight(60, 200.3 - slope * 30, slope);
        PaintLine(dense.Area(), spans, {PS_SOLID, 1, kBlack, true});
        PaintLine(line.Area(), spans, {PS_SOLID, 1, kBlack});
        for (int y = 0; y < 400; ++y) {
            for (int x = 0; x < 60; ++x) {
                ASSERT_EQ(dense.At(x, y), line.At(x, y)) << slope << " at " << x << " " << y;
            }
        }
    }
}

TEST(SpanPainterTest, ALineThroughTheMiddleOfARowFillsThatRowOnly)
{
    Canvas canvas(20, 10);
    PaintLine(canvas.Area(), Straight(20, 4.5, 0.0), {PS_SOLID, 1, 0xFF204060U});
    EXPECT_EQ(canvas.At(10, 3), kWhite);
    EXPECT_EQ(canvas.At(10, 4), 0xFF204060U);
    EXPECT_EQ(canvas.At(10, 5), kWhite);
}

TEST(SpanPainterTest, ATallSpanIsPaintedWholeToItsEnds)
{
    Canvas canvas(9, 100);
    std::vector<RowSpan> spans = Straight(9, 50.0, 0.0);
    for (RowSpan& span : spans) {
        span = {20.5F, 80.5F};
    }
    PaintLine(canvas.Area(), spans, {PS_SOLID, 1, kBlack});
    EXPECT_EQ(canvas.At(4, 19), kWhite);
    for (int y = 20; y <= 80; ++y) {
        EXPECT_EQ(canvas.At(4, y), kBlack) << y;
    }
    EXPECT_EQ(canvas.At(4, 81), kWhite);
}

TEST(SpanPainterTest, ASpikeOfOneColumnReachesItsTip)
{
    Canvas canvas(21, 100);
    std::vector<RowSpan> spans = Straight(21, 80.5, 0.0);
    spans[10] = {10.5F, 80.5F};
    PaintLine(canvas.Area(), spans, {PS_SOLID, 1, kBlack});
    EXPECT_GT(canvas.Coverage(10, 11), 0.6);
    EXPECT_GT(canvas.Coverage(10, 40), 0.9);
    EXPECT_LT(canvas.Coverage(10, 8), 0.01);
}

TEST(SpanPainterTest, ASinglePointIsADotOfTwoByTwoPixelsAtLeast)
{
    for (const int width : {1, 2, 3, 9}) {
        Canvas canvas(30, 30);
        std::vector<RowSpan> spans(30);
        spans[15] = {15.3F, 15.3F};
        PaintLine(canvas.Area(), spans, {PS_SOLID, width, kBlack});
        EXPECT_GE(canvas.AllCoverage(), std::max(3.0, 0.75 * width * width)) << width;
        EXPECT_GT(canvas.Coverage(15, 15), 0.9) << width;
    }
}

TEST(SpanPainterTest, PiecesThatDoNotTouchAreNotJoined)
{
    for (const int width : {1, 9}) {
        Canvas canvas(40, 200);
        std::vector<RowSpan> spans = Straight(40, 20.5, 0.0);
        for (std::size_t i = 20; i < 40; ++i) {
            spans[i] = {180.5F, 180.5F};
        }
        PaintLine(canvas.Area(), spans, {PS_SOLID, width, kBlack});
        for (int x = 0; x < 40; ++x) {
            EXPECT_EQ(canvas.At(x, 100), kWhite) << width << " " << x;
        }
    }
}

TEST(SpanPainterTest, ColoursAreBlendedMultipliedByAlpha)
{
    // Half a red onto white, onto nothing and onto blue.
    const std::vector<RowSpan> spans(8, RowSpan{0.0F, 8.0F});
    for (const auto& [ground, wanted] : std::vector<std::pair<std::uint32_t, std::uint32_t>>{
             {kWhite, 0xFFFF7F7FU}, {0x00000000U, 0x80800000U}, {0xFF0000FFU, 0xFF80007FU}}) {
        Canvas fill(8, 8, ground);
        PaintFill(fill.Area(), spans, 0x80FF0000U);
        EXPECT_EQ(fill.At(4, 4), wanted);
        Canvas line(8, 8, ground);
        PaintLine(line.Area(), spans, {PS_SOLID, 1, 0x80FF0000U});
        EXPECT_EQ(line.At(4, 4), wanted);
    }
}

TEST(SpanPainterTest, AFillEndsWithinAPixel)
{
    Canvas canvas(3, 10);
    const std::vector<RowSpan> spans = {{}, {2.25F, 6.5F}, {4.25F, 4.5F}};
    PaintFill(canvas.Area(), spans, kBlack);
    EXPECT_EQ(canvas.ColumnCoverage(0), 0.0);
    EXPECT_NEAR(canvas.Coverage(1, 2), 0.75, 0.01);
    EXPECT_EQ(canvas.At(1, 3), kBlack);
    EXPECT_EQ(canvas.At(1, 5), kBlack);
    EXPECT_NEAR(canvas.Coverage(1, 6), 0.5, 0.01);
    EXPECT_EQ(canvas.At(1, 7), kWhite);
    EXPECT_NEAR(canvas.ColumnCoverage(2), 0.25, 0.01);
}

TEST(SpanPainterTest, DashesRunAlongTheCurve)
{
    struct Style {
        unsigned style;
        double drawn;
    };
    for (const Style& style : {Style{PS_DASH, 8.0 / 12}, Style{PS_DOT, 2.0 / 5}, Style{PS_DASHDOT, 10.0 / 16},
                               Style{PS_DASHDOTDOT, 12.0 / 21}}) {
        for (const double slope : {0.0, 0.5, 4.0, -4.0}) {
            Canvas solid(240, 1000);
            Canvas dashed(240, 1000);
            const std::vector<RowSpan> spans = Straight(240, 500.5 - slope * 120, slope);
            PaintLine(solid.Area(), spans, {PS_SOLID, 1, kBlack});
            PaintLine(dashed.Area(), spans, {style.style, 1, kBlack});
            EXPECT_NEAR(dashed.AllCoverage() / solid.AllCoverage(), style.drawn, 0.03)
                << style.style << " slope " << slope;
        }
    }
}

TEST(SpanPainterTest, ADashIsAsLongOnAWallAsOnTheLevel)
{
    Canvas canvas(9, 120);
    std::vector<RowSpan> spans = Straight(9, 110.5, 0.0);
    spans[4] = {10.5F, 110.5F};
    PaintLine(canvas.Area(), spans, {PS_DASH, 1, kBlack});
    int changes = 0;
    for (int y = 12; y < 108; ++y) {
        changes += (canvas.Coverage(4, y) > 0.5) != (canvas.Coverage(4, y + 1) > 0.5) ? 1 : 0;
    }
    // A dash and a gap take twelve pixels.
    EXPECT_NEAR(changes, 2 * 96 / 12, 2);
}

}  // namespace
}  // namespace zr::graph

// Whatever a bar is given, its picture stays whole: finite places, and pixels of the bar's size.
#include "BarFixture.h"
#include "controls/HorizontalBar.h"
#include "controls/VerticalBar.h"

#include <random>

namespace zr::controls {
namespace {

constexpr int kRounds = 10000;
constexpr int kFarthest = 2 * kFarPixel;

class Chance {
public:
    explicit Chance(unsigned seed) : m_engine(seed) {}

    int Below(int end) { return std::uniform_int_distribution<int>(0, end - 1)(m_engine); }
    bool Coin() { return Below(2) == 0; }
    double Number()
    {
        static constexpr double kOdd[] = {0.0,        -0.0,  1.0,    -1.0,   230.0,  kNan,        kInfinity,
                                          -kInfinity, 1e308, -1e308, 5e-324, 1e-300, 4294967295.0};
        if (Below(3) == 0) {
            return kOdd[Below(static_cast<int>(std::size(kOdd)))];
        }
        return std::uniform_real_distribution<double>(-300.0, 300.0)(m_engine);
    }
    BarReading Reading()
    {
        BarReading reading;
        reading.locked = Below(5) != 0;
        reading.valid = reading.locked && Below(5) != 0;
        reading.number = reading.valid ? Number() : 0.0;
        return reading;
    }
    int Extent()
    {
        static constexpr int kOdd[] = {0, 1, 2, 3, 10, 27, -1, -100000, 85, 100};
        return Coin() ? Below(700) : kOdd[Below(static_cast<int>(std::size(kOdd)))];
    }
    ZRBasicString Text() { return ZRBasicString(std::u16string(static_cast<std::size_t>(Below(30)), u'x')); }

private:
    std::mt19937 m_engine;
};

bool IsNear(const Rect& rect)
{
    const auto isNear = [](int place) { return place >= -kFarthest && place <= kFarthest; };
    return isNear(rect.left) && isNear(rect.top) && isNear(rect.right) && isNear(rect.bottom) &&
           rect.left <= rect.right && rect.top <= rect.bottom;
}

template <typename Bar>
void ExpectWhole(const Bar& bar, const DrawList& list, int round)
{
    for (const DrawItem& item : list) {
        const Rect rect = std::visit([](const auto& which) { return which.rect; }, item);
        ASSERT_TRUE(IsNear(rect)) << round << ": " << ::testing::PrintToString(rect);
    }
    for (const Picture& picture : ItemsOf<Picture>(list)) {
        ASSERT_EQ(bar.PicturePixels().width, picture.rect.Width()) << round;
        ASSERT_EQ(bar.PicturePixels().height, picture.rect.Height()) << round;
        ASSERT_EQ(bar.PicturePixels().pixels.size(),
                  static_cast<std::size_t>(picture.rect.Width()) * static_cast<std::size_t>(picture.rect.Height()));
    }
    for (int slot = 0; slot < kBarSlots; ++slot) {
        ASSERT_TRUE(IsNear(bar.Slots()[slot].textRect)) << round;
    }
}

template <typename Bar>
void SetupAtRandom(Bar& bar, Chance& chance, const TextMeasure& measure)
{
    if constexpr (std::is_same_v<Bar, VerticalBar>) {
        bar.SetupBar(chance.Below(16), chance.Extent(), chance.Extent());
        bar.SetupLimits(chance.Text(), chance.Number(), chance.Number(), chance.Number(), chance.Number(),
                        chance.Below(40) - 5, 0, 2, 1000);
        bar.SetLabelInfo(chance.Text());
        bar.SetUnits(chance.Below(3), chance.Text());
    } else {
        bar.SetupBar(chance.Extent(), chance.Extent());
    }
    bar.FontsChanged(measure);
    bar.SetLabel(chance.Text());
    // Often percentages, which give limits in some order.
    bar.SetupChecks(chance.Below(64), chance.Number(), chance.Number(), chance.Number(), chance.Number(),
                    chance.Coin() ? 230.0 : chance.Number());
}

template <typename Bar>
void RunAtRandom(unsigned seed)
{
    Chance chance(seed);
    const BarMeasure measure;
    Bar bar;
    BarPaint paint;
    for (int round = 0; round < kRounds; ++round) {
        if (round % 5 == 0) {
            SetupAtRandom(bar, chance, measure);
            paint.client = {chance.Extent(), chance.Extent()};
        }
        for (auto& info : paint.info) {
            info.valueExponent = chance.Below(9) - 4;
            info.unitsDecimals = chance.Below(8) - 1;
        }
        paint.isEnabled = chance.Below(8) != 0;
        if constexpr (std::is_same_v<Bar, VerticalBar>) {
            if (chance.Coin()) {
                bar.SetInstValue(chance.Number());
            }
        }
        bar.Update({chance.Reading(), chance.Reading(), chance.Reading()});
        bar.Slots().Click({chance.Below(300), chance.Below(300)}, chance.Coin());
        ASSERT_NO_FATAL_FAILURE(ExpectWhole(bar, bar.Compose(paint, measure), round));
    }
}

TEST(BarFuzz, KeepsAHorizontalBarWholeWhateverItIsGiven)
{
    RunAtRandom<HorizontalBar>(8002);
}

TEST(BarFuzz, KeepsAnUprightBarWholeWhateverItIsGiven)
{
    RunAtRandom<VerticalBar>(8004);
}

TEST(BarFuzz, KeepsMarkersInsideTheBarWhereTheChecksAreOn)
{
    Chance chance(8006);
    const BarMeasure measure;
    HorizontalBar horizontal;
    VerticalBar upright;
    BarPaint paint;
    for (int round = 0; round < kRounds; ++round) {
        const int flags = 2 * (1 + chance.Below(3)) + (chance.Coin() ? kPercentLimits : 0);
        const double limits[] = {chance.Number(), chance.Number(), chance.Number(), chance.Number()};
        horizontal.SetupChecks(flags, limits[0], limits[1], limits[2], limits[3], 230.0);
        upright.SetupChecks(flags, limits[0], limits[1], limits[2], limits[3], 230.0);
        const BarReadings readings = {chance.Reading(), chance.Reading(), chance.Reading()};
        horizontal.Update(readings);
        upright.Update(readings);
        paint.client = {100 + chance.Below(500), 50 + chance.Below(500)};
        horizontal.Compose(paint, measure);
        upright.Compose(paint, measure);
        for (int slot = 0; slot < kBarSlots; ++slot) {
            ASSERT_GE(horizontal.MarkerOf(slot), horizontal.BarRect().left) << round;
            ASSERT_LE(horizontal.MarkerOf(slot), horizontal.BarRect().right) << round;
            ASSERT_GE(upright.MarkerOf(slot), upright.BarRect().top) << round;
            ASSERT_LE(upright.MarkerOf(slot), upright.BarRect().bottom) << round;
        }
    }
}

}  // namespace
}  // namespace zr::controls

#include "controls/ValueReading.h"

#include "controls/TextOn.h"
#include "siblings/tools/LanguageFile.h"
#include "siblings/tools/ZRLoadString.h"
#include "support/LiveDevice.h"

#include <gtest/gtest.h>
#include <limits>

namespace zr::controls {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Every character is 6 by 10 pixels.
class GridMeasure final : public TextMeasure {
public:
    [[nodiscard]] Size Measure(FontRole, const ZRBasicString& text) const override
    {
        return {static_cast<int>(text.Length()) * 6, 10};
    }
};

class ValueReadingTest : public ::testing::Test {
protected:
    ValueReadingTest()
    {
        language.LoadText("607\tOpen\n608\tClosed\n", "test");
        SetLanguage(&language);
        reading.SetupVariable(u"METER.VOLTAGE", 0);
    }
    ~ValueReadingTest() override { SetLanguage(nullptr); }

    bool Read(double value)
    {
        device.Write(0, value);
        return reading.Update();
    }
    ValueState StateAt(double value)
    {
        Read(value);
        return reading.State();
    }
    DrawList Layout(Size client = {100, 20}) { return reading.Layout(client, colours, GridMeasure()); }

    test::LiveDevice device{u"METER", {test::Variable(u"VOLTAGE"), test::Variable(u"POWER", 1, 0, 3)}};
    LanguageFile language;
    SystemColours colours;
    ValueReading reading;
};

const Text& TextOf(const DrawList& list)
{
    return std::get<Text>(list.back());
}

TEST_F(ValueReadingTest, StartsUnlockedBlankAndUnselected)
{
    ValueReading fresh;
    EXPECT_FALSE(fresh.IsLocked());
    EXPECT_EQ(fresh.VarId(), 0u);
    EXPECT_FALSE(fresh.Selected());
    EXPECT_EQ(fresh.Value(), 4294967295.0);
    EXPECT_EQ(fresh.State(), ValueState::Normal);
    EXPECT_EQ(fresh.DrawFlags(), 8u);
}

TEST_F(ValueReadingTest, StaysBlankWhenTheVariableCantBeLocked)
{
    reading.SetupVariable(u"METER.NOSUCH", 2);
    EXPECT_FALSE(Read(1.0));
    EXPECT_TRUE(Layout().empty());
    EXPECT_EQ(reading.VarId(), 0u);
}

TEST_F(ValueReadingTest, KeepsTheHandleOfTheLockedVariable)
{
    reading.SetupVariable(u"METER.POWER", 2);
    VariableHandle handle = 0;
    ASSERT_TRUE(device.LockVariable(u"POWER", handle));
    EXPECT_EQ(reading.VarId(), handle);
}

TEST_F(ValueReadingTest, ShowsADashWhileLockedAndNotValid)
{
    EXPECT_FALSE(reading.Update());
    EXPECT_EQ(TextOf(Layout()).text, u"-");
}

TEST_F(ValueReadingTest, RepaintsTheFirstValidReadingEvenIfItIsTheStartingMark)
{
    EXPECT_TRUE(Read(4294967295.0));
    EXPECT_FALSE(Read(4294967295.0));
}

TEST_F(ValueReadingTest, RepaintsOnlyAChangedValue)
{
    EXPECT_TRUE(Read(230.0));
    EXPECT_FALSE(Read(230.0));
    EXPECT_TRUE(Read(230.5));
}

TEST_F(ValueReadingTest, TreatsANanOnEitherSideAsEqual)
{
    EXPECT_TRUE(Read(230.0));
    EXPECT_FALSE(Read(kNan));
    EXPECT_EQ(reading.Value(), 230.0);
    device.Invalidate(0);
    reading.Update();
    EXPECT_TRUE(Read(kNan));
    EXPECT_FALSE(Read(230.0));
}

TEST_F(ValueReadingTest, DoesNotRepaintWhenTheValueTurnsInvalidAndShowsADashAtTheNextPaint)
{
    Read(230.0);
    device.Invalidate(0);
    EXPECT_FALSE(reading.Update());
    EXPECT_EQ(TextOf(Layout()).text, u"-");
}

TEST_F(ValueReadingTest, RepaintsTheSameNumberWhenItBecomesValidAgain)
{
    Read(230.0);
    device.Invalidate(0);
    reading.Update();
    EXPECT_TRUE(Read(230.0));
}

TEST_F(ValueReadingTest, TakesPercentagesOfTheNominalValueAsLimits)
{
    reading.SetupChecks(kCheckHighLimits | kCheckLowLimits | kPercentLimits, 10, 20, 10, 20, 230);
    EXPECT_EQ(StateAt(207.0), ValueState::Normal);
    EXPECT_EQ(StateAt(206.9), ValueState::Warning);
    EXPECT_EQ(StateAt(200.0), ValueState::Warning);
    EXPECT_EQ(StateAt(180.0), ValueState::Alarm);
    EXPECT_EQ(StateAt(252.9), ValueState::Normal);
    EXPECT_EQ(StateAt(260.0), ValueState::Warning);
    EXPECT_EQ(StateAt(275.9), ValueState::Warning);
    EXPECT_EQ(StateAt(280.0), ValueState::Alarm);
}

TEST_F(ValueReadingTest, TestsOnlyTheSidesThatTheFlagsName)
{
    reading.SetupChecks(kCheckHighLimits, 10, 5, 20, 30, 1);
    EXPECT_EQ(StateAt(1.0), ValueState::Normal);
    EXPECT_EQ(StateAt(25.0), ValueState::Warning);
    reading.SetupChecks(kCheckLowLimits, 10, 5, 20, 30, 1);
    EXPECT_EQ(StateAt(31.0), ValueState::Normal);
    EXPECT_EQ(StateAt(7.0), ValueState::Warning);
    reading.SetupChecks(0, 10, 5, 20, 30, 1);
    EXPECT_EQ(StateAt(1.0), ValueState::Normal);
}

TEST_F(ValueReadingTest, LetsTheHighSideOverrideTheLowOne)
{
    // Limits in the wrong order: 15 is below the low alarm and above the high warning.
    reading.SetupChecks(kCheckHighLimits | kCheckLowLimits, 20, 18, 10, 30, 1);
    EXPECT_EQ(StateAt(15.0), ValueState::Warning);
}

TEST_F(ValueReadingTest, NeverChangesColourWithoutANominalValue)
{
    for (const int flags : {2, 4, 6, 8, 14, 32, 38, 46}) {
        reading.SetupChecks(flags, 10, 5, 20, 30, 0);
        EXPECT_EQ(StateAt(1000.0 + flags), ValueState::Normal) << flags;
        EXPECT_EQ(StateAt(-1000.0), ValueState::Normal) << flags;
        reading.SetupChecks(flags, 10, 5, 20, 30, -1);
        EXPECT_EQ(StateAt(2000.0 + flags), ValueState::Normal) << flags;
    }
}

TEST_F(ValueReadingTest, ComparesAPowerFactorOnTheFoldedScale)
{
    reading.SetupChecks(kPowerFactor, 0.5, 0.3, -0.9, -0.7, 1);
    EXPECT_EQ(StateAt(0.8), ValueState::Normal);  // -0.9 stands at 1.1
    EXPECT_EQ(StateAt(-0.95), ValueState::Normal);
    EXPECT_EQ(StateAt(-0.8), ValueState::Warning);
    EXPECT_EQ(StateAt(-0.5), ValueState::Alarm);
    EXPECT_EQ(StateAt(0.4), ValueState::Warning);
    EXPECT_EQ(StateAt(0.2), ValueState::Alarm);
}

TEST_F(ValueReadingTest, TestsBothSidesOfAPowerFactorWhateverTheOtherFlags)
{
    reading.SetupChecks(kPowerFactor | kCheckHighLimits, 0.5, 0.3, -0.9, -0.7, 1);
    EXPECT_EQ(StateAt(0.2), ValueState::Alarm);
    reading.SetupChecks(kPowerFactor | kCheckLowLimits, 0.5, 0.3, -0.9, -0.7, 1);
    EXPECT_EQ(StateAt(-0.5), ValueState::Alarm);
}

TEST_F(ValueReadingTest, KeepsItsStateAfterNewLimitsUntilTheNextChange)
{
    Read(280.0);
    reading.SetupChecks(kCheckHighLimits, 0, 0, 250, 270, 230);
    EXPECT_FALSE(reading.Update());
    EXPECT_EQ(reading.State(), ValueState::Normal);
    EXPECT_EQ(StateAt(281.0), ValueState::Alarm);
}

TEST_F(ValueReadingTest, CallsANumberThatIsNoneNormal)
{
    reading.SetupChecks(kCheckHighLimits | kCheckLowLimits, 10, 5, 20, 30, 1);
    EXPECT_EQ(StateAt(kNan), ValueState::Normal);
    EXPECT_EQ(TextOf(Layout()).text, u"NaN");
}

TEST_F(ValueReadingTest, RaisesTheAlarmAtAnInfinity)
{
    reading.SetupChecks(kCheckHighLimits | kCheckLowLimits, 10, 5, 20, 30, 1);
    EXPECT_EQ(StateAt(kInfinity), ValueState::Alarm);
    EXPECT_EQ(TextOf(Layout()).text, u"Inf");
    EXPECT_EQ(StateAt(-kInfinity), ValueState::Alarm);
}

TEST_F(ValueReadingTest, ShowsTheNumberInTheDisplayedUnit)
{
    reading.SetupVariable(u"METER.POWER", 2);
    device.Write(1, 12345.0);
    reading.Update();
    EXPECT_EQ(TextOf(Layout()).text, u"12.3");
}

TEST_F(ValueReadingTest, ShowsTheTwoWordsOfADigitalInput)
{
    reading.SetDigital(true);
    for (const double off : {0.0, -3.0}) {
        Read(off);
        EXPECT_EQ(TextOf(Layout()).text, u"Open") << off;
    }
    Read(1.0);
    EXPECT_EQ(TextOf(Layout()).text, u"Closed");
    device.Invalidate(0);
    reading.Update();
    EXPECT_EQ(TextOf(Layout()).text, u"-");
}

TEST_F(ValueReadingTest, TakesABooleanAsZeroOrOne)
{
    reading.SetDigital(true);
    device.Store()->At(0).WriteBoolean(true);
    EXPECT_TRUE(reading.Update());
    EXPECT_EQ(TextOf(Layout()).text, u"Closed");
    device.Store()->At(0).WriteBoolean(false);
    EXPECT_TRUE(reading.Update());
    EXPECT_EQ(TextOf(Layout()).text, u"Open");
}

TEST_F(ValueReadingTest, ShowsATextAsNoNumber)
{
    device.Store()->At(0).WriteText(u"A-17");
    EXPECT_TRUE(reading.Update());
    EXPECT_EQ(TextOf(Layout()).text, u"NaN");
}

TEST_F(ValueReadingTest, StaysUnselectedWhenSelectionIsDisabled)
{
    reading.SetEnableSelection(false);
    reading.Select(true);
    EXPECT_FALSE(reading.Selected());
    reading.Toggle();
    EXPECT_FALSE(reading.Selected());
    reading.SetEnableSelection(true);
    reading.Toggle();
    EXPECT_TRUE(reading.Selected());
    reading.SetEnableSelection(false);
    reading.Toggle();
    EXPECT_FALSE(reading.Selected());
}

TEST_F(ValueReadingTest, TakesItsPlacementFromTheAlignment)
{
    const std::pair<int, std::uint32_t> rows[] = {{2, 0}, {4, 1}, {8, 2}, {32, 0x24}, {64, 0x25}, {128, 0x26}};
    for (const auto& [alignment, flags] : rows) {
        reading.SetupVariable(u"METER.VOLTAGE", alignment);
        EXPECT_EQ(reading.DrawFlags(), flags) << alignment;
    }
    for (const int other : {0, 1, 16, 6, -1, 256}) {
        reading.SetupVariable(u"METER.VOLTAGE", other);
        EXPECT_EQ(reading.DrawFlags(), 0x26u) << other;
    }
}

TEST_F(ValueReadingTest, PlacesTheTextInTheWindow)
{
    const Size client{100, 30};
    const Size text{20, 10};
    EXPECT_EQ(PlaceText(client, text, 0), (Rect{0, 0, 20, 10}));
    EXPECT_EQ(PlaceText(client, text, 1), (Rect{40, 0, 60, 10}));
    EXPECT_EQ(PlaceText(client, text, 2), (Rect{80, 0, 100, 10}));
    EXPECT_EQ(PlaceText(client, text, 0x24), (Rect{0, 10, 20, 20}));
    EXPECT_EQ(PlaceText(client, text, 0x25), (Rect{40, 10, 60, 20}));
    EXPECT_EQ(PlaceText(client, text, 0x26), (Rect{80, 10, 100, 20}));
    // Without a single line the bottom counts for nothing.
    EXPECT_EQ(PlaceText(client, text, 8), (Rect{0, 0, 20, 10}));
}

TEST_F(ValueReadingTest, LetsTheTextHangOverAWindowThatIsTooSmall)
{
    for (const Size client : {Size{0, 0}, Size{1, 1}}) {
        Read(230.0);
        reading.SetupVariable(u"METER.VOLTAGE", 128);
        const Text text = TextOf(Layout(client));
        EXPECT_EQ(text.rect.right, client.cx);
        EXPECT_EQ(text.rect.Width(), 6 * static_cast<int>(text.text.Length()));
    }
}

TEST_F(ValueReadingTest, ColoursItselfByStateAndSelection)
{
    const Rgb face = colours.face;
    const Rgb caption = colours.activeCaption;
    const struct {
        ValueState state;
        bool isSelected;
        ValueColours expected;
    } rows[] = {
        {ValueState::Normal, false, {kBlack, face}},
        {ValueState::Normal, true, {kWhite, caption}},
        {ValueState::Warning, false, {kBlack, MakeRgb(255, 255, 0)}},
        {ValueState::Warning, true, {MakeRgb(255, 255, 0), caption}},
        {ValueState::Alarm, false, {kWhite, MakeRgb(255, 0, 0)}},
        {ValueState::Alarm, true, {MakeRgb(255, 0, 0), caption}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(ColoursOf(row.state, row.isSelected, colours), row.expected) << static_cast<int>(row.state);
    }
}

TEST_F(ValueReadingTest, TurnsTheBlackTextOfADarkFaceWhiteAndLeavesStateColours)
{
    colours.face = MakeRgb(40, 40, 40);
    EXPECT_EQ(ColoursOf(ValueState::Normal, false, colours).text, kWhite);
    EXPECT_EQ(ColoursOf(ValueState::Warning, false, colours).text, kBlack);
}

TEST_F(ValueReadingTest, FillsTheTextsRectangleOrTheWholeWindowWhenSelected)
{
    reading.SetupVariable(u"METER.VOLTAGE", 128);
    reading.SetupChecks(kCheckHighLimits, 0, 0, 100, 200, 1);
    Read(150.0);
    DrawList list = Layout();
    ASSERT_EQ(list.size(), 3u);
    EXPECT_EQ(std::get<Fill>(list[0]).rect, (Rect{0, 0, 100, 20}));
    EXPECT_EQ(std::get<Fill>(list[0]).colour, colours.face);
    EXPECT_EQ(std::get<Fill>(list[1]).rect, TextOf(list).rect);
    EXPECT_EQ(std::get<Fill>(list[1]).colour, MakeRgb(255, 255, 0));
    reading.Select(true);
    list = Layout();
    EXPECT_EQ(std::get<Fill>(list[1]).rect, (Rect{0, 0, 100, 20}));
    EXPECT_EQ(std::get<Fill>(list[1]).colour, colours.activeCaption);
}

TEST_F(ValueReadingTest, ErasesWithTheCaptionColourWhenSelected)
{
    EXPECT_EQ(reading.Background(colours), colours.face);
    reading.Select(true);
    EXPECT_EQ(reading.Background(colours), colours.activeCaption);
}

TEST_F(ValueReadingTest, TurnsInvalidAndNotDanglingWhenTheDeviceGoes)
{
    auto gone = std::make_unique<test::LiveDevice>(u"GONE", std::vector{test::Variable(u"V")});
    gone->Write(0, 5.0);
    reading.SetupVariable(u"GONE.V", 2);
    EXPECT_TRUE(reading.Update());
    gone.reset();
    EXPECT_FALSE(reading.Update());
    EXPECT_EQ(TextOf(Layout()).text, u"-");
}

}  // namespace
}  // namespace zr::controls

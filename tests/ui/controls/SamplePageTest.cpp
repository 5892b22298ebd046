// A page with every control in its states, painted into pictures that a person can look at: sample_page_*.png in
// pictures/ of the build folder.
#include "controls/ui/ZRBarValueControl.h"
#include "controls/ui/ZRBaseViewDlg.h"
#include "controls/ui/ZRValueControl.h"
#include "controls/ui/ZRVerticalBarValueControl.h"
#include "siblings/tools/LanguageFile.h"
#include "siblings/tools/ZRLoadString.h"
#include "support/LiveDevice.h"
#include "ui/support/KeepPicture.h"
#include "WindowPicture.h"

#include <gtest/gtest.h>
#include <cmath>
#include <memory>
#include <vector>

namespace {

using zr::test::Variable;

enum : std::size_t { kVoltage, kHigh, kLow, kCurrent, kPower, kPowerFactor, kPfHigh, kPfLow, kInput, kSilent };

class SamplePage {
public:
    SamplePage()
        : m_device(u"METER", {Variable(u"U", 1), Variable(u"UHI", 1), Variable(u"ULO", 1), Variable(u"I", 2, 0, 0, 2),
                              Variable(u"P", 2, 0, 3, 3), Variable(u"PF", 3, 0, 0, 7), Variable(u"PFHI", 3, 0, 0, 7),
                              Variable(u"PFLO", 3, 0, 0, 7), Variable(u"DI", 0, 0, 0, 0), Variable(u"SILENT")}),
          m_view(200)
    {
        m_language.Load(ZR_RESOURCES "/language/en.txt");
        zr::SetLanguage(&m_language);
        const std::pair<std::size_t, double> values[] = {{kVoltage, 229.7},  {kHigh, 251.3},     {kLow, 204.9},
                                                         {kCurrent, 12.345}, {kPower, 123456.0}, {kPowerFactor, -0.934},
                                                         {kPfHigh, -0.75},   {kPfLow, 0.71},     {kInput, 1.0}};
        for (const auto& [index, value] : values) {
            m_device.Write(index, value);
        }
        AddNumbers();
        AddBars();
        AddUprightBars();
        m_view.resize(700, 660);
    }
    ~SamplePage() { zr::SetLanguage(nullptr); }

    QWidget& View() { return m_view; }

private:
    void AddNumbers()
    {
        const struct {
            const wchar* name;
            double highWarning;
            double highAlarm;
            bool isSelected;
        } rows[] = {
            {u"METER.U", 253, 264, false},  {u"METER.U", 220, 264, false}, {u"METER.U", 210, 220, false},
            {u"METER.I", 253, 264, true},   {u"METER.I", 10, 20, true},    {u"METER.I", 5, 10, true},
            {u"METER.P", 1e6, 1e6, false},  {u"METER.DI", 5, 5, false},    {u"METER.SILENT", 5, 5, false},
            {u"METER.NOSUCH", 5, 5, false},
        };
        constexpr int kAlignments[] = {128, 64, 32, 128, 64, 32, 8, 4, 2, 2};
        int i = 0;
        for (const auto& row : rows) {
            auto control = std::make_unique<ZRValueControl>(&m_view, static_cast<unsigned>(1000 + i));
            control->SetupVariable(row.name, kAlignments[i]);
            control->SetupChecks(zr::controls::kCheckHighLimits, 0, 0, row.highWarning, row.highAlarm, 1);
            control->SetDigital(i == 7);
            control->setGeometry(10 + i % 5 * 135, 10 + i / 5 * 30, 125, 22);
            control->Update();
            control->Select(row.isSelected);
            m_numbers.push_back(std::move(control));
            ++i;
        }
    }

    ZRBarValueControl& AddBar(const wchar* label, std::vector<const wchar*> names, int y)
    {
        auto bar = std::make_unique<ZRBarValueControl>(&m_view);
        bar->SetupBar(20, 90);
        for (std::size_t slot = 0; slot < names.size(); ++slot) {
            bar->SetupVariable(static_cast<int>(slot), names[slot]);
        }
        bar->SetLabel(label);
        bar->setGeometry(10, y, 680, bar->IdealHeight() + 4);
        m_bars.push_back(std::move(bar));
        return *m_bars.back();
    }
    void AddBars()
    {
        AddBar(u"U1", {u"METER.U", u"METER.UHI", u"METER.ULO"}, 80).SetupChecks(14, 10, 15, 10, 15, 230);
        AddBar(u"U2", {u"METER.UHI", u"METER.UHI", u"METER.ULO"}, 145).SetupChecks(6, 215, 210, 240, 250, 230);
        AddBar(u"U3", {u"METER.U", u"METER.UHI", u"METER.ULO"}, 210).SetupChecks(0, 0, 0, 0, 0, 230);
        AddBar(u"PF", {u"METER.PF", u"METER.PFHI", u"METER.PFLO"}, 275).SetupChecks(32, 0.8, 0.7, -0.8, -0.7, 1);
        AddBar(u"I1", {u"METER.I", u"METER.SILENT", u"METER.NOSUCH"}, 340).SetupChecks(2, 0, 0, 16, 20, 10);
        for (const auto& bar : m_bars) {
            bar->Update();
        }
        m_bars[1]->Select(0, true);
    }

    ZRVerticalBarValueControl& AddUprightBar(const wchar* label, int x)
    {
        auto bar = std::make_unique<ZRVerticalBarValueControl>(&m_view);
        bar->SetupBar(15, 160, 90);
        bar->SetupVariable(0, u"METER.U");
        bar->SetupVariable(1, u"METER.UHI");
        bar->SetupVariable(2, u"METER.ULO");
        bar->SetLabel(label);
        bar->SetLabelInfo(u"12:30");
        bar->SetupLimits(u"V", 207, 195.5, 253, 264.5, 0, 1, 0, 1);
        bar->SetupChecks(14, 10, 15, 10, 15, 230);
        bar->setGeometry(x, 405, 165, 250);
        bar->Update();
        m_uprightBars.push_back(std::move(bar));
        return *m_uprightBars.back();
    }
    void AddUprightBars()
    {
        AddUprightBar(u"U1", 10).Select(1, true);
        AddUprightBar(u"U1 12:30", 180).SetInstValue(270);
        AddUprightBar(u"off scale", 350).SetupChecks(2, 0, 0, 253, 264.5, 240);
        AddUprightBar(u"out of use", 520).Disable();
    }

    zr::test::LiveDevice m_device;
    zr::LanguageFile m_language;
    ZRBaseViewDlg m_view;
    std::vector<std::unique_ptr<ZRValueControl>> m_numbers;
    std::vector<std::unique_ptr<ZRBarValueControl>> m_bars;
    std::vector<std::unique_ptr<ZRVerticalBarValueControl>> m_uprightBars;
};

class SamplePageTest : public ::testing::TestWithParam<std::tuple<bool, int>> {};

TEST_P(SamplePageTest, PaintsEveryControlInItsStates)
{
    const auto [isDark, scale] = GetParam();
    SamplePage page;
    if (isDark) {
        zr::test::SetDark(page.View());
    }
    const zr::test::WindowPicture picture(page.View(), scale);
    const QString name = QStringLiteral("sample_page_%1_%2.png")
                             .arg(isDark ? QStringLiteral("dark") : QStringLiteral("light"))
                             .arg(scale);
    ASSERT_TRUE(zr::test::KeepPicture(picture.Image(), name));
    // The alarm of a number, the green of a zone, and the text colour of the desktop.
    EXPECT_GT(picture.CountAll(0xff0000), 0);
    EXPECT_GT(picture.CountAll(zr::controls::MakeRgb(0, 240, 60)), 0);
    EXPECT_GT(picture.CountAll(isDark ? 0xffffff : 0x000000), 500);
}

INSTANTIATE_TEST_SUITE_P(LightAndDark, SamplePageTest, ::testing::Combine(::testing::Bool(), ::testing::Values(1, 2)));

}  // namespace

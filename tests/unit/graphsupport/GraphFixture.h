// A model of a graph with a meter's logged data, and what its tests ask of a scene.
#pragma once

#include "siblings/driversupport/store/MemoryLoggerStore.h"
#include "siblings/driversupport/VariableStore.h"
#include "siblings/driversupport/ZRLoggerData.h"
#include "siblings/graphsupport/GraphModel.h"
#include "siblings/tools/LanguageFile.h"
#include "siblings/tools/TimeZone.h"
#include "siblings/tools/Utf.h"
#include "siblings/tools/ZRLoadString.h"
#include "siblings/tools/ZRLocaleInformation.h"
#include "support/LiveDevice.h"
#include "unit/graphsupport/FixedExtents.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace zr::graph {

inline ZRDateTime Date(int day, int month, int year, int hour = 0, int minute = 0, int second = 0)
{
    ZRDateTime date;
    date.SetDateTime(year, month, day, hour, minute, second, 0, 0);
    return date;
}

inline constexpr double kNothing = std::numeric_limits<double>::quiet_NaN();
inline constexpr std::int64_t kMinuteLong = 60 * kMicrosOfSecond;

// Positions in the list of variables.
enum Variable { kVoltage, kCurrent, kEnergy, kState, kFactor, kForeign, kVariables };

// The plant's clock is UTC. The meter M has a voltage (stored in tenths), a current, a counter of energy (shown in
// kWh), a state and a power factor; what the sixth variable is nobody knows.
class GraphFixture : public testing::Test {
protected:
    GraphFixture()
    {
        SetLoggerStore(&store);
        SetPlantZone(TimeZone());
        SetLocaleInformation("en");
        EXPECT_TRUE(language.Load(ZR_RESOURCES "/language/en.txt"));
        SetLanguage(&language);
        for (const wchar* name : {u"M.U", u"M.I", u"M.E", u"M.S", u"M.PF", u"X.Y"}) {
            info.AddVariable(name);
        }
        info.Lock();
        SetSize(800, 400);
    }
    ~GraphFixture() override
    {
        model.Clear();
        SetLanguage(nullptr);
        SetLocaleInformation("");
        SetPlantZone(TimeZone::System());
        SetLoggerStore(nullptr);
    }

    static VariableDescription Described(const wchar* name, const wchar* description, int units, int valueExponent,
                                         int unitsExponent, VariableClass infoCode)
    {
        VariableDescription variable = test::Variable(name, 1, valueExponent, unitsExponent, units);
        variable.description = description;
        variable.variableClass = infoCode;
        return variable;
    }

    void SetSize(int width, int height, double scale = 1.0)
    {
        model.SetTarget({width, height, scale, &extents, false, false});
    }

    // A value of a variable every minute from the beginning of the day; those that are no number are left out.
    void Record(Variable variable, const std::vector<double>& values)
    {
        auto name = info.variables.begin();
        std::advance(name, variable);
        const int series = store.OpenSeries((*name)->fullName, 1);
        std::vector<LoggerAppend> batch;
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (!std::isnan(values[i])) {
                batch.push_back({series, kBegin + static_cast<std::int64_t>(i) * kMinuteLong, values[i]});
            }
        }
        ASSERT_TRUE(store.Append(batch));
    }

    // The day's group; a period in seconds, 0 as recorded.
    const ZRLoggerData::CRecordGroup& Load(std::int32_t period = 0)
    {
        data.Setup(info);
        EXPECT_TRUE(data.SelectData(kFrom, kTo, nullptr));
        ZRLoggerData::CRecordGroup& group = data.RecordGroup(ZRDateTimeSpan(period, 0), nullptr);
        group.SelectData(kFrom, kTo, true);
        return group;
    }

    static CurveInfo Curve(int index, int zone = 0)
    {
        CurveInfo curve;
        curve.index = index;
        curve.zone = zone;
        curve.pen.lopnColor = 0x112200UL + static_cast<unsigned long>(index);
        curve.brush.lbColor = curve.pen.lopnColor;
        return curve;
    }

    void Show(const std::vector<CurveInfo>& curves, std::int32_t period = 0)
    {
        model.Update(curves, kFrom, kTo, info, &Load(period));
    }
    // Minutes 0 to 599 of the voltage: 2300 and more, in tenths.
    void ShowVoltage()
    {
        std::vector<double> values;
        for (int i = 0; i < 600; ++i) {
            values.push_back(2300.0 + i % 50);
        }
        Record(kVoltage, values);
        Show({Curve(kVoltage)});
    }

    [[nodiscard]] static std::vector<std::string> Texts(const SceneLayer& layer)
    {
        std::vector<std::string> texts;
        for (const SceneItem& item : layer) {
            if (const auto* text = std::get_if<SceneText>(&item)) {
                texts.push_back(Utf16ToUtf8(text->text));
            }
        }
        return texts;
    }
    [[nodiscard]] static bool Holds(const SceneLayer& layer, const std::string& text)
    {
        const std::vector<std::string> texts = Texts(layer);
        return std::find(texts.begin(), texts.end(), text) != texts.end();
    }
    template <typename Item>
    [[nodiscard]] static std::vector<Item> Items(const SceneLayer& layer, SceneRole role)
    {
        std::vector<Item> items;
        for (const SceneItem& item : layer) {
            const auto* found = std::get_if<Item>(&item);
            if (found != nullptr && found->role == role) {
                items.push_back(*found);
            }
        }
        return items;
    }

    [[nodiscard]] Rect Panel(std::size_t number = 0) { return model.Scene().panels.at(number).rect; }
    // The place of a minute of the day in a row of the first panel.
    [[nodiscard]] Point PlaceOf(double minute, int y = 200)
    {
        const Zoom view = model.InView();
        const double share = (static_cast<double>(kBegin - view.from) + minute * static_cast<double>(kMinuteLong)) /
                             static_cast<double>(view.to - view.from);
        return {Panel().left + static_cast<int>(std::floor(share * Panel().Width())), y};
    }
    // Where a curve is at a time: the middle of its span there.
    [[nodiscard]] Point OnCurve(std::size_t panel, int column)
    {
        const CurvePanel& shown = model.Scene().panels.at(panel);
        std::vector<RowSpan> spans(static_cast<std::size_t>(shown.rect.Width()));
        model.Spans(shown, spans);
        const RowSpan& span = spans.at(static_cast<std::size_t>(column));
        return {shown.rect.left + column, shown.rect.top + static_cast<int>((span.top + span.bottom) / 2.0F)};
    }

    static constexpr std::int64_t kBegin = 1041206400 * kMicrosOfSecond;  // 30 December 2002
    const ZRDateTime kFrom = Date(30, 12, 2002);
    const ZRDateTime kTo = Date(31, 12, 2002);

    FixedExtents extents;
    LanguageFile language;
    MemoryLoggerStore store;
    test::LiveDevice meter{u"M",
                           {Described(u"U", u"Voltage", 1, -1, 0, VariableClass::Instantaneous),
                            Described(u"I", u"Current", 2, 0, 0, VariableClass::Instantaneous),
                            Described(u"E", u"Energy", 8, 0, 3, VariableClass::Counter),
                            Described(u"S", u"State", 0, 0, 0, VariableClass::State),
                            Described(u"PF", u"Power factor", 7, 0, 0, VariableClass::Instantaneous)}};
    ZRLoggerInfo info;
    ZRLoggerData data;
    GraphModel model;
};

}  // namespace zr::graph

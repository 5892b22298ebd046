// Pictures of measured data for people to look at: test_ui_graphsupport leaves them in pictures/ of the build folder,
// and docs/images has two of the kind.
#include "ui/graphsupport/GraphFixture.h"
#include "ui/support/SuiteTest.h"

#include <array>
#include <charconv>
#include <fstream>

namespace zr::graph {
namespace {

constexpr std::size_t kColumns = 3;
constexpr int kDays = 3;
constexpr int kMinutesOfDay = 1440;

// Active power in kW, reactive power in kvar and voltage in V of the demo's household, a row a minute.
std::vector<std::array<double, kColumns>> Household()
{
    std::ifstream file(ZR_RESOURCES "/demo/household/household_1min.csv");
    std::vector<std::array<double, kColumns>> rows;
    std::string line;
    std::getline(file, line);
    while (std::getline(file, line)) {
        std::array<double, kColumns> row{};
        std::size_t place = 0;
        for (double& value : row) {
            place = line.find(',', place) + 1;
            if (std::from_chars(line.data() + place, line.data() + line.size(), value).ec != std::errc()) {
                value = kMissing;
            }
        }
        rows.push_back(row);
    }
    return rows;
}

class GraphPictureTest : public GraphFixture {
protected:
    // Of the demo from the first midnight on.
    void RecordHousehold()
    {
        const auto rows = Household();
        const std::size_t first = 396;
        ASSERT_GT(rows.size(), first + kDays * kMinutesOfDay);
        std::array<std::vector<double>, kColumns> values;
        std::vector<double> energy;
        std::vector<double> factor;
        double sum = 0.0;
        for (std::size_t r = first; r < first + kDays * kMinutesOfDay; ++r) {
            const auto& row = rows[r];
            for (std::size_t column = 0; column < kColumns; ++column) {
                values[column].push_back(row[column] * (column == 2 ? 1.0 : 1000.0));
            }
            sum += row[0] * 1000.0 / 60.0;
            energy.push_back(sum);
            const double apparent = std::hypot(row[0], row[1]);
            factor.push_back(apparent > 0.0 ? row[0] / apparent * (((r - first) / kMinutesOfDay) % 2 == 0 ? 1.0 : -1.0)
                                            : kMissing);
        }
        RecordEvery(60, u"H.P", values[0]);
        RecordEvery(60, u"H.Q", values[1]);
        RecordEvery(60, u"H.U", values[2]);
        RecordEvery(60, u"H.PF", factor);
        RecordEvery(60, u"H.E", energy);
    }
    void DrawHousehold()
    {
        const auto colour = [](std::size_t i) { return ZRGraph::predefinedColors[i]; };
        Draw({{u"H.U", 0, colour(0)},
              {u"H.P", 1, colour(1)},
              {u"H.Q", 1, colour(2)},
              {u"H.PF", 2, colour(3)},
              {u"H.E", 3, colour(4)}},
             kQuarter, kDays);
    }
    // Light and dark, plain and fine.
    void Keep(const QString& name)
    {
        for (const int scale : {1, 2}) {
            graph->setPalette(QApplication::palette());
            EXPECT_TRUE(test::KeepPicture(Picture(scale).Image(), QString("%1-light-%2.png").arg(name).arg(scale)));
            graph->setPalette(test::DarkPalette());
            EXPECT_TRUE(test::KeepPicture(Picture(scale).Image(), QString("%1-dark-%2.png").arg(name).arg(scale)));
        }
    }

    static constexpr ZRDateTimeSpan kQuarter{900, 0};
    test::LiveDevice household{
        u"H",
        {OfClass(logger::Described(u"U", u"Voltage", 1, 0, 0, 1), VariableClass::Instantaneous),
         OfClass(logger::Described(u"P", u"Active power", 3, 0, 3, 2), VariableClass::Instantaneous),
         OfClass(logger::Described(u"Q", u"Reactive power", 4, 0, 3, 2), VariableClass::Instantaneous),
         OfClass(logger::Described(u"PF", u"Power factor", 7, 0, 0, 3), VariableClass::Instantaneous),
         OfClass(logger::Described(u"E", u"Active energy", 8, 0, 3, 2), VariableClass::Counter)}};
};

TEST_F(GraphPictureTest, ShowsThreeDaysOfAHousehold)
{
    parent.resize(960, 600);
    RecordHousehold();
    DrawHousehold();
    EXPECT_EQ(Picture().Panels().size(), 4U);
    Keep("graph-zones");
    Hover(QPoint(420, 150));
    Keep("graph-tooltip");
    EXPECT_FALSE(graph->zoomHistory.size() > 0);
}

TEST_F(GraphPictureTest, ShowsMarkersAndWhatIsBetweenThem)
{
    parent.resize(960, 600);
    RecordHousehold();
    DrawHousehold();
    const QImage before = Picture().Image();
    for (const int x : {300, 640}) {
        Press(QPoint(x, 150), Qt::ShiftModifier);
        Release(QPoint(x, 150), Qt::ShiftModifier);
    }
    Leave();
    EXPECT_NE(Picture().Image(), before);
    Keep("graph-markers");
}

TEST_F(GraphPictureTest, ShowsEveryMinuteInOneZone)
{
    parent.resize(960, 400);
    RecordHousehold();
    Draw({{u"H.U", 0, ZRGraph::predefinedColors[0]}}, logger::kEveryRecord, kDays);
    EXPECT_GT(graph->RecordsPerColumn(), 1.0);
    Keep("graph-reduced");
    graph->SetMode(1);
    Press(QPoint(300, 150));
    DragTo(QPoint(500, 160));
    Keep("graph-band");
    Release(QPoint(500, 160));
    graph->SetMode(2);
    Leave();
    Keep("graph-zoomed");
}

TEST_F(GraphPictureTest, ShowsASmallGraph)
{
    parent.resize(300, 180);
    RecordHousehold();
    DrawHousehold();
    EXPECT_FALSE(Picture().Image().isNull());
    Keep("graph-small");
}

// Two hundred curves in six zones, with states, and half a day without records.
TEST_F(GraphPictureTest, ShowsTwoHundredCurves)
{
    parent.resize(960, 600);
    RecordDay(u"G.U", [](int minute) { return minute / 360 == 2 ? kMissing : 230.0 + 8.0 * std::sin(minute / 90.0); });
    RecordDay(u"G.V", [](int minute) { return minute / 360 == 2 ? kMissing : 232.0 + 6.0 * std::cos(minute / 70.0); });
    RecordDay(u"G.PF", [](int minute) { return std::cos(minute / 200.0); });
    RecordDay(u"G.E", [](int minute) { return minute * 0.35 + 20.0 * std::sin(minute / 240.0); });
    RecordEvery(3600, u"G.S", {0, 0, 1, 1, 0, 3, 3, 2, kMissing, 1, 0, 0, 1});
    constexpr const wchar* kNames[] = {u"G.U", u"G.V", u"G.S", u"G.PF", u"G.E", u"G.U"};
    std::vector<Drawn> curves;
    for (int zone = 0; zone < 6; ++zone) {
        for (int i = 0; i < 33 + (zone < 2 ? 1 : 0); ++i) {
            curves.push_back(
                {kNames[zone], zone, ZRGraph::predefinedColors[static_cast<std::size_t>((zone + i) % 12)]});
        }
    }
    Draw(curves, kHour);
    EXPECT_EQ(Picture().Panels().size(), 6U);
    Keep("graph-many");
    Hover(QPoint(300, 300));
    Keep("graph-many-tooltip");
}

}  // namespace
}  // namespace zr::graph

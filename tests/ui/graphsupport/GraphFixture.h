// A graph in a window, on the logged data of a meter: 30 December 2002, in UTC.
#pragma once

#include "logger/FormatDateTime.h"
#include "siblings/driversupport/VariableStore.h"
#include "siblings/graphsupport/ui/ZRGraph.h"
#include "ui/graphsupport/GraphPicture.h"
#include "ui/support/KeepPicture.h"
#include "unit/logger/LoggedFixture.h"

#include <functional>
#include <limits>
#include <memory>
#include <QApplication>
#include <QMouseEvent>
#include <QTest>
#include <QWheelEvent>
#include <string>
#include <vector>

namespace zr::graph {

constexpr unsigned long kAllCurves = 0x7FFFFFFF;
constexpr ZRDateTimeSpan kHour(3600, 0);
constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();

// Hears what the graph tells, and the buttons that it has no use for.
class GraphParent : public CWnd {
public:
    int notices = 0;
    int rightReleases = 0;
    std::function<void()> onNotice;

protected:
    bool OnNotify(const ui::NMHDR& notice) override
    {
        EXPECT_EQ(notice.code, ui::GRN_SHOWN);
        EXPECT_EQ(notice.idFrom, ui::kGraphId);
        ++notices;
        if (onNotice) {
            onNotice();
        }
        return true;
    }
    void mouseReleaseEvent(QMouseEvent* event) override { rightReleases += event->button() == Qt::RightButton ? 1 : 0; }
    void resizeEvent(QResizeEvent*) override
    {
        for (QObject* child : children()) {
            static_cast<QWidget*>(child)->resize(size());
        }
    }
};

// A curve of the graph: of a variable of the meter, in a colour and within limits.
struct Drawn {
    const wchar* name;
    int zone = 0;
    unsigned long colour = 0x0000C0;  // red
    double minimum = kNoLimit;
    double maximum = kNoLimit;
    int width = 1;
    unsigned style = PS_SOLID;
};

// The meter G has voltages U and V in volts, a counter E, a state S and a power factor PF.
class GraphFixture : public logger::LoggedFixture {
protected:
    GraphFixture()
    {
        parent.resize(600, 400);
        MakeGraph();
        parent.show();
    }

    void MakeGraph()
    {
        graph = new ZRGraph;
        EXPECT_TRUE(graph->Create(&parent, ui::kGraphId));
        graph->SetDateText(&FormatDateTime);
        graph->resize(parent.size());
        SetPalette(QPalette(QColor(0xf0, 0xf0, 0xf0)));
    }
    // With a ground of the curves that nothing else has.
    void SetPalette(QPalette palette)
    {
        palette.setColor(QPalette::Base, QColor::fromRgb(kPanelGround));
        graph->setPalette(palette);
    }
    static VariableDescription OfClass(VariableDescription variable, VariableClass infoClass)
    {
        variable.variableClass = infoClass;
        return variable;
    }
    static VariableClass ClassOf(const ZRBasicString& name)
    {
        return name.Text().ends_with(u".E")   ? VariableClass::Counter
               : name.Text().ends_with(u".S") ? VariableClass::State
                                              : VariableClass::Instantaneous;
    }

    // So many values of a variable from the start of the day on, a period apart.
    void RecordEvery(std::uint32_t seconds, const wchar* name, const std::vector<double>& values)
    {
        constexpr std::int64_t kEpoch = 946684800;
        const int series = store.OpenSeries(name, static_cast<std::int32_t>(ClassOf(name)));
        std::vector<LoggerAppend> batch;
        std::int64_t time = kEpoch + kDay.seconds;
        for (const double value : values) {
            if (!std::isnan(value)) {
                batch.push_back({series, time * 1000000, value});
            }
            time += seconds;
        }
        ASSERT_TRUE(store.Append(batch));
    }
    // A value a minute for the whole day, by the minute.
    template <typename Value>
    void RecordDay(const wchar* name, const Value& value)
    {
        std::vector<double> values;
        for (int minute = 0; minute <= 1440; ++minute) {
            values.push_back(value(minute));
        }
        RecordEvery(60, name, values);
    }
    // A voltage that rises from 220 V to 240 V from midnight to midnight.
    void RecordRise(const wchar* name = u"G.U")
    {
        RecordDay(name, [](int minute) { return 220.0 + 20.0 * minute / 1440.0; });
    }

    // So many days with these curves.
    void Draw(const std::vector<Drawn>& curves, ZRDateTimeSpan period = logger::kEveryRecord, int days = 1)
    {
        const ZRDateTime end = kDay + ZRDateTimeSpan(86400 * days, 0);
        graph->ClearVariables(kAllCurves);
        loaded = std::make_unique<ZRLoggerData>();
        ZRLoggerInfo info;
        for (const Drawn& curve : curves) {
            info.AddVariable(curve.name);
        }
        loaded->Setup(info);
        loaded->loggerInfo.Lock();
        loaded->SelectData(kDay, end, nullptr);
        ZRLoggerData::CRecordGroup& group = loaded->RecordGroup(period, nullptr);
        group.SelectData(kDay, end, true);
        for (std::size_t i = 0; i < curves.size(); ++i) {
            auto* const curve = new ZRGraph::CVarInfo;
            curve->index = static_cast<int>(i);
            curve->zone = curves[i].zone;
            curve->minimum = curves[i].minimum;
            curve->maximum = curves[i].maximum;
            curve->pen = {curves[i].style, curves[i].width, curves[i].colour};
            curve->brush.lbColor = curves[i].colour;
            graph->varInfos.push_back(curve);
        }
        graph->Update(kDay, end, &loaded->loggerInfo, &group);
    }
    // The voltage that rises, from corner to corner.
    void DrawRise()
    {
        RecordRise();
        Draw({{u"G.U", 0, kRed, 220.0, 240.0}});
    }
    ZRDateTime Tomorrow() const { return kDay + ZRDateTimeSpan(86400, 0); }

    void Mouse(QEvent::Type type, QPoint at, Qt::MouseButton button, Qt::MouseButtons buttons,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QMouseEvent event(type, at, graph->mapToGlobal(at), button, buttons, modifiers);
        QApplication::sendEvent(graph, &event);
    }
    void Hover(QPoint at) { Mouse(QEvent::MouseMove, at, Qt::NoButton, Qt::NoButton); }
    void Leave()
    {
        QEvent event(QEvent::Leave);
        QApplication::sendEvent(graph, &event);
    }
    void Press(QPoint at, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        Mouse(QEvent::MouseButtonPress, at, Qt::LeftButton, Qt::LeftButton, modifiers);
    }
    void DragTo(QPoint at) { Mouse(QEvent::MouseMove, at, Qt::NoButton, Qt::LeftButton); }
    void Release(QPoint at, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        Mouse(QEvent::MouseButtonRelease, at, Qt::LeftButton, Qt::NoButton, modifiers);
    }
    void Drag(QPoint from, QPoint to)
    {
        Press(from);
        DragTo((from + to) / 2);
        DragTo(to);
        Release(to);
    }
    void Turn(QPoint at, QPoint angle, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QWheelEvent event(at, graph->mapToGlobal(at), QPoint(), angle, Qt::NoButton, modifiers, Qt::NoScrollPhase,
                          false);
        QApplication::sendEvent(graph, &event);
    }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) { QTest::keyClick(graph, key, modifiers); }

    GraphPicture Picture(int scale = 1) { return GraphPicture(*graph, scale); }

    static constexpr unsigned long kRed = 0x0000C0;
    static constexpr unsigned long kBlue = 0xC00000;

    test::LiveDevice meter{
        u"G",
        {OfClass(logger::Described(u"U", u"Voltage", 1, 0, 0, 1), VariableClass::Instantaneous),
         OfClass(logger::Described(u"V", u"Voltage 2", 1, 0, 0, 1), VariableClass::Instantaneous),
         OfClass(logger::Described(u"E", u"Energy", 8, 0, 0, 2), VariableClass::Counter),
         OfClass(logger::Described(u"S", u"State", 0, 0, 0, 0), VariableClass::State),
         OfClass(logger::Described(u"PF", u"Power factor", 7, 0, 0, 3), VariableClass::Instantaneous)}};
    std::unique_ptr<ZRLoggerData> loaded;
    GraphParent parent;
    ZRGraph* graph = nullptr;  // owned by the parent
};

}  // namespace zr::graph

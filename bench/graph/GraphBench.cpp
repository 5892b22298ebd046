// Six curves in a window of 1600 by 900, off screen, axes and texts included: data to first picture, then pictures
// after a pan of half the time and of the whole. A well-known plotting library draws the same beside, in turn.
//
// Both have the same values, from a list of records and from the library's own vectors; both draw lines of one pixel,
// antialiased, on one value axis that is fitted to the data, with a time axis, grid and legend, and paint their window
// at once. A first picture begins with what the records or the vectors hold: ours reads them all to build its levels,
// the library takes a copy of what was sorted before. A pan is by a tenth of what is in view; ours fits the value axis
// to it again and shows the values under the cursor, the library does neither. Times are the processor's, of all
// threads, the median of several rounds: where two threads read the records, both count.
#include "BenchLine.h"
#include "LoggedCurves.h"
#include "Median.h"
#include "MemoryPeak.h"
#include "PeerPlot.h"
#include "siblings/driversupport/store/SqliteLoggerStore.h"
#include "siblings/graphsupport/GraphData.h"
#include "siblings/graphsupport/ui/ZRGraph.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <ctime>
#include <QApplication>
#include <QImage>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QStyleFactory>
#include <string>
#include <vector>

namespace {

using zr::bench::kCurves;
using zr::bench::LoggedCurves;
using zr::bench::PeerPlot;
using zr::bench::PrintLine;
using zr::bench::Require;

constexpr int kWidth = 1600;
constexpr int kHeight = 900;
constexpr int kRounds = 5;
constexpr int kPansARound = 6;
constexpr std::int64_t kYear = 365 * 24 * 60;
constexpr unsigned long kAllCurves = 0x7FFFFFFF;

// A graph that tells how often it was painted: a paint that didn't happen costs nothing.
class Graph : public ZRGraph {
public:
    Graph()
    {
        Create(nullptr, zr::ui::kGraphId);
        resize(kWidth, kHeight);
        show();
        QCoreApplication::processEvents();
    }

    void First(const LoggedCurves& curves, const ZRLoggerData::CRecordGroup& group)
    {
        ClearVariables(kAllCurves);
        for (int i = 0; i < kCurves; ++i) {
            auto* const info = new CVarInfo;
            info->index = i;
            info->pen.lopnColor = predefinedColors[static_cast<std::size_t>(i)];
            info->brush.lbColor = info->pen.lopnColor;
            varInfos.push_back(info);
        }
        Update(curves.From(), curves.To(), &curves.Info(), &group);
        repaint();
    }
    // Half of the window of time, about the middle.
    void ZoomToHalf()
    {
        SetMode(1);
        Mouse(QEvent::MouseButtonPress, kWidth / 4);
        Mouse(QEvent::MouseMove, kWidth * 3 / 4);
        Mouse(QEvent::MouseButtonRelease, kWidth * 3 / 4);
        SetMode(0);
        Require(!zoomHistory.empty(), "no zoom");
    }
    // By a tenth of what is in view.
    void Pan(bool right)
    {
        QKeyEvent key(QEvent::KeyPress, right ? Qt::Key_Right : Qt::Key_Left, Qt::NoModifier);
        QApplication::sendEvent(this, &key);
        repaint();
    }
    void Whole()
    {
        UndoZoom();
        repaint();
    }
    int paints = 0;

protected:
    void paintEvent(QPaintEvent* event) override
    {
        ++paints;
        ZRGraph::paintEvent(event);
    }

private:
    void Mouse(QEvent::Type type, int x)
    {
        const QPointF at(x, kHeight / 2);
        const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        const Qt::MouseButtons down = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, at, mapToGlobal(at), button, down, Qt::NoModifier);
        QApplication::sendEvent(this, &event);
    }
};

// The runs of one kind of work, by the processor's time: what other programs take doesn't count.
class ProcessorMedian {
public:
    template <typename Work>
    void Add(const Work& work)
    {
        const std::clock_t start = std::clock();
        work();
        m_times.push_back(static_cast<double>(std::clock() - start) * 1000.0 / CLOCKS_PER_SEC);
    }
    [[nodiscard]] double Ms()
    {
        const auto middle = m_times.begin() + static_cast<std::ptrdiff_t>(m_times.size() / 2);
        std::nth_element(m_times.begin(), middle, m_times.end());
        return *middle;
    }

private:
    std::vector<double> m_times;
};

struct Times {
    ProcessorMedian first;
    ProcessorMedian pan;
    ProcessorMedian whole;
};

struct Result {
    double first = 0.0;
    double pan = 0.0;
    double whole = 0.0;
};

void RunOurs(Graph& graph, const LoggedCurves& curves, const ZRLoggerData::CRecordGroup& group, Times& times)
{
    const int before = graph.paints;
    times.first.Add([&] { graph.First(curves, group); });
    graph.ZoomToHalf();
    for (int i = 0; i < kPansARound; ++i) {
        times.pan.Add([&] { graph.Pan(i % 2 == 0); });
    }
    times.whole.Add([&] { graph.Whole(); });
    Require(graph.paints >= before + kPansARound + 2, "a picture is missing");
}

void RunPeer(PeerPlot& peer, const LoggedCurves& curves, Times& times)
{
    const std::vector<double>& all = curves.Times();
    const double span = all.back() - all.front();
    const double from = all.front() + span / 4;
    times.first.Add([&] { peer.First(); });
    peer.Show(from, from + span / 2);
    for (int i = 0; i < kPansARound; ++i) {
        const double shift = i % 2 == 0 ? span / 20 : 0.0;
        times.pan.Add([&] { peer.Show(from + shift, from + shift + span / 2); });
    }
    times.whole.Add([&] { peer.Show(all.front(), all.back()); });
}

Result ResultOf(Times& times)
{
    return {times.first.Ms(), times.pan.Ms(), times.whole.Ms()};
}

struct Both {
    Result ours;
    Result peer;
};

// Pictures to look at, into the folder of the environment variable ZR_PICTURES, if it is set.
void KeepPictures(Graph& graph, const PeerPlot& peer, const std::string& name)
{
    const QString folder = qEnvironmentVariable("ZR_PICTURES");
    if (folder.isEmpty()) {
        return;
    }
    const QString file = folder + QLatin1Char('/') + QString::fromStdString(name);
    Require(graph.grab().save(file + "-ours.png") && peer.Picture().save(file + "-peer.png"), "no picture");
}

Both Measure(std::int64_t records, const std::string& name)
{
    LoggedCurves curves(records);
    const ZRLoggerData::CRecordGroup& group = curves.LoadFromMemory();
    Graph graph;
    PeerPlot peer(kWidth, kHeight);
    peer.Prepare(curves);
    Times ours;
    Times theirs;
    for (int round = 0; round < kRounds; ++round) {
        RunOurs(graph, curves, group, ours);
        RunPeer(peer, curves, theirs);
    }
    KeepPictures(graph, peer, name);
    return {ResultOf(ours), ResultOf(theirs)};
}

void PrintRatio(const std::string& name, double ours, double peer)
{
    PrintLine(("graph." + name + "_ms").c_str(), ours, "ms");
    PrintLine(("graph." + name + "_peer_ms").c_str(), peer, "ms");
    PrintLine(("graph." + name + "_ratio").c_str(), peer / ours, "x");
}

void MeasureSize(std::int64_t records, const std::string& name)
{
    const Both both = Measure(records, name);
    PrintRatio(name + "_first", both.ours.first, both.peer.first);
    PrintRatio(name + "_pan", both.ours.pan, both.peer.pan);
    PrintRatio(name + "_whole", both.ours.whole, both.peer.whole);
}

// What a graph takes beside the records, its own picture left aside.
void MeasureMemory(std::int64_t records)
{
    LoggedCurves curves(records);
    LoggedCurves few(2 * kCurves);
    const ZRLoggerData::CRecordGroup& group = curves.LoadFromMemory();
    Graph graph;
    graph.First(few, few.LoadFromMemory());
    zr::bench::ForgetPeak();
    const double before = zr::bench::ResidentBytes("VmRSS:");
    graph.First(curves, group);
    const double after = zr::bench::ResidentBytes("VmRSS:");
    const double most = zr::bench::ResidentBytes("VmHWM:");
    PrintLine("graph.memory_pct", (after - before) / curves.RecordBytes() * 100.0, "%");
    PrintLine("graph.memory_peak_pct", (most - before) / curves.RecordBytes() * 100.0, "%");
}

std::vector<zr::graph::CurveColumn> AllColumns()
{
    std::vector<zr::graph::CurveColumn> columns;
    for (int i = 0; i < kCurves; ++i) {
        columns.push_back({i, zr::graph::CurveShape::Line, 0.1, false});
    }
    return columns;
}

void MeasureYear()
{
    const zr::test::TempFolder folder;
    LoggedCurves curves(kYear);
    zr::SqliteLoggerStore store(folder / "year.zrlog");
    curves.Fill(store);
    zr::SetLoggerStore(&store);
    Graph graph;
    // By the clock: reading waits for the file.
    zr::bench::Median loading;
    zr::bench::Median picture;
    for (int round = 0; round < kRounds; ++round) {
        loading.Add([&] { curves.Load(); });
        picture.Add([&] { graph.First(curves, curves.Load()); });
        graph.ClearVariables(kAllCurves);
    }
    const ZRLoggerData::CRecordGroup& group = curves.Load();
    zr::bench::Median scanning;
    for (int round = 0; round < kRounds; ++round) {
        zr::graph::GraphData data;
        scanning.Add([&] { data.Bind(group, AllColumns()); });
    }
    zr::SetLoggerStore(nullptr);
    PrintLine("graph.year_load_ms", loading.Ms(), "ms");
    // What minima and maxima that came along with the records could save at most.
    PrintLine("graph.year_scan_ms", scanning.Ms(), "ms");
    PrintLine("graph.year_first_picture_ms", picture.Ms(), "ms");
}

}  // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    // One size alone: bench_graph RECORDS.
    if (argc > 1) {
        MeasureSize(std::atol(argv[1]), "own");
        return 0;
    }
    MeasureYear();
    MeasureMemory(1000000);
    MeasureSize(10000, "6x10k");
    MeasureSize(100000, "6x100k");
    MeasureSize(1000000, "6x1m");
    MeasureSize(5000000, "6x5m");
    return 0;
}

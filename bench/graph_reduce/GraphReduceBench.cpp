// Six curves, bound, reduced to the columns of a picture and written into it: a million and five million records.
#include "BenchLine.h"
#include "siblings/driversupport/store/MemoryLoggerStore.h"
#include "siblings/driversupport/ZRLoggerData.h"
#include "siblings/graphsupport/CurveInfo.h"
#include "siblings/graphsupport/GraphData.h"
#include "siblings/graphsupport/SpanPainter.h"
#include "siblings/tools/TimeZone.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <vector>

namespace {

constexpr int kCurves = 6;
constexpr int kWidth = 1600;
constexpr int kHeight = 900;
constexpr std::int64_t kMicros = 1000000;
constexpr std::int64_t kFirst = 1041379200 * kMicros;  // 1 January 2003

// What the work takes where nothing comes in between: the least of many rounds.
template <typename Work>
double UndisturbedMs(const Work& work, int rounds = 40)
{
    double least = std::numeric_limits<double>::infinity();
    for (int i = 0; i < rounds; ++i) {
        const auto start = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
        least = std::min(least, taken.count());
    }
    return least;
}

// Slow waves with noise, so that columns of pixels are some rows high.
double ValueOf(int curve, std::int64_t record)
{
    const auto number = static_cast<double>(record);
    const double noise = static_cast<double>((record * 2654435761 + curve * 40503) % 1000) / 1000.0;
    return std::sin(number * 1e-5 * (curve + 1)) + 0.1 * noise;
}

// As they were recorded, a second apart.
class Curves {
public:
    explicit Curves(std::int64_t records) : to(kFirst + records * kMicros)
    {
        zr::SetPlantZone(zr::TimeZone());
        zr::MemoryLoggerStore store;
        ZRLoggerInfo info;
        std::vector<zr::LoggerAppend> batch;
        for (int c = 0; c < kCurves; ++c) {
            const ZRBasicString name = ZRBasicString(u"M.V") + static_cast<wchar>(u'0' + c);
            info.AddVariable(name);
            const int series = store.OpenSeries(name, 1);
            for (std::int64_t r = 0; r < records; ++r) {
                batch.push_back({series, kFirst + r * kMicros, ValueOf(c, r)});
            }
            store.Append(batch);
            batch.clear();
            columns.push_back({c, zr::graph::CurveShape::Line, 1.0, false});
        }
        zr::SetLoggerStore(&store);
        m_data.Setup(info);
        constexpr std::int64_t kEpoch = 946684800;
        const ZRDateTime begin(static_cast<std::uint32_t>(kFirst / kMicros - kEpoch), 0);
        m_data.SelectData(begin, begin + ZRDateTimeSpan(static_cast<std::int32_t>(records), 0), nullptr);
        group = &m_data.RecordGroup(ZRDateTimeSpan(0, 0), nullptr);
        zr::SetLoggerStore(nullptr);
        if (group->count != static_cast<int>(records)) {
            std::fprintf(stderr, "bench_graph_reduce: records are missing\n");
            std::exit(1);
        }
    }

    std::int64_t to;
    std::vector<zr::graph::CurveColumn> columns;
    const ZRLoggerData::CRecordGroup* group = nullptr;

private:
    ZRLoggerData m_data;
};

class Picture {
public:
    Picture() : m_pixels(static_cast<std::size_t>(kWidth * kHeight), 0xFFFFFFFFU) {}

    static void Reduce(const zr::graph::GraphData& data, std::int64_t from, std::int64_t to,
                       std::array<std::vector<zr::graph::ValueRange>, kCurves>& columns)
    {
        for (std::size_t c = 0; c < kCurves; ++c) {
            columns[c].resize(kWidth);
            data.Reduce(c, from, to, columns[c]);
        }
    }

    void Paint(const std::array<std::vector<zr::graph::ValueRange>, kCurves>& columns)
    {
        std::vector<zr::graph::RowSpan> spans(kWidth);
        for (std::size_t c = 0; c < kCurves; ++c) {
            for (std::size_t i = 0; i < kWidth; ++i) {
                spans[i] = {static_cast<float>((1.2 - columns[c][i].high) * kHeight / 2.4),
                            static_cast<float>((1.2 - columns[c][i].low) * kHeight / 2.4)};
            }
            const zr::graph::SpanPen pen{zr::graph::PS_SOLID, 1, 0xFF000000U + 0x203040U * static_cast<unsigned>(c)};
            zr::graph::PaintLine({m_pixels.data(), kWidth, kHeight, kWidth}, spans, pen);
        }
    }

private:
    std::vector<std::uint32_t> m_pixels;
};

// The limit of Bind: the same memory read, by one thread.
double PlainSum(const ZRLoggerData::CRecordGroup& group)
{
    double sum = 0.0;
    for (const zr::RecordChunk& chunk : group.Chunks()) {
        for (std::size_t i = 0; i < chunk.size * group.ValuesOfRecord(); ++i) {
            sum += chunk.values[i].value;
        }
    }
    return sum;
}

// Later pictures: of the whole, and of windows that move.
struct Later {
    double whole;
    double pan;
};

Later MeasureReduce(const zr::graph::GraphData& data, std::int64_t to)
{
    std::array<std::vector<zr::graph::ValueRange>, kCurves> columns;
    const std::int64_t length = (to - kFirst) / 2;
    std::int64_t moved = 0;
    const double whole = UndisturbedMs([&] { Picture::Reduce(data, kFirst, to, columns); });
    const double pan = UndisturbedMs([&] {
        moved += length / 40;
        Picture::Reduce(data, kFirst + moved, kFirst + moved + length, columns);
    });
    return {whole, pan};
}

}  // namespace

int main()
{
    double total = 0.0;
    {
        const Curves curves(1000000);
        zr::graph::GraphData data;
        zr::bench::PrintLine("graph.bind_6x1m_ms", UndisturbedMs([&] { data.Bind(*curves.group, curves.columns); }),
                             "ms");
        zr::bench::PrintLine("graph.plain_read_6x1m_ms", UndisturbedMs([&] { total += PlainSum(*curves.group); }),
                             "ms");
        const Later later = MeasureReduce(data, curves.to);
        zr::bench::PrintLine("graph.reduce_6x1m_ms", later.whole, "ms");
        zr::bench::PrintLine("graph.reduce_6x1m_pan_ms", later.pan, "ms");
        std::array<std::vector<zr::graph::ValueRange>, kCurves> columns;
        Picture picture;
        Picture::Reduce(data, kFirst, curves.to, columns);
        zr::bench::PrintLine("graph.spans_6x1m_ms", UndisturbedMs([&] { picture.Paint(columns); }), "ms");
        const double first = UndisturbedMs([&] {
            data.Bind(*curves.group, curves.columns);
            Picture::Reduce(data, kFirst, curves.to, columns);
            picture.Paint(columns);
        });
        zr::bench::PrintLine("graph.first_6x1m_ms", first, "ms");
        const double records = 1e6 * (24.0 + 16.0 + 8.0 + 16.0 * kCurves);
        zr::bench::PrintLine("graph.data_bytes_pct", 100.0 * static_cast<double>(data.Bytes()) / records, "%");
        const std::int64_t tenth = kFirst + 10000 * kMicros;
        Picture::Reduce(data, kFirst, tenth, columns);
        zr::bench::PrintLine("graph.reduce_6x10k_ms",
                             UndisturbedMs([&] { Picture::Reduce(data, kFirst, tenth, columns); }), "ms");
        zr::bench::PrintLine("graph.spans_6x10k_ms", UndisturbedMs([&] { picture.Paint(columns); }), "ms");
    }
    const Curves curves(5000000);
    zr::graph::GraphData data;
    zr::bench::PrintLine("graph.bind_6x5m_ms", UndisturbedMs([&] { data.Bind(*curves.group, curves.columns); }, 5),
                         "ms");
    const Later later = MeasureReduce(data, curves.to);
    zr::bench::PrintLine("graph.reduce_6x5m_ms", later.whole, "ms");
    zr::bench::PrintLine("graph.reduce_6x5m_pan_ms", later.pan, "ms");
    return total != 0.0 ? 0 : 1;
}

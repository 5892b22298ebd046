// Measuring a million rows for paper, and any page of them, before they reach the toolkit.
#include "BenchLine.h"
#include "LoggedMillion.h"
#include "logger/LoggerTable.h"

#include <cstdio>

namespace {

constexpr int kRounds = 5;

// A font whose digits are of one width, on a sheet of A4 at 600 dots an inch. Takes as long as a toolkit does.
class SheetMeasure final : public zr::logger::PrintMeasure {
public:
    zr::logger::PrintExtent Extent(std::u16string_view text) override
    {
        ++calls;
        const auto end = std::chrono::steady_clock::now() + std::chrono::microseconds(2);
        while (std::chrono::steady_clock::now() < end) {
        }
        int width = 0;
        for (const wchar character : text) {
            width += character >= u'0' && character <= u'9' ? 46 : 40;
        }
        return {width, 96};
    }

    int calls = 0;
};

constexpr zr::logger::PrintDevice kSheet = {4724, 6780, 287};

}  // namespace

int main()
{
    const zr::bench::LoggedMillion million;
    zr::bench::NoScreen screen;
    zr::logger::LoggerTable table(screen);
    table.Setup(million.Info(), nullptr);
    table.Update(zr::logger::kGroupByYear, million.Group());
    SheetMeasure measure;
    const double measuring =
        zr::bench::MedianMs(kRounds, [&] { static_cast<void>(table.OnBeginPrinting(kSheet, measure)); });
    const int last = table.OnBeginPrinting(kSheet, measure).MaxPage();
    double slowest = 0.0;
    std::size_t texts = 0;
    // The first and the last, and those that are the farthest from both.
    for (int i = 0; i <= 100; ++i) {
        const int page = 1 + static_cast<int>(static_cast<std::int64_t>(last - 1) * i / 100);
        slowest =
            std::max(slowest, zr::bench::UndisturbedMs([&] {
                         texts += table.Print(page, {0, 0, kSheet.horzRes, kSheet.vertRes}, u"Jahr 2003").texts.size();
                     }));
    }
    if (texts < 3 * 101 * 50) {
        std::fprintf(stderr, "bench_print: texts are missing\n");
        return 1;
    }
    zr::bench::PrintLine("print.measure_1m_ms", measuring, "ms");
    zr::bench::PrintLine("print.page_ms", slowest, "ms");
    zr::bench::PrintLine("print.pages", last, "pages");
    zr::bench::PrintLine("print.measured_texts", measure.calls / (kRounds + 1), "texts");
    return 0;
}

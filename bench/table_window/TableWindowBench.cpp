// The window of logged data on a million records, off screen: how soon its first picture is there, what a page key
// costs until the next one is, what the list keeps of a row, and how often the bar of a load moves.
#include "BenchLine.h"
#include "hosts/kestrix/ui/LoggedDataWindow.h"
#include "hosts/kestrix/ui/Theme.h"
#include "LoggedMillion.h"
#include "logger/SuiteKey.h"
#include "logger/ui/ZRVirtualLoggerDataTableViewer.h"
#include "platform/ui/CDialog.h"
#include "platform/ui/Images.h"
#include "siblings/tools/LanguageFile.h"
#include "siblings/tools/ui/CDlgProgress.h"
#include "siblings/tools/ZRLoadString.h"
#include "support/ManualClock.h"
#include "ui/logger/StoreWithGate.h"

#include <malloc.h>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <QApplication>
#include <QKeyEvent>
#include <QPointer>
#include <QProgressBar>
#include <QScrollBar>
#include <thread>
#include <vector>

namespace zr::bench {
namespace {

using std::chrono::steady_clock;

constexpr int kRounds = 5;
constexpr int kPeriod = 30;  // seconds, so that a year holds a million
constexpr std::chrono::milliseconds kSlowBlock{1};
constexpr double kLongFrame = 8.0;  // ms
constexpr QSize kWindow{1280, 900};

double Milliseconds(steady_clock::duration time)
{
    return std::chrono::duration<double, std::milli>(time).count();
}

void Require(bool isTrue, const char* what)
{
    if (!isTrue) {
        std::fprintf(stderr, "bench_table_window: %s\n", what);
        std::exit(1);
    }
}

// Bytes that are in use, of small pieces and large ones.
double UsedBytes()
{
    const struct mallinfo2 used = mallinfo2();
    return static_cast<double>(used.uordblks) + static_cast<double>(used.hblkhd);
}

// Tells when the load began and ended, and when the list was painted with rows in it.
class WatchedTable final : public ZRVirtualLoggerDataTableViewer {
public:
    bool Create(QWidget* parent, unsigned id) override
    {
        const bool isMade = ZRVirtualLoggerDataTableViewer::Create(parent, id);
        List()->viewport()->installEventFilter(this);
        return isMade;
    }
    void SetInvalidData(bool invalid) override
    {
        if (invalid) {
            loadBegan = steady_clock::now();
        }
        ZRVirtualLoggerDataTableViewer::SetInvalidData(invalid);
    }
    void Update(const ZRDateTime& from, const ZRDateTime& to, const ZRDateTimeSpan& period, int groupBy,
                const ZRLoggerData::CRecordGroup& group) override
    {
        loadEnded = steady_clock::now();
        const double before = UsedBytes();
        ZRVirtualLoggerDataTableViewer::Update(from, to, period, groupBy, group);
        bytes = UsedBytes() - before;
    }
    bool eventFilter(QObject* object, QEvent* event) override
    {
        paints += event->type() == QEvent::Paint && List()->GetItemCount() > 0 ? 1 : 0;
        return ZRVirtualLoggerDataTableViewer::eventFilter(object, event);
    }

    steady_clock::time_point loadBegan;
    steady_clock::time_point loadEnded;
    double bytes = 0.0;  // that the first update took
    int paints = 0;
};

class WatchedWindow final : public desktop::LoggedDataWindow {
public:
    WatchedWindow() : LoggedDataWindow(nullptr, u"M", nullptr) {}

    void CreateViewer(int kind) override
    {
        if (kind == logger::kTableViewer) {
            viewer = std::make_unique<WatchedTable>();
        }
    }
    WatchedTable& Table() { return dynamic_cast<WatchedTable&>(*Viewer()); }
};

class TableWindowBench {
public:
    // Pages that are scrolled from each place.
    explicit TableWindowBench(int pages) : m_pages(pages)
    {
        Require(m_texts.Load(ZR_RESOURCES "/language/de.txt"), "no texts");
        SetLanguage(&m_texts);
        ui::SetImageFolder(ZR_RESOURCES "/images");
        desktop::PrepareTheme();
        desktop::UseColours(desktop::Colours::Light);
        logger::SuiteKey key;
        key.WriteText(logger::kLastGroupValue, u"YEAR");
        key.WriteText(logger::kLastPeriodValue, u"FILE");
        MillionMeter::Fill(m_store, kPeriod);
        SetLoggerStore(&m_gate);
    }
    TableWindowBench(const TableWindowBench&) = delete;
    TableWindowBench& operator=(const TableWindowBench&) = delete;
    ~TableWindowBench()
    {
        SetLoggerStore(nullptr);
        SetLanguage(nullptr);
    }

    void Run()
    {
        std::vector<double> openings;
        for (int round = 0; round < kRounds; ++round) {
            openings.push_back(OpenMs());
            if (round == 0) {
                PrintLine("table.list_bytes_per_row", m_window->Table().bytes / MillionMeter::kRecords, "B");
            }
            if (round + 1 < kRounds) {
                Close();
            }
        }
        std::nth_element(openings.begin(), openings.begin() + kRounds / 2, openings.end());
        PrintLine("table.open_1m_ms", openings[kRounds / 2], "ms");
        ScrollEverywhere();
        MeasureBar();
        Close();
    }

private:
    // From the opening of the window to its first picture with rows, without the load.
    double OpenMs()
    {
        const auto start = steady_clock::now();
        m_window = new WatchedWindow;
        m_window->resize(kWindow);
        m_window->show();
        m_window->Open(m_meter.Info());
        while (m_window->Table().paints == 0) {
            QApplication::processEvents();
        }
        const WatchedTable& table = m_window->Table();
        const auto end = steady_clock::now();
        Require(table.List()->GetItemCount() == MillionMeter::kRecords, "records are missing");
        return Milliseconds(end - start) - Milliseconds(table.loadEnded - table.loadBegan);
    }

    void Close()
    {
        m_window->close();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        Require(m_window.isNull(), "the window stays");
    }

    // From a key to the picture that shows what it did.
    double FrameMs(Qt::Key key)
    {
        CVirtualListCtrl& list = *m_window->Table().List();
        const int before = m_window->Table().paints;
        const auto start = steady_clock::now();
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(&list, &press);
        QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier);
        QApplication::sendEvent(&list, &release);
        QApplication::processEvents();
        const double frame = Milliseconds(steady_clock::now() - start);
        Require(m_window->Table().paints > before, "a key was not painted");
        return frame;
    }

    // A long one is done three times and counts at its least: other programs come in between.
    double UndisturbedFrameMs(Qt::Key key, Qt::Key back)
    {
        double frame = FrameMs(key);
        for (int again = 0; again < 2 && frame > kLongFrame; ++again) {
            FrameMs(back);
            frame = std::min(frame, FrameMs(key));
        }
        return frame;
    }

    // So many pages one way, or up to the end.
    void Scroll(Qt::Key key, Qt::Key back, std::vector<double>& frames)
    {
        const QScrollBar& bar = *m_window->Table().List()->verticalScrollBar();
        const int end = key == Qt::Key_PageDown ? bar.maximum() : bar.minimum();
        for (int page = 0; page < m_pages && bar.value() != end; ++page) {
            const int before = bar.value();
            frames.push_back(UndisturbedFrameMs(key, back));
            Require(page < 2 || bar.value() != before, "a key did not scroll");
        }
    }

    // At the beginning, in the middle and at the end, down and up.
    void ScrollEverywhere()
    {
        CVirtualListCtrl& list = *m_window->Table().List();
        std::vector<double> frames;
        const int middle = MillionMeter::kRecords / 2;
        const int nearEnd = MillionMeter::kRecords - m_pages * list.verticalScrollBar()->pageStep();
        for (const int row : {0, middle, std::max(nearEnd, 0)}) {
            list.setCurrentIndex(list.model()->index(row, 0));
            QApplication::processEvents();
            Scroll(Qt::Key_PageDown, Qt::Key_PageUp, frames);
            Scroll(Qt::Key_PageUp, Qt::Key_PageDown, frames);
        }
        std::sort(frames.begin(), frames.end());
        PrintLine("table.page_ms", frames.back(), "ms");
        PrintLine("table.page_median_ms", frames[frames.size() / 2], "ms");
    }

    // How often the bar moves while a load runs that takes some seconds.
    void MeasureBar()
    {
        int moves = 0;
        ui::SetModalHook([&](QDialog& dialog) {
            auto& progress = dynamic_cast<CDlgProgress&>(dialog);
            QObject::connect(&progress.m_bar, &QProgressBar::valueChanged, &progress, [&] { ++moves; });
        });
        m_gate.gate = [] {
            std::this_thread::sleep_for(kSlowBlock);
            return true;
        };
        const ZRDateTime day(MillionMeter::kFirstSecond + 40 * 86400, 0);
        const double time = OnceMs([&] { m_window->SetupData(day, logger::kGroupByWeek, {0, 0}, true); });
        m_gate.gate = nullptr;
        ui::SetModalHook(nullptr);
        PrintLine("table.bar_moves_per_s", moves / time * 1000.0, "1/s");
    }

    int m_pages;
    test::TempFolder m_folder;
    test::Environment m_config{"XDG_CONFIG_HOME", m_folder.Path().string()};
    ZRKestrixSetup m_setup;
    LanguageFile m_texts;
    // Within the year of the records.
    test::ManualClock m_clock{std::chrono::sys_days(std::chrono::year(2003) / std::chrono::December / 10)};
    MillionMeter m_meter;
    MemoryLoggerStore m_store;
    logger::StoreWithGate m_gate{m_store};
    QPointer<WatchedWindow> m_window;
};

}  // namespace
}  // namespace zr::bench

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    // A number of pages from each place instead; all 25,000 take minutes.
    const int pages = argc > 1 ? std::atoi(argv[1]) : 400;
    zr::bench::TableWindowBench(pages).Run();
    return 0;
}

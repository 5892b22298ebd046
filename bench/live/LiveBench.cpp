// What the windows of live values cost, off screen: an update without a change, the paint of one bar, and a whole page.
// A peer stands beside: the toolkit's own label with the same number.
#include "BenchLine.h"
#include "controls/ui/ZRBarValueControl.h"
#include "controls/ui/ZRBaseViewDlg.h"
#include "controls/ui/ZRValueControl.h"
#include "support/LiveDevice.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <QApplication>
#include <QImage>
#include <QLabel>
#include <QStyleFactory>
#include <string>
#include <vector>

namespace {

constexpr int kRounds = 41;
constexpr int kUpdates = 100'000;
constexpr int kPaints = 500;
constexpr int kNumbers = 500;
constexpr int kBars = 100;
constexpr int kColumns = 10;
constexpr double kUpdatesPerSecond = 2.0;

double Median(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + kRounds / 2, values.end());
    return values[kRounds / 2];
}

// Seconds of processor time of the whole process, so that what other programs take doesn't count.
double ProcessorTime()
{
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

// The median of the processor time of one run, in seconds; each round runs `repeats` times.
template <typename Run>
double Measure(int repeats, const Run& run)
{
    std::vector<double> times;
    for (int round = 0; round < kRounds; ++round) {
        const double start = ProcessorTime();
        for (int i = 0; i < repeats; ++i) {
            run(round * repeats + i);
        }
        times.push_back((ProcessorTime() - start) / repeats);
    }
    return Median(std::move(times));
}

// A control that tells how often it was painted: a paint that didn't happen costs nothing.
template <typename Control>
class Counted : public Control {
public:
    using Control::Control;
    int paints = 0;

protected:
    void paintEvent(QPaintEvent* event) override
    {
        ++paints;
        Control::paintEvent(event);
    }
};

void RequirePaints(int paints, int expected)
{
    if (paints < expected) {
        std::fprintf(stderr, "bench_live: %d paints instead of %d\n", paints, expected);
        std::exit(1);
    }
}

std::unique_ptr<zr::test::LiveDevice> MakeDevice(int variables)
{
    std::vector<zr::VariableDescription> descriptions;
    for (int i = 0; i < variables; ++i) {
        const std::string number = std::to_string(i);
        const std::u16string name = u"V" + std::u16string(number.begin(), number.end());
        descriptions.push_back(zr::test::Variable(name.c_str()));
    }
    return std::make_unique<zr::test::LiveDevice>(u"METER", std::move(descriptions));
}

std::u16string NameOf(int variable)
{
    const std::string number = std::to_string(variable);
    return u"METER.V" + std::u16string(number.begin(), number.end());
}

// Volts that differ at every step and stay within the scale.
double Voltage(int step)
{
    return 200.0 + (step * 37 % 6000) / 100.0;
}

void SetVoltageLimits(ZRBarValueControl& bar, bool withWarnings)
{
    const int flags = zr::controls::kCheckHighLimits | zr::controls::kCheckLowLimits | zr::controls::kPercentLimits;
    bar.SetupChecks(flags, withWarnings ? 10 : 15, 15, withWarnings ? 10 : 15, 15, 230);
}

void SetupBar(ZRBarValueControl& bar, int firstVariable)
{
    bar.SetupBar(10, 90);
    for (int slot = 0; slot < zr::controls::kBarSlots; ++slot) {
        bar.SetupVariable(slot, NameOf(firstVariable + slot).c_str());
    }
    SetVoltageLimits(bar, true);
    bar.SetLabel(u"U1");
}

void MeasureUpdate(zr::test::LiveDevice& device)
{
    ZRValueControl control;
    control.SetupVariable(u"METER.V0", 128);
    device.Write(0, 230.0);
    control.Update();
    const double seconds = Measure(kUpdates, [&](int) { control.Update(); });
    zr::bench::PrintLine("live.update_unchanged_ns", seconds * 1e9, "ns");
}

// Paints the window as the screen's refresh would, into its back buffer.
void Paint(QWidget& window)
{
    window.repaint();
}

void MeasureBar(zr::test::LiveDevice& device)
{
    Counted<ZRBarValueControl> bar;
    SetupBar(bar, 0);
    bar.resize(600, 60);
    device.Write(1, 255.0);
    device.Write(2, 205.0);
    bar.show();
    QApplication::processEvents();
    const double moved = Measure(kPaints, [&](int step) {
        device.Write(0, Voltage(step));
        bar.Update();
        Paint(bar);
    });
    const double full = Measure(kPaints, [&](int step) {
        SetVoltageLimits(bar, step % 2 == 0);
        device.Write(0, Voltage(step));
        bar.Update();
        Paint(bar);
    });
    RequirePaints(bar.paints, 2 * kRounds * kPaints);
    zr::bench::PrintLine("bar.paint_moved_us", moved * 1e6, "us");
    zr::bench::PrintLine("bar.paint_full_us", full * 1e6, "us");
}

void MeasureNumber(zr::test::LiveDevice& device)
{
    Counted<ZRValueControl> control;
    control.SetupVariable(u"METER.V0", 128);
    control.resize(100, 16);
    control.show();
    QLabel label;
    label.setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    label.resize(100, 16);
    label.show();
    QApplication::processEvents();
    const double ours = Measure(kPaints, [&](int step) {
        device.Write(0, Voltage(step));
        control.Update();
        Paint(control);
    });
    const double peer = Measure(kPaints, [&](int step) {
        label.setText(QString::number(Voltage(step), 'f', 2));
        Paint(label);
    });
    RequirePaints(control.paints, kRounds * kPaints);
    zr::bench::PrintLine("live.number_paint_us", ours * 1e6, "us");
    zr::bench::PrintLine("live.number_peer_paint_us", peer * 1e6, "us");
}

// Numbers above, bars below, in rows.
class Page {
public:
    Page() : m_view(200)
    {
        for (int i = 0; i < kNumbers; ++i) {
            auto control = std::make_unique<Counted<ZRValueControl>>(&m_view, static_cast<unsigned>(1000 + i));
            control->SetupVariable(NameOf(i).c_str(), 128);
            control->SetupChecks(zr::controls::kCheckHighLimits, 0, 0, 250, 255, 230);
            control->setGeometry(i % kColumns * 160, i / kColumns * 18, 150, 16);
            m_numbers.push_back(std::move(control));
        }
        for (int i = 0; i < kBars; ++i) {
            auto bar = std::make_unique<Counted<ZRBarValueControl>>(&m_view, static_cast<unsigned>(2000 + i));
            SetupBar(*bar, kNumbers + i * zr::controls::kBarSlots);
            bar->setGeometry(i % 4 * 400, 920 + i / 4 * 64, 390, 60);
            m_bars.push_back(std::move(bar));
        }
        m_view.resize(1600, 920 + kBars / 4 * 64);
        m_view.show();
        QApplication::processEvents();
    }

    void Update()
    {
        for (const auto& control : m_numbers) {
            control->Update();
        }
        for (const auto& bar : m_bars) {
            bar->Update();
        }
        QApplication::processEvents();
    }

    [[nodiscard]] int LeastPaints() const
    {
        int least = m_numbers.front()->paints;
        for (const auto& control : m_numbers) {
            least = std::min(least, control->paints);
        }
        for (const auto& bar : m_bars) {
            least = std::min(least, bar->paints);
        }
        return least;
    }

private:
    ZRBaseViewDlg m_view;
    std::vector<std::unique_ptr<Counted<ZRValueControl>>> m_numbers;
    std::vector<std::unique_ptr<Counted<ZRBarValueControl>>> m_bars;
};

void MeasurePage(zr::test::LiveDevice& device)
{
    Page page;
    const int variables = kNumbers + kBars * zr::controls::kBarSlots;
    const double seconds = Measure(1, [&](int step) {
        for (int i = 0; i < variables; ++i) {
            device.Write(static_cast<std::size_t>(i), Voltage(step + i));
        }
        page.Update();
    });
    RequirePaints(page.LeastPaints(), kRounds);
    zr::bench::PrintLine("live.page_cpu_pct", seconds * kUpdatesPerSecond * 100.0, "%");
}

}  // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    const auto device = MakeDevice(kNumbers + kBars * zr::controls::kBarSlots);
    MeasureUpdate(*device);
    MeasureNumber(*device);
    MeasureBar(*device);
    MeasurePage(*device);
    return 0;
}

#include "PeerPlot.h"

#include <qcustomplot.h>
#include <QImage>
#include <QVector>
#include <vector>

namespace zr::bench {

namespace {

constexpr const char* kColours[kCurves] = {"#0072b2", "#d55e00", "#009e73", "#cc79a7", "#e69f00", "#56b4e9"};

}  // namespace

class PeerPlot::Parts {
public:
    QCustomPlot plot;
    QVector<double> times;
    std::vector<QVector<double>> values;
};

PeerPlot::PeerPlot(int width, int height) : m_parts(std::make_unique<Parts>())
{
    QCustomPlot& plot = m_parts->plot;
    plot.resize(width, height);
    plot.xAxis->setTicker(QSharedPointer<QCPAxisTickerDateTime>(new QCPAxisTickerDateTime));
    plot.yAxis->setLabel(QStringLiteral("V"));
    plot.legend->setVisible(true);
    for (int curve = 0; curve < kCurves; ++curve) {
        QCPGraph* const graph = plot.addGraph();
        graph->setName(QStringLiteral("Voltage %1").arg(curve + 1));
        graph->setPen(QPen(QColor(QLatin1String(kColours[curve]))));
    }
    // A fifth faster for many points, with joins that nobody sees at one pixel.
    plot.setPlottingHint(QCP::phFastPolylines, true);
    plot.show();
    QCoreApplication::processEvents();
}

PeerPlot::~PeerPlot() = default;

void PeerPlot::Prepare(const LoggedCurves& curves)
{
    const std::vector<double> times = curves.Times();
    m_parts->times = QVector<double>(times.begin(), times.end());
    m_parts->values.clear();
    for (int curve = 0; curve < kCurves; ++curve) {
        const std::vector<double> values = curves.Values(curve);
        m_parts->values.emplace_back(values.begin(), values.end());
    }
}

void PeerPlot::First()
{
    QCustomPlot& plot = m_parts->plot;
    for (int curve = 0; curve < kCurves; ++curve) {
        plot.graph(curve)->setData(m_parts->times, m_parts->values[static_cast<std::size_t>(curve)], true);
    }
    plot.rescaleAxes();
    plot.replot(QCustomPlot::rpImmediateRefresh);
}

void PeerPlot::Show(double from, double to)
{
    m_parts->plot.xAxis->setRange(from, to);
    m_parts->plot.replot(QCustomPlot::rpImmediateRefresh);
}

QImage PeerPlot::Picture() const
{
    return m_parts->plot.grab().toImage();
}

}  // namespace zr::bench

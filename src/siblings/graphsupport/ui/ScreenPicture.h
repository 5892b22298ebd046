// A graph's picture on the screen.
#pragma once

#include "siblings/graphsupport/ui/GraphFonts.h"
#include "siblings/graphsupport/ui/SceneColours.h"
#include "siblings/graphsupport/ui/ScenePainter.h"

#include <QImage>
#include <QSize>

class QPainter;
class QWidget;

namespace zr::graph {

class GraphModel;

// Keeps what lies under the pointer's things, and makes it anew only when that has changed. The model's fonts are its
// own: it must outlive the model. UI thread only.
class ScreenPicture {
public:
    // Not owned; must outlive this.
    explicit ScreenPicture(const QWidget& window);
    ScreenPicture(const ScreenPicture&) = delete;
    ScreenPicture& operator=(const ScreenPicture&) = delete;

    // Another palette, font or language: all is worked out anew at the next Fit.
    void LooksChanged();
    // What lies under the pointer's things is to be drawn again.
    void SetOld() { m_isOld = true; }
    // Tells the model the size of the window on a device of so many pixels for one of the window's.
    void Fit(GraphModel& model, double ratio);
    // For each pixel of the window's; that of the last Fit.
    [[nodiscard]] double Ratio() const { return m_ratio; }

    // Reads the records where the picture is old. Fit before.
    void Paint(QPainter& painter, GraphModel& model);
    // What was painted last, paler; asks nothing of a model.
    void PaintStale(QPainter& painter) const;

private:
    void Renew(GraphModel& model);
    void DrawPicture(QPainter& painter) const;
    [[nodiscard]] ScenePaint PaintOf(const GraphModel& model) const;

    const QWidget& m_window;
    double m_ratio = 1.0;
    QSize m_targetSize;  // pixels of the picture
    SceneColours m_colours;
    GraphFonts m_fonts;
    QImage m_picture;
    bool m_isOld = true;
};

}  // namespace zr::graph

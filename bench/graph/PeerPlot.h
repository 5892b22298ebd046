// The same curves by a well-known plotting library: one axis rectangle, the faster of its ways to draw lines, its
// defaults otherwise: antialiased, axes, texts and legend on.
#pragma once

#include "LoggedCurves.h"

#include <memory>

class QImage;

namespace zr::bench {

// On screen as long as it lives. Times are seconds since 1970.
class PeerPlot {
public:
    PeerPlot(int width, int height);
    ~PeerPlot();

    // In the form that the library takes.
    void Prepare(const LoggedCurves& curves);
    // Data to picture: hands over what was prepared, fits both axes to it and paints.
    void First();
    // Another stretch of time, painted.
    void Show(double from, double to);
    [[nodiscard]] QImage Picture() const;

private:
    class Parts;
    std::unique_ptr<Parts> m_parts;
};

}  // namespace zr::bench

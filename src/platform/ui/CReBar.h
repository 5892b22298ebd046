// A strip that holds a toolbar and shows a chevron where the toolbar is wider than the strip.
#pragma once

#include "platform/ui/CToolBar.h"

class QToolButton;

namespace zr::ui {

inline constexpr unsigned RBN_CHEVRONPUSHED = static_cast<unsigned>(-841);

// Follows RBN_CHEVRONPUSHED.
struct NMREBARCHEVRON {
    NMHDR hdr;
    QRect rc;  // of the chevron, in the strip's coordinates
};

}  // namespace zr::ui

// The parent is told when the chevron is pushed; what it offers is the parent's matter. A button that isn't wholly
// visible is not shown. UI thread only.
class CReBar : public QWidget {
public:
    CReBar(QWidget* parent, unsigned id);

    // The strip owns the toolbar from then on. Once.
    void AddBar(CToolBar& bar);
    // Pixels, in one row.
    [[nodiscard]] int GetBarHeight() const;
    // What of the toolbar can be seen, in its coordinates.
    [[nodiscard]] QRect GetBandRect() const;

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;

private:
    void Layout();

    QWidget* m_target;
    QWidget* m_band;         // clips the toolbar. Owned by Qt, as are the others.
    QToolButton* m_chevron;  // hidden while all fits
    CToolBar* m_bar = nullptr;
};

// The colour of text and ticks that stand on the desktop's own face colour.
#pragma once

#include "controls/DrawList.h"

namespace zr::controls {

inline constexpr Rgb kBlack = MakeRgb(0, 0, 0);
inline constexpr Rgb kWhite = MakeRgb(255, 255, 255);
inline constexpr Rgb kWarningYellow = MakeRgb(255, 255, 0);
inline constexpr Rgb kAlarmRed = MakeRgb(255, 0, 0);

// The black of the controls is meant for a light face; on a dark one it becomes white. The luma of ITU-R BT.601
// decides, half of the full range being light.
[[nodiscard]] constexpr Rgb TextOn(Rgb face)
{
    const Rgb luma = 299 * ((face >> 16) & 0xff) + 587 * ((face >> 8) & 0xff) + 114 * (face & 0xff);
    return luma >= 128 * 1000 ? kBlack : kWhite;
}

}  // namespace zr::controls

// Styles of bars and what a frame asks of them, as the system numbers them.
#pragma once

namespace zr::ui {

// Where a bar is docked stands in bits 12 to 15; none of them: it floats.
inline constexpr unsigned CBRS_SIZE_DYNAMIC = 0x0004;
inline constexpr unsigned CBRS_BORDER_LEFT = 0x0100;
inline constexpr unsigned CBRS_ALIGN_LEFT = 0x1000;
inline constexpr unsigned CBRS_ALIGN_TOP = 0x2000;
inline constexpr unsigned CBRS_ALIGN_RIGHT = 0x4000;
inline constexpr unsigned CBRS_ALIGN_BOTTOM = 0x8000;
inline constexpr unsigned CBRS_ALIGN_ANY = 0xf000;
inline constexpr unsigned CBRS_GRIPPER = 0x00400000;

// The mode of CalcDynamicLayout.
inline constexpr unsigned LM_STRETCH = 1;    // as long as the side it is docked at
inline constexpr unsigned LM_HORZ = 2;       // lies, rather than stands
inline constexpr unsigned LM_MRUWIDTH = 4;   // the size it had last when it floated
inline constexpr unsigned LM_HORZDOCK = 8;   // docked at the top or the bottom
inline constexpr unsigned LM_VERTDOCK = 16;  // docked at the left or the right
inline constexpr unsigned LM_LENGTHY = 32;   // the length is a height

}  // namespace zr::ui

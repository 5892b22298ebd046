// Numbers of the small dialogs, their controls and texts.
#pragma once

namespace zr::dialogs {

inline constexpr unsigned kPasswordDialog = 200;
inline constexpr unsigned kPasswordEdit = 5068;
inline constexpr unsigned kPasswordPrompt = 5069;

inline constexpr unsigned kTextPassword = 291;
inline constexpr unsigned kTextEnterPassword = 332;
inline constexpr unsigned kTextWrongPassword = 333;
inline constexpr unsigned kTextConfirmPassword = 582;
inline constexpr unsigned kTextEnterPasswordAgain = 583;
inline constexpr unsigned kTextPasswordsDiffer = 584;
inline constexpr unsigned kTextEnterNewPassword = 914;

inline constexpr unsigned kGoToDateDialog = 203;
inline constexpr unsigned kGoToDateCalendar = 5270;

inline constexpr unsigned kTextGoToDate = 412;

}  // namespace zr::dialogs

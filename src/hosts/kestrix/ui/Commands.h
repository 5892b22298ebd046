// Numbers of the desktop's commands and windows.
#pragma once

namespace zr::desktop {

inline constexpr unsigned kCmdOpen = 33000;
inline constexpr unsigned kCmdReload = 33001;
inline constexpr unsigned kCmdSave = 33002;
inline constexpr unsigned kCmdSaveAs = 33003;
inline constexpr unsigned kCmdPageSetup = 33004;
inline constexpr unsigned kCmdPrint = 33005;
inline constexpr unsigned kCmdQuit = 33006;
inline constexpr unsigned kCmdLanguageSystem = 33010;
inline constexpr unsigned kCmdLanguageEnglish = 33011;
inline constexpr unsigned kCmdLanguageGerman = 33012;
inline constexpr unsigned kCmdLanguageSpanish = 33013;
inline constexpr unsigned kCmdColoursSystem = 33020;  // the others follow in the order of Colours
inline constexpr unsigned kCmdColoursLight = 33021;
inline constexpr unsigned kCmdColoursDark = 33022;
inline constexpr unsigned kCmdWarnings = 33030;
inline constexpr unsigned kCmdToolbar = 33031;
inline constexpr unsigned kCmdStatusBar = 33032;
inline constexpr unsigned kCmdKeys = 33040;
inline constexpr unsigned kCmdAbout = 33041;
inline constexpr unsigned kCmdLinkReference = 33050;  // SERVICE|TOPIC!ITEM
inline constexpr unsigned kCmdLinkFunction = 33051;
inline constexpr unsigned kCmdLinkName = 33052;  // driver.variable
inline constexpr unsigned kCmdCopyValue = 33053;
inline constexpr unsigned kCmdForgetMark = 33054;
inline constexpr unsigned kCmdNextPane = 33060;
inline constexpr unsigned kCmdRenameGroup = 33061;
inline constexpr unsigned kCmdLoggedData = 33062;

inline constexpr unsigned kMainToolbar = 33100;
inline constexpr unsigned kDeviceTree = 33101;
inline constexpr unsigned kWarningBar = 33102;
inline constexpr unsigned kBanner = 33103;
inline constexpr unsigned kBannerRetry = 33104;
inline constexpr unsigned kSelectionText = 33105;
inline constexpr unsigned kSelectionCopy = 33106;

inline constexpr unsigned kWarningBarTemplate = 220;
inline constexpr unsigned kInfoDialog = 231;
inline constexpr unsigned kInfoText = 6000;
inline constexpr unsigned kPageSetupDialog = 232;
inline constexpr unsigned kPaperBox = 6010;
inline constexpr unsigned kOrientationBox = 6011;
inline constexpr unsigned kMarginBox = 6012;

}  // namespace zr::desktop

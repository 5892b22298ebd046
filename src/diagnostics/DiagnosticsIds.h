// Numbers that the diagnostics and their hosts agree on: texts, controls, messages.
#pragma once

namespace zr {

// The bar's dialog and its controls.
inline constexpr unsigned kDebugBarDialog = 220;
inline constexpr unsigned kWarningList = 5600;
inline constexpr unsigned kCloseBarButton = 5601;

// From the bar to its frame. Posted: a line was selected; the second argument is the index of the warning.
inline constexpr unsigned kWarningSelectedMessage = 1474;
// Posted: a drag of the bar's edge starts (first argument 0) or ends (1).
inline constexpr unsigned kBarDragMessage = 1476;
// A command, sent: the bar was closed.
inline constexpr unsigned kBarClosedCommand = 1475;

// The title of the list's column.
inline constexpr unsigned kMessageColumnTitle = 789;

// The texts of the warning list; each takes one text, the name of what the record is about.
inline constexpr unsigned kMessageDeviceSilent = 32647;
inline constexpr unsigned kMessageConnectionLost = 32648;
inline constexpr unsigned kMessageDeviceAnswersDamaged = 32649;
inline constexpr unsigned kMessageAddressUnknown = 32650;
inline constexpr unsigned kMessageDeviceRefusesRequest = 32651;
inline constexpr unsigned kMessageForeignFrames = 32652;
inline constexpr unsigned kMessageUnknownDeviceType = 32653;
inline constexpr unsigned kMessageUnknownConnectionType = 32654;
inline constexpr unsigned kMessageDuplicateDevice = 32655;
inline constexpr unsigned kMessageDuplicateConnection = 32656;
inline constexpr unsigned kMessageConnectionMissing = 32657;
inline constexpr unsigned kMessageConnectionRejected = 32658;
inline constexpr unsigned kMessageDeviceRejected = 32659;
inline constexpr unsigned kMessageProfileRejected = 32660;
inline constexpr unsigned kMessageFilterRejected = 32661;
inline constexpr unsigned kMessageOutputRefused = 32662;
inline constexpr unsigned kMessageOutputTimedOut = 32663;
inline constexpr unsigned kMessageConverterSilent = 32664;
inline constexpr unsigned kMessageConverterRefuses = 32665;
inline constexpr unsigned kMessageStoreAway = 32666;
inline constexpr unsigned kMessageStoreFull = 32667;
inline constexpr unsigned kMessageSamplesLost = 32668;
inline constexpr unsigned kMessageSpoolFull = 32669;
inline constexpr unsigned kMessageClockWentBack = 32670;
inline constexpr unsigned kMessageClockJumped = 32671;
inline constexpr unsigned kMessageMeterExchanged = 32672;
inline constexpr unsigned kMessageLimitPassed = 32673;
inline constexpr unsigned kMessagePublicationFailed = 32674;
inline constexpr unsigned kMessageSupervisedElsewhere = 32675;
inline constexpr unsigned kMessageConfigurationRefused = 32676;
inline constexpr unsigned kMessageConnectionOpened = 32732;
inline constexpr unsigned kMessageDeviceAnswersAgain = 32733;
inline constexpr unsigned kMessageConfigurationLoaded = 32877;
inline constexpr unsigned kMessageOutputSwitched = 32881;

}  // namespace zr

// The numbers of the texts about recording. The placeholders of each stand in tests/data/text_ids.tsv.
#pragma once

namespace zr::supervision {

// Why samples are not recorded, in the order of UnrecordedReason.
inline constexpr unsigned kTextReasonInvalid = 40300;
inline constexpr unsigned kTextReasonMissing = 40301;
inline constexpr unsigned kTextReasonLate = 40302;
inline constexpr unsigned kTextReasonClockSetBack = 40303;
inline constexpr unsigned kTextReasonNoRoom = 40304;
inline constexpr unsigned kTextReasonDamaged = 40305;

// Details of warnings.
inline constexpr unsigned kTextLostSamples = 40306;
inline constexpr unsigned kTextLostDevice = 40307;
inline constexpr unsigned kTextLostInSpool = 40308;
inline constexpr unsigned kTextThisComputer = 40309;
inline constexpr unsigned kTextBySeconds = 40310;

// Whole messages, of notices whose type has no text in the warning list.
inline constexpr unsigned kMessageStoreBack = 40312;
inline constexpr unsigned kMessageSpoolBack = 40313;
inline constexpr unsigned kMessageStoreDamaged = 40314;

}  // namespace zr::supervision

#include "hosts/supervision/RecordingNotices.h"

#include "hosts/supervision/RecordingIds.h"
#include "siblings/tools/FormatText.h"
#include "siblings/tools/Numbers.h"
#include "siblings/tools/Utf.h"
#include "siblings/tools/ZRLoadString.h"

#include <array>
#include <initializer_list>

namespace zr::supervision {
namespace {

using Kind = RecorderNotice::Kind;

constexpr std::array<unsigned, kUnrecordedReasons> kReasonTexts = {kTextReasonInvalid, kTextReasonMissing,
                                                                   kTextReasonLate,    kTextReasonClockSetBack,
                                                                   kTextReasonNoRoom,  kTextReasonDamaged};

ZRBasicString Text(unsigned id, std::initializer_list<TextArgument> arguments = {})
{
    ZRBasicString text;
    return FormatText(ZRLoadString(id, text).Text(), arguments);
}

ZRBasicString InBrackets(const ZRBasicString& text)
{
    return text.IsEmpty() ? text : ZRBasicString(u"(") + text + u")";
}

DeviceNotice OfStore(const RecorderNotice& notice, const ZRBasicString& store, const ZRBasicString& why)
{
    switch (notice.kind) {
        case Kind::StoreAway:
            return {DeviceWarning::StoreAway, store, why, InBrackets(why)};
        case Kind::StoreBack:
            return {DeviceWarning::StoreBack, store, {}, Text(kMessageStoreBack, {store, CountText(notice.count)})};
        case Kind::SpoolFailed:
            return {DeviceWarning::SpoolFull, store, why, InBrackets(why)};
        case Kind::SpoolBack:
            return {DeviceWarning::SpoolBack, store, {}, Text(kMessageSpoolBack, {store})};
        case Kind::SpoolDamaged:
            return {DeviceWarning::SamplesLost, store, why, Text(kTextLostInSpool, {CountText(notice.count), why})};
        default:
            return {DeviceWarning::StoreDamaged, store, why, Text(kMessageStoreDamaged, {store, why})};
    }
}

}  // namespace

DeviceNotice NoticeOf(const RecorderNotice& notice, const std::vector<ZRBasicString>& stores)
{
    const ZRBasicString by = Text(kTextBySeconds, {CountText(notice.count)});
    switch (notice.kind) {
        case Kind::NotRecorded:
            return {DeviceWarning::SamplesLost, notice.dataSet, ReasonText(notice.reason),
                    Text(kTextLostSamples, {CountText(notice.count), ReasonText(notice.reason)})};
        case Kind::ClockWentBack:
            return {DeviceWarning::ClockWentBack, Text(kTextThisComputer), by, by};
        case Kind::ClockJumped:
            return {DeviceWarning::ClockJumped, Text(kTextThisComputer), by, by};
        default:
            return OfStore(notice, notice.node < stores.size() ? stores[notice.node] : ZRBasicString(),
                           Utf8ToUtf16(notice.text));
    }
}

DeviceNotice NoticeOfMissingDevice(const ZRBasicString& dataSet, const ZRBasicString& device)
{
    return {DeviceWarning::SamplesLost, dataSet, device, Text(kTextLostDevice, {device})};
}

ZRBasicString ReasonText(UnrecordedReason reason)
{
    const auto index = static_cast<std::size_t>(reason);
    return index < kReasonTexts.size() ? Text(kReasonTexts[index]) : ZRBasicString();
}

ZRBasicString CountText(std::uint64_t count)
{
    ZRBasicString text;
    FormatNumber(text, static_cast<double>(count), 0, true);
    return text;
}

}  // namespace zr::supervision

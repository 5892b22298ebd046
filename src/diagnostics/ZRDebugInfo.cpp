#include "diagnostics/ZRDebugInfo.h"

#include "diagnostics/DiagnosticsIds.h"
#include "siblings/driversupport/DeviceWarning.h"
#include "siblings/tools/FormatText.h"
#include "siblings/tools/ZRLoadString.h"

#include <algorithm>
#include <optional>

ZRDebugInfo* ZRDebugInfo::instance = nullptr;

namespace {

using zr::DeviceWarning;

// In 16-bit characters, the terminator included.
constexpr std::size_t kMessageBuffer = 1024;
constexpr std::size_t kUsualMessage = 32;

struct MessageOfType {
    DeviceWarning type;
    unsigned message;
};

// It is meant that 1 to 6 are interleaved, that 257 and 258 are exchanged and that 264 and 272 share a text: the table
// stands as it is and must not be regularised.
constexpr MessageOfType kMessages[] = {
    {DeviceWarning::DeviceSilent, zr::kMessageDeviceSilent},
    {DeviceWarning::DeviceAnswersDamaged, zr::kMessageDeviceAnswersDamaged},
    {DeviceWarning::DeviceRefusesRequest, zr::kMessageDeviceRefusesRequest},
    {DeviceWarning::ConnectionLost, zr::kMessageConnectionLost},
    {DeviceWarning::AddressUnknown, zr::kMessageAddressUnknown},
    {DeviceWarning::ForeignFrames, zr::kMessageForeignFrames},
    {DeviceWarning::UnknownDeviceType, zr::kMessageUnknownDeviceType},
    {DeviceWarning::UnknownConnectionType, zr::kMessageUnknownConnectionType},
    {DeviceWarning::DuplicateDevice, zr::kMessageDuplicateDevice},
    {DeviceWarning::DuplicateConnection, zr::kMessageDuplicateConnection},
    {DeviceWarning::ConnectionMissing, zr::kMessageConnectionMissing},
    {DeviceWarning::ConnectionRejected, zr::kMessageConnectionRejected},
    {DeviceWarning::DeviceRejected, zr::kMessageDeviceRejected},
    {DeviceWarning::ProfileRejected, zr::kMessageProfileRejected},
    {DeviceWarning::FilterRejected, zr::kMessageFilterRejected},
    {DeviceWarning::OutputRefused, zr::kMessageOutputRefused},
    {DeviceWarning::OutputTimedOut, zr::kMessageOutputTimedOut},
    {DeviceWarning::ConverterSilent, zr::kMessageConverterSilent},
    {DeviceWarning::ConverterRefuses, zr::kMessageConverterRefuses},
    {DeviceWarning::StoreAway, zr::kMessageStoreAway},
    {DeviceWarning::StoreFull, zr::kMessageStoreFull},
    {DeviceWarning::SamplesLost, zr::kMessageSamplesLost},
    {DeviceWarning::SpoolFull, zr::kMessageSpoolFull},
    {DeviceWarning::ClockWentBack, zr::kMessageClockWentBack},
    {DeviceWarning::ClockJumped, zr::kMessageClockJumped},
    {DeviceWarning::MeterExchanged, zr::kMessageMeterExchanged},
    {DeviceWarning::LimitPassed, zr::kMessageLimitPassed},
    {DeviceWarning::PublicationFailed, zr::kMessagePublicationFailed},
    {DeviceWarning::SupervisedElsewhere, zr::kMessageSupervisedElsewhere},
    {DeviceWarning::ConfigurationRefused, zr::kMessageConfigurationRefused},
    {DeviceWarning::DeviceAnswersAgain, zr::kMessageDeviceAnswersAgain},
    {DeviceWarning::ConnectionOpened, zr::kMessageConnectionOpened},
    {DeviceWarning::ConfigurationLoaded, zr::kMessageConfigurationLoaded},
    {DeviceWarning::OutputSwitched, zr::kMessageOutputSwitched},
    {DeviceWarning::OutputSwitchedByHost, zr::kMessageOutputSwitched},
};

std::optional<unsigned> MessageOf(int type)
{
    const auto* const found = std::find_if(std::begin(kMessages), std::end(kMessages),
                                           [type](const auto& each) { return static_cast<int>(each.type) == type; });
    return found != std::end(kMessages) ? std::optional(found->message) : std::nullopt;
}

// As much as the work buffer takes, and no half of a surrogate pair.
std::u16string_view CutToBuffer(std::u16string_view text)
{
    if (text.size() < kMessageBuffer) {
        return text;
    }
    text = text.substr(0, kMessageBuffer - 1);
    const bool endsInHighSurrogate = text.back() >= 0xD800 && text.back() <= 0xDBFF;
    return endsInHighSurrogate ? text.substr(0, text.size() - 1) : text;
}

}  // namespace

ZRDebugInfo::ZRDebugInfo()
{
    instance = this;
}

ZRDebugInfo::~ZRDebugInfo()
{
    instance = nullptr;
    Invalidate();
}

void ZRDebugInfo::AddWarning(int type, const ZRBasicString& name, const ZRBasicString& info,
                             const ZRBasicString& detail)
{
    warnings.push_back(new ZRDebugInfoRecord{type, name, info, detail});
}

const ZRBasicString& ZRDebugInfo::WarningStr(int index) const
{
    // It is meant that one text serves every call: what an earlier call returned shows the latest message.
    static ZRBasicString message = [] {
        ZRBasicString empty;
        empty.Reserve(kUsualMessage);
        return empty;
    }();
    const ZRDebugInfoRecord& record = At(index);
    message.Clear();
    if (const std::optional<unsigned> id = MessageOf(record.type); id.has_value()) {
        ZRLoadString(*id, message);
        const ZRBasicString filled = zr::FormatText(message.Text(), {record.name});
        message = ZRBasicString(CutToBuffer(filled.Text()));
    }
    if (!record.detail.IsEmpty()) {
        message += u" ";
        message += record.detail;
    }
    return message;
}

void ZRDebugInfo::Invalidate()
{
    for (const ZRDebugInfoRecord* const record : warnings) {
        delete record;
    }
    warnings.clear();
}

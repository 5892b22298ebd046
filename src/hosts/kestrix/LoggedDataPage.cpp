#include "hosts/kestrix/LoggedDataPage.h"

#include "hosts/kestrix/DesktopIds.h"
#include "hosts/supervision/RecordingNotices.h"
#include "hosts/supervision/RecordingText.h"
#include "logger/FormatDateTime.h"
#include "platform/FileReplace.h"
#include "siblings/tools/FormatText.h"
#include "siblings/tools/Numbers.h"
#include "siblings/tools/TimeZone.h"
#include "siblings/tools/Utf.h"
#include "siblings/tools/ZRLoadString.h"
#include "siblings/tools/ZRLocaleInformation.h"

#include <algorithm>
#include <initializer_list>

namespace zr::desktop {
namespace {

using supervision::CountText;
using supervision::RecordingStatus;

constexpr std::int64_t kMicroseconds = 1'000'000;
constexpr std::int64_t kFirstDate = 946'684'800;  // 1 January 2000, where ZRDateTime begins
constexpr std::int64_t kMinute = 60;
constexpr std::int64_t kHour = 60 * kMinute;
constexpr std::int64_t kDay = 24 * kHour;

ZRBasicString Text(unsigned id, std::initializer_list<TextArgument> arguments = {})
{
    ZRBasicString text;
    return FormatText(ZRLoadString(id, text).Text(), arguments);
}

// Mebibytes with one decimal.
ZRBasicString SizeText(std::uint64_t bytes)
{
    ZRBasicString text;
    FormatNumber(text, static_cast<double>(bytes) / (1024.0 * 1024.0), 1, true);
    return text;
}

bool IsAway(RecorderNodeState state)
{
    return state == RecorderNodeState::Spooling || state == RecorderNodeState::Full;
}

DeviceState BadgeOf(RecorderNodeState state)
{
    switch (state) {
        case RecorderNodeState::Recording:
        case RecorderNodeState::Resending:
            return DeviceState::OnLine;
        case RecorderNodeState::Spooling:
            return DeviceState::Silent;
        case RecorderNodeState::Full:
            return DeviceState::Alarm;
        case RecorderNodeState::Stopped:
            break;
    }
    return DeviceState::NotAsked;
}

ZRBasicString StateText(const RecorderNodeFigures& node)
{
    switch (node.state) {
        case RecorderNodeState::Recording:
            return Text(kTextLoggedRecording);
        case RecorderNodeState::Resending:
            return Text(kTextLoggedResending);
        case RecorderNodeState::Spooling:
            return Text(kTextLoggedStoreAway, {PlantTimeText(node.since)});
        case RecorderNodeState::Full:
            return Text(kTextLoggedNoRoom, {PlantTimeText(node.since)});
        case RecorderNodeState::Stopped:
            break;
    }
    return Text(kTextLoggedStarting);
}

LoggedDataPage::Store StoreOf(const RecordingStatus& status, std::size_t index, const LoggedDataPage& page)
{
    LoggedDataPage::Store store;
    store.title = status.storeFile.empty() ? status.nodes[index] : Utf8ToUtf16(TextOfPath(status.storeFile));
    if (!status.isRecording || index >= status.figures.nodes.size()) {
        store.badge = page.badge;
        store.state = page.state;
        return store;
    }
    const RecorderNodeFigures& node = status.figures.nodes[index];
    store.badge = BadgeOf(node.state);
    store.state = StateText(node);
    store.waiting = CountText(node.spooled);
    store.waitingOnDisk = Text(kTextLoggedOf, {SizeText(node.spoolBytes), SizeText(node.spoolLimit)});
    store.trouble = Utf8ToUtf16(node.error);
    return store;
}

LoggedDataPage::DataSet DataSetOf(const LoggerDataSet& set, const RecordingStatus& status, bool isOurs)
{
    LoggedDataPage::DataSet shown;
    shown.name = set.name;
    shown.period = PeriodText(set.period);
    shown.retention = set.retention == 0 ? Text(kTextLoggedForEver) : PeriodText(std::int64_t{set.retention} * kDay);
    shown.variables = CountText(set.variables.size());
    const auto& figures = status.figures.dataSets;
    const auto found =
        std::find_if(figures.begin(), figures.end(), [&](const auto& each) { return each.name == set.name; });
    if (!isOurs || found == figures.end()) {
        return shown;
    }
    shown.recorded = CountText(found->counts.recorded);
    shown.notRecorded = CountText(found->counts.Unrecorded());
    shown.reasons = supervision::UnrecordedText(found->counts);
    shown.last = found->lastTime != 0 ? PlantTimeText(found->lastTime) : Text(kTextLoggedYet);
    return shown;
}

// Of the whole: the worst of its stores.
void TakeState(LoggedDataPage& page, const RecordingStatus& status, const ZRBasicString& otherProgram)
{
    page.badge = DeviceState::NotPolled;
    if (!status.isConfigured || status.dataSets.empty()) {
        page.state = Text(kTextLoggedNothing);
    } else if (!otherProgram.IsEmpty()) {
        page.state = Text(kTextLoggedByOther, {otherProgram});
    } else if (!status.isRecording) {
        page.badge = DeviceState::NotAsked;
        page.state = Text(kTextLoggedStarting);
    } else {
        page.badge = DeviceState::OnLine;
        page.state = Text(kTextLoggedRecording);
        for (const RecorderNodeFigures& node : status.figures.nodes) {
            if (IsAway(node.state) && BadgeOf(node.state) > page.badge) {
                page.badge = BadgeOf(node.state);
                page.state = StateText(node);
            }
        }
    }
}

}  // namespace

LoggedDataPage MakeLoggedDataPage(const RecordingStatus& status, const ZRBasicString& otherProgram)
{
    LoggedDataPage page;
    TakeState(page, status, otherProgram);
    const ZRBasicString file = Utf8ToUtf16(TextOfPath(status.file));
    page.place = status.isConfigured ? file : Text(kTextLoggedNoFile, {file});
    for (std::size_t i = 0; i < status.nodes.size(); ++i) {
        page.stores.push_back(StoreOf(status, i, page));
    }
    for (const LoggerDataSet& set : status.dataSets) {
        page.dataSets.push_back(DataSetOf(set, status, otherProgram.IsEmpty()));
    }
    return page;
}

ZRBasicString PlantTimeText(std::int64_t time)
{
    const std::int64_t local = PlantZone().ToLocal(time / kMicroseconds) - kFirstDate;
    if (local < 0 || local >= ZRDateTime::kNoDate) {
        return {};
    }
    ZRBasicString text;
    return FormatDateTime(text, ZRDateTime(static_cast<std::uint32_t>(local), 0), LocaleInformationWide(),
                          logger::kRow);
}

ZRBasicString PeriodText(std::int64_t seconds)
{
    struct Unit {
        std::int64_t length;
        unsigned text;
    };
    static constexpr Unit kUnits[] = {
        {kDay, kTextLoggedDays}, {kHour, kTextLoggedHours}, {kMinute, kTextLoggedMinutes}};
    for (const Unit& unit : kUnits) {
        if (seconds % unit.length == 0) {
            return Text(unit.text, {CountText(static_cast<std::uint64_t>(seconds / unit.length))});
        }
    }
    return Text(kTextLoggedSeconds, {CountText(static_cast<std::uint64_t>(seconds))});
}

}  // namespace zr::desktop

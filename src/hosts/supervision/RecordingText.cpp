#include "hosts/supervision/RecordingText.h"

#include "hosts/supervision/RecordingNotices.h"
#include "siblings/tools/Utf.h"

#include <fmt/format.h>

namespace zr::supervision {
namespace {

std::string Counted(std::uint64_t count, const char* one, const char* many)
{
    return Utf16ToUtf8(CountText(count)) + ' ' + (count == 1 ? one : many);
}

std::string CountsText(const RecorderCounts& counts)
{
    std::string text =
        fmt::format("{} recorded, {} waiting, {} not recorded", Counted(counts.recorded, "sample", "samples"),
                    Utf16ToUtf8(CountText(counts.spooled)), Utf16ToUtf8(CountText(counts.Unrecorded())));
    const ZRBasicString reasons = UnrecordedText(counts);
    return reasons.IsEmpty() ? text : text + " (" + Utf16ToUtf8(reasons) + ')';
}

// Of the stores that are away, the reason of the first.
std::string TroubleText(const RecorderFigures& figures)
{
    std::size_t away = 0;
    std::string reason;
    for (const RecorderNodeFigures& node : figures.nodes) {
        if (node.state == RecorderNodeState::Spooling || node.state == RecorderNodeState::Full) {
            reason = away++ == 0 ? node.error : reason;
        }
    }
    if (away == 0) {
        return {};
    }
    const std::string what =
        figures.nodes.size() == 1 ? "the store is" : fmt::format("{} of {} stores are", away, figures.nodes.size());
    return fmt::format("; {} away: {}", what, reason);
}

}  // namespace

std::string RecordingLine(const RecordingStatus& status)
{
    if (!status.isConfigured) {
        return {};
    }
    const RecorderFigures& figures = status.figures;
    std::uint64_t variables = 0;
    for (const RecorderDataSetFigures& set : figures.dataSets) {
        variables += set.variables;
    }
    return fmt::format("Recording: {}, {}, {}{}", Counted(figures.dataSets.size(), "data set", "data sets"),
                       Counted(variables, "variable", "variables"), CountsText(figures.total), TroubleText(figures));
}

ZRBasicString UnrecordedText(const RecorderCounts& counts)
{
    ZRBasicString text;
    for (std::size_t i = 0; i < counts.unrecorded.size(); ++i) {
        if (counts.unrecorded[i] != 0) {
            text += text.IsEmpty() ? u"" : u", ";
            text += ReasonText(static_cast<UnrecordedReason>(i)) + u" " + CountText(counts.unrecorded[i]);
        }
    }
    return text;
}

}  // namespace zr::supervision

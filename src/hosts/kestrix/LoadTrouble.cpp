#include "hosts/kestrix/LoadTrouble.h"

#include "hosts/kestrix/DesktopIds.h"
#include "siblings/driversupport/ZRDriverVariable.h"
#include "siblings/tools/FormatText.h"
#include "siblings/tools/Utf.h"
#include "siblings/tools/ZRLoadString.h"

#include <algorithm>
#include <cstddef>
#include <initializer_list>

namespace zr::desktop {
namespace {

constexpr std::size_t kLineLength = 90;  // characters of the gravest that a status bar has room for
constexpr std::size_t kMostLines = 20;   // of the whole

ZRBasicString Text(unsigned id, std::initializer_list<TextArgument> arguments = {})
{
    ZRBasicString text;
    return FormatText(ZRLoadString(id, text).Text(), arguments);
}

// One line, whatever a store or a file name brings along.
ZRBasicString OneLine(const ZRBasicString& text)
{
    std::u16string line(text.Text());
    std::replace_if(
        line.begin(), line.end(), [](char16_t c) { return c < u' '; }, u' ');
    return ZRBasicString(line);
}

ZRBasicString Cut(const ZRBasicString& text)
{
    const std::u16string_view whole = text.Text();
    if (whole.size() <= kLineLength) {
        return text;
    }
    // A pair of surrogates stays whole.
    const bool isPair = (whole[kLineLength - 1] & 0xFC00) == 0xD800;
    return ZRBasicString(whole.substr(0, kLineLength - (isPair ? 1 : 0))) + u"\u2026";
}

// The gravest first.
std::vector<ZRBasicString> Lines(const LoadTrouble& trouble)
{
    std::vector<ZRBasicString> lines;
    const auto add = [&](unsigned id, const ZRBasicString& what) { lines.push_back(OneLine(Text(id, {what}))); };
    if (!trouble.failure.empty()) {
        add(kTextLoggedFailed, Utf8ToUtf16(trouble.failure));
    }
    if (trouble.wasStopped) {
        lines.push_back(Text(kTextLoggedStopped));
    }
    for (const std::string& damage : trouble.damage) {
        add(kTextLoggedDamaged, Utf8ToUtf16(damage));
    }
    for (const std::string& problem : trouble.problems) {
        add(kTextLoggedNoValues, Utf8ToUtf16(problem));
    }
    for (const ZRBasicString& variable : trouble.vanished) {
        add(kTextLoggedVanished, variable);
    }
    return lines;
}

}  // namespace

LoadTrouble LoadTrouble::Of(const ZRLoggerData& data, bool wasStopped)
{
    LoadTrouble trouble;
    trouble.wasStopped = wasStopped;
    trouble.failure = data.Failure();
    trouble.damage = data.Damage();
    trouble.problems = data.Problems();
    ZRLoggerInfo info(data.loggerInfo);
    info.Lock();
    for (ZRDriverVariable* const variable : info.variables) {
        ZRDeviceDriver::tagSVariableInfo told;
        if (!variable->Info(told)) {
            trouble.vanished.push_back(variable->fullName);
        }
    }
    return trouble;
}

LoadTroubleText Describe(const LoadTrouble& trouble)
{
    const std::vector<ZRBasicString> lines = Lines(trouble);
    LoadTroubleText text;
    text.isWarning = !trouble.failure.empty() || !trouble.damage.empty() || !trouble.problems.empty();
    if (lines.empty()) {
        return text;
    }
    text.line = Cut(lines.front());
    if (lines.size() > 1) {
        text.line += u" " + Text(kTextLoggedMore, {lines.size() - 1});
    }
    for (std::size_t i = 0; i < std::min(lines.size(), kMostLines); ++i) {
        text.whole += (i > 0 ? ZRBasicString(u"\n") : ZRBasicString()) + lines[i];
    }
    if (lines.size() > kMostLines) {
        text.whole += u"\n" + Text(kTextLoggedMore, {lines.size() - kMostLines});
    }
    return text;
}

}  // namespace zr::desktop

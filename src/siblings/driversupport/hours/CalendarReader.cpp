#include "siblings/driversupport/hours/CalendarReader.h"

#include "siblings/driversupport/hours/CalendarText.h"
#include "siblings/tools/Numbers.h"
#include "siblings/tools/Utf.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <optional>
#include <utility>

namespace zr {

namespace {

constexpr int kMinutes = 24 * 60;
constexpr std::size_t kMaxNamedSeasons = 100;
constexpr std::size_t kMaxRules = 1000;
constexpr std::size_t kMaxHolidays = 10000;
constexpr int kFirstEasterDay = -80;  // within the year, wherever Easter lies
constexpr int kLastEasterDay = 249;
constexpr std::array<const char*, 7> kWeekdays = {"Sundays",   "Mondays", "Tuesdays", "Wednesdays",
                                                  "Thursdays", "Fridays", "Saturdays"};

// An element `days`.
struct Rule {
    const XmlNode* node = nullptr;
    DaysText days;
    std::size_t season = 0;  // 0: any
    HourCalendar::Day day;

    // How strongly it speaks for a kind of date; nothing when it doesn't.
    [[nodiscard]] std::optional<int> RankFor(std::size_t dateSeason, unsigned weekday, bool isHoliday) const
    {
        const bool asHoliday = isHoliday && days.holidays;
        if ((season != 0 && season != dateSeason) || (!asHoliday && (days.weekdays >> weekday & 1u) == 0)) {
            return std::nullopt;
        }
        return (asHoliday ? 2 : 0) + (season != 0 ? 1 : 0);
    }
};

std::string Clock(int minute)
{
    const auto two = [](int number) { return (number < 10 ? "0" : "") + std::to_string(number); };
    return two(minute / 60) + ":" + two(minute % 60);
}

class Reader {
public:
    Reader(const std::string& file, const std::vector<ZRBasicString>& hourTypes, std::string& error)
        : m_file(file), m_hourTypes(hourTypes), m_error(error)
    {
    }

    bool Read(const XmlNode& node)
    {
        if (!CheckValues(node, {u"rest"}) || !ReadHourType(node, u"rest", m_rest)) {
            return false;
        }
        // What the days refer to first, wherever it stands.
        for (const XmlNode* child : node.children) {
            if (!ReadDates(*child)) {
                return false;
            }
        }
        for (const XmlNode* child : node.children) {
            if (child->tag == u"days" && !ReadDays(*child)) {
                return false;
            }
        }
        return MakePlan(node);
    }

    HourCalendar Finish() { return HourCalendar(std::move(m_parts)); }

private:
    bool Fail(const XmlNode& node, const std::string& reason)
    {
        m_error = m_file + ":" + std::to_string(node.Line()) + ": " + reason;
        return false;
    }

    bool CheckValues(const XmlNode& node, std::initializer_list<ZRBasicString::View> known)
    {
        for (const ZRBasicString& name : node.ValueNames()) {
            if (std::find(known.begin(), known.end(), name.Text()) == known.end()) {
                return Fail(node, Utf16ToUtf8(node.tag) + ": has no value \"" + Utf16ToUtf8(name) + "\"");
            }
        }
        return true;
    }

    bool ReadDates(const XmlNode& node)
    {
        if (node.tag == u"season") {
            return ReadSeason(node);
        }
        if (node.tag == u"holiday") {
            return ReadHoliday(node);
        }
        return node.tag == u"days" || Fail(node, "calendar: has no element \"" + Utf16ToUtf8(node.tag) + "\"");
    }

    // Unchanged when the node has no such value.
    bool ReadHourType(const XmlNode& node, const wchar* value, std::optional<std::size_t>& hourType)
    {
        if (!node.HasValue(value)) {
            return true;
        }
        const ZRBasicString name = node.Value(value, u"");
        const auto found = std::find(m_hourTypes.begin(), m_hourTypes.end(), name);
        if (found == m_hourTypes.end()) {
            return Fail(node, Utf16ToUtf8(value) + ": no hour type of the filter");
        }
        hourType = static_cast<std::size_t>(found - m_hourTypes.begin());
        return true;
    }

    bool ReadSeason(const XmlNode& node)
    {
        const ZRBasicString name = node.Value(u"name", u"");
        const auto from = ParseYearDay(node.Value(u"from", u""));
        const auto to = ParseYearDay(node.Value(u"to", u""));
        if (!CheckValues(node, {u"name", u"from", u"to"})) {
            return false;
        }
        if (!IsValidId(name, true)) {
            return Fail(node, "name: a season is named by 1 to 64 letters, digits, blanks, \"-\" and \"_\"");
        }
        if (!from || !to) {
            return Fail(node, std::string(from ? "to" : "from") + ": not a date of every year, \"MM-DD\"");
        }
        const std::size_t season = SeasonOf(name);
        if (season > kMaxNamedSeasons) {
            return Fail(node, "more than " + std::to_string(kMaxNamedSeasons) + " seasons");
        }
        // A stretch that ends before it begins goes over the new year.
        for (std::size_t day = *from;; day = (day + 1) % kYearDays) {
            std::uint16_t& held = m_parts.seasons[day];
            if (held != 0) {
                return Fail(node, "has days of season \"" + Utf16ToUtf8(m_seasons[held - 1u]) + "\"");
            }
            held = static_cast<std::uint16_t>(season);
            if (day == *to) {
                return true;
            }
        }
    }

    // Its number, from 1 on; a new one for a new name.
    std::size_t SeasonOf(const ZRBasicString& name)
    {
        const auto found = std::find(m_seasons.begin(), m_seasons.end(), name);
        if (found == m_seasons.end()) {
            m_seasons.push_back(name);
            return m_seasons.size();
        }
        return static_cast<std::size_t>(found - m_seasons.begin()) + 1;
    }

    bool ReadHoliday(const XmlNode& node)
    {
        if (!CheckValues(node, {u"name", u"date", u"easter"})) {
            return false;
        }
        if (++m_holidays > kMaxHolidays) {
            return Fail(node, "more than " + std::to_string(kMaxHolidays) + " holidays");
        }
        if (node.HasValue(u"date") == node.HasValue(u"easter")) {
            return Fail(node, "holiday: wants either date or easter");
        }
        if (node.HasValue(u"easter")) {
            return ReadEasterHoliday(node);
        }
        const ZRBasicString date = node.Value(u"date", u"");
        if (const auto yearDay = ParseYearDay(date)) {
            m_parts.yearlyHolidays.set(*yearDay);
            return true;
        }
        if (const auto day = ParseDate(date)) {
            m_parts.holidays.push_back(*day);
            return true;
        }
        return Fail(node, "date: neither \"MM-DD\" nor \"YYYY-MM-DD\" of the years 2000 to 2135");
    }

    bool ReadEasterHoliday(const XmlNode& node)
    {
        std::int64_t after = 0;
        if (!ParseInteger(node.Value(u"easter", u""), after) || after < kFirstEasterDay || after > kLastEasterDay) {
            return Fail(node, "easter: not a number of days from " + std::to_string(kFirstEasterDay) + " to " +
                                  std::to_string(kLastEasterDay));
        }
        const int days = static_cast<int>(after);
        if (std::find(m_parts.easterHolidays.begin(), m_parts.easterHolidays.end(), days) ==
            m_parts.easterHolidays.end()) {
            m_parts.easterHolidays.push_back(days);
        }
        return true;
    }

    bool ReadDays(const XmlNode& node)
    {
        Rule rule;
        rule.node = &node;
        if (!CheckValues(node, {u"on", u"season", u"rest"})) {
            return false;
        }
        if (m_rules.size() == kMaxRules) {
            return Fail(node, "more than " + std::to_string(kMaxRules) + " elements \"days\"");
        }
        const auto days = ParseDays(node.Value(u"on", u"Mon-Sun"));
        if (!days) {
            return Fail(node, "on: not a list of Mon, Tue, Wed, Thu, Fri, Sat, Sun, stretches of them and holiday");
        }
        rule.days = *days;
        if (node.HasValue(u"season")) {
            const auto found = std::find(m_seasons.begin(), m_seasons.end(), node.Value(u"season", u""));
            if (found == m_seasons.end()) {
                return Fail(node, "season: there is none of that name");
            }
            rule.season = static_cast<std::size_t>(found - m_seasons.begin()) + 1;
        }
        if (!ReadDay(node, rule.day)) {
            return false;
        }
        m_rules.push_back(std::move(rule));
        return true;
    }

    using Minutes = std::array<std::optional<std::size_t>, kMinutes>;

    bool ReadDay(const XmlNode& node, HourCalendar::Day& day)
    {
        std::optional<std::size_t> rest = m_rest;
        Minutes minutes;
        if (!ReadHourType(node, u"rest", rest)) {
            return false;
        }
        for (const XmlNode* child : node.children) {
            if (child->tag != u"hours") {
                return Fail(*child, "days: has no element \"" + Utf16ToUtf8(child->tag) + "\"");
            }
            if (!ReadHours(*child, minutes)) {
                return false;
            }
        }
        for (int minute = 0; minute < kMinutes; ++minute) {
            const auto hourType = minutes[static_cast<std::size_t>(minute)];
            if (!hourType && !rest) {
                return Fail(node, "days: nothing tells the hour type at " + Clock(minute));
            }
            const std::size_t held = hourType.value_or(rest.value_or(0));
            if (day.empty() || day.back().hourType != held) {
                day.push_back({minute, held});
            }
        }
        return true;
    }

    bool ReadHours(const XmlNode& node, Minutes& minutes)
    {
        std::optional<std::size_t> hourType;
        const auto from = ParseTimeOfDay(node.Value(u"from", u""));
        const auto to = ParseTimeOfDay(node.Value(u"to", u""));
        if (!CheckValues(node, {u"from", u"to", u"hour"}) || !ReadHourType(node, u"hour", hourType)) {
            return false;
        }
        if (!from || *from == kMinutes) {
            return Fail(node, "from: not a time from \"00:00\" to \"23:59\"");
        }
        if (!to) {
            return Fail(node, "to: not a time from \"00:00\" to \"24:00\"");
        }
        if (*from == *to) {
            return Fail(node, "from and to are the same; a whole day is \"00:00\" to \"24:00\"");
        }
        if (!hourType) {
            return Fail(node, "hour: missing");
        }
        // A stretch that ends before it begins goes over midnight; both its pieces are of the same date.
        for (int minute = *from; minute != *to; minute = minute + 1 == kMinutes && *to != kMinutes ? 0 : minute + 1) {
            auto& held = minutes[static_cast<std::size_t>(minute)];
            if (held) {
                return Fail(node, "hours: " + Clock(minute) + " has its hour type from hours before");
            }
            held = hourType;
        }
        return node.children.empty() || Fail(*node.children.front(), "hours: has no elements");
    }

    // Finds for every kind of date the days that are to be followed.
    bool MakePlan(const XmlNode& node)
    {
        for (Rule& rule : m_rules) {
            m_parts.days.push_back(rule.day);
        }
        if (m_rest) {
            m_parts.days.push_back({{0, *m_rest}});
        }
        m_parts.dayOfKinds.assign(HourCalendar::KindOf(m_seasons.size() + 1, 0, false), 0);
        for (std::size_t season = 0; season <= m_seasons.size(); ++season) {
            if (std::find(m_parts.seasons.begin(), m_parts.seasons.end(), season) == m_parts.seasons.end()) {
                continue;  // seasons that leave no day of the year
            }
            for (unsigned weekday = 0; weekday < kWeekdays.size(); ++weekday) {
                if (!PlanKind(node, season, weekday, false) ||
                    (m_holidays != 0 && !PlanKind(node, season, weekday, true))) {
                    return false;
                }
            }
        }
        return true;
    }

    bool PlanKind(const XmlNode& node, std::size_t season, unsigned weekday, bool isHoliday)
    {
        int best = -1;
        const Rule* follow = nullptr;
        const Rule* other = nullptr;  // that speaks as strongly
        for (const Rule& rule : m_rules) {
            const int rank = rule.RankFor(season, weekday, isHoliday).value_or(-1);
            if (rank > best) {
                follow = &rule;
                other = nullptr;
                best = rank;
            } else if (rank >= 0 && rank == best) {
                other = &rule;
            }
        }
        const std::string kind = KindText(season, weekday, isHoliday);
        if (other != nullptr) {
            return Fail(*other->node,
                        "days: " + kind + " have theirs from line " + std::to_string(follow->node->Line()));
        }
        if (follow == nullptr && !m_rest) {
            return Fail(node, "calendar: nothing tells the hour types of " + kind);
        }
        const auto day = follow != nullptr ? static_cast<std::size_t>(follow - m_rules.data()) : m_rules.size();
        m_parts.dayOfKinds[HourCalendar::KindOf(season, weekday, isHoliday)] = day;
        return true;
    }

    [[nodiscard]] std::string KindText(std::size_t season, unsigned weekday, bool isHoliday) const
    {
        std::string text = kWeekdays[weekday];
        if (isHoliday) {
            text = "holidays on " + text;
        }
        if (!m_seasons.empty()) {
            text += season != 0 ? " of season \"" + Utf16ToUtf8(m_seasons[season - 1]) + "\"" : " outside the seasons";
        }
        return text;
    }

    const std::string& m_file;
    const std::vector<ZRBasicString>& m_hourTypes;
    std::string& m_error;
    std::optional<std::size_t> m_rest;  // the hour type of all that nothing else tells
    std::vector<ZRBasicString> m_seasons;
    std::vector<Rule> m_rules;
    std::size_t m_holidays = 0;
    HourCalendar::Parts m_parts;
};

}  // namespace

bool ReadCalendar(const XmlNode& node, const std::string& file, const std::vector<ZRBasicString>& hourTypes,
                  HourCalendar& calendar, std::string& error)
{
    Reader reader(file, hourTypes, error);
    if (!reader.Read(node)) {
        return false;
    }
    calendar = reader.Finish();
    return true;
}

}  // namespace zr

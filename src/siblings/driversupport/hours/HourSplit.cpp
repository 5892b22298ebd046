#include "siblings/driversupport/hours/HourSplit.h"

#include "platform/FileReplace.h"
#include "siblings/driversupport/FilterFile.h"
#include "siblings/support/ZRKestrixSetup.h"
#include "siblings/tools/Utf.h"

#include <algorithm>

namespace zr {

HourSplit::Hours HourSplit::Find(const ZRBasicString& filter, const ZRBasicString& hour)
{
    const Filter& read = Read(filter);
    if (read.runs == nullptr) {
        return {};
    }
    const auto found = std::find(read.hourTypes.begin(), read.hourTypes.end(), hour);
    if (found == read.hourTypes.end()) {
        AddProblem(Utf16ToUtf8(filter) + ": has no hour type \"" + Utf16ToUtf8(hour) + "\"");
        return {};
    }
    return {read.runs, static_cast<std::size_t>(found - read.hourTypes.begin())};
}

const HourSplit::Filter& HourSplit::Read(const ZRBasicString& name)
{
    const auto [entry, isNew] = m_filters.try_emplace(name);
    Filter& filter = entry->second;
    if (!isNew) {
        return filter;
    }
    if (!IsFilterName(name)) {
        AddProblem("\"" + Utf16ToUtf8(name) + "\": no name of a filter file");
        return filter;
    }
    if (ZRKestrixSetup::instance == nullptr) {
        AddProblem(Utf16ToUtf8(name) + ": the program has no folder of filter files");
        return filter;
    }
    const auto file = PathFromText((ZRKestrixSetup::Get().dataFolder + name).Text());
    FilterFile read;
    std::string error;
    if (!read.Load(file, error)) {
        AddProblem(error);
        return filter;
    }
    if (!read.Calendar()) {
        AddProblem(NoCalendarText(file));
        return filter;
    }
    for (const FilterFile::HourType& type : read.HourTypes()) {
        filter.hourTypes.push_back(type.name);
    }
    filter.runs = std::make_shared<HourRuns>(*read.Calendar(), m_zone, m_from, m_to);
    return filter;
}

void HourSplit::AddProblem(const std::string& problem)
{
    if (std::find(m_problems.begin(), m_problems.end(), problem) == m_problems.end()) {
        m_problems.push_back(problem);
    }
}

}  // namespace zr

#include "logger/LoggerGraph.h"

#include "logger/GraphColour.h"
#include "logger/GraphSettings.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace zr::logger {

using Record = ZRGraphProfile::CVariableProfile;

PrintRect GraphPrintRect(const PrintRect& sheet)
{
    const long long width = static_cast<long long>(sheet.right) - sheet.left;
    const long long height = static_cast<long long>(sheet.bottom) - sheet.top;
    PrintRect rect;
    rect.left = static_cast<int>(width * 5 / 100);
    rect.top = static_cast<int>(height * 5 / 100);
    rect.right = static_cast<int>(width - width * 10 / 100 + rect.left);
    rect.bottom = static_cast<int>(height - height * 10 / 100 + rect.top);
    return rect;
}

void LoggerGraph::Setup(const ZRLoggerInfo& info, XmlNode* node)
{
    m_configNode = node;
    m_info.DeleteAll();
    for (const ZRDriverVariable* variable : info.variables) {
        m_info.AddVariable(variable->fullName);
    }
    m_info.Lock();
    if (m_profile.NVars() == 0) {
        FillProfile();
    }
    m_varCount = static_cast<int>(m_profile.NVars());
    ChangeNamesVars(m_profile, m_info);
    SortByUnit(m_profile, m_varCount);
    ResetZones();
    m_totalProfile = m_profile;
    bool firstTime = false;
    m_varCount = GraphSettings(m_profile, m_info, m_configNode).GetLastConfiguration(firstTime);
    UpdateSetup(firstTime);
}

void LoggerGraph::FillProfile()
{
    int position = 0;
    for (const ZRDriverVariable* variable : m_info.variables) {
        ZRDeviceDriver::tagSVariableInfo told;
        if (variable->Info(told)) {
            m_profile.AddVariable(variable->fullName, told.description, 0, 0, 0, told.measureUnits, told.valueExponent,
                                  told.unitsDecimals, told.infoCode, position, Record::kNoMinimum, Record::kNoMaximum,
                                  told.unitsExponent);
        }
        ++position;
    }
}

void LoggerGraph::ResetZones()
{
    int zone = 0;
    int position = 0;
    for (auto at = m_profile.VarsBegin(); at != m_profile.VarsEnd(); ++at, ++position) {
        Record& record = **at;
        record.Zone = zone;
        record.LineType = 0;
        record.Color = GetColor(m_profile, record.Name, zone, position);
        const auto next = std::next(at);
        zone += next != m_profile.VarsEnd() && (*next)->MeasureUnits != record.MeasureUnits ? 1 : 0;
    }
}

void LoggerGraph::UpdateSetup(bool firstTime)
{
    CutZones(m_profile);
    SortByZone(m_profile);
    RenumberZones(m_profile);
    RunsPerZone runsPerZone{};
    LayOut(firstTime, runsPerZone);
    m_curves.ClearVariables();
    int position = 0;
    for (auto at = m_profile.VarsBegin(); at != m_profile.VarsEnd(); ++at, ++position) {
        graph::CurveInfo curve = CurveOf(**at);
        curve.zone = GetZone(position, runsPerZone);
        m_curves.AddVariable(curve);
    }
}

void LoggerGraph::LayOut(bool firstTime, RunsPerZone& runsPerZone)
{
    const AxisRuns runs = FindAxisRuns(m_profile, firstTime);
    runsPerZone = runs.perZone;
    m_axisRuns = static_cast<int>(runs.sizes.size());
    // Meant: it grows at each call, and is written from its start.
    m_axisSizes.resize(m_axisSizes.size() + static_cast<std::size_t>(m_varCount));
    m_axisSizes.resize(std::max(m_axisSizes.size(), runs.sizes.size()));
    std::copy(runs.sizes.begin(), runs.sizes.end(), m_axisSizes.begin());
}

int LoggerGraph::GetZone(int index, const RunsPerZone& runsPerZone) const
{
    int sum = 0;
    int used = 0;
    std::size_t zone = 0;
    for (int run = 0; run < m_axisRuns; ++run) {
        sum += m_axisSizes[static_cast<std::size_t>(run)];
        if (index < sum) {
            break;
        }
        // Beyond the last zone there are no runs to count.
        const int runs = zone < runsPerZone.size() ? runsPerZone[zone] : 0;
        if (used + runs - 1 == run) {
            used += runs;
            ++zone;
        }
    }
    return static_cast<int>(zone);
}

void LoggerGraph::GetLoggerInfo(ZRLoggerInfo& out) const
{
    out.DeleteAll();
    for (const ZRDriverVariable* variable : m_info.variables) {
        out.AddVariable(variable->fullName);
    }
}

bool LoggerGraph::OnConfig(const ProfileDialog& dialog)
{
    ZRGraphProfile copy;
    copy = m_profile;
    // A copy too, so that what a dialog adds and then cancels leaves nothing, and the graph behind it keeps its own.
    ZRLoggerInfo info = m_info;
    if (!dialog(copy, m_totalProfile, info)) {
        return false;
    }
    m_profile = copy;
    m_info = info;
    m_varCount = static_cast<int>(m_profile.NVars());
    UpdateSetup(false);
    GraphSettings(m_profile, m_info, m_configNode).SetLastConfiguration();
    return true;
}

void LoggerGraph::OnDestroy()
{
    GraphSettings(m_profile, m_info, m_configNode).SetLastConfiguration();
}

void LoggerGraph::OnPreparePrinting(int printerColor, const std::function<bool()>& isBlackAndWhiteWanted)
{
    m_printColor = printerColor;
    if (m_printColor == kPrintColour && isBlackAndWhiteWanted()) {
        m_printColor = kPrintBlackAndWhite;
    }
}

}  // namespace zr::logger

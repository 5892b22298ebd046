// The graph of logged data: all that its window decides, without the window.
#pragma once

#include "logger/GraphLayout.h"
#include "logger/TablePrint.h"
#include "profiles/ZRGraphProfile.h"
#include "siblings/driversupport/ZRLoggerInfo.h"
#include "siblings/graphsupport/CurveInfo.h"
#include "siblings/tools/XmlDocument.h"

#include <functional>
#include <vector>

namespace zr::logger {

// The curves that a graph draws.
class CurveList {
public:
    virtual void ClearVariables() = 0;
    virtual void AddVariable(const graph::CurveInfo& curve) = 0;

protected:
    ~CurveList() = default;
};

// What a printer is chosen to print in.
inline constexpr int kPrintBlackAndWhite = 1;
inline constexpr int kPrintColour = 2;

// Asked as question with Yes and No.
inline constexpr unsigned kTextPrintBlackAndWhite = 32317;
inline constexpr unsigned kTextCopyBlackAndWhite = 32318;

// The part of a sheet that a graph is printed on: a margin of a twentieth at each side, in whole divisions.
PrintRect GraphPrintRect(const PrintRect& sheet);

// Which curve goes into which zone and onto which axis, with which pen.
//
// Setup, then any. OnDestroy last. UI thread only.
class LoggerGraph {
public:
    // Not owned; must outlive this.
    explicit LoggerGraph(CurveList& curves) : m_curves(curves) {}
    LoggerGraph(const LoggerGraph&) = delete;
    LoggerGraph& operator=(const LoggerGraph&) = delete;

    // Takes the names of the variables and locks them; the node is that of the viewer settings, may be null, and must
    // outlive this. Only a profile that is empty is filled, from the variables that can be described. Meant: each time,
    // each unit gets a zone of its own and each curve a colour new in its zone, and what the settings say is laid over
    // that. Puts the curves into the list.
    void Setup(const ZRLoggerInfo& info, XmlNode* node);

    // Sorts the curves, numbers their zones and puts them into the list. Meant: with firstTime each unit counts as a
    // zone of its own, whatever the zones of the profile; and axisSizes grows at each call.
    void UpdateSetup(bool firstTime);

    // The zone that a curve is drawn in; the runs of each zone as FindAxisRuns gives them. 0 without runs.
    [[nodiscard]] int GetZone(int index, const RunsPerZone& runsPerZone) const;

    // Empties out and fills it with the names of the variables; it stays unlocked.
    void GetLoggerInfo(ZRLoggerInfo& out) const;

    // The dialog that edits a profile: the copy to edit, the curves as they were at Setup before the settings were laid
    // over them, and the variables, to which it may add. True when it ended with OK.
    using ProfileDialog = std::function<bool(ZRGraphProfile& copy, ZRGraphProfile& total, ZRLoggerInfo& info)>;
    // True: curves and variables are new and the settings are kept, and the explorer has to set up and to load anew.
    // False: nothing has changed.
    bool OnConfig(const ProfileDialog& dialog);

    // Keeps the curves.
    void OnDestroy();

    // Takes what the chosen printer prints in; one that prints in colour is asked about: whether, all the same, in
    // black and white.
    void OnPreparePrinting(int printerColor, const std::function<bool()>& isBlackAndWhiteWanted);

    // Beginning with black and white.
    [[nodiscard]] int PrintColor() const { return m_printColor; }
    [[nodiscard]] ZRGraphProfile& Profile() { return m_profile; }
    [[nodiscard]] ZRGraphProfile& TotalProfile() { return m_totalProfile; }
    [[nodiscard]] const ZRLoggerInfo& LoggerInfo() const { return m_info; }
    // Records of the profile that are laid out, and the runs that they make. Of axisSizes only the first axisRuns
    // count.
    [[nodiscard]] int VarCount() const { return m_varCount; }
    [[nodiscard]] int AxisRunCount() const { return m_axisRuns; }
    [[nodiscard]] const std::vector<int>& AxisSizes() const { return m_axisSizes; }

private:
    void FillProfile();
    // Zones by unit, and colours.
    void ResetZones();
    void LayOut(bool firstTime, RunsPerZone& runsPerZone);

    CurveList& m_curves;
    int m_varCount = 0;
    int m_axisRuns = 0;
    std::vector<int> m_axisSizes;
    ZRGraphProfile m_profile;
    ZRGraphProfile m_totalProfile;
    XmlNode* m_configNode = nullptr;  // Not owned.
    ZRLoggerInfo m_info;
    int m_printColor = kPrintBlackAndWhite;
};

}  // namespace zr::logger

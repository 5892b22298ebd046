#include "logger/LoggerExplorer.h"

namespace zr::logger {

namespace {

// What is done on the loader's thread: the records of the window are taken anew only where that is asked for. False
// when not all could be read.
bool SetupDataWork(ZRLoggerData& data, const LoggerWindow& window, bool select, Progress* progress)
{
    const bool isSelected = !select || data.SelectData(window.dateFrom, window.dateTo, progress);
    data.RecordGroup(window.samplePeriod, progress).SelectData(window.dateFrom, window.dateTo, true);
    return isSelected && data.Failure().empty() && !progress->IsCancelled();
}

}  // namespace

LoggerExplorer::LoggerExplorer(Host& host) : m_host(host), m_window(*this)
{
    m_config.Create(u"main");
}

void LoggerExplorer::NewData(const ZRLoggerInfo& info)
{
    if (m_viewer != nullptr) {
        // It holds a group of the data that go.
        m_viewer->SetInvalidData(true);
    }
    m_loaded.reset();
    m_data = std::make_unique<ZRLoggerData>();
    m_data->Setup(info);
}

void LoggerExplorer::Setup(const ZRLoggerInfo& info, int* selectedViewer)
{
    m_selectedViewerPtr = selectedViewer;
    NewData(info);
    if (m_viewer != nullptr) {
        m_viewer->Setup(info, m_config.root);
    }
    m_window.Setup();
}

void LoggerExplorer::SelectViewer(int viewer, Reading reading)
{
    if (viewer == m_selectedViewer) {
        return;
    }
    m_selectedViewer = viewer;
    if (m_selectedViewerPtr != nullptr) {
        *m_selectedViewerPtr = viewer;
    }
    DestroyViewer();
    m_viewer = m_host.CreateViewer(viewer);
    if (m_viewer == nullptr || m_data == nullptr) {
        return;
    }
    m_viewer->Setup(m_data->loggerInfo, m_config.root);
    if (reading == Reading::WhereNeeded && IsLoaded()) {
        m_viewer->SetInvalidData(true);
        UpdateViewer(PeriodInForce());
    } else {
        m_window.SetupDataAtPeriod(m_window.dateTo, m_window.groupBy, true);
    }
    m_host.ShowViewer(true);
}

void LoggerExplorer::UpdateViewer(const ZRDateTimeSpan& period)
{
    const ZRLoggerData::CRecordGroup& group = m_data->RecordGroup(period, nullptr);
    m_viewer->Update(m_window.dateFrom, m_window.dateTo, period, m_window.groupBy, group);
    m_viewer->SetInvalidData(false);
}

ZRDateTimeSpan LoggerExplorer::PeriodInForce()
{
    return IsAutomatic(m_window.samplePeriod) ? GetSamplePeriodIfAutomatic(static_cast<unsigned>(m_window.groupBy))
                                              : m_window.samplePeriod;
}

bool LoggerExplorer::IsLoaded()
{
    return m_loaded && m_loaded->from == m_window.dateFrom && m_loaded->to == m_window.dateTo &&
           m_loaded->period == PeriodInForce();
}

void LoggerExplorer::DestroyViewer()
{
    if (m_viewer != nullptr) {
        m_host.DestroyViewer();
        m_viewer = nullptr;
    }
}

void LoggerExplorer::SetupData(const ZRDateTime& date, int groupBy, const ZRDateTimeSpan& period, bool force)
{
    m_window.SetupData(date, groupBy, period, force);
}

void LoggerExplorer::Load(bool select)
{
    if (m_data == nullptr) {
        return;
    }
    if (m_viewer != nullptr) {
        m_viewer->SetInvalidData(true);
    }
    m_isLoading = true;
    // What a load that failed or was stopped has left is good for no other period.
    const bool isAnew = select || !m_loaded;
    bool isRead = false;
    m_host.RunLoad([&](Progress& progress) { isRead = SetupDataWork(*m_data, m_window, isAnew, &progress); });
    m_loaded.reset();
    if (isRead) {
        m_loaded = Loaded{m_window.dateFrom, m_window.dateTo, m_window.samplePeriod};
    }
    m_isLoading = false;
    if (m_viewer != nullptr) {
        UpdateViewer(m_window.samplePeriod);
    }
}

void LoggerExplorer::OnConfig()
{
    if (m_viewer == nullptr || !m_viewer->OnConfig()) {
        return;
    }
    ZRLoggerInfo info;
    m_viewer->GetLoggerInfo(info);
    NewData(info);
    m_host.ShowViewer(false);
    m_viewer->Setup(info, m_config.root);
    m_window.SetupDataAtPeriod(m_window.dateTo, m_window.groupBy, true);
    m_host.ShowViewer(true);
}

void LoggerExplorer::OnEditCopy()
{
    if (m_viewer != nullptr) {
        m_viewer->ClipboardCopy();
    }
}

bool LoggerExplorer::OnCommand(unsigned command)
{
    const bool isGroupBy = FindGroupUnit(command) != nullptr;
    const bool isPeriod = FindPeriod(command) != nullptr;
    switch (command) {
        case kCommandPrevious:
        case kCommandNext:
        case kCommandGoTo:
        case kCommandConfig:
        case kCommandCopy:
            break;
        default:
            if (!isGroupBy && !isPeriod) {
                return false;
            }
    }
    if (!IsEnabled(command)) {
        return true;
    }
    if (isGroupBy) {
        m_window.OnGroupByMenuItem(command);
    } else if (isPeriod) {
        m_window.OnPeriodMenuItem(command);
    } else if (command == kCommandPrevious) {
        m_window.OnPrevious();
    } else if (command == kCommandNext) {
        m_window.OnNext();
    } else if (command == kCommandGoTo) {
        m_window.OnGoTo();
    } else if (command == kCommandConfig) {
        OnConfig();
    } else {
        OnEditCopy();
    }
    return true;
}

bool LoggerExplorer::IsEnabled(unsigned command) const
{
    return m_viewer != nullptr && m_data != nullptr && !m_isLoading &&
           (command != kCommandNext || m_window.UpdateNext());
}

bool LoggerExplorer::DropDownMenu(unsigned command, ExplorerMenu& menu) const
{
    switch (command) {
        case kCommandGroupBy:
            menu = GroupByMenu();
            return true;
        case kCommandPeriod:
            menu = PeriodMenu();
            return true;
        default:
            return false;
    }
}

ZRDateTimeSpan LoggerExplorer::AutomaticPeriodOf(unsigned groupBy) const
{
    return logger::GetSamplePeriodIfAutomatic(groupBy, m_data != nullptr ? m_data->loggerInfo : ZRLoggerInfo());
}

ZRDateTimeSpan LoggerExplorer::GetSamplePeriodIfAutomatic(unsigned groupBy)
{
    return m_host.GetSamplePeriodIfAutomatic(groupBy);
}

bool LoggerExplorer::ChooseDate(const COleDateTime& offered, ZRDateTime& chosen)
{
    return m_host.ChooseDate(offered, chosen);
}

}  // namespace zr::logger

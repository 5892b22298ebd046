#include "hosts/kestrix/ui/LoggedDataWindow.h"

#include "hosts/kestrix/LoadTrouble.h"
#include "hosts/kestrix/LoggedDataPage.h"
#include "hosts/kestrix/LoggedVariables.h"
#include "hosts/kestrix/ui/StatusLine.h"
#include "hosts/kestrix/ui/UiTexts.h"
#include "logger/FormatDateTime.h"
#include "logger/SuiteKey.h"
#include "logger/ui/ZRVirtualLoggerDataGraphicViewer.h"
#include "logger/ui/ZRVirtualLoggerDataTableViewer.h"
#include "platform/FileReplace.h"
#include "platform/ui/AfxMessageBox.h"
#include "platform/ui/Clipboard.h"
#include "platform/ui/Images.h"
#include "siblings/driversupport/DeviceWarning.h"

#include <QFileDialog>
#include <QFontMetrics>
#include <QShortcut>
#include <QStandardPaths>
#include <system_error>

namespace zr::desktop {
namespace {

using namespace zr::logger;

constexpr int kStatusPadding = 6;
constexpr const char* kBetweenParts = "   |   ";
constexpr QSize kFirstSize{860, 560};
// A time as the rows of a week show it, the longest of all.
constexpr const wchar* kLongestTime = u"  Wednesday 30 23:58:00 ";

ZRBasicString DateText(const ZRDateTime& date)
{
    ZRBasicString text;
    return FormatDateTime(text, date, LocaleInformationWide(), kPad | kDateInNumbers);
}

// Wide enough for the time of any unit, unless the user has chosen a width before.
void WidenTimeColumn(const QFontMetrics& metrics)
{
    SuiteKey key(kTablesKey);
    std::uint32_t width = 0;
    if (!key.ReadNumber(kTimeColumnValue, width)) {
        key.WriteNumber(kTimeColumnValue,
                        static_cast<std::uint32_t>(metrics.horizontalAdvance(ui::ToQt(kLongestTime))));
    }
}

ZRBasicString NameOf(const std::filesystem::path& file)
{
    return Utf8ToUtf16(TextOfPath(file));
}

// Of a filter as the dialog for files gives it back.
ExportKind KindOfFilter(const QString& filter)
{
    for (const ExportKind kind : {ExportKind::Workbook, ExportKind::Pdf}) {
        if (filter.contains(QLatin1String(ExtensionOf(kind)))) {
            return kind;
        }
    }
    return ExportKind::Csv;
}

// The dialog for files has only asked for names that were typed whole.
bool MayReplace(const std::filesystem::path& file)
{
    return AfxMessageBox(ui::FromQt(FilledText(kTextLoggedReplace, {NameOf(file)})),
                         ui::MB_YESNO | ui::MB_ICONQUESTION | ui::MB_DEFBUTTON2) == ui::IDYES;
}

}  // namespace

LoggedDataWindow::LoggedDataWindow(QWidget* parent, const ZRBasicString& name, LoggedDataSettings::View* settings)
    : ZRVirtualLoggerDataExplorer(parent), m_name(name), m_settings(settings), m_status(new StatusLine(this))
{
    m_status->setObjectName(QString::number(kLoggedStatus));
    m_status->setContentsMargins(kStatusPadding, 0, kStatusPadding, 0);
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(FilledText(kTextLoggedTitle, {name}));
    setWindowIcon(ui::NamedImage(QStringLiteral("period")));
    if (m_settings != nullptr && m_settings->tree.root != nullptr) {
        Config() = m_settings->tree;
    }
    Create(parent);
    // All buttons are seen at first, however long their texts are.
    resize(kFirstSize.expandedTo({ToolBar().sizeHint().width(), 0}));
    MakeShortcuts();
}

LoggedDataWindow::~LoggedDataWindow()
{
    LoggedDataWindow::OnDestroy();
}

void LoggedDataWindow::Open(const ZRLoggerInfo& info)
{
    WidenTimeColumn(fontMetrics());
    WantAll(info, *Config().root);
    const int usedLast = m_settings != nullptr ? m_settings->viewer : kNoViewer;
    Setup(info, m_settings != nullptr ? &m_settings->viewer : nullptr);
    const LastChoice last = ReadLastChoice();
    SetPeriod(last.groupBy, last.samplePeriod);
    SelectViewer(usedLast);
    if (Viewer() == nullptr) {
        SelectViewer(kTableViewer);
    }
}

bool LoggedDataWindow::InitializeToolBar()
{
    ZRVirtualLoggerDataExplorer::InitializeToolBar();
    ToolBar().AddSeparator();
    const auto add = [this](unsigned command, const char* picture, unsigned text) {
        ToolBar().AddButton(command, ui::NamedImage(QLatin1String(picture)), ui::FromQt(LoadText(text)));
    };
    add(kCommandCopy, "copy", kTextLoggedCopy);
    add(ui::ID_FILE_PRINT_PREVIEW, "pagesetup", kTextLoggedPreview);
    add(kLoggedExport, "save", kTextLoggedExport);
    ToolBar().AddSeparator();
    add(kLoggedGraph, "graph", kTextLoggedGraph);
    add(kLoggedTable, "table", kTextLoggedTable);
    return true;
}

void LoggedDataWindow::MakeShortcuts()
{
    const auto add = [this](const QKeySequence& keys, const std::function<void()>& run) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, run);
    };
    add(QKeySequence(Qt::Key_Left), [this] { OnPrevious(); });
    add(QKeySequence(Qt::Key_Right), [this] { OnNext(); });
    add(QKeySequence(Qt::ALT | Qt::Key_Left), [this] { OnPrevious(); });
    add(QKeySequence(Qt::ALT | Qt::Key_Right), [this] { OnNext(); });
    add(QKeySequence(Qt::CTRL | Qt::Key_G), [this] { OnGoTo(); });
    for (const QKeySequence& keys : QKeySequence::keyBindings(QKeySequence::Copy)) {
        add(keys, [this] { Copy(); });
    }
    add(QKeySequence::Print, [this] { OnFilePrint(); });
    add(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_P), [this] { OnFilePrintPreview(); });
    add(QKeySequence(Qt::CTRL | Qt::Key_E), [this] { AskWhereToExport(); });
    add(QKeySequence(Qt::Key_F5), [this] { Reload(); });
    add(QKeySequence(Qt::CTRL | Qt::Key_1), [this] { ShowAs(kGraphViewer); });
    add(QKeySequence(Qt::CTRL | Qt::Key_2), [this] { ShowAs(kTableViewer); });
}

bool LoggedDataWindow::OnCommand(unsigned id, unsigned code, QWidget* from)
{
    if (id == kLoggedExport) {
        AskWhereToExport();
        return true;
    }
    if (id == kCommandCopy) {
        Copy();
        return true;
    }
    if (id == kLoggedGraph || id == kLoggedTable) {
        ShowAs(id == kLoggedGraph ? kGraphViewer : kTableViewer);
        return true;
    }
    return ZRVirtualLoggerDataExplorer::OnCommand(id, code, from);
}

bool LoggedDataWindow::OnNotify(const ui::NMHDR& notice)
{
    if (notice.idFrom == ui::kGraphId && notice.code == ui::GRN_SHOWN) {
        // While a viewer is made or gets other data it is not told yet what they are.
        if (const auto* const graph = GraphViewer(); !graph->isHidden() && !graph->Graph().invalidData) {
            OnShown();
        }
        return true;
    }
    return ZRVirtualLoggerDataExplorer::OnNotify(notice);
}

ZRVirtualLoggerDataGraphicViewer* LoggedDataWindow::GraphViewer() const
{
    return dynamic_cast<ZRVirtualLoggerDataGraphicViewer*>(Viewer());
}

// The viewers say nothing of a clipboard that can't be opened.
void LoggedDataWindow::Copy()
{
    if (Viewer() != nullptr && !ui::OpenClipboard()) {
        AfxMessageBox(ui::FromQt(LoadText(kTextLoggedNotCopied)), ui::MB_OK | ui::MB_ICONEXCLAMATION);
        return;
    }
    OnEditCopy();
}

void LoggedDataWindow::ShowAs(int kind)
{
    // The store may have gone on since; what another viewer shows of the same window is what was read for the first.
    SelectViewer(kind, Reading::WhereNeeded);
}

void LoggedDataWindow::OnSize(int width, int height)
{
    const int line = m_status->sizeHint().height() + kStatusPadding;
    m_status->setGeometry(0, height - line, width, line);
    ZRVirtualLoggerDataExplorer::OnSize(width, height - line);
}

void LoggedDataWindow::OnDestroy()
{
    ZRVirtualLoggerDataExplorer::OnDestroy();
    if (Data() != nullptr && m_settings != nullptr) {
        m_settings->tree = Config();
    }
}

ZRDateTimeSpan LoggedDataWindow::PeriodShown()
{
    const LoggerWindow& window = Window();
    return IsAutomatic(window.samplePeriod) ? GetSamplePeriodIfAutomatic(static_cast<unsigned>(window.groupBy))
                                            : window.samplePeriod;
}

QString LoggedDataWindow::PeriodText()
{
    const ZRDateTimeSpan period = PeriodShown();
    if (period.seconds == 0) {
        return LoadText(kTextLoggedEveryRecord);
    }
    for (const ExplorerMenuEntry& entry : PeriodMenu(period)) {
        if (entry.isChecked) {
            return FilledText(kTextLoggedReduced, {entry.text});
        }
    }
    return {};
}

void LoggedDataWindow::TellFailure(const std::string& failure)
{
    if (failure != m_toldFailure && !failure.empty()) {
        const ZRBasicString reason = Utf8ToUtf16(failure);
        PostNotice(DeviceWarning::LoadFailed, m_name, reason, FromQt(FilledText(kMessageLoadFailed, {m_name, reason})));
    }
    m_toldFailure = failure;
}

QString LoggedDataWindow::RecordsText()
{
    if (const auto* const graph = GraphViewer()) {
        // It tells how curves are reduced.
        if (const ZRBasicString text = graph->Graph().StatusText(); !text.IsEmpty()) {
            return ToQt(text);
        }
    }
    const int count = Data()->RecordGroup(PeriodShown(), nullptr).count;
    return count == 1 ? LoadText(kTextLoggedOneRecord) : FilledText(kTextLoggedRecords, {count});
}

QString LoggedDataWindow::ZoomText()
{
    const auto* const graph = GraphViewer();
    if (graph == nullptr || graph->Graph().zoomHistory.empty()) {
        return {};
    }
    const graph::Zoom zoom = graph->Graph().InView();
    return FilledText(kTextLoggedZoomed, {PlantTimeText(zoom.from), PlantTimeText(zoom.to)});
}

void LoggedDataWindow::OnShown()
{
    ToolBar().CheckButton(kLoggedGraph, SelectedViewer() == kGraphViewer);
    ToolBar().CheckButton(kLoggedTable, SelectedViewer() == kTableViewer);
    if (Viewer() == nullptr) {
        m_status->Show({});
        return;
    }
    const LoggerWindow& window = Window();
    ZRDateTime lastDay = window.dateTo;
    lastDay.seconds -= 1;
    QStringList parts{RecordsText(), FilledText(kTextLoggedWindow, {DateText(window.dateFrom), DateText(lastDay)}),
                      PeriodText()};
    if (const QString zoom = ZoomText(); !zoom.isEmpty()) {
        parts << zoom;
    }
    const LoadTrouble trouble = LoadTrouble::Of(*Data(), WasLoadStopped());
    TellFailure(trouble.failure);
    const LoadTroubleText told = Describe(trouble);
    const QString tip = parts.join(QLatin1String(kBetweenParts)) + u'\n' + ToQt(told.whole);
    if (!told.line.IsEmpty()) {
        // What asks for attention isn't where a narrow window ends.
        parts.insert(told.isWarning ? 0 : parts.size(), ToQt(told.line));
    }
    m_status->Show(parts.join(QLatin1String(kBetweenParts)), tip.trimmed(), told.isWarning);
}

QString LoggedDataWindow::Status() const
{
    return m_status->text();
}

ExportedTable LoggedDataWindow::Table()
{
    ExportedTable table;
    if (auto* const graph = GraphViewer()) {
        SetColumns(table, graph->Layout().Profile(), graph->Layout().LoggerInfo());
    } else {
        LoggerTable& shown = dynamic_cast<ZRVirtualLoggerDataTableViewer&>(*Viewer()).Table();
        SetColumns(table, shown.Profile(), shown.LoggerInfo());
    }
    table.group = &Data()->RecordGroup(PeriodShown(), nullptr);
    table.zone = PlantZone();
    table.offsetTitle = LoadText(kTextLoggedOffset).toStdString();
    return table;
}

void LoggedDataWindow::AskWhereToExport()
{
    if (Viewer() == nullptr) {
        return;
    }
    const QString filter = QStringLiteral("%1 (*.csv);;%2 (*.xlsx);;%3 (*.pdf)")
                               .arg(LoadText(kTextLoggedCsv), LoadText(kTextLoggedXlsx), LoadText(kTextLoggedPdf));
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const QString offered = (QFileInfo(documents).isDir() ? documents : QDir::homePath()) + u'/' +
                            ToQt(FileTitleOf(m_name)) + QLatin1String(ExtensionOf(ExportKind::Csv));
    QString chosen;
    const QString named = QFileDialog::getSaveFileName(this, LoadText(kTextLoggedExport), offered, filter, &chosen);
    if (named.isEmpty()) {
        return;
    }
    std::filesystem::path file = PathFromText(ui::FromQt(named));
    if (!ExportKindOf(file)) {
        file += ExtensionOf(KindOfFilter(chosen));
        if (std::error_code ignored; std::filesystem::exists(file, ignored) && !MayReplace(file)) {
            return;
        }
    }
    ExportTo(file);
}

bool LoggedDataWindow::ExportTo(const std::filesystem::path& file)
{
    if (Viewer() == nullptr) {
        return false;
    }
    std::string reason;
    const bool isDone = Export(file, reason);
    if (isDone) {
        m_status->Show(FilledText(kTextLoggedExported, {NameOf(file)}));
    } else if (!reason.empty()) {
        AfxMessageBox(ui::FromQt(FilledText(kTextLoggedNotExported, {NameOf(file), Utf8ToUtf16(reason)})),
                      ui::MB_OK | ui::MB_ICONEXCLAMATION);
    }
    CloseIfAsked();
    return isDone;
}

bool LoggedDataWindow::Export(const std::filesystem::path& file, std::string& reason)
{
    const std::optional<ExportKind> kind = ExportKindOf(file);
    if (!kind) {
        reason = LoadText(kTextLoggedNoKind).toStdString();
        return false;
    }
    std::error_code ignored;
    const std::filesystem::path folder = std::filesystem::absolute(file, ignored).parent_path();
    if (!std::filesystem::is_directory(folder, ignored)) {
        reason = FilledText(kTextLoggedNoFolder, {NameOf(folder)}).toStdString();
        return false;
    }
    if (*kind == ExportKind::Pdf) {
        return ExportPages(file, reason);
    }
    const ExportedTable table = Table();
    bool isWritten = false;
    RunUnderProgress(kTextLoggedExporting, [&](Progress& progress) {
        isWritten = *kind == ExportKind::Workbook ? WriteXlsx(table, file, &progress, reason)
                                                  : WriteCsv(table, file, &progress, reason);
    });
    return isWritten;
}

bool LoggedDataWindow::ExportPages(const std::filesystem::path& file, std::string& reason)
{
    const Printed result = PrintToFile(ToQt(NameOf(file)));
    if (result == Printed::DeviceFailed || result == Printed::NothingToPrint) {
        reason = LoadText(result == Printed::DeviceFailed ? kTextLoggedNoPdf : kTextLoggedNoPages).toStdString();
    }
    return result == Printed::Done;
}

}  // namespace zr::desktop

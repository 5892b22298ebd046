// The parts of the main window that hold texts: menus, toolbar, status bar, banner.
#include "diagnostics/DiagnosticsIds.h"
#include "diagnostics/ui/CDebugDlgBar.h"
#include "hosts/kestrix/ui/Commands.h"
#include "hosts/kestrix/ui/MainFrame.h"
#include "hosts/kestrix/ui/Theme.h"
#include "hosts/kestrix/ui/UiTexts.h"
#include "platform/ui/Images.h"
#include "siblings/tools/ZRLocaleInformation.h"

#include <QApplication>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QLibraryInfo>
#include <QLocale>
#include <QMenuBar>
#include <QScrollArea>
#include <QShortcut>
#include <QSplitter>
#include <QStatusBar>
#include <QToolButton>
#include <QVBoxLayout>

namespace zr::desktop {
namespace {

constexpr int kToolbarIcon = 22;

// A menu's text with the keys that choose it while it is closed.
std::u16string WithKeys(unsigned id, const char16_t* keys)
{
    return ui::FromQt(LoadText(id)) + u"\t" + keys;
}

std::u16string Wide(unsigned id)
{
    return ui::FromQt(LoadText(id));
}

struct LanguageEntry {
    unsigned command;
    unsigned text;
    const char* language;
};
constexpr LanguageEntry kLanguages[] = {{kCmdLanguageSystem, kTextLanguageSystem, ""},
                                        {kCmdLanguageEnglish, kTextLanguageEnglish, "en"},
                                        {kCmdLanguageGerman, kTextLanguageGerman, "de"},
                                        {kCmdLanguageSpanish, kTextLanguageSpanish, "es"}};
constexpr unsigned kColourTexts[] = {kTextColoursSystem, kTextColoursLight, kTextColoursDark};

}  // namespace

void MainFrame::MakeCentre()
{
    auto* const centre = new QWidget(this);
    auto* const column = new QVBoxLayout(centre);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    MakeBanner();
    column->addWidget(m_banner);

    m_splitter = new QSplitter(Qt::Horizontal, centre);
    m_splitter->setChildrenCollapsible(false);
    m_splitter->setHandleWidth(3);
    // Its notices come to the frame.
    m_tree = new DeviceTreeView(this, kDeviceTree);
    m_tree->setMinimumWidth(120);
    m_tree->OnRename([this] { ShowTitle(); });
    m_splitter->addWidget(m_tree);

    auto* const right = new QWidget(m_splitter);
    auto* const page = new QVBoxLayout(right);
    page->setContentsMargins(0, 0, 0, 0);
    page->setSpacing(0);
    m_scroll = new QScrollArea(right);
    m_scroll->setWidgetResizable(true);
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scroll->setFocusPolicy(Qt::NoFocus);
    m_scroll->viewport()->setAutoFillBackground(false);
    page->addWidget(m_scroll, 1);
    m_empty = new QLabel(right);
    m_empty->setAlignment(Qt::AlignCenter);
    m_empty->setTextFormat(Qt::PlainText);
    page->addWidget(m_empty, 1);
    m_strip = new SelectionStrip(right, this);
    page->addWidget(m_strip);
    m_splitter->addWidget(right);
    m_splitter->setStretchFactor(0, 0);
    m_splitter->setStretchFactor(1, 1);
    column->addWidget(m_splitter, 1);
    setCentralWidget(centre);
}

void MainFrame::MakeBanner()
{
    m_banner = new QFrame(this);
    m_banner->setObjectName(QString::number(kBanner));
    m_banner->setAutoFillBackground(true);
    auto* const row = new QHBoxLayout(m_banner);
    row->setContentsMargins(16, 8, 16, 8);
    row->setSpacing(12);
    auto* const picture = new QLabel(m_banner);
    picture->setPixmap(ui::NamedImage(QStringLiteral("warning")).pixmap(QSize(24, 24), devicePixelRatio()));
    row->addWidget(picture);
    m_bannerText = new QLabel(m_banner);
    m_bannerText->setTextFormat(Qt::PlainText);
    m_bannerText->setWordWrap(true);
    row->addWidget(m_bannerText, 1);
    m_bannerRetry = new QToolButton(m_banner);
    m_bannerRetry->setObjectName(QString::number(kBannerRetry));
    connect(m_bannerRetry, &QToolButton::clicked, this, [this] { ReloadDocument(); });
    row->addWidget(m_bannerRetry);
    QPalette colours = palette();
    colours.setColor(QPalette::Window, NoticeColour());
    colours.setColor(QPalette::WindowText, NoticeTextColour());
    m_banner->setPalette(colours);
    m_banner->hide();
}

void MainFrame::MakeMenus()
{
    menuBar()->clear();
    // Later: the command that asks for other texts comes from one of them.
    for (CMenu** const menu : {&m_file, &m_view, &m_help}) {
        if (CMenu* const old = std::exchange(*menu, nullptr); old != nullptr) {
            old->deleteLater();
        }
    }
    MakeFileMenu();
    MakeViewMenu();
    MakeHelpMenu();
    CheckItems();
}

void MainFrame::MakeFileMenu()
{
    m_file = new CMenu(this, Wide(kTextMenuFile));
    m_file->AppendMenu(kCmdOpen, WithKeys(kTextFileOpen, u"Ctrl+O"), ui::NamedImage(QStringLiteral("open")));
    m_file->AppendMenu(kCmdReload, WithKeys(kTextFileReload, u"F5"), ui::NamedImage(QStringLiteral("reload")));
    m_file->AppendMenu(kCmdSave, WithKeys(kTextFileSave, u"Ctrl+S"), ui::NamedImage(QStringLiteral("save")));
    m_file->AppendMenu(kCmdSaveAs, WithKeys(kTextFileSaveAs, u"Ctrl+Shift+S"));
    m_file->AppendSeparator();
    m_file->AppendMenu(kCmdPageSetup, Wide(kTextFilePageSetup), ui::NamedImage(QStringLiteral("pagesetup")));
    m_file->AppendMenu(kCmdPrint, WithKeys(kTextFilePrint, u"Ctrl+P"));
    m_file->AppendSeparator();
    m_file->AppendMenu(kCmdQuit, WithKeys(kTextFileQuit, u"Ctrl+Q"), ui::NamedImage(QStringLiteral("quit")));
    menuBar()->addMenu(m_file);
}

void MainFrame::MakeViewMenu()
{
    m_view = new CMenu(this, Wide(kTextMenuView));
    m_language = new CMenu(this, Wide(kTextViewLanguage));
    m_language->setParent(m_view, m_language->windowFlags());
    m_language->setIcon(ui::NamedImage(QStringLiteral("language")));
    for (const LanguageEntry& entry : kLanguages) {
        m_language->AppendMenu(entry.command, Wide(entry.text));
    }
    m_colours = new CMenu(this, Wide(kTextViewColours));
    m_colours->setParent(m_view, m_colours->windowFlags());
    m_colours->setIcon(ui::NamedImage(QStringLiteral("theme")));
    for (unsigned i = 0; i < std::size(kColourTexts); ++i) {
        m_colours->AppendMenu(kCmdColoursSystem + i, Wide(kColourTexts[i]));
    }
    m_view->AppendMenu(kCmdLoggedData, WithKeys(kTextLoggedMenu, u"Ctrl+L"), ui::NamedImage(QStringLiteral("period")));
    m_view->AppendSeparator();
    m_view->AppendMenu(*m_language);
    m_view->AppendMenu(*m_colours);
    m_view->AppendSeparator();
    m_view->AppendMenu(kCmdWarnings, Wide(kTextViewWarnings));
    m_view->AppendMenu(kCmdToolbar, Wide(kTextViewToolbar));
    m_view->AppendMenu(kCmdStatusBar, Wide(kTextViewStatusBar));
    menuBar()->addMenu(m_view);
}

void MainFrame::MakeHelpMenu()
{
    m_help = new CMenu(this, Wide(kTextMenuHelp));
    m_help->AppendMenu(kCmdKeys, WithKeys(kTextHelpKeys, u"F1"), ui::NamedImage(QStringLiteral("keys")));
    m_help->AppendMenu(kCmdAbout, Wide(kTextHelpAbout), ui::NamedImage(QStringLiteral("about")));
    menuBar()->addMenu(m_help);
}

void MainFrame::CheckItems()
{
    for (const LanguageEntry& entry : kLanguages) {
        m_view->CheckMenuItem(entry.command, m_settings.language == entry.language);
    }
    for (unsigned i = 0; i < std::size(kColourTexts); ++i) {
        m_view->CheckMenuItem(kCmdColoursSystem + i, static_cast<unsigned>(m_settings.colours) == i);
    }
    m_view->CheckMenuItem(kCmdWarnings, m_settings.showsWarnings);
    m_view->CheckMenuItem(kCmdToolbar, m_settings.showsToolbar);
    m_view->CheckMenuItem(kCmdStatusBar, m_settings.showsStatusBar);
    if (m_toolbar != nullptr) {
        m_toolbar->CheckButton(kCmdWarnings, m_settings.showsWarnings);
    }
}

void MainFrame::MakeToolbar()
{
    if (m_toolbar != nullptr) {
        m_toolbar->setObjectName({});
        removeToolBar(m_toolbar);
        m_toolbar->deleteLater();
    }
    m_toolbar = new CToolBar(*this, kMainToolbar, Wide(kTextViewToolbar));
    m_toolbar->setIconSize({kToolbarIcon, kToolbarIcon});
    const auto add = [this](unsigned command, const char* picture, unsigned tip) {
        m_toolbar->AddButton(command, ui::NamedImage(QLatin1String(picture)), Wide(tip));
    };
    add(kCmdOpen, "open", kTextTipOpen);
    add(kCmdReload, "reload", kTextTipReload);
    add(kCmdSave, "save", kTextTipSave);
    m_toolbar->AddSeparator();
    add(kCmdPageSetup, "pagesetup", kTextTipPageSetup);
    m_toolbar->AddSeparator();
    const auto addMenu = [this](CMenu* menu, const char* picture, unsigned tip) {
        auto* const button = new QToolButton(m_toolbar);
        button->setIcon(ui::NamedImage(QLatin1String(picture)));
        button->setToolTip(LoadText(tip));
        button->setAccessibleName(LoadText(tip));
        button->setMenu(menu);
        button->setPopupMode(QToolButton::InstantPopup);
        m_toolbar->addWidget(button);
    };
    addMenu(m_language, "language", kTextTipLanguage);
    addMenu(m_colours, "theme", kTextTipColours);
    m_toolbar->AddSeparator();
    add(kCmdLoggedData, "period", kTextTipLoggedData);
    m_toolbar->AddSeparator();
    add(kCmdWarnings, "warnings", kTextTipWarnings);
    add(kCmdAbout, "about", kTextTipAbout);
    m_toolbar->setVisible(m_settings.showsToolbar);
    CheckItems();
}

void MainFrame::MakeStatusBar()
{
    for (QLabel** const label : {&m_statusDevices, &m_statusValues, &m_statusPublished, &m_statusWarnings}) {
        *label = new QLabel(statusBar());
        (*label)->setTextFormat(Qt::PlainText);
        (*label)->setContentsMargins(8, 0, 8, 0);
        statusBar()->addPermanentWidget(*label);
    }
    statusBar()->setSizeGripEnabled(false);
    statusBar()->setVisible(m_settings.showsStatusBar);
}

void MainFrame::MakeShortcuts()
{
    const auto add = [this](const QKeySequence& keys, unsigned command) {
        auto* const shortcut = new QShortcut(keys, this);
        connect(shortcut, &QShortcut::activated, this, [this, command] { OnCommand(command, 0, nullptr); });
    };
    add(QKeySequence(Qt::Key_F6), kCmdNextPane);
    add(QKeySequence::Copy, kCmdLinkReference);
    add(QKeySequence(Qt::Key_F2), kCmdRenameGroup);
}

bool MainFrame::UseLanguage(const std::string& language)
{
    if (!m_supervisor.UseLanguage(language.empty() ? SystemLanguage() : language)) {
        return false;
    }
    SetLocaleInformation(language);
    m_settings.language = language;
    LoadQtTexts();
    Translate();
    return true;
}

void MainFrame::LoadQtTexts()
{
    const std::string language = m_settings.language.empty() ? SystemLanguage() : m_settings.language;
    QApplication::removeTranslator(&m_qtTexts);
    if (m_qtTexts.load(QStringLiteral("qtbase_") + QString::fromStdString(language),
                       QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QApplication::installTranslator(&m_qtTexts);
    }
}

void MainFrame::Translate()
{
    MakeMenus();
    MakeToolbar();
    m_warnings->SaveState(u"Main");
    MakeWarningBar();
    m_tree->setAccessibleName(LoadText(kTextTreeDevices));
    const std::optional<ValueRef> selection = m_page != nullptr ? m_page->Selection() : std::nullopt;
    LeaveRegistry();
    ShowRegistry();
    if (m_page != nullptr) {
        m_page->Select(selection);
    }
    m_strip->Translate();
}

std::string MainFrame::SystemLanguage()
{
    switch (QLocale::system().language()) {
        case QLocale::German:
            return "de";
        case QLocale::Spanish:
            return "es";
        default:
            return "en";
    }
}

void MainFrame::ChooseColours(Colours colours)
{
    m_settings.colours = colours;
    UseColours(colours);
    TakeColours();
    CheckItems();
}

}  // namespace zr::desktop

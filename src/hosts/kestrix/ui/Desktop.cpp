#include "hosts/kestrix/ui/Desktop.h"

#include "hosts/kestrix/DesktopSettings.h"
#include "hosts/kestrix/ui/MainFrame.h"
#include "hosts/kestrix/ui/Snapshot.h"
#include "hosts/kestrix/ui/StartChecks.h"
#include "hosts/kestrix/ui/Theme.h"
#include "hosts/supervision/Supervisor.h"
#include "platform/Clock.h"
#include "platform/FileReplace.h"
#include "platform/Paths.h"
#include "platform/StopSignals.h"
#include "platform/ui/CWinApp.h"
#include "platform/ui/Images.h"
#include "siblings/tools/Utf.h"
#include "siblings/tools/ZRLocaleInformation.h"

#include <fmt/chrono.h>
#include <fmt/format.h>
#include <cstdio>
#include <memory>
#include <QApplication>
#include <QTimer>

namespace zr::desktop {
namespace {

constexpr std::chrono::milliseconds kDispatchPeriod{20};  // between two looks for what clients ask
constexpr std::chrono::milliseconds kSignalPeriod{200};
// Of the pictures, whatever the screen: the least window that shows everything.
constexpr int kPictureWidth = 1024;
constexpr int kPictureHeight = 700;
constexpr const wchar* kPicturesKey = u"Software\\Kestrix-Pictures";

class Desktop final : private supervision::Supervisor::Host {
public:
    Desktop(const DesktopOptions& options, QApplication& application);
    ~Desktop();
    Desktop(const Desktop&) = delete;
    Desktop& operator=(const Desktop&) = delete;

    int Run();

private:
    void Complain(const std::string& text) override;
    void Log(const std::string& text) override;
    void RegistryGoes() override;
    void RegistryCame() override;

    [[nodiscard]] bool TakesPictures() const { return !m_options.snapshotFolder.empty(); }
    bool Prepare();
    void StartTimers();
    void TakeSignals();
    void ReloadUnlessModified();
    int TakePictures();

    DesktopOptions m_options;
    QApplication& m_application;
    supervision::Supervisor m_supervisor;
    DesktopSettings m_settings;
    std::unique_ptr<CWinApp> m_app;
    std::unique_ptr<MainFrame> m_frame;
    std::unique_ptr<StopSignals> m_signals;
    QTimer m_publicationTimer;
    QTimer m_signalTimer;
    bool m_isReloadAsked = false;
    bool m_isEnding = false;  // by a signal, which may come before the message loop runs
};

Desktop::Desktop(const DesktopOptions& options, QApplication& application)
    : m_options(options), m_application(application), m_supervisor(options.supervision, "kestrix", *this)
{
}

// Windows first: they hold variables of the devices.
Desktop::~Desktop()
{
    m_publicationTimer.stop();
    m_frame.reset();
    m_supervisor.TakeNotices();  // of what they could not keep
}

int Desktop::Run()
{
    if (!Prepare() || m_supervisor.TakeDocument() == supervision::Supervisor::Taking::BadInput) {
        return kBadInput;
    }
    m_supervisor.LoadRegistry();
    if (!m_supervisor.CheckFilters()) {
        return kBadInput;
    }
    if (!m_supervisor.IsOurs()) {
        Log(fmt::format("{}: supervised by process {} ({}), shown without polling",
                        TextOfPath(m_options.supervision.document), m_supervisor.OtherProcess(),
                        m_supervisor.OtherProgram()));
    }
    m_signals = std::make_unique<StopSignals>();
    m_supervisor.Start();
    m_frame = std::make_unique<MainFrame>(m_supervisor, m_settings);
    if (!TakesPictures()) {
        m_frame->KeepLoggedDataSettings(ConfigFolder() / "logged-data-windows.xml");
    }
    StartTimers();
    if (TakesPictures()) {
        return TakePictures();
    }
    m_frame->show();
    m_frame->Run();
    // With its first picture, which is what a user waits for.
    QApplication::processEvents();
    Log("the window is shown");
    const int status = m_isEnding ? kEndedAsAsked : QApplication::exec();
    if (!m_settings.Store(ZRKestrixSetup::Get().registryKey)) {
        Log("the places of the windows can't be kept: the user's settings can't be written");
    }
    return status;
}

bool Desktop::Prepare()
{
    if (!TakesPictures()) {
        m_settings = DesktopSettings::Load(ZRKestrixSetup::Get().registryKey);
        m_app = std::make_unique<CWinApp>(ZRKestrixSetup::Get().registryKey.Text());
    } else {
        m_settings.language = "en";
    }
    if (!m_options.language.empty()) {
        m_settings.language = m_options.language;
    }
    // A document has the page that was shown of it last.
    if (m_settings.document != Utf8ToUtf16(TextOfPath(m_options.supervision.document))) {
        m_settings.page.Clear();
    }
    const std::string language = m_settings.language.empty() ? MainFrame::SystemLanguage() : m_settings.language;
    ui::SetImageFolder(ResourceFolder() / "images");
    QApplication::setWindowIcon(ui::NamedImage(QStringLiteral("kestrix")));
    PrepareTheme();
    UseColours(m_settings.colours);
    SetLocaleInformation(m_settings.language);
    return m_supervisor.Prepare(language);
}

void Desktop::StartTimers()
{
    QObject::connect(&m_publicationTimer, &QTimer::timeout, &m_application, [this] {
        if (m_supervisor.Publication().IsRunning()) {
            m_supervisor.Publication().Run(std::chrono::milliseconds(0));
        }
    });
    m_publicationTimer.start(std::min(kDispatchPeriod, m_options.supervision.updatePeriod));
    QObject::connect(&m_signalTimer, &QTimer::timeout, &m_application, [this] { TakeSignals(); });
    m_signalTimer.start(kSignalPeriod);
}

void Desktop::TakeSignals()
{
    const StopSignal signal = m_signals->WaitForSignal(std::chrono::milliseconds(0));
    if (signal == StopSignal::HangUp) {
        m_isReloadAsked = true;
    } else if (signal != StopSignal::None) {
        // Whoever sends it can't answer questions.
        m_frame->KeepSettings();
        m_isEnding = true;
        MainFrame::EndProgram();
    }
    // A dialog may hold what goes with the old document.
    if (m_isReloadAsked && QApplication::activeModalWidget() == nullptr) {
        m_isReloadAsked = false;
        ReloadUnlessModified();
    }
}

void Desktop::ReloadUnlessModified()
{
    if (m_supervisor.IsModified()) {
        Log(fmt::format("{}: has changes that are not saved, so it is not read again",
                        TextOfPath(m_supervisor.Options().document)));
        return;
    }
    m_supervisor.Reload();
}

int Desktop::TakePictures()
{
    int status = kEndedAsAsked;
    QTimer::singleShot(m_options.snapshotAfter, m_frame.get(), [this, &status] {
        // What the user has chosen is neither seen in the pictures nor changed by them.
        ZRKestrixSetup::Get().registryKey = kPicturesKey;
        std::string problem;
        if (!SaveSnapshots(*m_frame, m_options.snapshotFolder, problem)) {
            Complain(problem);
            status = kBadInput;
        }
        QApplication::quit();
    });
    m_frame->setGeometry(0, 0, kPictureWidth, kPictureHeight);
    m_frame->show();
    m_frame->Run();
    QApplication::exec();
    return status;
}

void Desktop::Complain(const std::string& text)
{
    fmt::print(stderr, "kestrix: {}\n", text);
    std::fflush(stderr);
}

void Desktop::Log(const std::string& text)
{
    using Seconds = std::chrono::seconds;
    fmt::print(stderr, "{:%Y-%m-%dT%H:%M:%SZ} {}\n", std::chrono::time_point_cast<Seconds>(CurrentClock().Utc()), text);
    std::fflush(stderr);
}

void Desktop::RegistryGoes()
{
    if (m_frame != nullptr) {
        m_frame->RegistryGoes();
    }
}

void Desktop::RegistryCame()
{
    if (m_frame != nullptr) {
        m_frame->RegistryCame();
    }
}

}  // namespace

int RunDesktop(const DesktopOptions& options, int argc, char** argv)
{
    if (std::string problem; !CheckDisplay(!options.snapshotFolder.empty(), problem)) {
        fmt::print(stderr, "kestrix: {}\n", problem);
        return kBadInput;
    }
    QApplication::setApplicationName(QStringLiteral("kestrix"));
    QApplication::setApplicationDisplayName(QStringLiteral("Kestrix"));
    QApplication application(argc, argv);
    if (std::string problem; !CheckFonts(problem)) {
        fmt::print(stderr, "kestrix: {}\n", problem);
        return kBadInput;
    }
    QApplication::setQuitOnLastWindowClosed(false);
    Desktop desktop(options, application);
    return desktop.Run();
}

}  // namespace zr::desktop

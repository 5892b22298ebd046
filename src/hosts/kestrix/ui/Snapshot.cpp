#include "hosts/kestrix/ui/Snapshot.h"

#include "hosts/kestrix/LoggedVariables.h"
#include "hosts/kestrix/ui/LoggedDataWindow.h"
#include "hosts/kestrix/ui/MainFrame.h"
#include "hosts/kestrix/ui/PageSetupDlg.h"
#include "hosts/kestrix/ui/UiTexts.h"
#include "platform/FileReplace.h"
#include "siblings/graphsupport/ui/ZRGraph.h"
#include "siblings/tools/ui/CDlgProgress.h"
#include "siblings/tools/ZRLoadString.h"

#include <cstdio>
#include <map>
#include <memory>
#include <QApplication>
#include <QBuffer>
#include <QMouseEvent>
#include <QPixmap>
#include <QPointer>
#include <QPrintPreviewDialog>
#include <QTimer>
#include <QToolButton>
#include <set>
#include <utility>

namespace zr::desktop {
namespace {

constexpr QSize kNarrowWindow{360, 420};
constexpr QSize kGraphWindow{1060, 620};
constexpr QPointF kPointedAt{0.44, 0.3};  // in a graph, parts of its width and height
constexpr int kLookPeriod = 20;           // ms
constexpr int kPartLoaded = 40;           // percent

class Camera {
public:
    Camera(MainFrame& frame, std::filesystem::path folder) : m_frame(frame), m_folder(std::move(folder)) {}

    // The first device of each type, the first group, and the logged data.
    void TakePages()
    {
        const DeviceTree& tree = m_frame.Tree().Tree();
        std::set<ZRBasicString> types;
        bool hasGroup = false;
        for (std::size_t node = 0; node < tree.Size(); ++node) {
            if (tree[node].kind == DeviceTree::Kind::Device) {
                const DeviceWatch* const watch = m_frame.Watch().Find(tree[node].text);
                const ZRBasicString type = watch != nullptr ? watch->Driver().DriverType() : u"";
                if (types.insert(type).second) {
                    TakePage(node, "device-" + Utf16ToUtf8(type));
                }
            } else if (tree[node].kind == DeviceTree::Kind::LoggedData) {
                TakePage(node, "logged-data");
            } else if (!std::exchange(hasGroup, true)) {
                TakePage(node, "group");
            }
        }
    }

    void TakeDialogs()
    {
        Take(std::unique_ptr<CDialog>(m_frame.NewAboutDialog()), "about");
        Take(std::unique_ptr<CDialog>(m_frame.NewKeysDialog()), "keys");
        Take(std::make_unique<PageSetupDlg>(&m_frame, DesktopSettings()), "pagesetup");
    }

    // The logged data of the first device of which something is recorded: as they open, in a window too narrow for its
    // buttons, and on paper; and what is shown while they are loaded. Nothing where nothing is recorded.
    void TakeLoggedData()
    {
        const DeviceTree& tree = m_frame.Tree().Tree();
        for (std::size_t node = 0; node < tree.Size(); ++node) {
            if (tree[node].kind == DeviceTree::Kind::Device &&
                !LoggedVariables(tree.DevicesOf(node)).variables.empty()) {
                const QPointer<LoggedDataWindow> window = m_frame.OpenLoggedData(node);
                if (window != nullptr) {
                    TakeTable(*window);
                    delete window;
                }
                return;
            }
        }
    }

    // The logged data of the first device of each type as a graph, and in a wide window with values pointed at. Nothing
    // where nothing is recorded.
    void TakeGraphs()
    {
        const DeviceTree& tree = m_frame.Tree().Tree();
        std::set<ZRBasicString> types;
        for (std::size_t node = 0; node < tree.Size(); ++node) {
            if (tree[node].kind != DeviceTree::Kind::Device ||
                LoggedVariables(tree.DevicesOf(node)).variables.empty()) {
                continue;
            }
            const DeviceWatch* const watch = m_frame.Watch().Find(tree[node].text);
            const ZRBasicString type = watch != nullptr ? watch->Driver().DriverType() : u"";
            if (types.insert(type).second) {
                TakeGraph(node, "logged-graph-" + Utf16ToUtf8(type));
            }
        }
    }

    void SetSuffix(const std::string& suffix) { m_suffix = suffix; }
    [[nodiscard]] const std::string& Problem() const { return m_problem; }

private:
    void TakePage(std::size_t node, const std::string& name)
    {
        m_frame.ShowNode(node);
        m_frame.UpdateAll();
        SelectFirstValue();
        Settle();
        Save(m_frame.grab(), name);
    }

    void TakeGraph(std::size_t node, const std::string& name)
    {
        const QPointer<LoggedDataWindow> window = m_frame.OpenLoggedData(node);
        if (window == nullptr) {
            return;
        }
        window->ShowAs(logger::kGraphViewer);
        Settle();
        Save(window->grab(), name);
        window->resize(kGraphWindow);
        Settle();
        if (QWidget* const graph = ui::FindControl(*window, ui::kGraphId); graph != nullptr) {
            PointAt(*graph);
            Save(window->grab(), name + "-wide");
        }
        // The next picture begins with the table again.
        window->ShowAs(logger::kTableViewer);
        delete window;
    }

    // So that the values at a time are in the picture.
    static void PointAt(QWidget& graph)
    {
        const QPointF place(graph.width() * kPointedAt.x(), graph.height() * kPointedAt.y());
        QMouseEvent move(QEvent::MouseMove, place, graph.mapToGlobal(place), Qt::NoButton, Qt::NoButton,
                         Qt::NoModifier);
        QApplication::sendEvent(&graph, &move);
    }

    void TakeTable(LoggedDataWindow& window)
    {
        Settle();
        Save(window.grab(), "logged-table");
        TakePreview(window);
        window.resize(kNarrowWindow);
        Settle();
        Save(window.grab(), "logged-narrow");
        TakeMenuOfChevron(window);
        auto progress = std::make_unique<CDlgProgress>(&window);
        ZRBasicString title;
        progress->SetTitle(ZRLoadString(logger::kTextLoading, title));
        progress->SetText(logger::kLoadingText);
        progress->SetPos(kPartLoaded);
        Take(std::move(progress), "logged-loading");
    }

    void TakeMenuOfChevron(const LoggedDataWindow& window)
    {
        auto* const chevron = window.findChild<QToolButton*>(QStringLiteral("chevron"));
        if (chevron == nullptr || !chevron->isVisible()) {
            return;
        }
        chevron->click();
        Settle();
        if (QWidget* const menu = QApplication::activePopupWidget(); menu != nullptr) {
            Save(menu->grab(), "logged-chevron");
            menu->close();
        }
    }

    void TakePreview(LoggedDataWindow& window)
    {
        // Its pages are printed while its loop runs, behind a dialog of their own where that takes long.
        QTimer whenItIsThere;
        QObject::connect(&whenItIsThere, &QTimer::timeout, &window, [this, &whenItIsThere] {
            if (auto* const preview = qobject_cast<QPrintPreviewDialog*>(QApplication::activeModalWidget())) {
                whenItIsThere.stop();
                Settle();
                Save(preview->grab(), "logged-preview");
                preview->close();
            }
        });
        whenItIsThere.start(kLookPeriod);
        window.OnFilePrintPreview();
    }

    // So that the strip of the selected value is in the picture.
    void SelectFirstValue()
    {
        if (PageView* const page = m_frame.Page(); page != nullptr) {
            page->SelectFirst();
        }
    }

    void Take(std::unique_ptr<CDialog> dialog, const std::string& name)
    {
        dialog->Create();
        dialog->adjustSize();
        Settle();
        Save(dialog->grab(), name);
    }

    static void Settle()
    {
        // What was asked to be laid out and painted is done by then.
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    }

    void Save(const QPixmap& picture, const std::string& name)
    {
        const std::filesystem::path file = m_folder / (name + m_suffix + ".png");
        const std::string text = TextOfPath(file);
        QBuffer bytes;
        std::string reason = "can't be packed";
        if (!picture.save(&bytes, "PNG") || !WriteFileReplacing(file, bytes.data().toStdString(), reason)) {
            m_problem = m_problem.empty() ? text + ": " + reason : m_problem;
            return;
        }
        std::printf("%s\n", text.c_str());
        std::fflush(stdout);
    }

    MainFrame& m_frame;
    std::filesystem::path m_folder;
    std::string m_suffix;
    std::string m_problem;
};

}  // namespace

bool SaveSnapshots(MainFrame& frame, const std::filesystem::path& folder, std::string& problem)
{
    std::string reason;
    if (!MakePrivateFolder(folder, reason)) {
        problem = TextOfPath(folder) + ": " + reason;
        return false;
    }
    Camera camera(frame, folder);
    for (const auto& [colours, suffix] : {std::pair(Colours::Light, "-light"), std::pair(Colours::Dark, "-dark")}) {
        frame.ChooseColours(colours);
        camera.SetSuffix(suffix);
        camera.TakePages();
        camera.TakeDialogs();
        camera.TakeLoggedData();
        camera.TakeGraphs();
    }
    problem = camera.Problem();
    return problem.empty();
}

}  // namespace zr::desktop

#include "logger/ui/ZRVirtualLoggerDataGraphicViewer.h"

#include "logger/FormatDateTime.h"
#include "logger/GraphMenu.h"
#include "logger/ui/FillMenu.h"
#include "platform/ui/AfxMessageBox.h"
#include "platform/ui/CDC.h"
#include "platform/ui/CDialog.h"
#include "siblings/support/ui/ZRPrintPreviewDialog.h"
#include "siblings/tools/ZRLoadString.h"

#include <QContextMenuEvent>
#include <QPainter>
#include <utility>

namespace {

using namespace zr::logger;

// With the pictures of a question, and no answer that is the default.
bool AsksYes(unsigned text)
{
    ZRBasicString question;
    ZRLoadString(text, question);
    return AfxMessageBox(question.Text(), zr::ui::MB_YESNO | zr::ui::MB_ICONQUESTION) == zr::ui::IDYES;
}

}  // namespace

ZRVirtualLoggerDataGraphicViewer::ZRVirtualLoggerDataGraphicViewer(LoggerGraph::ProfileDialog dialog)
    : m_layout(*this), m_dialog(std::move(dialog)), m_graph(std::make_unique<ZRGraph>())
{
}

ZRVirtualLoggerDataGraphicViewer::~ZRVirtualLoggerDataGraphicViewer() = default;

bool ZRVirtualLoggerDataGraphicViewer::Create(QWidget* parent, unsigned id)
{
    setParent(parent);
    zr::ui::SetControlId(*this, id);
    resize(100, 100);
    m_isCreated = m_graph->Create(this, zr::ui::kGraphId);
    if (m_isCreated) {
        m_graph->SetDateText(&FormatDateTime);
        setFocusProxy(m_graph.get());
    }
    OnSize(width(), height());
    return true;
}

void ZRVirtualLoggerDataGraphicViewer::Setup(const ZRLoggerInfo& info, XmlNode* node)
{
    m_layout.Setup(info, node);
}

void ZRVirtualLoggerDataGraphicViewer::Update(const ZRDateTime& from, const ZRDateTime& to, const ZRDateTimeSpan&, int,
                                              const ZRLoggerData::CRecordGroup& group)
{
    m_graph->Update(from, to, &m_layout.LoggerInfo(), &group);
}

void ZRVirtualLoggerDataGraphicViewer::SetInvalidData(bool invalid)
{
    m_graph->invalidData = invalid;
    m_graph->update();
}

void ZRVirtualLoggerDataGraphicViewer::ClearVariables()
{
    m_graph->ClearVariables(0x7FFFFFFF);
}

void ZRVirtualLoggerDataGraphicViewer::AddVariable(const zr::graph::CurveInfo& curve)
{
    m_graph->varInfos.push_back(std::make_unique<ZRGraph::CVarInfo>(curve).release());
}

void ZRVirtualLoggerDataGraphicViewer::GetLoggerInfo(ZRLoggerInfo& info)
{
    m_layout.GetLoggerInfo(info);
}

bool ZRVirtualLoggerDataGraphicViewer::OnConfig()
{
    return m_dialog && m_layout.OnConfig(m_dialog);
}

void ZRVirtualLoggerDataGraphicViewer::OnDestroy()
{
    m_layout.OnDestroy();
    ZRVirtualLoggerDataViewer::OnDestroy();
}

void ZRVirtualLoggerDataGraphicViewer::OnEraseBkgnd(QPainter& painter)
{
    if (!m_isCreated) {
        ZRVirtualLoggerDataViewer::OnEraseBkgnd(painter);
    }
}

void ZRVirtualLoggerDataGraphicViewer::resizeEvent(QResizeEvent* event)
{
    ZRVirtualLoggerDataViewer::resizeEvent(event);
    OnSize(width(), height());
}

void ZRVirtualLoggerDataGraphicViewer::OnSize(int width, int height)
{
    if (m_isCreated) {
        m_graph->setGeometry(0, 0, width, height);
    }
}

void ZRVirtualLoggerDataGraphicViewer::contextMenuEvent(QContextMenuEvent* event)
{
    OnRButtonUp(event->globalPos());
    event->accept();
}

void ZRVirtualLoggerDataGraphicViewer::OnRButtonUp(QPoint place)
{
    if (!m_isCreated) {
        return;
    }
    auto* const menu = new CMenu(this, {});
    menu->setAttribute(Qt::WA_DeleteOnClose);
    zr::ui::FillMenu(*menu, GraphMenu(m_graph->mode, !m_graph->zoomHistory.empty()), this, zr::ui::MenuMark::Check);
    menu->popup(place);
}

bool ZRVirtualLoggerDataGraphicViewer::OnCommand(unsigned id, unsigned code, QWidget* from)
{
    switch (id) {
        case kCommandTooltipMode:
            m_graph->SetMode(kTooltipMode);
            return true;
        case kCommandZoomMode:
            m_graph->SetMode(kZoomMode);
            return true;
        case kCommandPanMode:
            m_graph->SetMode(kPanMode);
            return true;
        case kCommandUndoZoom:
            m_graph->UndoZoom();
            return true;
        case kCommandUndoLastZoom:
            m_graph->UndoLastZoom(false);
            return true;
        case kCommandGraphOptions:
            return zr::ui::SendCommand(parentWidget(), kCommandConfig, 0, this);
        case kCommandGraphPrint:
            return zr::ui::SendCommand(parentWidget(), zr::ui::ID_FILE_PRINT_PREVIEW, 0, this);
        default:
            return ZRVirtualLoggerDataViewer::OnCommand(id, code, from);
    }
}

bool ZRVirtualLoggerDataGraphicViewer::OnNotify(const zr::ui::NMHDR& notice)
{
    if (notice.idFrom == zr::ui::kGraphId && notice.code == zr::ui::GRN_SHOWN) {
        return zr::ui::SendNotify(parentWidget(), notice);
    }
    return ZRVirtualLoggerDataViewer::OnNotify(notice);
}

int ZRVirtualLoggerDataGraphicViewer::OnPreparePrinting(CPrintInfo* info)
{
    info->SetMaxPage(1);
    info->m_pPD->m_flags |= zr::ui::PD_RETURNDC | zr::ui::PD_PRINTSETUP;
    if (info->m_pPD->DoModal() != static_cast<int>(zr::ui::IDOK)) {
        return 0;
    }
    m_layout.OnPreparePrinting(info->m_pPD->Color(), [] { return AsksYes(kTextPrintBlackAndWhite); });
    m_isColorChosen = true;
    return 1;
}

void ZRVirtualLoggerDataGraphicViewer::OnBeginPrinting(CDC* dc, CPrintInfo* info)
{
    info->SetMaxPage(1);
    if (!m_isColorChosen) {
        // A preview, or a file.
        m_layout.OnPreparePrinting(dc->Color(), [] { return false; });
    }
}

void ZRVirtualLoggerDataGraphicViewer::OnEndPrinting(CDC*, CPrintInfo*)
{
    m_isColorChosen = false;
    m_graph->Regenerate(nullptr, true);
}

void ZRVirtualLoggerDataGraphicViewer::Print(CDC* dc, CPrintInfo* info)
{
    const QRect& sheet = info->m_rectDraw;
    const PrintRect rect =
        GraphPrintRect({sheet.left(), sheet.top(), sheet.left() + sheet.width(), sheet.top() + sheet.height()});
    const int mapMode = dc->SetMapMode(zr::ui::MM_ANISOTROPIC);
    m_graph->Print(dc, {rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top},
                   m_layout.PrintColor() == kPrintBlackAndWhite);
    dc->SetMapMode(mapMode);
    info->m_bContinuePrinting = false;
}

void ZRVirtualLoggerDataGraphicViewer::ClipboardCopy()
{
    if (m_isCreated) {
        m_graph->CopyToClipboard(AsksYes(kTextCopyBlackAndWhite));
    }
}

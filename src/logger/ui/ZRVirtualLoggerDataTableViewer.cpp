#include "logger/ui/ZRVirtualLoggerDataTableViewer.h"

#include "logger/ui/TableMimeData.h"
#include "platform/ui/AfxMessageBox.h"
#include "platform/ui/CDC.h"
#include "platform/ui/CDialog.h"
#include "platform/ui/Clipboard.h"
#include "platform/ui/UiText.h"
#include "siblings/tools/FormatText.h"
#include "siblings/tools/ZRLoadString.h"

#include <algorithm>

namespace {

using zr::logger::PrintAlign;
using zr::logger::PrintRect;

CFont PrintFont()
{
    CFont font;
    font.CreatePointFont(zr::logger::kPrintFontTenths, zr::logger::kPrintFont);
    return font;
}

class DeviceMeasure final : public zr::logger::PrintMeasure {
public:
    explicit DeviceMeasure(const CDC& dc) : m_dc(dc) {}
    zr::logger::PrintExtent Extent(std::u16string_view text) override
    {
        const QSize size = m_dc.GetTextExtent(text);
        return {size.width(), size.height()};
    }

private:
    const CDC& m_dc;
};

QRect ToQt(const PrintRect& rect)
{
    return {rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top};
}

unsigned FormatOf(PrintAlign align)
{
    switch (align) {
        case PrintAlign::Centre:
            return zr::ui::DT_CENTER;
        case PrintAlign::Right:
            return zr::ui::DT_RIGHT;
        case PrintAlign::Left:
            break;
    }
    return zr::ui::DT_LEFT;
}

void TellOfMemory(unsigned text)
{
    ZRBasicString message;
    AfxMessageBox(ZRLoadString(text, message).Text(), zr::ui::MB_OK | zr::ui::MB_ICONEXCLAMATION);
}

}  // namespace

ZRVirtualLoggerDataTableViewer::ZRVirtualLoggerDataTableViewer(zr::logger::LoggerTable::ProfileDialog dialog)
    : m_table(*this), m_dialog(std::move(dialog))
{
}

ZRVirtualLoggerDataTableViewer::~ZRVirtualLoggerDataTableViewer() = default;

bool ZRVirtualLoggerDataTableViewer::Create(QWidget* parent, unsigned id)
{
    setParent(parent);
    zr::ui::SetControlId(*this, id);
    resize(100, 100);
    m_caption = new CStatic(this, zr::ui::kTableCaption);
    m_caption->setAlignment(Qt::AlignCenter);
    m_caption->setWordWrap(false);
    m_caption->setAutoFillBackground(true);
    m_list = new CVirtualListCtrl(this, zr::ui::kTableList);
    // A style draws its frame thinner than the room for it where the screen is scaled, and nothing is behind it.
    m_list->setAutoFillBackground(true);
    setFocusProxy(m_list);
    OnSize(width(), height());
    return true;
}

void ZRVirtualLoggerDataTableViewer::Setup(const ZRLoggerInfo& info, XmlNode* node)
{
    m_table.Setup(info, node);
}

void ZRVirtualLoggerDataTableViewer::Update(const ZRDateTime& from, const ZRDateTime& to, const ZRDateTimeSpan&,
                                            int groupBy, const ZRLoggerData::CRecordGroup& group)
{
    m_groupBy = groupBy;
    UpdateCaption(from, to);
    m_table.Update(groupBy, group);
}

void ZRVirtualLoggerDataTableViewer::UpdateCaption(const ZRDateTime& from, const ZRDateTime& to)
{
    m_caption->SetWindowText(zr::logger::TableCaption(from, to, m_groupBy).Text());
}

void ZRVirtualLoggerDataTableViewer::SetInvalidData(bool invalid)
{
    ZRVirtualLoggerDataViewer::SetInvalidData(invalid);
    m_table.SetInvalidData(invalid);
}

void ZRVirtualLoggerDataTableViewer::GetLoggerInfo(ZRLoggerInfo& info)
{
    m_table.GetLoggerInfo(info);
}

bool ZRVirtualLoggerDataTableViewer::OnConfig()
{
    return m_dialog && m_table.OnConfig(m_dialog);
}

void ZRVirtualLoggerDataTableViewer::OnDestroy()
{
    if (m_list != nullptr) {
        m_table.OnDestroy();
    }
}

void ZRVirtualLoggerDataTableViewer::resizeEvent(QResizeEvent* event)
{
    ZRVirtualLoggerDataViewer::resizeEvent(event);
    OnSize(width(), height());
}

void ZRVirtualLoggerDataTableViewer::OnSize(int width, int height)
{
    if (m_list == nullptr) {
        return;
    }
    // Of every property, since one that the list has from its style alone would count for nothing.
    QFont font;
    font.fromString(m_list->font().toString());
    m_caption->setFont(font);
    const int line = m_caption->fontMetrics().height();
    m_caption->setGeometry(0, 0, width, line);
    m_list->setGeometry(0, line, width, std::max(height - line, 0));
}

bool ZRVirtualLoggerDataTableViewer::OnNotify(const zr::ui::NMHDR& notice)
{
    if (notice.idFrom == zr::ui::kTableList && notice.code == zr::ui::LVN_GETDISPINFO) {
        return OnGetDispInfo(reinterpret_cast<const zr::ui::NMLVDISPINFO&>(notice));
    }
    return ZRVirtualLoggerDataViewer::OnNotify(notice);
}

bool ZRVirtualLoggerDataTableViewer::OnGetDispInfo(const zr::ui::NMLVDISPINFO& notice)
{
    if ((notice.mask & zr::ui::LVIF_TEXT) != 0) {
        notice.text = m_table.CellText(notice.iItem, notice.iSubItem).Text();
    }
    return true;
}

int ZRVirtualLoggerDataTableViewer::StringWidth(const ZRBasicString& text) const
{
    return m_list->GetStringWidth(text.Text());
}

void ZRVirtualLoggerDataTableViewer::SetColumns(const std::vector<zr::logger::TableColumn>& columns,
                                                const std::vector<int>& displayOrder)
{
    m_list->DeleteAllColumns();
    for (const zr::logger::TableColumn& column : columns) {
        m_list->InsertColumn(column.text.Text(), column.width);
    }
    for (std::size_t order = 0; order < displayOrder.size(); ++order) {
        m_list->SetColumnOrder(displayOrder[order], static_cast<int>(order));
    }
}

void ZRVirtualLoggerDataTableViewer::SetItemCount(int count)
{
    m_list->SetItemCountEx(count);
}

int ZRVirtualLoggerDataTableViewer::ColumnOrder(int column) const
{
    return m_list->GetColumnOrder(column);
}

int ZRVirtualLoggerDataTableViewer::ColumnWidth(int column) const
{
    return m_list->GetColumnWidth(column);
}

std::vector<zr::logger::RowRange> ZRVirtualLoggerDataTableViewer::SelectedRows() const
{
    std::vector<zr::logger::RowRange> rows;
    for (const auto& [first, last] : m_list->GetSelectedRanges()) {
        rows.push_back({first, last});
    }
    return rows;
}

void ZRVirtualLoggerDataTableViewer::ClipboardCopy()
{
    // Meant: without a clipboard nothing happens, with no message.
    if (!zr::ui::OpenClipboard()) {
        return;
    }
    zr::logger::TableCopy copy = m_table.ClipboardCopy(m_copyLimit);
    if (copy.IsEmpty()) {
        TellOfMemory(zr::logger::kTextNothingCopied);
        return;
    }
    const bool isWhole = copy.IsWhole();
    zr::ui::SetClipboardData(std::make_unique<zr::ui::TableMimeData>(std::move(copy)));
    if (!isWhole) {
        TellOfMemory(zr::logger::kTextNotAllCopied);
    }
}

int ZRVirtualLoggerDataTableViewer::OnPreparePrinting(CPrintInfo* info)
{
    info->m_pPD->m_flags |= zr::ui::PD_RETURNDC | zr::ui::PD_PRINTSETUP;
    return info->m_pPD->DoModal() == static_cast<int>(zr::ui::IDOK) ? 1 : 0;
}

void ZRVirtualLoggerDataTableViewer::OnBeginPrinting(CDC* dc, CPrintInfo* info)
{
    dc->SelectObject(PrintFont());
    DeviceMeasure measure(*dc);
    const zr::logger::TablePrint& print = m_table.OnBeginPrinting(
        {dc->GetDeviceCaps(zr::ui::HORZRES), dc->GetDeviceCaps(zr::ui::VERTRES), dc->GetDeviceCaps(zr::ui::VERTSIZE)},
        measure);
    info->SetMaxPage(static_cast<unsigned>(std::max(print.MaxPage(), 0)));
}

// A column that passes the edge by less than the gap before it, or is wider than the sheet, stands on no page.
void ZRVirtualLoggerDataTableViewer::OnEndPrinting(CDC*, CPrintInfo* info)
{
    const bool isPrinted = !info->m_bPreview && !info->m_bContinuePrinting;
    const ZRBasicString leftOut =
        isPrinted ? m_table.LeftOutOfPrint(info->m_rectDraw.left() + info->m_rectDraw.width()) : ZRBasicString();
    m_table.OnEndPrinting();
    if (leftOut.IsEmpty()) {
        return;
    }
    // Once the printer has done its work.
    QMetaObject::invokeMethod(
        this,
        [leftOut] {
            ZRBasicString text;
            AfxMessageBox(zr::FormatText(ZRLoadString(zr::logger::kTextLeftOut, text).Text(), {leftOut}).Text(),
                          zr::ui::MB_OK | zr::ui::MB_ICONINFORMATION);
        },
        Qt::QueuedConnection);
}

void ZRVirtualLoggerDataTableViewer::Print(CDC* dc, CPrintInfo* info)
{
    dc->SelectObject(PrintFont());
    const QRect& area = info->m_rectDraw;
    const zr::logger::PrintedPage page =
        m_table.Print(static_cast<int>(info->m_nCurPage),
                      {area.left(), area.top(), area.left() + area.width(), area.top() + area.height()},
                      ZRBasicString(zr::ui::FromQt(Caption())));
    for (const zr::logger::PrintText& text : page.texts) {
        dc->DrawText(text.text.Text(), ToQt(text.rect), FormatOf(text.align));
    }
    for (const zr::logger::PrintLine& line : page.lines) {
        dc->DrawLine({line.left, line.y}, {line.right, line.y}, line.penWidth, Qt::black);
    }
    info->m_bContinuePrinting = page.continuePrinting;
}

// Logged data as a table.
#pragma once

#include "logger/LoggerTable.h"
#include "logger/ui/ZRVirtualLoggerDataViewer.h"
#include "platform/ui/CStatic.h"
#include "platform/ui/CVirtualListCtrl.h"

#include <memory>

namespace zr::ui {

inline constexpr unsigned kTableList = 150;
inline constexpr unsigned kTableCaption = 65535;

}  // namespace zr::ui

// A caption, and below it a row for each record. See zr::logger::LoggerTable for what stands in it.
class ZRVirtualLoggerDataTableViewer : public ZRVirtualLoggerDataViewer, private zr::logger::TableList {
public:
    // dialog: edits the columns, see OnConfig; without one they can't be edited.
    explicit ZRVirtualLoggerDataTableViewer(zr::logger::LoggerTable::ProfileDialog dialog = {});
    ~ZRVirtualLoggerDataTableViewer() override;

    bool Create(QWidget* parent, unsigned id) override;
    void Setup(const ZRLoggerInfo& info, XmlNode* node) override;
    void Update(const ZRDateTime& from, const ZRDateTime& to, const ZRDateTimeSpan& period, int groupBy,
                const ZRLoggerData::CRecordGroup& group) override;
    int OnPreparePrinting(CPrintInfo* info) override;
    void OnBeginPrinting(CDC* dc, CPrintInfo* info) override;
    void OnEndPrinting(CDC* dc, CPrintInfo* info) override;
    void Print(CDC* dc, CPrintInfo* info) override;
    // Selected rows, or all. Nothing where the clipboard can't be opened; the user is told where the memory doesn't do.
    void ClipboardCopy() override;
    // How much memory a copy may take; as much as there is unless it is told.
    void LimitCopy(zr::logger::CopyRoom::Grant limit) { m_copyLimit = std::move(limit); }
    bool OnConfig() override;
    void GetLoggerInfo(ZRLoggerInfo& info) override;
    void SetInvalidData(bool invalid) override;
    // `to` exclusive.
    virtual void UpdateCaption(const ZRDateTime& from, const ZRDateTime& to);

    [[nodiscard]] zr::logger::LoggerTable& Table() { return m_table; }
    [[nodiscard]] const zr::logger::LoggerTable& Table() const { return m_table; }
    // Null before Create.
    [[nodiscard]] CVirtualListCtrl* List() const { return m_list; }
    [[nodiscard]] QString Caption() const { return m_caption->text(); }

protected:
    // Paints nothing: the controls cover it.
    void OnEraseBkgnd(QPainter&) override {}
    void OnDestroy() override;
    bool OnNotify(const zr::ui::NMHDR& notice) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    // The list as the table sees it.
    [[nodiscard]] int StringWidth(const ZRBasicString& text) const override;
    void SetColumns(const std::vector<zr::logger::TableColumn>& columns, const std::vector<int>& displayOrder) override;
    void SetItemCount(int count) override;
    [[nodiscard]] int ColumnOrder(int column) const override;
    [[nodiscard]] int ColumnWidth(int column) const override;
    [[nodiscard]] std::vector<zr::logger::RowRange> SelectedRows() const override;

    void OnSize(int width, int height);
    bool OnGetDispInfo(const zr::ui::NMLVDISPINFO& notice);

    zr::logger::LoggerTable m_table;
    zr::logger::LoggerTable::ProfileDialog m_dialog;
    CVirtualListCtrl* m_list = nullptr;  // Owned by Qt, as is the caption.
    CStatic* m_caption = nullptr;
    zr::logger::CopyRoom::Grant m_copyLimit;
    int m_groupBy = 0;
};

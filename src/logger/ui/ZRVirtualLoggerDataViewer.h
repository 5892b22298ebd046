// What fills an explorer of logged data.
#pragma once

#include "logger/LoggerExplorer.h"
#include "platform/ui/CWnd.h"

class CDC;
struct CPrintInfo;

// A window for one kind of picture of the selected records. Create, Setup, then Update for each load; DestroyWindow
// before it is deleted. UI thread only.
class ZRVirtualLoggerDataViewer : public CWnd, public zr::logger::ExplorerViewer {
public:
    ZRVirtualLoggerDataViewer() = default;

    // The window with its controls, as a child. False when it can't be made.
    virtual bool Create(QWidget* parent, unsigned id) = 0;
    // These and the next: see ExplorerViewer.
    void Setup(const ZRLoggerInfo& info, XmlNode* node) override = 0;
    void Update(const ZRDateTime& from, const ZRDateTime& to, const ZRDateTimeSpan& period, int groupBy,
                const ZRLoggerData::CRecordGroup& group) override = 0;
    // Runs the print dialog; 0 when it was cancelled.
    virtual int OnPreparePrinting(CPrintInfo* info) = 0;
    virtual void OnBeginPrinting(CDC*, CPrintInfo*) {}
    virtual void OnEndPrinting(CDC*, CPrintInfo*) {}
    virtual void Print(CDC* dc, CPrintInfo* info) = 0;
    void ClipboardCopy() override = 0;
    bool OnConfig() override = 0;
    void GetLoggerInfo(ZRLoggerInfo& info) override = 0;
    void SetInvalidData(bool invalid) override { m_invalidData = invalid; }
    [[nodiscard]] bool InvalidData() const { return m_invalidData; }

    // The window goes, upon which it keeps its settings.
    void DestroyWindow()
    {
        OnDestroy();
        hide();
    }

protected:
    virtual void OnDestroy() {}

private:
    bool m_invalidData = false;
};

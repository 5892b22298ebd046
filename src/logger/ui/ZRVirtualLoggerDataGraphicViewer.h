// Logged data as a graph.
#pragma once

#include "logger/LoggerGraph.h"
#include "logger/ui/ZRVirtualLoggerDataViewer.h"
#include "siblings/graphsupport/ui/ZRGraph.h"

#include <memory>

// The graph fills it. See zr::logger::LoggerGraph for which curves stand where, and ZRGraph for how they are drawn.
class ZRVirtualLoggerDataGraphicViewer : public ZRVirtualLoggerDataViewer, private zr::logger::CurveList {
public:
    // dialog: edits the curves, see OnConfig; without one they can't be edited.
    explicit ZRVirtualLoggerDataGraphicViewer(zr::logger::LoggerGraph::ProfileDialog dialog = {});
    ~ZRVirtualLoggerDataGraphicViewer() override;

    // The window with its graph; it stays empty where there can't be one.
    bool Create(QWidget* parent, unsigned id) override;
    void Setup(const ZRLoggerInfo& info, XmlNode* node) override;
    // See LoggerGraph.
    void UpdateSetup(bool firstTime) { m_layout.UpdateSetup(firstTime); }
    void Update(const ZRDateTime& from, const ZRDateTime& to, const ZRDateTimeSpan& period, int groupBy,
                const ZRLoggerData::CRecordGroup& group) override;
    // Asks for black and white after the printer, where that one prints in colour.
    int OnPreparePrinting(CPrintInfo* info) override;
    // One page. What nobody was asked about is printed as the device does.
    void OnBeginPrinting(CDC* dc, CPrintInfo* info) override;
    void OnEndPrinting(CDC* dc, CPrintInfo* info) override;
    void Print(CDC* dc, CPrintInfo* info) override;
    // Asks for black and white.
    void ClipboardCopy() override;
    bool OnConfig() override;
    void GetLoggerInfo(ZRLoggerInfo& info) override;
    // Of the graph alone: InvalidData() stays as it is.
    void SetInvalidData(bool invalid) override;

    [[nodiscard]] ZRGraph& Graph() { return *m_graph; }
    [[nodiscard]] const ZRGraph& Graph() const { return *m_graph; }
    [[nodiscard]] zr::logger::LoggerGraph& Layout() { return m_layout; }

protected:
    // Paints nothing while the graph covers it.
    void OnEraseBkgnd(QPainter& painter) override;
    void OnDestroy() override;
    bool OnCommand(unsigned id, unsigned code, QWidget* from) override;
    // What the graph tells of itself goes on to the explorer.
    bool OnNotify(const zr::ui::NMHDR& notice) override;
    void resizeEvent(QResizeEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    // The graph as the layout sees it.
    void ClearVariables() override;
    void AddVariable(const zr::graph::CurveInfo& curve) override;

    void OnSize(int width, int height);
    // In coordinates of the screen.
    void OnRButtonUp(QPoint place);

    zr::logger::LoggerGraph m_layout;
    zr::logger::LoggerGraph::ProfileDialog m_dialog;
    std::unique_ptr<ZRGraph> m_graph;
    bool m_isCreated = false;
    bool m_isColorChosen = false;  // for the printing that comes
};

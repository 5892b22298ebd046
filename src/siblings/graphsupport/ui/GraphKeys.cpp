#include "siblings/graphsupport/ui/GraphKeys.h"

#include <QKeyEvent>

namespace zr::graph {

namespace {

struct Binding {
    int key;
    Qt::KeyboardModifiers modifiers;
    GraphAction action;
};

// Plus, minus and digits come with Shift or from the keypad, as keyboards have them.
const Binding kBindings[] = {
    {Qt::Key_Left, Qt::NoModifier, GraphAction::PanLeft},
    {Qt::Key_Right, Qt::NoModifier, GraphAction::PanRight},
    {Qt::Key_Left, Qt::ControlModifier, GraphAction::PageLeft},
    {Qt::Key_Right, Qt::ControlModifier, GraphAction::PageRight},
    {Qt::Key_PageUp, Qt::NoModifier, GraphAction::PageLeft},
    {Qt::Key_PageDown, Qt::NoModifier, GraphAction::PageRight},
    {Qt::Key_Left, Qt::ShiftModifier, GraphAction::CursorLeft},
    {Qt::Key_Right, Qt::ShiftModifier, GraphAction::CursorRight},
    {Qt::Key_Plus, Qt::NoModifier, GraphAction::ZoomIn},
    {Qt::Key_Plus, Qt::ShiftModifier, GraphAction::ZoomIn},
    {Qt::Key_Equal, Qt::ControlModifier, GraphAction::ZoomIn},
    {Qt::Key_Plus, Qt::ControlModifier, GraphAction::ZoomIn},
    {Qt::Key_Minus, Qt::NoModifier, GraphAction::ZoomOut},
    {Qt::Key_Minus, Qt::ControlModifier, GraphAction::ZoomOut},
    {Qt::Key_Home, Qt::NoModifier, GraphAction::Whole},
    {Qt::Key_0, Qt::NoModifier, GraphAction::Whole},
    {Qt::Key_0, Qt::ControlModifier, GraphAction::Whole},
    {Qt::Key_Backspace, Qt::NoModifier, GraphAction::UndoZoom},
    {Qt::Key_Z, Qt::ControlModifier, GraphAction::UndoZoom},
    {Qt::Key_Escape, Qt::NoModifier, GraphAction::Cancel},
    {Qt::Key_M, Qt::NoModifier, GraphAction::SetMarker},
    {Qt::Key_Delete, Qt::NoModifier, GraphAction::RemoveMarkers},
    {Qt::Key_1, Qt::NoModifier, GraphAction::TooltipMode},
    {Qt::Key_2, Qt::NoModifier, GraphAction::ZoomMode},
    {Qt::Key_3, Qt::NoModifier, GraphAction::PanMode},
};

}  // namespace

std::optional<GraphAction> ActionOf(const QKeyEvent& event)
{
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeyboardModifiers(Qt::KeypadModifier);
    for (const Binding& binding : kBindings) {
        if (binding.key == event.key() && binding.modifiers == modifiers) {
            return binding.action;
        }
    }
    return std::nullopt;
}

}  // namespace zr::graph

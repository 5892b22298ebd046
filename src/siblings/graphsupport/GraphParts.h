// What a graph's model holds, and what is to be made anew after a change.
#pragma once

#include "siblings/graphsupport/GraphModel.h"
#include "siblings/graphsupport/GraphPlan.h"
#include "siblings/graphsupport/GraphPointer.h"
#include "siblings/graphsupport/GraphState.h"
#include "siblings/graphsupport/MarkerTable.h"

#include <memory>
#include <vector>

namespace zr::graph {

// Every change of the state goes with one of the Change operations.
class GraphModel::Parts {
public:
    GraphState state;
    GraphTarget target;
    GraphPointer pointer;
    GraphChanges changes;
    std::vector<int> valueWidths;

    // The plan of the picture on the screen, made anew after changes.
    const GraphPlan& Plan()
    {
        if (!m_plan) {
            if (target.texts != nullptr) {
                WidenValues(state, *target.texts, valueWidths);
            }
            m_plan = std::make_unique<GraphPlan>(MakePlan(state, target, valueWidths));
        }
        return *m_plan;
    }

    const GraphScene& Scene()
    {
        if (m_scene && !m_isOverStale) {
            return *m_scene;
        }
        const GraphPlan& plan = Plan();
        if (!m_scene) {
            m_scene = std::make_unique<GraphScene>();
            m_scene->width = target.width;
            m_scene->height = target.height;
            AppendUnder(plan, state, m_scene->under);
        }
        // The highlight is a matter of the panels.
        m_scene->panels.clear();
        AppendPanels(plan, state, m_scene->panels);
        for (CurvePanel& panel : m_scene->panels) {
            panel.isHighlighted = panel.curve == state.highlighted;
        }
        m_scene->over.clear();
        AppendOver(plan, state, m_scene->over);
        m_isOverStale = false;
        return *m_scene;
    }

    void ChangeOver()
    {
        m_isOverStale = true;
        changes.over = true;
    }
    void ChangeAll()
    {
        m_plan.reset();
        m_scene.reset();
        changes.under = true;
        changes.over = true;
    }
    void ChangeShown()
    {
        ChangeAll();
        changes.shown = true;
    }
    void Note(const PointerEffect& effect)
    {
        if (effect.view) {
            ChangeShown();
        }
        if (effect.markers) {
            ChangeMarkers();
        }
        if (effect.over) {
            ChangeOver();
        }
    }
    // The second of both makes room for their table.
    void ChangeMarkers()
    {
        if (m_plan && m_plan->tableRows != MarkerTableRows(state)) {
            ChangeAll();
        }
        ChangeOver();
        changes.shown = true;
    }

    void EndDrag() { Note(pointer.Cancel(state)); }

private:
    std::unique_ptr<GraphPlan> m_plan;
    std::unique_ptr<GraphScene> m_scene;
    bool m_isOverStale = false;
};

}  // namespace zr::graph

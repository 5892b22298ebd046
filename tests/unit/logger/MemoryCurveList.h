// The curves of a graph without a window.
#pragma once

#include "logger/LoggerGraph.h"

#include <vector>

namespace zr::logger {

class MemoryCurveList final : public CurveList {
public:
    void ClearVariables() override
    {
        curves.clear();
        ++cleared;
    }
    void AddVariable(const graph::CurveInfo& curve) override { curves.push_back(curve); }

    // Of each curve, in order.
    template <typename Type>
    [[nodiscard]] std::vector<Type> Each(Type graph::CurveInfo::*field) const
    {
        std::vector<Type> values;
        for (const graph::CurveInfo& curve : curves) {
            values.push_back(curve.*field);
        }
        return values;
    }

    std::vector<graph::CurveInfo> curves;
    int cleared = 0;
};

}  // namespace zr::logger

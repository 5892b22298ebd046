// The page of one device, made from its profile.
#pragma once

#include "hosts/kestrix/DeviceWatch.h"
#include "hosts/kestrix/ui/PageView.h"

#include <map>

namespace zr::desktop {

// Bars for what has limits, then every variable with description, value and unit. Gone before its device.
class DevicePageView : public PageView {
public:
    // watch: Not owned; must outlive this.
    DevicePageView(QWidget* parent, const DeviceWatch& watch);

    void UpdateValues() override;

protected:
    int Place(int width) override;

private:
    struct Row {
        PageRow row;
        QWidget* value;
    };
    struct Part {
        Section section = Section::Other;
        std::vector<QWidget*> bars;
        QString barTitle;  // with the unit of the bars
        std::vector<Row> rows;
    };

    void AddPart(const PageSection& section, const DevicePage& page);
    int PlaceHeader(int width);
    int PlaceBars(const Part& part, int top, int width);
    int PlaceRows(const Part& part, int top, int width);

    const DeviceWatch& m_watch;
    DeviceState m_shownState = DeviceState::NotAsked;
    std::vector<Part> m_parts;
};

// The text and the picture of a state.
QString StateText(DeviceState state);
QIcon StateIcon(DeviceState state);

}  // namespace zr::desktop

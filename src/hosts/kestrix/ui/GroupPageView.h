// The page of a group: the same variables of its devices side by side.
#pragma once

#include "hosts/kestrix/PlantWatch.h"
#include "hosts/kestrix/ui/PageView.h"

#include <map>

class QToolButton;

namespace zr::desktop {

// A table for each kind of device, a column for each device. Devices for which the width has no room are reached by two
// buttons. Gone before its devices.
class GroupPageView : public PageView {
public:
    // watch: Not owned; must outlive this. title: of the group.
    GroupPageView(QWidget* parent, const PlantWatch& watch, QString title, const std::vector<ZRBasicString>& devices);

    void UpdateValues() override;
    // Called when a device's heading is clicked.
    void OnDevice(std::function<void(const ZRBasicString&)> listener) { m_deviceListener = std::move(listener); }

protected:
    int Place(int width) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    // What is made anew when the columns change.
    struct ShownTable {
        GroupTable table;
        std::size_t first = 0;                                          // column shown first
        std::size_t shown = 0;                                          // columns that have controls
        std::map<std::pair<std::size_t, std::size_t>, QWidget*> cells;  // by row in order and column
        QToolButton* previous = nullptr;
        QToolButton* next = nullptr;
        int descriptionWidth = 0;
        int unitWidth = 0;
    };
    struct Heading {
        QRect rect;
        ZRBasicString device;
    };

    [[nodiscard]] std::size_t ColumnsFor(const ShownTable& table, int width) const;
    [[nodiscard]] int LeftOfValues(const ShownTable& table) const;
    void MakeCells();
    void Turn(std::size_t table, int direction);
    int PlaceTable(ShownTable& table, int top, int width);
    int PlaceHeadings(ShownTable& table, int top, int width);

    const PlantWatch& m_watch;
    QString m_title;
    std::vector<ZRBasicString> m_devices;
    std::vector<ShownTable> m_tables;
    std::vector<Heading> m_headings;
    std::vector<DeviceState> m_shownStates;
    std::function<void(const ZRBasicString&)> m_deviceListener;
};

}  // namespace zr::desktop

// The desktop in this process on logged data that other processes have put into a real store.
#pragma once

#include "hosts/kestrix/ui/LoggedDataWindow.h"
#include "integration/service/ServiceFixture.h"
#include "logger/ui/ZRVirtualLoggerDataTableViewer.h"
#include "siblings/tools/TimeZone.h"
#include "support/Office.h"
#include "support/Process.h"
#include "ui/kestrix/DesktopFixture.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace zr::desktop {

// The plant stands in Madrid.
class LoggedDataFixture : public DesktopFixture {
protected:
    static constexpr const char* kZone = "Europe/Madrid";

    LoggedDataFixture()
    {
        std::string error;
        EXPECT_TRUE(TimeZone::Find(kZone, m_zone, error)) << error;
        SetPlantZone(m_zone);
    }
    ~LoggedDataFixture() override
    {
        m_frame.reset();
        m_supervisor.reset();
        SetPlantZone(TimeZone::System());
    }

    // Of processes: nothing leads out of the test's folder.
    [[nodiscard]] std::vector<std::string> ProcessEnvironment() const
    {
        const std::string folder = m_folder.Path().string();
        return {"HOME=" + folder,
                "XDG_RUNTIME_DIR=" + folder + "/run",
                "XDG_CONFIG_HOME=" + folder + "/config",
                "XDG_DATA_HOME=" + folder + "/data",
                "KESTRIX_RESOURCES=" ZR_RESOURCES,
                std::string("TZ=") + kZone};
    }
    [[nodiscard]] std::string DataFolder() const { return (m_folder / "data").string(); }
    // A document of one energy meter, METER, behind that UDP port.
    void WriteDocument(const std::string& port)
    {
        m_document = m_folder.Write(
            "plant.xml",
            test::DocumentText(test::UdpLine("L", port, 1000), {{"METER", "EM3", "L", "Unit=\"1\" Period=\"0.2\""}}));
    }

    // The window on METER with every record, or those of a period, of a stretch that ends at a date.
    LoggedDataWindow& OpenWindow(const ZRDateTime& end, int groupBy, const ZRDateTimeSpan& period)
    {
        Start();
        const auto node = m_frame->Tree().Tree().FindDevice(u"METER");
        LoggedDataWindow* const window = node ? m_frame->OpenLoggedData(*node) : nullptr;
        if (window == nullptr) {
            throw std::runtime_error("nothing is recorded");
        }
        window->SetupData(end, groupBy, period, true);
        Settle();
        return *window;
    }
    static CVirtualListCtrl& List(LoggedDataWindow& window)
    {
        return *dynamic_cast<ZRVirtualLoggerDataTableViewer&>(*window.Viewer()).List();
    }
    // Titles, then rows, as they stand on the screen.
    static test::Cells Shown(LoggedDataWindow& window)
    {
        CVirtualListCtrl& list = List(window);
        test::Cells cells(1);
        for (int column = 0; column < list.GetColumnCount(); ++column) {
            cells[0].push_back(list.model()->headerData(column, Qt::Horizontal).toString().toStdString());
        }
        for (int row = 0; row < list.GetItemCount(); ++row) {
            cells.emplace_back();
            for (int column = 0; column < list.GetColumnCount(); ++column) {
                cells.back().push_back(Utf16ToUtf8(ZRBasicString(list.GetItemText(row, column))));
            }
        }
        return cells;
    }

    TimeZone m_zone;
};

}  // namespace zr::desktop

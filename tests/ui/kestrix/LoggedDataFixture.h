// The main window, and logged data of its meters in a store of the test's.
#pragma once

#include "DesktopFixture.h"
#include "hosts/kestrix/ui/LoggedDataWindow.h"
#include "logger/ui/ZRVirtualLoggerDataTableViewer.h"
#include "siblings/driversupport/DeviceWarning.h"
#include "siblings/driversupport/store/MemoryLoggerStore.h"
#include "siblings/tools/TimeZone.h"
#include "ui/logger/StoreWithGate.h"

#include <vector>

namespace zr::desktop {

// The meters' voltages, a quarter of an hour apart, from three days ago on.
class LoggedDataFixture : public DesktopFixture {
protected:
    LoggedDataFixture()
    {
        SetPlantZone(TimeZone());
        TakeNotices();  // what others have left
    }
    ~LoggedDataFixture() override
    {
        m_frame.reset();
        SetLoggerStore(nullptr);
        SetPlantZone(TimeZone::System());
    }

    void StartWithData(std::vector<ZRBasicString> names = {u"METER-1.U1", u"METER-1.U2", u"METER-2.U1"})
    {
        Start();
        const ZRDateTime now = ZRDateTime::LTC();
        std::vector<LoggerAppend> batch;
        for (const ZRBasicString& name : names) {
            const int series = m_store.OpenSeries(name, 1);
            for (int k = 0; k < kRecords; ++k) {
                const std::int64_t time = (946684800LL + now.seconds) / kDay * kDay - 3 * kDay + k * 900;
                batch.push_back({series, time * 1000000, 2300.0 + k});
            }
        }
        ASSERT_TRUE(m_store.Append(batch));
        ASSERT_TRUE(m_store.SetDataSet({u"mains", 60, 0, names}));
        SetLoggerStore(&m_gate);
    }
    // On all records, as they were recorded.
    static void ShowAll(LoggedDataWindow& window)
    {
        ZRDateTime time = ZRDateTime::LTC();
        time.seconds = time.seconds / kDay * kDay - 3 * kDay + 1;
        window.SetupData(time, logger::kGroupByYear, {0, 0}, true);
    }

    LoggedDataWindow* OpenFor(const wchar* device)
    {
        const auto node = m_frame->Tree().Tree().FindDevice(device);
        return node ? m_frame->OpenLoggedData(*node) : nullptr;
    }
    static CVirtualListCtrl& List(LoggedDataWindow& window)
    {
        return *dynamic_cast<ZRVirtualLoggerDataTableViewer&>(*window.Viewer()).List();
    }

    static constexpr int kRecords = 40;
    static constexpr int kDay = 86400;
    MemoryLoggerStore m_store;
    logger::StoreWithGate m_gate{m_store};
};

}  // namespace zr::desktop

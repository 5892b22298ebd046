#include "ui/logger/ExplorerFixture.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <future>
#include <mutex>
#include <QProgressBar>
#include <vector>

namespace zr::logger {
namespace {

// A slow load of a day, an hour a block.
class LoadProgressTest : public ExplorerFixture {
protected:
    LoadProgressTest()
    {
        for (int hour = 0; hour < kBlocks; ++hour) {
            Record(u"M.U", Date(14, 1, 2003, hour), 2300);
        }
    }
    // Each block waits, on the loader's thread, until the bar has shown where the block before it ended.
    void WaitForTheBarAtEachBlock()
    {
        gate.gate = [this] {
            std::unique_lock lock(m_guard);
            ++m_blocks;
            // A bar that stands still ends the load, and so the test, after a while.
            const bool isSeen =
                m_blocks == 1 || m_changed.wait_for(lock, std::chrono::seconds(20), [this] { return m_isMoved; });
            m_isMoved = false;
            return isSeen;
        };
        ui::SetModalHook([this](QDialog& dialog) {
            auto& progress = dynamic_cast<CDlgProgress&>(dialog);
            QObject::connect(&progress.m_bar, &QProgressBar::valueChanged, &progress, [this](int value) {
                const std::scoped_lock lock(m_guard);
                m_shown.push_back(value);
                m_isMoved = true;
                m_changed.notify_all();
            });
        });
    }

    static constexpr int kBlocks = 24;
    std::mutex m_guard;
    std::condition_variable m_changed;
    int m_blocks = 0;
    bool m_isMoved = false;
    std::vector<int> m_shown;
};

TEST_F(LoadProgressTest, ShowsEveryStepWhileTheLoadRuns)
{
    Open({u"M.U"});
    WaitForTheBarAtEachBlock();
    window.SetupData(Date(14, 1, 2003, 12), kGroupByDay, kEveryRecord, true);
    EXPECT_EQ(List().GetItemCount(), kBlocks);
    EXPECT_EQ(m_blocks, kBlocks);
    EXPECT_GE(m_shown.size(), static_cast<std::size_t>(kBlocks - 1));
    EXPECT_TRUE(std::is_sorted(m_shown.begin(), m_shown.end()));
    EXPECT_GT(m_shown.back(), 90);
    EXPECT_LE(m_shown.back(), 100);
}

// Neither the thread that loads nor the modal dialog keeps windows from being drawn.
TEST_F(LoadProgressTest, DrawsTheWindowWhileTheLoadRuns)
{
    Open({u"M.U"});
    int painted = 0;
    std::promise<void> release;
    std::shared_future<void> released = release.get_future();
    gate.gate = [released] {
        released.wait();
        return true;
    };
    ui::SetModalHook([&](QDialog&) {
        window.resize(900, 500);
        painted = window.grab().width();
        EXPECT_NE(window.Loading(), nullptr);
        EXPECT_EQ(List().GetItemCount(), 0);
        release.set_value();
    });
    window.SetupData(Date(14, 1, 2003, 12), kGroupByDay, kEveryRecord, true);
    EXPECT_EQ(painted, 900);
    EXPECT_EQ(List().GetItemCount(), kBlocks);
}

}  // namespace
}  // namespace zr::logger

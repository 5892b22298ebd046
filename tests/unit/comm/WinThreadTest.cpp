#include "platform/WinThread.h"

#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <thread>

namespace {

int SetOwnId(void* parameter)
{
    static_cast<std::promise<std::thread::id>*>(parameter)->set_value(std::this_thread::get_id());
    return 0;
}

int SetFlag(void* parameter)
{
    *static_cast<bool*>(parameter) = true;
    return 0;
}

TEST(WinThreadTest, RunsTheProcedureOnAThreadOfItsOwn)
{
    std::promise<std::thread::id> id;
    const std::unique_ptr<CWinThread> thread(AfxBeginThread(&SetOwnId, &id));
    ASSERT_NE(thread, nullptr);
    EXPECT_NE(id.get_future().get(), std::this_thread::get_id());
}

TEST(WinThreadTest, IsJoinedWhenDestroyed)
{
    bool ran = false;
    std::unique_ptr<CWinThread> thread(AfxBeginThread(&SetFlag, &ran));
    thread.reset();
    EXPECT_TRUE(ran);
}

TEST(WinThreadTest, AnotherStarterServesUntilItIsTakenAway)
{
    zr::SetThreadStarter([](AFX_THREADPROC, void*) -> CWinThread* { return nullptr; });
    bool ran = false;
    EXPECT_EQ(AfxBeginThread(&SetFlag, &ran), nullptr);
    zr::SetThreadStarter({});
    std::unique_ptr<CWinThread> thread(AfxBeginThread(&SetFlag, &ran));
    EXPECT_NE(thread, nullptr);
    thread.reset();
    EXPECT_TRUE(ran);
}

}  // namespace

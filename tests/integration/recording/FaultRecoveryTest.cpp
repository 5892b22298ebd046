// Faults come and go while a recorder runs: it goes on by itself, and all that it acknowledged is in the store.
#include "integration/recording/RecordingFixture.h"

namespace {

using RecordingFault = zr::test::RecordingFixture;

TEST_F(RecordingFault, AStoreThatIsPutAwayAndComesBack)
{
    Start();
    EXPECT_TRUE(WaitFor("stored", 20));
    PutStoreAway();
    EXPECT_TRUE(WaitFor("spooled", 20)) << m_program->Errors();
    PutStoreBack();
    EXPECT_TRUE(WaitUntilResent());
    End();
    EXPECT_THAT(m_program->Errors(), testing::HasSubstr("plant.zrlog"));
    EXPECT_THAT(m_program->Errors(), testing::HasSubstr("lost 0"));
    ExpectAllStored();
}

TEST_F(RecordingFault, AStoreThatIsAwayAtTheStart)
{
    PutStoreAway();
    Start();
    EXPECT_TRUE(WaitFor("spooled", 20));
    PutStoreBack();
    EXPECT_TRUE(WaitUntilResent());
    End();
    EXPECT_THAT(m_program->Errors(), testing::HasSubstr("lost 0"));
    ExpectAllStored();
}

TEST_F(RecordingFault, AStoreThatMayNotBeWritten)
{
    Start();
    EXPECT_TRUE(WaitFor("stored", 5));
    End();
    std::filesystem::permissions(StoreFile(), std::filesystem::perms::owner_read);
    Start();
    EXPECT_TRUE(WaitFor("spooled", 20));
    std::filesystem::permissions(StoreFile(), std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    EXPECT_TRUE(WaitUntilResent());
    End();
    ExpectAllStored();
}

TEST_F(RecordingFault, ADiskThatIsFullForAWhile)
{
    Start();
    EXPECT_TRUE(WaitFor("stored", 20));
    LimitFiles(4096);
    EXPECT_TRUE(WaitFor("spooled", 20));
    LimitFilesNoMore();
    EXPECT_TRUE(WaitUntilResent());
    End();
    EXPECT_THAT(m_program->Errors(), testing::HasSubstr("lost 0"));
    ExpectAllStored();
}

TEST_F(RecordingFault, ADiskThatTakesNotAByteForAWhile)
{
    Start();
    EXPECT_TRUE(WaitFor("stored", 20));
    LimitFiles(0);
    // Told on the standard error as it ends; meanwhile nothing is acknowledged, and what is sampled waits in memory.
    EXPECT_FALSE(m_program->ReadLine([](const std::string&) { return false; }, std::chrono::milliseconds(300)));
    LimitFilesNoMore();
    EXPECT_TRUE(WaitFor("stored", 20));
    EXPECT_TRUE(WaitUntilResent());
    End();
    EXPECT_THAT(m_program->Errors(), testing::HasSubstr("lost 0"));
    ExpectAllStored();
}

TEST_F(RecordingFault, AnEndWhileTheStoreIsAwayLosesNothing)
{
    Start();
    EXPECT_TRUE(WaitFor("stored", 5));
    PutStoreAway();
    EXPECT_TRUE(WaitFor("spooled", 5));
    End();
    PutStoreBack();
    ExpectAllKept();
    Start();
    EXPECT_TRUE(WaitUntilResent());
    End();
    ExpectAllStored();
}

TEST_F(RecordingFault, ASecondProcessOnTheSameSpoolIsRefused)
{
    Start();
    EXPECT_TRUE(WaitFor("stored", 1));
    zr::test::Process second({ZR_RECORDING_PROGRAM, (m_folder / "other.zrlog").string(), SpoolFolder().string(), "1",
                              std::to_string(kFactor), "1"});
    EXPECT_EQ(second.WaitForExit(), 1);
    EXPECT_THAT(second.Errors(), testing::HasSubstr("in use by process " + std::to_string(m_program->Pid())));
    End();
}

}  // namespace

// The recorder is killed at any moment, again and again: what it acknowledged is there, once.
#include "integration/recording/RecordingFixture.h"

#include <cstdlib>
#include <random>

namespace {

class RecordingKill : public zr::test::RecordingFixture {
protected:
    static int Kills()
    {
        const char* const text = std::getenv("ZR_RECORDING_KILLS");
        return text != nullptr ? std::atoi(text) : 60;
    }

    // What goes wrong in a start, by chance.
    enum class Fault { None, StoreAway, StoreAwayForAWhile, DiskFull, DiskFullForAWhile, kCount };

    void RunWith(Fault fault, int lines)
    {
        if (fault == Fault::StoreAway || fault == Fault::StoreAwayForAWhile) {
            PutStoreAway();
        }
        Start();
        if (fault == Fault::DiskFull || fault == Fault::DiskFullForAWhile) {
            EXPECT_TRUE(WaitForAny(1));
            LimitFiles(4096);
        }
        EXPECT_TRUE(WaitForAny(lines)) << m_program->Errors();
        if (fault == Fault::StoreAwayForAWhile) {
            PutStoreBack();
            EXPECT_TRUE(WaitForAny(lines));
        } else if (fault == Fault::DiskFullForAWhile) {
            LimitFilesNoMore();
            EXPECT_TRUE(WaitForAny(lines));
        }
        Kill();
        if (fault == Fault::StoreAway) {
            PutStoreBack();
        }
    }
};

TEST_F(RecordingKill, LosesAndDoublesNothingThatWasAcknowledged)
{
    const int kills = Kills();
    const unsigned seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    for (int kill = 0; kill < kills && !HasFailure(); ++kill) {
        const auto fault =
            random() % 2 == 0 ? Fault::None : static_cast<Fault>(random() % static_cast<unsigned>(Fault::kCount));
        SCOPED_TRACE("kill " + std::to_string(kill) + " with fault " + std::to_string(static_cast<int>(fault)));
        RunWith(fault, static_cast<int>(random() % 25));
        if (kill % 10 == 9) {
            ExpectAllKept();
        }
    }
    Start();
    EXPECT_TRUE(WaitUntilResent());
    End();
    ExpectAllStored();
    EXPECT_GT(m_lines, kills);
    std::printf("%d kills, %zu acknowledged times, seed %u\n", kills, m_acknowledged.size(), seed);
}

}  // namespace

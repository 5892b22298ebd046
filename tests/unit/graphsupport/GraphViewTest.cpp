#include "siblings/graphsupport/GraphView.h"

#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace zr::graph {
namespace {

class GraphViewTest : public testing::Test {
protected:
    GraphViewTest() { view.SetWhole({1000, 11000}, 100); }

    void ExpectInView(std::int64_t from, std::int64_t to) const
    {
        EXPECT_EQ(view.InView().from, from);
        EXPECT_EQ(view.InView().to, to);
    }

    GraphView view;
};

TEST_F(GraphViewTest, StartsWithTheWholeWindow)
{
    ExpectInView(1000, 11000);
    EXPECT_FALSE(view.IsZoomed());
    EXPECT_TRUE(view.History().empty());
}

TEST_F(GraphViewTest, ZoomsAreUndoneOneByOne)
{
    EXPECT_TRUE(view.ZoomTo({2000, 6000}));
    EXPECT_TRUE(view.ZoomTo({3000, 4000}));
    EXPECT_EQ(view.History().size(), 2u);
    EXPECT_TRUE(view.UndoLast());
    ExpectInView(2000, 6000);
    EXPECT_TRUE(view.UndoLast());
    ExpectInView(1000, 11000);
    EXPECT_FALSE(view.UndoLast());
}

TEST_F(GraphViewTest, AllZoomsAreUndoneAtOnce)
{
    view.ZoomTo({2000, 6000});
    view.ZoomTo({3000, 4000});
    EXPECT_TRUE(view.UndoAll());
    ExpectInView(1000, 11000);
    EXPECT_TRUE(view.History().empty());
    EXPECT_FALSE(view.UndoAll());
}

TEST_F(GraphViewTest, NothingOutsideTheWindowIsShown)
{
    view.ZoomTo({-5000, 6000});
    ExpectInView(1000, 6000);
    view.ZoomTo({9000, 50000});
    ExpectInView(9000, 11000);
}

TEST_F(GraphViewTest, AStretchInTheWrongOrderIsTurned)
{
    view.ZoomTo({6000, 2000});
    ExpectInView(2000, 6000);
}

TEST_F(GraphViewTest, NoLessThanTheLeastLengthIsShown)
{
    view.ZoomTo({5000, 5000});
    ExpectInView(4950, 5050);
    view.ZoomTo({10999, 11000});
    ExpectInView(10900, 11000);
    view.UndoAll();
    for (int i = 0; i < 100; ++i) {
        view.ZoomAbout(5000, 0.5);
    }
    EXPECT_EQ(view.InView().to - view.InView().from, 100);
}

TEST_F(GraphViewTest, AWindowShorterThanTheLeastLengthIsShownWhole)
{
    view.SetWhole({0, 50}, 100);
    ExpectInView(0, 50);
    EXPECT_FALSE(view.ZoomTo({10, 20}));
    EXPECT_FALSE(view.ZoomAbout(20, 0.5));
}

TEST_F(GraphViewTest, ZoomingKeepsTheTimeUnderThePointer)
{
    view.ZoomAbout(3000, 0.5);
    ExpectInView(2000, 7000);
    view.ZoomAbout(3000, 2.0);
    ExpectInView(1000, 11000);
}

TEST_F(GraphViewTest, TurnsOfTheWheelInARowAreOneZoom)
{
    view.ZoomAbout(3000, 0.5);
    view.ZoomAbout(3000, 0.5);
    EXPECT_EQ(view.History().size(), 1u);
    view.PanBy(10);
    view.ZoomAbout(3000, 0.5);
    EXPECT_EQ(view.History().size(), 2u);
}

TEST_F(GraphViewTest, TheWholeWindowHasNoHistory)
{
    view.ZoomTo({2000, 6000});
    view.ZoomTo({2000, 5000});
    view.ZoomAbout(3000, 100.0);
    EXPECT_FALSE(view.IsZoomed());
    EXPECT_TRUE(view.History().empty());
}

TEST_F(GraphViewTest, PanningKeepsTheLengthAndTheHistory)
{
    view.ZoomTo({2000, 6000});
    EXPECT_TRUE(view.PanBy(1000));
    ExpectInView(3000, 7000);
    EXPECT_TRUE(view.PanBy(100000));
    ExpectInView(7000, 11000);
    EXPECT_FALSE(view.PanBy(1));
    view.PanBy(-100000);
    ExpectInView(1000, 5000);
    EXPECT_EQ(view.History().size(), 1u);
}

TEST_F(GraphViewTest, TheSameWindowKeepsWhatIsInView)
{
    view.ZoomTo({2000, 6000});
    EXPECT_FALSE(view.SetWhole({1000, 11000}, 100));
    ExpectInView(2000, 6000);
    EXPECT_EQ(view.History().size(), 1u);
    EXPECT_FALSE(view.SetWhole({1000, 11000}, 8000));
    ExpectInView(1000, 9000);
}

TEST_F(GraphViewTest, TheSameWindowShownWholeByItsLeastLengthHasNoHistory)
{
    view.ZoomTo({2000, 6000});
    EXPECT_FALSE(view.SetWhole({1000, 11000}, 20000));
    EXPECT_FALSE(view.IsZoomed());
    EXPECT_TRUE(view.History().empty());
    EXPECT_FALSE(view.UndoLast());
}

// Any zooms, pans, undos and least lengths in any order.
TEST_F(GraphViewTest, HoldsItsPromisesInAnyOrder)
{
    std::mt19937 random(11);
    const auto time = [&] { return static_cast<std::int64_t>(random() % 16000) - 2000; };
    for (int i = 0; i < 20000; ++i) {
        const std::size_t before = view.History().size();
        bool isOneMore = false;
        switch (random() % 8) {
            case 0:
            case 1:
                isOneMore = view.ZoomTo({time(), time()});
                break;
            case 2:
                isOneMore = view.ZoomAbout(time(), random() % 2 == 0 ? 0.7 : 1.4);
                break;
            case 3:
                view.PanBy(time() - 6000);
                break;
            case 4:
                // As a drag does.
                if (view.IsZoomed()) {
                    view.Show({time(), time()});
                }
                break;
            case 5:
                view.UndoLast();
                break;
            case 6:
                view.SetWhole({1000, 11000}, random() % 4 == 0 ? 3000 : 100);
                break;
            default:
                if (random() % 10 == 0) {
                    view.UndoAll();
                    ExpectInView(1000, 11000);
                }
        }
        const Zoom shown = view.InView();
        ASSERT_GE(shown.from, 1000);
        ASSERT_LE(shown.to, 11000);
        ASSERT_GE(shown.to - shown.from, 100);
        ASSERT_LE(view.History().size(), before + (isOneMore ? 1 : 0));
        ASSERT_TRUE(view.IsZoomed() || view.History().empty());
        if (i % 50 == 0) {
            GraphView undone = view;
            for (auto steps = undone.History().size(); steps > 0; --steps) {
                ASSERT_TRUE(undone.UndoLast());
            }
            ASSERT_FALSE(undone.IsZoomed());
        }
    }
}

TEST_F(GraphViewTest, AnotherWindowForgetsTheHistory)
{
    view.ZoomTo({2000, 6000});
    EXPECT_TRUE(view.SetWhole({1000, 12000}, 100));
    ExpectInView(1000, 12000);
    EXPECT_TRUE(view.History().empty());
}

TEST_F(GraphViewTest, AWindowWithoutLengthShowsNothing)
{
    view.SetWhole({5000, 5000}, 100);
    EXPECT_TRUE(view.IsEmpty());
    EXPECT_FALSE(view.ZoomTo({1, 2}));
    EXPECT_FALSE(view.ZoomAbout(1, 0.5));
    EXPECT_FALSE(view.PanBy(1));
    EXPECT_FALSE(view.UndoAll());
}

TEST_F(GraphViewTest, AFactorThatIsNoNumberDoesNothing)
{
    EXPECT_FALSE(view.ZoomAbout(3000, 0.0));
    EXPECT_FALSE(view.ZoomAbout(3000, -1.0));
    EXPECT_FALSE(view.ZoomAbout(3000, std::numeric_limits<double>::quiet_NaN()));
}

}  // namespace
}  // namespace zr::graph

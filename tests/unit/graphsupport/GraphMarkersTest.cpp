#include "siblings/graphsupport/GraphMarkers.h"

#include <gtest/gtest.h>

namespace zr::graph {
namespace {

TEST(GraphMarkers, TheFirstIsSetThenTheSecondThenTheNearerMoves)
{
    GraphMarkers markers;
    markers.SetNext(100);
    EXPECT_EQ(markers.At(0), 100);
    EXPECT_FALSE(markers.At(1));
    EXPECT_FALSE(markers.AreBoth());
    markers.SetNext(200);
    EXPECT_EQ(markers.At(1), 200);
    markers.SetNext(190);
    EXPECT_EQ(markers.At(0), 100);
    EXPECT_EQ(markers.At(1), 190);
    markers.SetNext(120);
    EXPECT_EQ(markers.At(0), 120);
}

TEST(GraphMarkers, TheStretchBetweenIsInOrder)
{
    GraphMarkers markers;
    markers.Set(0, 200);
    EXPECT_EQ(markers.Between().to, 0);
    markers.Set(1, 100);
    EXPECT_EQ(markers.Between().from, 100);
    EXPECT_EQ(markers.Between().to, 200);
}

TEST(GraphMarkers, RemovingTellsWhetherThereWasOne)
{
    GraphMarkers markers;
    EXPECT_FALSE(markers.Remove());
    markers.SetNext(5);
    EXPECT_TRUE(markers.Remove());
    EXPECT_FALSE(markers.At(0));
}

TEST(GraphMarkers, ThereAreTwoOnly)
{
    GraphMarkers markers;
    markers.Set(2, 5);
    markers.Set(-1, 5);
    EXPECT_FALSE(markers.At(2));
    EXPECT_FALSE(markers.At(-1));
    EXPECT_FALSE(markers.Remove());
}

}  // namespace
}  // namespace zr::graph

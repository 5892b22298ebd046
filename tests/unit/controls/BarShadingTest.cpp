#include "controls/BarShading.h"

#include <gtest/gtest.h>

namespace zr::controls {
namespace {

constexpr Rgb kGreen = MakeRgb(0, 200, 50);
constexpr Rgb kRed = MakeRgb(220, 0, 0);
constexpr Rgb kFace = MakeRgb(240, 240, 240);
constexpr std::uint32_t kOpaque = 0xff000000;

Bitmap MakeBitmap(int width, int height)
{
    return {width, height,
            std::vector<std::uint32_t>(static_cast<std::size_t>(width) * static_cast<std::size_t>(height),
                                       kOpaque | kFace)};
}

std::uint32_t At(const Bitmap& bitmap, int x, int y)
{
    return bitmap.pixels.at(static_cast<std::size_t>(y) * static_cast<std::size_t>(bitmap.width) +
                            static_cast<std::size_t>(x));
}

// Of an opaque pixel.
std::uint32_t Pixel(unsigned red, unsigned green, unsigned blue)
{
    return kOpaque | MakeRgb(red, green, blue);
}

TEST(Shade, RunsFromTheBrightToTheDarkFormFromTopToBottom)
{
    Bitmap bitmap = MakeBitmap(3, 10);
    Shade(bitmap, {0, 0, 3, 10}, kGreen, BarAxis::Horizontal);
    // Green 240 to 160 in steps of -8, blue 60 to 40 in steps of -2.
    EXPECT_EQ(At(bitmap, 0, 0), Pixel(0, 240, 60));
    EXPECT_EQ(At(bitmap, 0, 1), Pixel(0, 232, 58));
    EXPECT_EQ(At(bitmap, 1, 5), Pixel(0, 200, 50));
    EXPECT_EQ(At(bitmap, 2, 9), Pixel(0, 168, 42));
}

TEST(Shade, TruncatesEveryPixelAndNotTheStep)
{
    Bitmap bitmap = MakeBitmap(1, 7);
    Shade(bitmap, {0, 0, 1, 7}, MakeRgb(220, 0, 10), BarAxis::Horizontal);
    // 220 * 1.2 is above 255; dark 176, step -79 / 7 = -11.2857. Of 10: 12 to 8, step -0.5714.
    const unsigned reds[] = {255, 243, 232, 221, 209, 198, 187};
    const unsigned blues[] = {12, 11, 10, 10, 9, 9, 8};
    for (int y = 0; y < 7; ++y) {
        EXPECT_EQ(At(bitmap, 0, y), Pixel(reds[y], 0, blues[y])) << y;
    }
}

TEST(Shade, TruncatesTheBrightAndTheDarkForm)
{
    Bitmap bitmap = MakeBitmap(1, 1);
    Shade(bitmap, {0, 0, 1, 1}, MakeRgb(3, 99, 254), BarAxis::Horizontal);
    // 3.6, 118.8 and 304.8.
    EXPECT_EQ(At(bitmap, 0, 0), Pixel(3, 118, 255));
}

TEST(Shade, RunsFromLeftToRightOfAnUprightBar)
{
    Bitmap bitmap = MakeBitmap(10, 3);
    Shade(bitmap, {0, 0, 10, 3}, kGreen, BarAxis::Upright);
    EXPECT_EQ(At(bitmap, 0, 0), Pixel(0, 240, 60));
    EXPECT_EQ(At(bitmap, 1, 1), Pixel(0, 232, 58));
    EXPECT_EQ(At(bitmap, 9, 2), Pixel(0, 168, 42));
}

TEST(Shade, PaintsItsRectangleAloneWithoutTheRightAndBottomEnd)
{
    Bitmap bitmap = MakeBitmap(5, 5);
    Shade(bitmap, {1, 1, 3, 4}, kGreen, BarAxis::Horizontal);
    EXPECT_EQ(At(bitmap, 0, 1), kOpaque | kFace);
    EXPECT_EQ(At(bitmap, 1, 0), kOpaque | kFace);
    EXPECT_EQ(At(bitmap, 1, 1), Pixel(0, 240, 60));
    EXPECT_NE(At(bitmap, 2, 3), kOpaque | kFace);
    EXPECT_EQ(At(bitmap, 3, 1), kOpaque | kFace);
    EXPECT_EQ(At(bitmap, 1, 4), kOpaque | kFace);
}

TEST(Shade, LeavesOutWhatLiesOutsideTheBitmap)
{
    for (const BarAxis axis : {BarAxis::Horizontal, BarAxis::Upright}) {
        Bitmap bitmap = MakeBitmap(4, 4);
        Shade(bitmap, {-3, -3, 7, 7}, kGreen, axis);
        // The fourth of ten steps.
        EXPECT_EQ(At(bitmap, 0, 0), Pixel(0, 216, 54));
        EXPECT_EQ(At(bitmap, 3, 3), Pixel(0, 192, 48));
        const Bitmap before = bitmap;
        Shade(bitmap, {9, 9, 20, 20}, kRed, axis);
        Shade(bitmap, {3, 0, 1, 4}, kRed, axis);
        Shade(bitmap, {0, 2, 4, 2}, kRed, axis);
        EXPECT_EQ(bitmap.pixels, before.pixels);
    }
}

TEST(Blend, RunsFromTheFirstColourToTheLastOneInclusive)
{
    Bitmap bitmap = MakeBitmap(13, 1);
    Blend(bitmap, {1, 0, 11, 1}, MakeRgb(0, 200, 50), MakeRgb(200, 0, 60), BarAxis::Horizontal);
    EXPECT_EQ(At(bitmap, 0, 0), kOpaque | kFace);
    // The bright form of 0,200,50, of 100,100,55 and of 200,0,60.
    EXPECT_EQ(At(bitmap, 1, 0), Pixel(0, 240, 60));
    EXPECT_EQ(At(bitmap, 6, 0), Pixel(120, 120, 66));
    EXPECT_EQ(At(bitmap, 11, 0), Pixel(240, 0, 72));
    EXPECT_EQ(At(bitmap, 12, 0), kOpaque | kFace);
}

TEST(Blend, ShadesEachColumn)
{
    Bitmap bitmap = MakeBitmap(5, 10);
    Blend(bitmap, {0, 0, 4, 10}, kGreen, kGreen, BarAxis::Horizontal);
    for (int x = 0; x < 5; ++x) {
        EXPECT_EQ(At(bitmap, x, 0), Pixel(0, 240, 60));
        EXPECT_EQ(At(bitmap, x, 9), Pixel(0, 168, 42));
    }
}

TEST(Blend, TruncatesTheColourOfAColumn)
{
    Bitmap bitmap = MakeBitmap(4, 1);
    Blend(bitmap, {0, 0, 3, 1}, MakeRgb(0, 0, 0), MakeRgb(100, 10, 0), BarAxis::Horizontal);
    // 33.3 is 33, of which the bright form is 39.6; 66.7 is 66, of which it is 79.2; 3.3 and 6.7 likewise.
    EXPECT_EQ(At(bitmap, 1, 0), Pixel(39, 3, 0));
    EXPECT_EQ(At(bitmap, 2, 0), Pixel(79, 7, 0));
    EXPECT_EQ(At(bitmap, 3, 0), Pixel(120, 12, 0));
}

TEST(Blend, RunsOverTheRowsOfAnUprightBarFromTopToBottom)
{
    Bitmap bitmap = MakeBitmap(10, 13);
    Blend(bitmap, {0, 1, 10, 11}, MakeRgb(0, 200, 50), MakeRgb(200, 0, 60), BarAxis::Upright);
    EXPECT_EQ(At(bitmap, 0, 0), kOpaque | kFace);
    EXPECT_EQ(At(bitmap, 0, 1), Pixel(0, 240, 60));
    EXPECT_EQ(At(bitmap, 1, 1), Pixel(0, 232, 58));
    EXPECT_EQ(At(bitmap, 0, 6), Pixel(120, 120, 66));
    EXPECT_EQ(At(bitmap, 0, 11), Pixel(240, 0, 72));
    EXPECT_EQ(At(bitmap, 0, 12), kOpaque | kFace);
}

TEST(Blend, LeavesOutWhatLiesOutsideTheBitmap)
{
    for (const BarAxis axis : {BarAxis::Horizontal, BarAxis::Upright}) {
        Bitmap bitmap = MakeBitmap(4, 4);
        Blend(bitmap, {-100000000, -100000000, 100000000, 100000000}, kRed, kGreen, axis);
        EXPECT_NE(At(bitmap, 0, 0), kOpaque | kFace);
        const Bitmap before = bitmap;
        Blend(bitmap, {10, 10, 20, 20}, kRed, kGreen, axis);
        Blend(bitmap, {3, 3, 1, 1}, kRed, kGreen, axis);
        EXPECT_EQ(bitmap.pixels, before.pixels);
    }
}

TEST(Blend, PaintsOneColumnWhenItHasNoWidth)
{
    Bitmap bitmap = MakeBitmap(3, 1);
    Blend(bitmap, {1, 0, 1, 1}, kGreen, kRed, BarAxis::Horizontal);
    EXPECT_EQ(At(bitmap, 0, 0), kOpaque | kFace);
    EXPECT_EQ(At(bitmap, 1, 0), Pixel(0, 240, 60));
    EXPECT_EQ(At(bitmap, 2, 0), kOpaque | kFace);
}

class BarPictureTest : public ::testing::Test {
protected:
    BarPictureTest()
    {
        content.size = {20, 10};
        content.background = kFace;
        content.stretches = {{0, 8, kGreen, kGreen, false}, {8, 12, kGreen, kRed, true}, {12, 18, kRed, kRed, false}};
    }

    BarPictureContent content;
    BarPicture picture;
};

TEST_F(BarPictureTest, HasNoPixelsAtFirst)
{
    EXPECT_EQ(picture.Version(), 0u);
    EXPECT_TRUE(picture.Pixels().pixels.empty());
}

TEST_F(BarPictureTest, PaintsTheStretchesOnTheBackground)
{
    EXPECT_TRUE(picture.Paint(content));
    EXPECT_EQ(picture.Pixels().width, 20);
    EXPECT_EQ(picture.Pixels().height, 10);
    EXPECT_EQ(At(picture.Pixels(), 0, 0), Pixel(0, 240, 60));
    EXPECT_EQ(At(picture.Pixels(), 7, 9), Pixel(0, 168, 42));
    EXPECT_EQ(At(picture.Pixels(), 8, 0), Pixel(0, 240, 60));
    EXPECT_EQ(At(picture.Pixels(), 10, 0), Pixel(132, 120, 30));
    EXPECT_EQ(At(picture.Pixels(), 17, 0), Pixel(255, 0, 0));
    EXPECT_EQ(At(picture.Pixels(), 18, 0), kOpaque | kFace);
}

TEST_F(BarPictureTest, KeepsItsPixelsWhileTheContentIsTheSame)
{
    picture.Paint(content);
    const auto version = picture.Version();
    EXPECT_FALSE(picture.Paint(content));
    EXPECT_EQ(picture.Version(), version);
}

TEST_F(BarPictureTest, IsPaintedAnewForAnyOtherContent)
{
    picture.Paint(content);
    const auto painted = [&](auto change) {
        change();
        const auto version = picture.Version();
        return picture.Paint(content) && picture.Version() != version;
    };
    EXPECT_TRUE(painted([&] { content.size.cx = 21; }));
    EXPECT_TRUE(painted([&] { content.size.cy = 11; }));
    EXPECT_TRUE(painted([&] { content.background = 0; }));
    EXPECT_TRUE(painted([&] { content.axis = BarAxis::Upright; }));
    EXPECT_TRUE(painted([&] { content.stretches[0].first = kRed; }));
    EXPECT_TRUE(painted([&] { content.stretches[1].last = kFace; }));
    EXPECT_TRUE(painted([&] { content.stretches[2].to = 19; }));
    EXPECT_TRUE(painted([&] { content.stretches.pop_back(); }));
}

TEST_F(BarPictureTest, BearsASizeOfNothing)
{
    content.size = {0, 0};
    EXPECT_TRUE(picture.Paint(content));
    content.size = {-5, 10};
    EXPECT_TRUE(picture.Paint(content));
    EXPECT_TRUE(picture.Pixels().pixels.empty());
}

}  // namespace
}  // namespace zr::controls

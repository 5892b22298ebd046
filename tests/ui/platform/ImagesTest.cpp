#include "platform/ui/Images.h"

#include "platform/ui/ImageTable.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QRegularExpression>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

using zr::ui::ImageEntry;

constexpr const char* kFolder = ZR_RESOURCES "/images";
const QColor kLight(0xf0, 0xf0, 0xf0);
const QColor kDark(0x20, 0x20, 0x20);

QImage Rendered(const QIcon& icon, int size, const QColor& background)
{
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(background);
    QPainter painter(&image);
    icon.paint(&painter, image.rect());
    return image;
}

// Relative luminance and contrast by WCAG 2.1.
double Luminance(const QColor& colour)
{
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(static_cast<double>(colour.redF())) + 0.7152 * linear(static_cast<double>(colour.greenF())) +
           0.0722 * linear(static_cast<double>(colour.blueF()));
}

double Contrast(const QColor& first, const QColor& second)
{
    const double a = Luminance(first);
    const double b = Luminance(second);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

// Share of the pixels that stand out from the background as graphics must.
double Visible(const QImage& image, const QColor& background)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            count += Contrast(image.pixelColor(x, y), background) >= 3.0 ? 1 : 0;
        }
    }
    return static_cast<double>(count) / (image.width() * image.height());
}

std::vector<std::string> Titles()
{
    std::vector<std::string> titles;
    for (const auto& file : std::filesystem::directory_iterator(kFolder)) {
        titles.push_back(file.path().stem().string());
    }
    std::sort(titles.begin(), titles.end());
    return titles;
}

class ImagesTest : public ::testing::Test {
protected:
    ImagesTest() { zr::ui::SetImageFolder(kFolder); }
    ~ImagesTest() override { zr::ui::SetImageFolder({}); }
};

class ImagesNumbered : public ImagesTest, public ::testing::WithParamInterface<ImageEntry> {};

TEST_P(ImagesNumbered, ArePaintedAtEverySize)
{
    const QIcon icon = zr::ui::Image(GetParam().number, GetParam().position);
    ASSERT_FALSE(icon.isNull());
    for (const int size : {16, 24, 48}) {
        EXPECT_GT(Visible(Rendered(icon, size, kLight), kLight), 0.03) << size;
    }
}

INSTANTIATE_TEST_SUITE_P(Images, ImagesNumbered, ::testing::ValuesIn(zr::ui::kImageTable));

class ImagesNamed : public ImagesTest, public ::testing::WithParamInterface<std::string> {};

TEST_P(ImagesNamed, AreSeenOnLightAndOnDark)
{
    const QIcon icon = zr::ui::NamedImage(QString::fromStdString(GetParam()));
    ASSERT_FALSE(icon.isNull());
    for (const QColor& background : {kLight, kDark}) {
        for (const int size : {16, 24, 48}) {
            EXPECT_GT(Visible(Rendered(icon, size, background), background), 0.03) << size;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Images, ImagesNamed, ::testing::ValuesIn(Titles()));

TEST_F(ImagesTest, HasEachNumberAndPositionOnce)
{
    std::set<std::pair<unsigned, int>> seen;
    for (const ImageEntry& entry : zr::ui::kImageTable) {
        EXPECT_TRUE(seen.emplace(entry.number, entry.position).second) << entry.number;
    }
}

TEST_F(ImagesTest, KnowsTheNumbersOfAllButtonsAndStrips)
{
    for (const unsigned number : {65u, 66u, 73u, 78u, 79u, 81u, 99u, 102u, 103u, 118u, 125u, 128u}) {
        EXPECT_FALSE(zr::ui::Image(number).isNull()) << number;
    }
    for (const unsigned strip : {63u, 64u, 98u}) {
        for (const int position : {0, 1, 11, 12, 13}) {
            EXPECT_FALSE(zr::ui::Image(strip, position).isNull()) << strip << ' ' << position;
        }
    }
}

TEST_F(ImagesTest, IsEmptyForANumberThatIsNotThere)
{
    EXPECT_TRUE(zr::ui::Image(0).isNull());
    EXPECT_TRUE(zr::ui::Image(66, 1).isNull());
}

TEST_F(ImagesTest, IsEmptyForANameThatIsNotThereOrLeadsOut)
{
    EXPECT_TRUE(zr::ui::NamedImage(QStringLiteral("nosuchdevice")).isNull());
    EXPECT_TRUE(zr::ui::NamedImage(QString()).isNull());
    EXPECT_TRUE(zr::ui::NamedImage(QStringLiteral("../images/ok")).isNull());
}

TEST_F(ImagesTest, IsEmptyWithoutAFolder)
{
    zr::ui::SetImageFolder({});
    EXPECT_TRUE(zr::ui::Image(66).isNull());
}

// Each picture that a device profile names.
TEST_F(ImagesTest, HasThePicturesOfTheDeviceProfiles)
{
    const QRegularExpression attribute(QStringLiteral("\\bimage=\"([^\"]*)\""));
    int found = 0;
    for (const auto& entry : std::filesystem::directory_iterator(ZR_RESOURCES "/devices")) {
        QFile file(QString::fromStdString(entry.path().string()));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const auto match = attribute.match(QString::fromUtf8(file.readAll()));
        if (match.hasMatch()) {
            ++found;
            EXPECT_FALSE(zr::ui::NamedImage(match.captured(1)).isNull()) << entry.path();
        }
    }
    EXPECT_GT(found, 10);
    EXPECT_FALSE(zr::ui::NamedImage(QStringLiteral("device")).isNull());  // of a profile that names none
}

// All of them on one sheet, light and dark, for the eye: into the folder of ZR_PICTURES if it is set.
TEST_F(ImagesTest, FillASheet)
{
    const auto titles = Titles();
    constexpr int kCell = 112;
    constexpr int kColumns = 8;
    const int rows = (static_cast<int>(titles.size()) + kColumns - 1) / kColumns;
    QImage sheet(2 * kColumns * kCell, rows * kCell, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&sheet);
    for (int half = 0; half < 2; ++half) {
        const QColor background = half == 0 ? kLight : kDark;
        painter.fillRect(half * kColumns * kCell, 0, kColumns * kCell, sheet.height(), background);
        painter.setPen(half == 0 ? Qt::black : Qt::white);
        for (int i = 0; i < static_cast<int>(titles.size()); ++i) {
            const QString title = QString::fromStdString(titles[static_cast<std::size_t>(i)]);
            const QIcon icon = zr::ui::NamedImage(title);
            const int x = (half * kColumns + i % kColumns) * kCell;
            const int y = i / kColumns * kCell;
            icon.paint(&painter, x + 4, y + 8, 64, 64);
            icon.paint(&painter, x + 72, y + 8, 24, 24);
            icon.paint(&painter, x + 72, y + 44, 16, 16);
            painter.drawText(x + 4, y + 92, title);
        }
    }
    painter.end();
    EXPECT_GT(rows, 3);
    const QString folder = qEnvironmentVariable("ZR_PICTURES");
    if (!folder.isEmpty()) {
        ASSERT_TRUE(QDir().mkpath(folder) && sheet.save(folder + QStringLiteral("/icons.png")));
    }
}

}  // namespace

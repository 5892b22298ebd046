// The application that every window test runs in: off screen, one style and font on every machine.
#include <gtest/gtest.h>
#include <QApplication>
#include <QFont>
#include <QStyleFactory>

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(12);
    QApplication::setFont(font);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

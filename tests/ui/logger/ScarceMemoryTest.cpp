// Copied tables while a program that pastes them asks for more memory than there is.
#include "ScarceNew.h"
#include "ui/logger/ExplorerFixture.h"

#include <cstdint>
#include <QClipboard>
#include <QMimeData>

namespace zr::logger {
namespace {

class ScarceMemoryTest : public ExplorerFixture {
protected:
    ~ScarceMemoryTest() override { test::largestThereIs = SIZE_MAX; }
};

TEST_F(ScarceMemoryTest, APasteGetsNothingOfAFormThatThereIsNoMemoryFor)
{
    RecordVoltages(kDay, std::vector<double>(1000, 2300));
    OpenWeek();
    window.OnEditCopy();
    const QMimeData& copied = *QApplication::clipboard()->mimeData();
    const qsizetype whole = copied.data("text/html").size();
    ASSERT_GT(whole, 40000);
    test::largestThereIs = 16384;
    EXPECT_TRUE(copied.data("text/html").isEmpty());
    EXPECT_TRUE(copied.data("text/plain").isEmpty());
    test::largestThereIs = SIZE_MAX;
    // What is on the clipboard is still there.
    EXPECT_EQ(copied.data("text/html").size(), whole);
    EXPECT_TRUE(copied.text().contains("230.0"));
    EXPECT_EQ(Cell(0, 1), "230.0");
}

}  // namespace
}  // namespace zr::logger

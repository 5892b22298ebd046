#include "logger/GraphMenu.h"

#include "unit/logger/LoggedFixture.h"

namespace zr::logger {
namespace {

class GraphMenuTest : public LoggedFixture {
protected:
    // "number:text", with * before one that is marked and ! before one that is grey; - for a separator.
    static std::vector<std::string> Menu(int mode, bool hasZooms)
    {
        std::vector<std::string> lines;
        for (const ExplorerMenuEntry& entry : GraphMenu(mode, hasZooms)) {
            lines.push_back(entry.command == 0
                                ? "-"
                                : std::string(entry.isChecked ? "*" : "") + (entry.isEnabled ? "" : "!") +
                                      std::to_string(entry.command) + ":" + Narrow(entry.text));
        }
        return lines;
    }
    using Texts = std::vector<std::string>;
};

TEST_F(GraphMenuTest, OffersModesOptionsAndPreviewAndNoPanBeforeAZoom)
{
    EXPECT_EQ(Menu(0, false),
              (Texts{"*101:Show values", "102:Zoom", "!103:Pan", "-", "106:Options...", "107:Print preview..."}));
}

TEST_F(GraphMenuTest, OffersToUndoZoomsWhereThereAreAny)
{
    EXPECT_EQ(Menu(2, true), (Texts{"101:Show values", "102:Zoom", "*103:Pan", "-", "104:Undo all zooms",
                                    "105:Undo last zoom", "-", "106:Options...", "107:Print preview..."}));
}

TEST_F(GraphMenuTest, MarksTheModeInForce)
{
    EXPECT_EQ(Menu(1, false)[1], "*102:Zoom");
    EXPECT_EQ(Menu(2, false)[2], "*!103:Pan");
    EXPECT_EQ(Menu(7, false)[0], "101:Show values");
}

}  // namespace
}  // namespace zr::logger

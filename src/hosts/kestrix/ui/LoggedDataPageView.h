// The page that tells what is recorded, and where it goes.
#pragma once

#include "hosts/kestrix/LoggedDataPage.h"
#include "hosts/kestrix/ui/PageView.h"

#include <functional>
#include <vector>

namespace zr::desktop {

// The stores with their states, and a table of the data sets.
class LoggedDataPageView : public PageView {
public:
    using Source = std::function<LoggedDataPage()>;
    // source: asked now and at each update.
    LoggedDataPageView(QWidget* parent, Source source);

    void UpdateValues() override;
    [[nodiscard]] bool HasValues() const override { return false; }
    [[nodiscard]] const LoggedDataPage& Shown() const { return m_shown; }

protected:
    int Place(int width) override;

private:
    struct Column {
        QString heading;
        QString unit;
        Qt::Alignment alignment = Qt::AlignLeft;
        std::vector<QString> cells;  // a row each
    };
    // What stands below a row, or nothing.
    using Notes = std::vector<QString>;

    int PlaceHeader(int width);
    int PlaceStores(int top, int width);
    int PlaceDataSets(int top, int width);
    int PlaceSection(const QString& title, int top, int width);
    int PlaceTable(const std::vector<Column>& columns, const Notes& notes, int top, int width);
    [[nodiscard]] std::vector<int> WidthsFor(const std::vector<Column>& columns, int room) const;
    [[nodiscard]] std::vector<QString> Cells(ZRBasicString LoggedDataPage::DataSet::*field) const;
    [[nodiscard]] std::vector<QString> Cells(ZRBasicString LoggedDataPage::Store::*field) const;

    Source m_source;
    LoggedDataPage m_shown;
};

}  // namespace zr::desktop

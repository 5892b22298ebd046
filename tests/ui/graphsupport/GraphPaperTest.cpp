// A graph as it comes out of a printer, and on the clipboard.
#include "platform/ui/CDC.h"
#include "platform/ui/Clipboard.h"
#include "ui/graphsupport/GraphFixture.h"

#include <QClipboard>
#include <QFile>
#include <QMimeData>
#include <QPageLayout>
#include <QPainter>
#include <QPrinter>
#include <QProcess>
#include <QRegularExpression>

namespace zr::graph {
namespace {

class GraphPaperTest : public GraphFixture {
protected:
    GraphPaperTest() { QApplication::clipboard()->clear(); }

    QString File() const { return QString::fromStdString((folder / "graph.pdf").string()); }
    void Print(bool monochrome)
    {
        QPrinter printer(QPrinter::HighResolution);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(File());
        printer.setPageOrientation(QPageLayout::Landscape);
        QPainter painter(&printer);
        CDC dc(painter, printer);
        const int width = dc.GetDeviceCaps(ui::HORZRES);
        const int height = dc.GetDeviceCaps(ui::VERTRES);
        graph->Print(&dc, QRect(width / 20, height / 20, width * 9 / 10, height * 9 / 10), monochrome);
        painter.end();
        graph->Regenerate(nullptr, true);
    }
    static QString Output(const QString& program, const QStringList& arguments)
    {
        QProcess reader;
        reader.start(program, arguments);
        EXPECT_TRUE(reader.waitForFinished()) << program.toStdString() << " is needed";
        return QString::fromUtf8(reader.readAllStandardOutput());
    }
    QString Words() const { return Output("pdftotext", {"-layout", File(), "-"}); }
    // Of the page, at 100 dots an inch.
    QImage Page() const
    {
        const QString name = QString::fromStdString((folder / "page").string());
        Output("pdftoppm", {"-r", "100", "-png", "-singlefile", File(), name});
        return QImage(name + ".png");
    }
    static const QMimeData& Copied() { return *QApplication::clipboard()->mimeData(); }
    static QImage CopiedPicture() { return qvariant_cast<QImage>(Copied().imageData()); }
    // Pixels that are coloured at all.
    static int Coloured(const QImage& image)
    {
        int count = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QRgb pixel = image.pixel(x, y);
                count += qRed(pixel) > qBlue(pixel) + 60 || qBlue(pixel) > qRed(pixel) + 60 ? 1 : 0;
            }
        }
        return count;
    }
    void DrawTwo()
    {
        RecordRise();
        RecordDay(u"G.PF", [](int minute) { return 0.5 + minute / 3000.0; });
        Draw({{u"G.U", 0, kRed, 220.0, 240.0}, {u"G.PF", 1, kBlue}});
    }
};

TEST_F(GraphPaperTest, PrintsTitlesUnitsAndTicksAsTexts)
{
    DrawTwo();
    Print(false);
    const QString words = Words();
    for (const char* text : {"Voltage", "Power factor", "V", "230", "0.75", "12:00", "2002"}) {
        EXPECT_TRUE(words.contains(text)) << text << " is not in:\n" << words.toStdString();
    }
}

TEST_F(GraphPaperTest, PrintsCurvesInTheirColours)
{
    DrawTwo();
    Print(false);
    const QImage page = Page();
    ASSERT_FALSE(page.isNull());
    EXPECT_TRUE(test::KeepPicture(page, "graph-printed.png"));
    EXPECT_GT(Coloured(page), 500);
}

TEST_F(GraphPaperTest, PrintsInBlackAndWhite)
{
    DrawTwo();
    Print(true);
    const QImage page = Page();
    ASSERT_FALSE(page.isNull());
    EXPECT_TRUE(test::KeepPicture(page, "graph-printed-black.png"));
    EXPECT_EQ(Coloured(page), 0);
    EXPECT_TRUE(Words().contains("Voltage"));
}

TEST_F(GraphPaperTest, PrintsNothingWhileTheDataAreReplaced)
{
    DrawTwo();
    graph->invalidData = true;
    Print(false);
    EXPECT_TRUE(Words().trimmed().isEmpty());
}

TEST_F(GraphPaperTest, PrintsManyRecordsAsAShortDrawing)
{
    std::vector<double> values;
    for (int i = 0; i < 86400; ++i) {
        values.push_back(i % 2 == 0 ? 225.0 : 235.0);
    }
    RecordEvery(1, u"G.U", values);
    Draw({{u"G.U", 0, kRed, 220.0, 240.0}});
    Print(false);
    EXPECT_LT(QFile(File()).size(), 2000000);
    EXPECT_GT(Coloured(Page()), 100000);
}

TEST_F(GraphPaperTest, CopiesPixelsOnAWhiteGround)
{
    DrawRise();
    graph->setPalette(QPalette(Qt::black));
    ASSERT_TRUE(graph->CopyToClipboard(false));
    const QImage picture = CopiedPicture();
    EXPECT_EQ(picture.size(), graph->size());
    EXPECT_EQ(picture.pixel(0, picture.height() - 1), 0xffffffffU);
    EXPECT_GT(Coloured(picture), 300);
    EXPECT_EQ(picture.dotsPerMeterX(), 3780);
    EXPECT_TRUE(test::KeepPicture(picture, "graph-copied.png"));
}

TEST_F(GraphPaperTest, CopiesADrawingForProgramsThatTakeOne)
{
    DrawTwo();
    ASSERT_TRUE(graph->CopyToClipboard(false));
    const QByteArray drawing = Copied().data("image/svg+xml");
    EXPECT_TRUE(drawing.contains("<svg"));
    EXPECT_TRUE(drawing.contains("</svg>"));
    EXPECT_TRUE(drawing.contains("Voltage"));
    EXPECT_TRUE(drawing.contains("<polyline") || drawing.contains("<path"));
    EXPECT_TRUE(drawing.contains("#c00000"));
    const QByteArray page = Copied().data("application/pdf");
    EXPECT_TRUE(page.startsWith("%PDF"));
}

TEST_F(GraphPaperTest, CopiesInBlackAndWhiteByDashes)
{
    RecordDay(u"G.U", [](int) { return 225.0; });
    RecordDay(u"G.V", [](int) { return 235.0; });
    Draw({{u"G.U", 0, kRed, 220.0, 240.0}, {u"G.V", 0, kBlue, 220.0, 240.0}});
    ASSERT_TRUE(graph->CopyToClipboard(true));
    EXPECT_EQ(Coloured(CopiedPicture()), 0);
    const QByteArray drawing = Copied().data("image/svg+xml");
    EXPECT_FALSE(drawing.contains("#c00000"));
    EXPECT_TRUE(drawing.contains("stroke-dasharray"));
}

TEST_F(GraphPaperTest, CopiesNothingThatBelongsToThePointer)
{
    DrawRise();
    ASSERT_TRUE(graph->CopyToClipboard(false));
    const QImage before = CopiedPicture();
    Hover(QPoint(300, 200));
    graph->SetMode(1);
    Press(QPoint(300, 200));
    DragTo(QPoint(400, 200));
    ASSERT_TRUE(graph->CopyToClipboard(false));
    EXPECT_EQ(CopiedPicture(), before);
}

TEST_F(GraphPaperTest, CopiesAGraphWithoutCurves)
{
    Draw({});
    EXPECT_TRUE(graph->CopyToClipboard(false));
    EXPECT_EQ(CopiedPicture().size(), graph->size());
}

TEST_F(GraphPaperTest, PrintsOnOnePage)
{
    DrawTwo();
    Print(false);
    EXPECT_TRUE(Output("pdfinfo", {File()}).contains(QRegularExpression("Pages: +1\n")));
}

TEST_F(GraphPaperTest, PrintsTheDaysOfItsTimes)
{
    RecordRise();
    Draw({{u"G.U", 0, kRed}}, logger::kEveryRecord, 3);
    Print(true);
    const QString words = Words();
    for (const char* text : {"00:00", "12:00", "30/12/2002", "31/12/2002", "01/01/2003"}) {
        EXPECT_TRUE(words.contains(text)) << text << " is not in:\n" << words.toStdString();
    }
}

// What was copied as lines lies where the copied pixels do.
TEST_F(GraphPaperTest, CopiesAPageThatIsAsThePixels)
{
    DrawTwo();
    ASSERT_TRUE(graph->CopyToClipboard(false));
    QFile file(File());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(Copied().data("application/pdf"));
    file.close();
    EXPECT_TRUE(Output("pdfinfo", {File()}).contains(QRegularExpression("Page size: +450 x 300 pts")));
    const QString words = Words();
    for (const char* text : {"Voltage", "V", "230", "Power factor", "PF", "12:00", "30/12/2002"}) {
        EXPECT_TRUE(words.contains(text)) << text << " is not in:\n" << words.toStdString();
    }
    const QString name = QString::fromStdString((folder / "page").string());
    Output("pdftoppm", {"-r", "96", "-png", "-singlefile", File(), name});
    const QImage page(name + ".png");
    const QImage pixels = CopiedPicture();
    ASSERT_EQ(page.size(), pixels.size());
    EXPECT_TRUE(test::KeepPicture(page, "graph-copied-page.png"));
    const auto hasColour = [](const QImage& image, QPoint place, int within) {
        return Coloured(image.copy(QRect(place - QPoint(within, within), place + QPoint(within, within)))) > 0;
    };
    int coloured = 0;
    for (int y = 60; y < pixels.height(); ++y) {
        for (int x = 0; x < pixels.width(); ++x) {
            if (hasColour(pixels, {x, y}, 0)) {
                ++coloured;
                ASSERT_TRUE(hasColour(page, {x, y}, 3)) << x << ',' << y;
            }
        }
    }
    EXPECT_GT(coloured, 1000);
}

TEST_F(GraphPaperTest, CopiesNothingIntoAClipboardThatCannotBeOpened)
{
    DrawRise();
    QApplication::clipboard()->setText("before");
    ui::SetClipboardHook([] { return false; });
    EXPECT_FALSE(graph->CopyToClipboard(false));
    ui::SetClipboardHook(nullptr);
    EXPECT_EQ(QApplication::clipboard()->text(), "before");
}

// Numbers beside the axis of a pale curve are darker than it.
TEST_F(GraphPaperTest, PrintsTextsThatCanBeRead)
{
    RecordRise();
    constexpr unsigned long kPale = 0x80FFFF;
    Draw({{u"G.U", 0, kPale, 220.0, 240.0}});
    ASSERT_TRUE(graph->CopyToClipboard(false));
    const QByteArray drawing = Copied().data("image/svg+xml");
    EXPECT_TRUE(drawing.contains("#ffff80"));
    const auto label = drawing.indexOf(">238<");
    ASSERT_GT(label, 0);
    const auto group = drawing.lastIndexOf("fill=\"#", label);
    const QColor text(QString::fromLatin1(drawing.mid(group + 6, 7)));
    ASSERT_TRUE(text.isValid());
    EXPECT_LT(text.lightnessF(), 0.45) << text.name().toStdString();
}

}  // namespace
}  // namespace zr::graph

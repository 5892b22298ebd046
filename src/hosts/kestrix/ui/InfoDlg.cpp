#include "hosts/kestrix/ui/InfoDlg.h"

#include "hosts/kestrix/ui/Commands.h"
#include "hosts/kestrix/ui/UiTexts.h"
#include "platform/ui/CButton.h"
#include "platform/ui/CStatic.h"

#include <QGridLayout>
#include <QLabel>
#include <QStringList>

namespace zr::desktop {
namespace {

constexpr unsigned kTextOk = 311;
constexpr int kColumnWidth = 360;
constexpr int kIconSize = 48;

}  // namespace

InfoDlg::InfoDlg(QWidget* parent, const QString& title, const QString& text, const QIcon& icon)
    : CDialog(kInfoDialog, parent)
{
    setWindowTitle(title);
    auto* const grid = new QGridLayout(this);
    grid->setContentsMargins(20, 20, 20, 16);
    grid->setHorizontalSpacing(18);
    auto* const picture = new QLabel(this);
    picture->setPixmap(icon.pixmap(QSize(kIconSize, kIconSize), devicePixelRatio()));
    grid->addWidget(picture, 0, 0, -1, 1, Qt::AlignTop);
    int row = 0;
    if (text.contains(QLatin1Char('\t'))) {
        for (const QString& line : text.split(QLatin1Char('\n'))) {
            const QStringList parts = line.split(QLatin1Char('\t'));
            for (int column = 0; column < 2 && column < parts.size(); ++column) {
                auto* const label = new QLabel(parts[column], this);
                label->setTextFormat(Qt::PlainText);
                if (column == 0) {
                    QFont bold = label->font();
                    bold.setBold(true);
                    label->setFont(bold);
                }
                grid->addWidget(label, row, column + 1);
            }
            ++row;
        }
    } else {
        auto* const label = new CStatic(this, kInfoText);
        label->SetWindowText(ui::FromQt(text));
        label->setMinimumWidth(kColumnWidth);
        grid->addWidget(label, row++, 1, 1, 2);
    }
    auto* const ok = new CButton(this, ui::IDOK);
    ok->SetWindowText(ui::FromQt(LoadText(kTextOk)));
    ok->setDefault(true);
    grid->setRowMinimumHeight(row, 12);
    grid->addWidget(ok, row + 1, 1, 1, 2, Qt::AlignRight);
}

}  // namespace zr::desktop

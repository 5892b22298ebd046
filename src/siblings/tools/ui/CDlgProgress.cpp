#include "siblings/tools/ui/CDlgProgress.h"

#include "platform/ui/UiText.h"
#include "siblings/tools/ZRLoadString.h"

#include <QMetaObject>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr unsigned kDialog = 240;
constexpr unsigned kLineControl = 5301;
constexpr unsigned kBar = 5302;
constexpr unsigned kTextCancel = 312;
constexpr int kShowPeriod = 40;  // ms; the bar moves more often than ten times a second
// Work that is done sooner is not seen as a window that opens and shuts at once.
constexpr int kVisibleAfter = 150;  // ms

}  // namespace

CDlgProgress::CDlgProgress(QWidget* parent)
    : CDialog(kDialog, parent),
      m_text(this, kLineControl),
      m_bar(this, kBar),
      m_cancel(new QPushButton(this)),
      m_isShown(m_shown.get_future())
{
    zr::ui::SetControlId(*m_cancel, zr::ui::IDCANCEL);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(16, 14, 16, 14);
    column->setSpacing(10);
    column->addWidget(&m_text);
    column->addWidget(&m_bar);
    column->addWidget(m_cancel, 0, Qt::AlignRight);
    setMinimumWidth(360);
    connect(m_cancel, &QPushButton::clicked, this, [this] { OnCancel(); });
    connect(&m_timer, &QTimer::timeout, this, [this] { ShowState(); });
}

void CDlgProgress::OnInitDialog()
{
    ZRBasicString cancel;
    m_cancel->setText(zr::ui::ToQt(ZRLoadString(kTextCancel, cancel).Text()));
    ShowState();
    m_timer.start(kShowPeriod);
    setWindowOpacity(0.0);
    QTimer::singleShot(kVisibleAfter, this, [this] { setWindowOpacity(1.0); });
}

void CDlgProgress::showEvent(QShowEvent* event)
{
    CDialog::showEvent(event);
    if (!std::exchange(m_wasShown, true)) {
        m_shown.set_value();
    }
}

void CDlgProgress::WaitForWindow()
{
    m_isShown.wait();
}

void CDlgProgress::OnCancel()
{
    m_isCancelled = true;
    m_cancel->setEnabled(false);
}

void CDlgProgress::SetTitle(const ZRBasicString& title)
{
    const std::scoped_lock lock(m_guard);
    m_title = title;
    m_isChanged = true;
}

void CDlgProgress::SetText(const wchar* text)
{
    const std::scoped_lock lock(m_guard);
    m_textToShow = text;
    m_isChanged = true;
}

void CDlgProgress::SetPos(int percent)
{
    m_pos = percent;
}

void CDlgProgress::ShowState()
{
    if (const int pos = m_pos; pos >= 0) {
        m_bar.SetPos(pos);
    }
    const std::scoped_lock lock(m_guard);
    if (std::exchange(m_isChanged, false)) {
        setWindowTitle(zr::ui::ToQt(m_title.Text()));
        m_text.SetWindowText(m_textToShow.Text());
    }
}

void CDlgProgress::End(bool result)
{
    QMetaObject::invokeMethod(
        this, [this, result] { EndDialog(result ? zr::ui::IDOK : zr::ui::IDCANCEL); }, Qt::QueuedConnection);
}

#include "platform/ui/WndMessage.h"

#include <QCoreApplication>
#include <QWidget>

namespace zr::ui {

WndMessage::WndMessage(unsigned number, std::uintptr_t first, std::intptr_t second)
    : QEvent(EventType()), message(number), wParam(first), lParam(second)
{
    ignore();
}

QEvent::Type WndMessage::EventType()
{
    static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
}

bool WndMessageTarget::OnCommand(unsigned, unsigned, QWidget*)
{
    return false;
}

bool WndMessageTarget::OnNotify(const NMHDR&)
{
    return false;
}

bool WndMessageTarget::OnMessage(unsigned, std::uintptr_t, std::intptr_t)
{
    return false;
}

bool WndMessageTarget::Dispatch(QEvent& event)
{
    if (event.type() != WndMessage::EventType()) {
        return false;
    }
    const auto& message = static_cast<const WndMessage&>(event);
    if (message.message == kCommand) {
        const auto word = static_cast<unsigned>(message.wParam);
        event.setAccepted(
            OnCommand(word & 0xffffu, (word >> 16) & 0xffffu, reinterpret_cast<QWidget*>(message.lParam)));
    } else if (message.message == kNotify) {
        event.setAccepted(OnNotify(*reinterpret_cast<const NMHDR*>(message.lParam)));
    } else {
        event.setAccepted(OnMessage(message.message, message.wParam, message.lParam));
    }
    return event.isAccepted();
}

bool SendMessage(QWidget* window, unsigned message, std::uintptr_t wParam, std::intptr_t lParam)
{
    if (window == nullptr) {
        return false;
    }
    WndMessage event(message, wParam, lParam);
    QCoreApplication::sendEvent(window, &event);
    return event.isAccepted();
}

void PostMessage(QWidget* window, unsigned message, std::uintptr_t wParam, std::intptr_t lParam)
{
    if (window != nullptr) {
        QCoreApplication::postEvent(window, new WndMessage(message, wParam, lParam));
    }
}

bool SendCommand(QWidget* parent, unsigned id, unsigned code, QWidget* from)
{
    return SendMessage(parent, kCommand, (id & 0xffffu) | (static_cast<std::uintptr_t>(code & 0xffffu) << 16),
                       reinterpret_cast<std::intptr_t>(from));
}

bool SendNotify(QWidget* parent, const NMHDR& notice)
{
    return SendMessage(parent, kNotify, notice.idFrom, reinterpret_cast<std::intptr_t>(&notice));
}

}  // namespace zr::ui

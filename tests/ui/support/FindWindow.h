// Windows within a window by their class. Those of the suite have no meta-object of their own: QObject::findChild would
// take any of their Qt base for one of them.
#pragma once

#include <QList>
#include <QWidget>

namespace zr::test {

template <typename T>
QList<T*> FindWindows(const QWidget& parent, Qt::FindChildOptions options = Qt::FindChildrenRecursively)
{
    QList<T*> found;
    for (QWidget* const child : parent.findChildren<QWidget*>(QString(), options)) {
        if (auto* const window = dynamic_cast<T*>(child)) {
            found.append(window);
        }
    }
    return found;
}

// The first; null when there is none.
template <typename T>
T* FindWindow(const QWidget& parent)
{
    const QList<T*> found = FindWindows<T>(parent);
    return found.isEmpty() ? nullptr : found.front();
}
// The one of that number.
template <typename T>
T* FindWindow(const QWidget& parent, unsigned id)
{
    return dynamic_cast<T*>(parent.findChild<QWidget*>(QString::number(id)));
}

}  // namespace zr::test

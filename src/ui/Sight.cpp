#include "ui/Sight.h"

#include <QWindow>

namespace tuppi {

bool isInSight(const QWidget &widget)
{
    if (!widget.isVisible())
        return false;
    const QWidget *window = widget.window();
    if (window->isMinimized())
        return false;
    const QWindow *handle = window->windowHandle();
    return handle && handle->isExposed() && !widget.visibleRegion().isEmpty();
}

void SightList::add(QWidget *widget)
{
    if (m_widgets.contains(widget))
        return;
    m_widgets.append(widget);
    // Installing a filter once more only moves it to the front.
    QWidget *window = widget->window();
    window->installEventFilter(this);
    if (window->windowHandle())
        window->windowHandle()->installEventFilter(this);
}

bool SightList::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Expose || event->type() == QEvent::WindowStateChange)
        Q_EMIT cameBack();
    return QObject::eventFilter(watched, event);
}

QList<QWidget *> SightList::look()
{
    m_widgets.removeIf([](const QPointer<QWidget> &widget) { return !widget || !isInSight(*widget); });
    QList<QWidget *> inSight;
    inSight.reserve(m_widgets.size());
    for (const QPointer<QWidget> &widget : std::as_const(m_widgets))
        inSight.append(widget);
    return inSight;
}

} // namespace tuppi

#include "ui/SideWindow.h"

#include "ui/Colours.h"

#include <QScreen>
#include <QShortcut>

namespace tuppi {

SideWindow::SideWindow(const QString &title)
{
    setWindowTitle(title);
    QPalette ground = palette();
    ground.setColor(QPalette::Window, Colours::window);
    setPalette(ground);
    for (const QKeySequence &keys : {QKeySequence(Qt::Key_Escape), QKeySequence(Qt::CTRL | Qt::Key_W)})
        connect(new QShortcut(keys, this), &QShortcut::activated, this, &QWidget::close);
}

void SideWindow::bringForward()
{
    setWindowState(windowState() & ~Qt::WindowMinimized);
    if (!m_isPlaced) {
        ensurePolished();
        const QRect free = screen()->availableGeometry();
        QRect place(QPoint(), sizeHint().expandedTo(size()));
        place.moveCenter(free.center());
        move(place.topLeft());
        m_isPlaced = true;
    }
    show();
    raise();
    activateWindow();
}

} // namespace tuppi

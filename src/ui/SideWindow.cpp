#include "ui/SideWindow.h"

#include "ui/Colours.h"
#include "ui/WindowCommands.h"

#include <QScreen>
#include <QShortcut>

namespace tuppi {

SideWindow::SideWindow(const QString &title)
{
    setWindowTitle(title);
    QPalette ground = palette();
    ground.setColor(QPalette::Window, Colours::window);
    setPalette(ground);
    connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this, &QWidget::close);
    AddMenuKeys(this, [this](const QString &action) { Q_EMIT command(action); });
}

void SideWindow::bringForward()
{
    if (!m_isPlaced) {
        ensurePolished();
        const QRect free = screen()->availableGeometry();
        QRect place(QPoint(), sizeHint().expandedTo(size()));
        place.moveCenter(free.center());
        move(place.topLeft());
        m_isPlaced = true;
    }
    bringWindowForward(this);
}

} // namespace tuppi

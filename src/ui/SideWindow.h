#pragma once

#include <QWidget>

namespace tuppi {

/// A window beside the main one: Escape closes it, the keys of the menu bar work in it, and it is kept, as it was, for the
/// next time.
class SideWindow : public QWidget
{
    Q_OBJECT
public:
    explicit SideWindow(const QString &title);

    /// Shows it, in the middle of the screen the first time, and brings it to the front.
    void bringForward();

Q_SIGNALS:
    /// A command of a button or of the menu bar, by its name.
    void command(const QString &action);

private:
    bool m_isPlaced = false;
};

} // namespace tuppi

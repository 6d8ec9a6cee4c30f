#pragma once

#include <QWidget>

namespace tuppi {

/// A window beside the main one: Escape and Ctrl+W close it, and it is kept, as it was, for the next time.
class SideWindow : public QWidget
{
    Q_OBJECT
public:
    explicit SideWindow(const QString &title);

    /// Shows it, in the middle of the screen the first time, and brings it to the front.
    void bringForward();

private:
    bool m_isPlaced = false;
};

} // namespace tuppi

#pragma once

#include <QWidget>

namespace tuppi {

/// The strip at the top of a result window, with the buttons that take the transcript out of the application at
/// its trailing end.
class ExportAccessory : public QWidget
{
    Q_OBJECT
public:
    explicit ExportAccessory(QWidget *parent = nullptr);

Q_SIGNALS:
    void saveRequested();
    /// `anchor` is what was pressed.
    void shareRequested(QWidget *anchor);

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace tuppi

#pragma once

#include <QComboBox>

namespace tuppi {

/// A list to choose one of, closed until it is asked for. The arrow keys and the space bar open it, a letter does so
/// at the item that begins with it, and a turn of the wheel goes to whatever scrolls beneath: the choice changes only
/// on purpose, never in passing.
class PopUpButton : public QComboBox
{
    Q_OBJECT
public:
    explicit PopUpButton(QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void showPopupAt(const QString &beginning);
};

} // namespace tuppi

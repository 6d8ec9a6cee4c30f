#pragma once

#include <QWidget>

namespace tuppi {

/// The strip at the top of the main window with the word mark and the program's name.
class TitleStrip : public QWidget
{
    Q_OBJECT
public:
    explicit TitleStrip(QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace tuppi

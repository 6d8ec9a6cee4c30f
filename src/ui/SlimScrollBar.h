#pragma once

#include <QScrollBar>

namespace tuppi {

/// A scroll bar that is no more than its handle.
class SlimScrollBar : public QScrollBar
{
    Q_OBJECT
public:
    static constexpr int extent = 12;

    explicit SlimScrollBar(Qt::Orientation orientation, QWidget *parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace tuppi

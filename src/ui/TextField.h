#pragma once

#include <QLineEdit>

namespace tuppi {

/// A line to type into, at least `width` wide.
class TextField : public QLineEdit
{
    Q_OBJECT
public:
    TextField(const QString &placeholder, int width, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void contextMenuEvent(QContextMenuEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    int m_width;
};

} // namespace tuppi

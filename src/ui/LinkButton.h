#pragma once

#include <QPushButton>

namespace tuppi {

/// A borderless button: its title alone, in the accent blue.
class LinkButton : public QPushButton
{
    Q_OBJECT
public:
    explicit LinkButton(const QString &title, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_title;
};

} // namespace tuppi

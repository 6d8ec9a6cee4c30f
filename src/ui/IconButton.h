#pragma once

#include <QPushButton>

namespace tuppi {

/// A borderless button of 28 × 28 that shows a symbol alone.
class IconButton : public QPushButton
{
    Q_OBJECT
public:
    explicit IconButton(QWidget *parent = nullptr);

    QString symbol() const { return m_symbol; }
    void setSymbol(const QString &name);
    QColor tint() const { return m_tint; }
    void setTint(const QColor &tint);
    /// Tool tip and name in one.
    void setTip(const QString &tip);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_symbol;
    QColor m_tint;
};

/// Tinted in the accent blue.
IconButton *iconButton(const QString &symbol, const QString &tip, QWidget *parent = nullptr);

} // namespace tuppi

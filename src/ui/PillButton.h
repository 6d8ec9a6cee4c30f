#pragma once

#include <QPushButton>

namespace tuppi {

/// A capsule button. It is as wide as its title needs plus twice the padding, and square without a title,
/// when it may show a symbol instead. The style tells fill and border: 0 primary, 1 secondary, 2 destructive,
/// 3 pale yellow, any other plain white. Heights and paddings are logical pixels.
class PillButton : public QPushButton
{
    Q_OBJECT
    Q_PROPERTY(int pill READ pill WRITE setPill)
    Q_PROPERTY(double pillHeight READ pillHeight WRITE setPillHeight)
    Q_PROPERTY(int pad READ pad WRITE setPad)
    Q_PROPERTY(QString title READ title WRITE setTitle)
public:
    explicit PillButton(QWidget *parent = nullptr);

    int pill() const { return m_pill; }
    void setPill(int style);
    double pillHeight() const { return m_pillHeight; }
    void setPillHeight(double height);
    int pad() const { return m_pad; }
    void setPad(int pad);

    /// The title as it stands: an ampersand is an ampersand, not a shortcut.
    QString title() const { return m_title; }
    void setTitle(const QString &title);

    /// Shown, in the tint of the style, while there is no title.
    void setSymbol(const QString &name, double size);

    double radius() const;
    /// The fill as it is drawn now, its opacity telling pressed and disabled, its shade hover.
    QColor fill() const;
    /// No colour (invalid) where the style has no border.
    QColor border() const;
    /// Of the title and of the symbol.
    QColor titleColour() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    bool isHovered() const;
    void drawTitle(QPainter &painter) const;

    int m_pill = 1;
    double m_pillHeight = 34;
    int m_pad = 0;
    QString m_title;
    QString m_symbol;
    double m_symbolSize = 0;
};

/// A pill with a centred title, its font and padding following from the height.
PillButton *Pill(const QString &title, int style, double height, QWidget *parent = nullptr);

/// A round pill of 40 with a symbol alone; the tip is its name too.
PillButton *IconPill(const QString &symbol, const QString &tip, int style, QWidget *parent = nullptr);

} // namespace tuppi

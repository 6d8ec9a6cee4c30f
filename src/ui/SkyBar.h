#pragma once

#include <QWidget>

namespace tuppi {

class SweepClock;

/// Where the sweep stands in a bar of the given size: a piece of 30 % that comes in at the leading edge and
/// leaves at the trailing one while the phase goes from 0 to 1.
QRectF SweepRect(QSizeF size, double phase, Qt::LayoutDirection direction);

/// A thin progress bar. Its value is a fraction (more than 1 draws full) or, when negative, an unknown
/// amount, shown by a sweep. A new value takes effect at the next layout: when the bar is shown or resized,
/// when a layout is requested, or when applyLayout() is called.
class SkyBar : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(double value READ value WRITE setValue)
public:
    explicit SkyBar(SweepClock &clock, QWidget *parent = nullptr);

    double value() const { return m_value; }
    void setValue(double value);
    bool isIndeterminate() const { return !(m_value >= 0); }

    void applyLayout();
    /// As laid out last.
    bool isSweeping() const { return !(m_laidOut >= 0); }
    /// The coloured part as it is to be drawn now; empty for nothing done.
    QRectF fillRect() const;

    /// A step of the sweep: redraws what it leaves and what it reaches. False when there is no sweep.
    bool advance();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    SweepClock &m_clock;
    double m_value = 0;
    double m_laidOut = 0;
    QRectF m_painted; ///< the fill as painted last
};

} // namespace tuppi

#include "ui/SkyBar.h"

#include "ui/Accessibility.h"
#include "ui/Colours.h"
#include "ui/Metrics.h"
#include "ui/SweepClock.h"

#include <QAccessible>
#include <QEvent>
#include <QPainter>
#include <QPainterPath>

namespace tuppi {

QRectF SweepRect(QSizeF size, double phase, Qt::LayoutDirection direction)
{
    const double width = size.width() * Metrics::sweepWidth;
    double left = -width + phase * (size.width() + width);
    if (direction == Qt::RightToLeft)
        left = size.width() - left - width;
    return {left, 0, width, size.height()};
}

SkyBar::SkyBar(SweepClock &clock, QWidget *parent)
    : QWidget(parent)
    , m_clock(clock)
{
    installControlAccessibility();
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(&clock, &SweepClock::redraw, this, [this] {
        if (isSweeping())
            update();
    });
}

void SkyBar::setValue(double value)
{
    if (m_value == value)
        return;
    m_value = value;
    if (!isIndeterminate()) {
        QAccessibleValueChangeEvent changed(this, m_value);
        QAccessible::updateAccessibility(&changed);
    }
}

void SkyBar::applyLayout()
{
    if (m_laidOut == m_value)
        return;
    m_laidOut = m_value;
    update();
}

QRectF SkyBar::fillRect() const
{
    const QSizeF area(size());
    if (isSweeping() && m_clock.isStill()) {
        const double width = area.width() * Metrics::sweepWidth;
        return {(area.width() - width) / 2, 0, width, area.height()};
    }
    if (isSweeping())
        return SweepRect(area, m_clock.phase(), layoutDirection());
    const double width = area.width() * qMin(m_laidOut, 1.0);
    return {layoutDirection() == Qt::RightToLeft ? area.width() - width : 0, 0, width, area.height()};
}

bool SkyBar::advance()
{
    if (!isSweeping())
        return false;
    update((m_painted | fillRect()).toAlignedRect().adjusted(-1, 0, 1, 0) & rect());
    return true;
}

QSize SkyBar::sizeHint() const
{
    return {120, Metrics::barHeight};
}

bool SkyBar::event(QEvent *event)
{
    if (event->type() == QEvent::LayoutRequest || event->type() == QEvent::Resize ||
        event->type() == QEvent::Show)
        applyLayout();
    return QWidget::event(event);
}

void SkyBar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    QPainterPath track;
    track.addRoundedRect(QRectF(rect()), Metrics::barRadius, Metrics::barRadius);
    painter.fillPath(track, Colours::progressTrack);

    m_painted = fillRect();
    if (m_painted.width() > 0) {
        const double radius = qMin(Metrics::barRadius, m_painted.width() / 2);
        painter.setClipPath(track);
        painter.setBrush(Colours::accentBlue);
        painter.drawRoundedRect(m_painted, radius, radius);
    }
    if (isSweeping())
        m_clock.painted(this);
}

} // namespace tuppi

#include "ui/MascotView.h"

#include "ui/Accessibility.h"
#include "ui/Mascots.h"
#include "ui/Metrics.h"
#include "ui/Painting.h"

#include <QPainter>

#include <cmath>

namespace tuppi {

QSize MascotSize(int width)
{
    return {width, int(std::round(width * Metrics::mascotHeight / Metrics::mascotWidth))};
}

MascotView::MascotView(Mascots &mascots, const QString &pose, int width, bool animated, QWidget *parent)
    : QWidget(parent)
    , m_mascots(mascots)
    , m_pose(pose)
    , m_animated(animated)
{
    installControlAccessibility();
    setFixedSize(MascotSize(width));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    connect(&mascots, &Mascots::redraw, this, [this] {
        if (m_animated)
            update();
    });
}

void MascotView::setPose(const QString &pose)
{
    if (pose == m_pose)
        return;
    m_pose = pose;
    update();
}

void MascotView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const double scale = deviceScale(painter);
    const QPixmap picture =
        m_animated ? m_mascots.frame(m_pose, size(), scale) : m_mascots.still(m_pose, size(), scale);
    if (picture.isNull())
        return;
    const QSizeF drawn = picture.deviceIndependentSize();
    painter.drawPixmap(QPointF((width() - drawn.width()) / 2, (height() - drawn.height()) / 2), picture);
    if (m_animated)
        m_mascots.painted(this);
}

MascotView *TuppiView(Mascots &mascots, const QString &pose, int width, QWidget *parent)
{
    return new MascotView(mascots, pose, width, false, parent);
}

MascotView *TuppiAnim(Mascots &mascots, const QString &pose, int width, QWidget *parent)
{
    return new MascotView(mascots, pose, width, true, parent);
}

} // namespace tuppi

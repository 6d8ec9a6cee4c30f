#include "ui/DropView.h"

#include "intake/AcceptedFiles.h"
#include "ui/Colours.h"
#include "ui/Metrics.h"

#include <QDragEnterEvent>
#include <QMimeData>
#include <QPainter>

namespace tuppi {

namespace {

/// What the drag offers to be copied. A drag that can only be moved is none of ours: its source would delete
/// the recording.
QList<QUrl> offered(const QDropEvent &event)
{
    if (!event.possibleActions().testFlag(Qt::CopyAction) || !event.mimeData())
        return {};
    return AcceptedFiles(event.mimeData()->urls());
}

void answer(QDropEvent *event, bool accepted)
{
    if (accepted)
        event->setDropAction(Qt::CopyAction);
    event->setAccepted(accepted);
}

} // namespace

DropView::DropView(QWidget *parent)
    : QWidget(parent)
{
    setAcceptDrops(true);
}

void DropView::setShowsCard(bool shows)
{
    if (m_showsCard == shows)
        return;
    m_showsCard = shows;
    update();
}

void DropView::dragEnterEvent(QDragEnterEvent *event)
{
    setHighlighted(!offered(*event).isEmpty());
    answer(event, m_highlighted);
}

void DropView::dragMoveEvent(QDragMoveEvent *event)
{
    // What a drag carries does not change on its way.
    answer(event, m_highlighted);
}

void DropView::dragLeaveEvent(QDragLeaveEvent *)
{
    setHighlighted(false);
}

void DropView::dropEvent(QDropEvent *event)
{
    setHighlighted(false);
    const QList<QUrl> files = offered(*event);
    answer(event, !files.isEmpty());
    if (!files.isEmpty())
        Q_EMIT filesDropped(files);
}

void DropView::setHighlighted(bool highlighted)
{
    if (m_highlighted == highlighted)
        return;
    m_highlighted = highlighted;
    update();
}

void DropView::paintEvent(QPaintEvent *)
{
    if (!m_highlighted && !m_showsCard)
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPen pen(m_highlighted ? Colours::accentBlue : Colours::dropDash, Metrics::dropStroke);
    pen.setCapStyle(Qt::FlatCap);
    // A dash pattern counts in widths of the pen.
    pen.setDashPattern(
        {Metrics::dropDashOn / Metrics::dropStroke, Metrics::dropDashOff / Metrics::dropStroke});
    painter.setPen(pen);
    painter.setBrush(m_highlighted ? Colours::paleCard : Colours::white);
    painter.drawRoundedRect(QRectF(rect()).adjusted(Metrics::dropInsetX, Metrics::dropInsetY,
                                                    -Metrics::dropInsetX, -Metrics::dropInsetY),
                            Metrics::dropRadius, Metrics::dropRadius);
}

} // namespace tuppi

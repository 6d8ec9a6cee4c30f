#include "ui/ModelCard.h"

#include "ui/Accessibility.h"
#include "ui/Colours.h"
#include "ui/Fonts.h"
#include "ui/Labels.h"
#include "ui/Metrics.h"
#include "ui/Painting.h"

#include <QAccessible>
#include <QChildEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>

namespace tuppi {

ModelCard::ModelCard(const QString &engine, QWidget *parent)
    : QWidget(parent)
    , m_engine(engine)
    , m_title(new WrapLabel(this))
    , m_note(new BadgeLabel(QString(), this))
    , m_description(new WrapLabel(this))
{
    installControlAccessibility();
    setFocusPolicy(Qt::TabFocus); // pressing the mouse does nothing, taking the focus included
    setAttribute(Qt::WA_Hover);
    setFixedWidth(Metrics::modelCardWidth);
    setMinimumHeight(Metrics::modelCardHeight);

    m_title->setFont(System(14, QFont::ExtraBold));
    m_title->setColour(Colours::navy);
    m_title->setMaximumLines(2); // some models are told apart only by how their titles end
    m_title->setPreferredWidth(Metrics::modelCardWidth - 28);
    m_description->setFont(System(11.5));
    m_description->setMaximumLines(3);
    m_description->setPreferredWidth(Metrics::modelCardWidth - 28);
    auto *stack = new QVBoxLayout(this);
    stack->setContentsMargins(14, 11, 14, 11);
    stack->setSpacing(5);
    stack->addWidget(m_title);
    stack->addWidget(m_note, 0, Qt::AlignLeading);
    stack->addWidget(m_description);
    stack->addStretch(1);
}

void ModelCard::setTexts(const QString &title, const QString &note, const QString &description)
{
    m_title->setText(title);
    m_note->setText(note);
    m_note->setVisible(!note.isEmpty());
    m_description->setText(description.section(u'\n', -1));
    setToolTip(plainToolTip(description));
    setAccessibleName(title);
    setAccessibleDescription(description);
}

void ModelCard::setPicked(bool picked)
{
    if (m_picked == picked)
        return;
    m_picked = picked;
    update();
    QAccessible::State changed;
    changed.checked = true;
    QAccessibleStateChangeEvent event(this, changed);
    QAccessible::updateAccessibility(&event);
}

QColor ModelCard::border() const
{
    return m_picked ? Colours::accentBlue : Colours::cardBorder;
}

QColor ModelCard::background() const
{
    return m_picked ? Colours::paleCard : Colours::white;
}

double ModelCard::radius() const
{
    return Metrics::modelCardRadius;
}

void ModelCard::press()
{
    Q_EMIT chosen(this);
}

void ModelCard::childEvent(QChildEvent *event)
{
    // Polished and not added: only then is the child a whole widget.
    if (event->polished() && event->child()->isWidgetType())
        static_cast<QWidget *>(event->child())->setAttribute(Qt::WA_TransparentForMouseEvents);
    QWidget::childEvent(event);
}

bool ModelCard::event(QEvent *event)
{
    if (event->type() == QEvent::HoverEnter || event->type() == QEvent::HoverLeave)
        update();
    return QWidget::event(event);
}

void ModelCard::keyPressEvent(QKeyEvent *event)
{
    const bool plain = !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    const bool presses =
        event->key() == Qt::Key_Space || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!plain || !presses)
        return QWidget::keyPressEvent(event);
    event->accept();
    if (!event->isAutoRepeat())
        press();
}

void ModelCard::mousePressEvent(QMouseEvent *event)
{
    // Kept, so that the release comes here wherever it happens.
    event->setAccepted(event->button() == Qt::LeftButton);
}

void ModelCard::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()))
        press();
}

void ModelCard::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double half = Metrics::modelCardBorder / 2;
    const double inset = half + (hasFocus() ? focusInset : 0);
    const QRectF card = QRectF(rect()).adjusted(inset, inset, -inset, -inset);
    const bool hovered = testAttribute(Qt::WA_UnderMouse) && isEnabled() && !m_picked;
    painter.setPen(QPen(hovered ? Colours::dropDash : border(), Metrics::modelCardBorder));
    painter.setBrush(background());
    painter.drawRoundedRect(card, radius() - inset, radius() - inset);
    if (hasFocus())
        drawFocusRing(painter, QRectF(rect()), radius());
}

} // namespace tuppi

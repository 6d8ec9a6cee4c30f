#include "ui/RowView.h"

#include "ui/Accessibility.h"
#include "ui/Colours.h"
#include "ui/Fonts.h"
#include "ui/IconButton.h"
#include "ui/Labels.h"
#include "ui/MascotView.h"
#include "ui/Mascots.h"
#include "ui/Metrics.h"
#include "ui/Painting.h"
#include "ui/PillButton.h"
#include "ui/SkyBar.h"
#include "ui/TuppiCache.h"

#include <QAccessible>
#include <QCoreApplication>
#include <QEvent>
#include <QMouseEvent>

#include <algorithm>
#include <utility>

namespace tuppi {

namespace {

QColor colourOf(DetailTone tone)
{
    switch (tone) {
    case DetailTone::Good:
        return Colours::good;
    case DetailTone::Attention:
        return Colours::attention;
    case DetailTone::Slate:
        break;
    }
    return Colours::slate;
}

/// Ends a press without effect. The button is also sent a release: it would otherwise take the next movement
/// of the mouse for a return to it, and be held down again.
void letGo(QPushButton *button)
{
    button->setDown(false);
    const QPointF outside(-1, -1);
    QMouseEvent release(QEvent::MouseButtonRelease, outside, button->mapToGlobal(outside), Qt::LeftButton,
                        Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(button, &release);
}

} // namespace

RowView::RowView(RowServices services, QWidget *parent)
    : CardRowView(parent)
    , m_services(services)
    , m_title(new ElidedLabel(this))
    , m_detail(new ElidedLabel(this))
    , m_bar(new SkyBar(services.sweep, this))
{
    installControlAccessibility();
    m_title->setFont(System(15, QFont::ExtraBold));
    m_title->setColour(Colours::navy);
    m_detail->setFont(System(12.5, QFont::Bold));
    m_detail->setColour(Colours::slate);
    m_bar->hide();
}

RowView::~RowView()
{
    dropIcon();
}

void RowView::setLook(const RowLook &look)
{
    const bool ownsIcon = m_icon && m_icon->parent() == this; // another row may have taken it over
    if (look == m_look && ownsIcon)
        return;
    const RowLook before = m_look;
    m_look = look;
    setActiveCard(look.activeCard);
    setSelected(look.selected);
    setShowsFocus(look.focused);
    if (!ownsIcon || before.pose != look.pose || before.animated != look.animated ||
        before.mascotKey != look.mascotKey)
        showIcon();
    showTexts(before);
    showBar();
    if (before.key != look.key) {
        for (const Slot &slot : std::as_const(m_slots))
            letGo(slot.button);
    }
    if (before.buttons != look.buttons)
        showButtons(look.buttons);
    place();
}

void RowView::clearLook()
{
    dropIcon();
    for (const Slot &slot : std::as_const(m_slots))
        letGo(slot.button);
    const RowLook before = std::exchange(m_look, RowLook());
    showTexts(before); // the next look is compared with the empty one, which has to be what stands there
    showButtons({});
}

QList<QPushButton *> RowView::buttons() const
{
    QList<QPushButton *> shown;
    for (const Slot &slot : m_slots)
        shown.append(slot.button);
    return shown;
}

QSize RowView::sizeHint() const
{
    return {688, Metrics::rowHeight};
}

void RowView::changeEvent(QEvent *event)
{
    CardRowView::changeEvent(event);
    if (event->type() == QEvent::LayoutDirectionChange || event->type() == QEvent::FontChange)
        place();
}

void RowView::resizeEvent(QResizeEvent *)
{
    place();
}

void RowView::showIcon()
{
    dropIcon();
    if (m_look.animated) {
        m_icon = m_services.cache.lookUp(m_look.mascotKey, this, [this] {
            return TuppiAnim(m_services.mascots, m_look.pose, Metrics::rowIconWidth);
        });
    } else {
        if (!m_still)
            m_still = TuppiView(m_services.mascots, m_look.pose, Metrics::rowIconWidth, this);
        m_still->setPose(m_look.pose);
        m_icon = m_still;
    }
    m_icon->show();
}

void RowView::dropIcon()
{
    if (m_still && m_icon == m_still)
        m_still->hide();
    else if (m_icon && m_icon->parent() == this)
        m_services.cache.release(m_icon);
    m_icon = nullptr;
}

void RowView::showTexts(const RowLook &before)
{
    if (m_title->text() != m_look.title)
        m_title->setText(m_look.title);
    if (m_detail->text() != m_look.detail)
        m_detail->setText(m_look.detail);
    if (before.tone != m_look.tone)
        m_detail->setColour(colourOf(m_look.tone));
    if (before.detailTip != m_look.detailTip)
        m_detail->setToolTip(plainToolTip(m_look.detailTip));
    if (before.accessibleName != m_look.accessibleName)
        setAccessibleName(m_look.accessibleName);
}

void RowView::showBar()
{
    if (m_look.hasBar()) {
        m_bar->setValue(m_look.progress);
        m_bar->applyLayout();
        m_bar->setAccessibleName(m_look.detail);
    }
    m_bar->setVisible(m_look.hasBar());
}

QPushButton *RowView::nextButton(const RowButton &look, int &pills, int &icons)
{
    if (look.symbol.isEmpty()) {
        if (pills == m_pills.size()) {
            m_pills.append(Pill(QString(), 1, Metrics::rowPillHeight, this));
            connectButton(m_pills.last());
        }
        PillButton *pill = m_pills.at(pills++);
        pill->setPill(look.style);
        pill->setTitle(look.title);
        pill->setToolTip(plainToolTip(look.tip));
        return pill;
    }
    if (icons == m_icons.size()) {
        m_icons.append(iconButton(QString(), QString(), this));
        m_icons.last()->setTint(Colours::slate);
        connectButton(m_icons.last());
    }
    IconButton *icon = m_icons.at(icons++);
    icon->setSymbol(look.symbol);
    icon->setTip(look.tip);
    return icon;
}

void RowView::connectButton(QPushButton *button)
{
    connect(button, &QPushButton::clicked, this, [this, button] { press(button); });
}

void RowView::showButtons(const QList<RowButton> &looks)
{
    QList<Slot> used;
    int pills = 0;
    int icons = 0;
    for (const RowButton &look : looks) {
        QPushButton *button = nextButton(look, pills, icons);
        const auto same = [&](const Slot &slot) {
            return slot.button == button && slot.look.action == look.action;
        };
        if (std::none_of(m_slots.cbegin(), m_slots.cend(), same))
            letGo(button); // held down for something else
        button->setObjectName(look.action);
        button->setAccessibleName(look.accessibleName);
        button->show();
        if (!used.isEmpty())
            setTabOrder(used.last().button, button);
        used.append({button, look});
    }
    m_slots = used;
    for (qsizetype i = pills; i < m_pills.size(); ++i)
        m_pills.at(i)->hide();
    for (qsizetype i = icons; i < m_icons.size(); ++i)
        m_icons.at(i)->hide();
}

void RowView::press(const QPushButton *button)
{
    for (const Slot &slot : std::as_const(m_slots)) {
        if (slot.button == button) {
            // Copies: whoever listens may give this row another look at once.
            const QString key = m_look.key;
            const QString name = slot.look.action;
            Q_EMIT action(key, name);
            return;
        }
    }
}

void RowView::place()
{
    RowParts parts;
    parts.icon = MascotSize(Metrics::rowIconWidth);
    parts.titleHeight = m_title->sizeHint().height();
    parts.detailHeight = m_detail->sizeHint().height();
    parts.hasBar = m_look.hasBar();
    for (const Slot &slot : std::as_const(m_slots))
        parts.buttons.append(slot.button->sizeHint());

    const RowPlaces places = PlaceRow(size(), parts, layoutDirection());
    if (m_icon && m_icon->parent() == this)
        m_icon->setGeometry(places.icon);
    m_title->setGeometry(places.title);
    m_detail->setGeometry(places.detail);
    if (parts.hasBar)
        m_bar->setGeometry(places.bar);
    for (qsizetype i = 0; i < m_slots.size(); ++i)
        m_slots.at(i).button->setGeometry(places.buttons.at(i));
}

} // namespace tuppi

#include "ui/PopUpButton.h"

#include "ui/Colours.h"
#include "ui/Fonts.h"
#include "ui/LightPalette.h"
#include "ui/Metrics.h"
#include "ui/Painting.h"
#include "ui/SlimScrollBar.h"

#include <QAbstractItemView>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QProxyStyle>
#include <QStyle>
#include <QStyledItemDelegate>
#include <QWheelEvent>

namespace tuppi {
namespace {

constexpr int popUpHeight = 34;
constexpr int padX = 12;
constexpr int chevronRoom = 26;
constexpr int mostItemsShown = 12;
constexpr int leastWidth = 96;
constexpr double borderWidth = 1.5;

/// Roomy rows, the chosen one lit as in the program's own lists.
class RoomyItems : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        if (isSeparator(index))
            return {0, separatorHeight};
        const QSize natural = QStyledItemDelegate::sizeHint(option, index);
        return {natural.width() + 2 * padX, qMax(natural.height(), itemHeight)};
    }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        if (isSeparator(index)) {
            const QRect line(option.rect.left() + padX, option.rect.center().y(), option.rect.width() - 2 * padX, 1);
            painter->fillRect(line, Colours::titleSeparator);
            return;
        }
        const bool lit = option.state & QStyle::State_Selected;
        const QString text = index.data().toString();
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        if (lit) {
            painter->setPen(Qt::NoPen);
            painter->setBrush(Colours::accentBlue);
            painter->drawRoundedRect(QRectF(option.rect).adjusted(3, 1, -3, -1), itemRadius, itemRadius);
        }
        painter->setFont(option.font);
        painter->setPen(lit ? Colours::white : Colours::navy);
        painter->setLayoutDirection(Qt::LayoutDirectionAuto);
        const Qt::Alignment leading = QStyle::visualAlignment(option.direction, Qt::AlignLeading);
        const QRect room = option.rect.adjusted(padX, 0, -padX, 0);
        painter->drawText(room, int(leading | Qt::AlignAbsolute | Qt::AlignVCenter) | Qt::TextSingleLine,
                          option.fontMetrics.elidedText(text, Qt::ElideRight, room.width()));
        painter->restore();
    }

private:
    /// As QComboBox::insertSeparator() marks it.
    static bool isSeparator(const QModelIndex &index)
    {
        return index.data(Qt::AccessibleDescriptionRole).toString() == QLatin1String("separator");
    }

    static constexpr int itemHeight = 28;
    static constexpr int separatorHeight = 9;
    static constexpr double itemRadius = 7;
};

/// A list under the button that scrolls, and not one over it as high as the screen.
class ListBelow : public QProxyStyle
{
public:
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *returned) const override
    {
        return hint == SH_ComboBox_Popup ? 0 : QProxyStyle::styleHint(hint, option, widget, returned);
    }
};

void drawChevrons(QPainter &painter, const QPointF &centre)
{
    QPainterPath path;
    for (const int up : {-1, 1}) {
        path.moveTo(centre + QPointF(-3.5, up * 2.5));
        path.lineTo(centre + QPointF(0, up * 6));
        path.lineTo(centre + QPointF(3.5, up * 2.5));
    }
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Colours::accentBlue, 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(path);
}

} // namespace

PopUpButton::PopUpButton(QWidget *parent)
    : QComboBox(parent)
{
    setFont(System(13, QFont::DemiBold));
    setPalette(LightPalette());
    setAttribute(Qt::WA_Hover);
    setMaxVisibleItems(mostItemsShown);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    auto *below = new ListBelow;
    below->setParent(this);
    setStyle(below);
    view()->setVerticalScrollBar(new SlimScrollBar(Qt::Vertical));
    setItemDelegate(new RoomyItems(this));
}

QSize PopUpButton::sizeHint() const
{
    int widest = 0;
    for (int item = 0; item < count(); ++item)
        widest = qMax(widest, fontMetrics().horizontalAdvance(itemText(item)));
    return {widest + 2 * padX + chevronRoom, popUpHeight};
}

QSize PopUpButton::minimumSizeHint() const
{
    return {qMin(leastWidth, sizeHint().width()), popUpHeight};
}

void PopUpButton::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Space:
        showPopup();
        return;
    // Would choose as the arrows do.
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Home:
    case Qt::Key_End:
        return;
    default:
        break;
    }
    const QString text = event->text();
    if (text.isEmpty() || !text.at(0).isPrint())
        QComboBox::keyPressEvent(event);
    else if (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
        event->ignore();
    else
        showPopupAt(text);
}

void PopUpButton::inputMethodEvent(QInputMethodEvent *event)
{
    if (event->commitString().isEmpty())
        event->ignore();
    else
        showPopupAt(event->commitString());
}

void PopUpButton::showPopupAt(const QString &beginning)
{
    showPopup();
    view()->keyboardSearch(beginning);
}

void PopUpButton::wheelEvent(QWheelEvent *event)
{
    event->ignore();
}

void PopUpButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double half = borderWidth / 2;
    const double radius = Metrics::pillRadius;
    const bool lit = isEnabled() && testAttribute(Qt::WA_UnderMouse);
    painter.setBrush(lit ? Colours::paleCard : Colours::white);
    painter.setPen(QPen(Colours::pillBorder, borderWidth));
    painter.drawRoundedRect(QRectF(rect()).adjusted(half, half, -half, -half), radius - half, radius - half);

    const auto mirrored = [this](const QRect &place) { return QStyle::visualRect(layoutDirection(), rect(), place); };
    const QRectF chevrons = mirrored({width() - chevronRoom - padX / 2, 0, chevronRoom, height()});
    drawChevrons(painter, chevrons.center());

    const QRect title = mirrored({padX, 0, width() - 2 * padX - chevronRoom + padX / 2, height()});
    const Qt::Alignment leading = QStyle::visualAlignment(layoutDirection(), Qt::AlignLeading);
    painter.setLayoutDirection(Qt::LayoutDirectionAuto);
    painter.setPen(Colours::withOpacity(Colours::navy, isEnabled() ? 1 : Metrics::disabledOpacity));
    painter.drawText(title, int(leading | Qt::AlignAbsolute | Qt::AlignVCenter) | Qt::TextSingleLine,
                     fontMetrics().elidedText(currentText(), Qt::ElideRight, title.width()));
    if (hasFocus())
        drawFocusRing(painter, QRectF(rect()), radius);
}

} // namespace tuppi

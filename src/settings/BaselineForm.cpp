#include "settings/BaselineForm.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QStyle>
#include <QTextLayout>
#include <QWidget>

namespace tuppi {
namespace {

constexpr int columnGap = 12;

QString textOf(const QWidget *widget)
{
    if (const auto *button = qobject_cast<const QAbstractButton *>(widget))
        return button->text();
    if (const auto *box = qobject_cast<const QComboBox *>(widget))
        return box->currentText();
    const auto *label = qobject_cast<const QLabel *>(widget);
    return label ? label->text() : QString();
}

} // namespace

int FirstBaseline(const QWidget *widget)
{
    if (const QLayout *layout = widget->layout(); layout && layout->count() > 0) {
        if (const QWidget *first = layout->itemAt(0)->widget())
            return layout->contentsMargins().top() + FirstBaseline(first);
    }
    // Scripts that the font does not hold stand taller than its own line; the text as it is laid out counts.
    QTextLayout layout(textOf(widget), widget->font());
    layout.beginLayout();
    const QTextLine line = layout.createLine();
    layout.endLayout();
    if (!line.isValid())
        return widget->fontMetrics().ascent();
    const double above = (widget->minimumSizeHint().height() - line.height()) / 2;
    return qRound(qMax(0.0, above) + line.ascent());
}

/// The place of one row, for a left-to-right layout.
struct BaselineForm::RowPlace
{
    int labelTop = 0;
    int controlTop = 0;
    int controlHeight = 0;
    int bottom = 0;  ///< of whatever reaches further down
};

BaselineForm::BaselineForm(QWidget *parent)
    : QLayout(parent)
{
    setContentsMargins(0, 0, 0, 0);
}

BaselineForm::~BaselineForm()
{
    for (const Row &row : std::as_const(m_rows)) {
        delete row.label;
        delete row.control;
    }
}

void BaselineForm::addRow(QWidget *label, QWidget *control)
{
    if (label)
        addChildWidget(label);
    addChildWidget(control);
    m_rows.append(Row{label ? new QWidgetItem(label) : nullptr, new QWidgetItem(control)});
    invalidate();
}

int BaselineForm::count() const
{
    int items = 0;
    for (const Row &row : m_rows)
        items += (row.label ? 1 : 0) + (row.control ? 1 : 0);
    return items;
}

QLayoutItem *BaselineForm::itemAt(int index) const
{
    for (const Row &row : m_rows) {
        for (QLayoutItem *item : {row.label, row.control}) {
            if (item && index-- == 0)
                return item;
        }
    }
    return nullptr;
}

QLayoutItem *BaselineForm::takeAt(int index)
{
    for (Row &row : m_rows) {
        for (QLayoutItem **item : {&row.label, &row.control}) {
            if (*item && index-- == 0)
                return std::exchange(*item, nullptr);
        }
    }
    return nullptr;
}

void BaselineForm::addItem(QLayoutItem *item)
{
    m_rows.append(Row{nullptr, item});
}

int BaselineForm::labelWidth() const
{
    int widest = 0;
    for (const Row &row : m_rows)
        widest = qMax(widest, row.label ? row.label->sizeHint().width() : 0);
    return widest;
}

BaselineForm::RowPlace BaselineForm::placeOf(const Row &row, int top, int controlWidth) const
{
    RowPlace place{top, top, 0, top};
    if (!row.control)
        return place;
    const int width = qMin(controlWidth, row.control->sizeHint().width());
    place.controlHeight =
        row.control->hasHeightForWidth() ? row.control->heightForWidth(width) : row.control->sizeHint().height();
    if (row.label) {
        const int above = FirstBaseline(row.control->widget()) - FirstBaseline(row.label->widget());
        place.labelTop += qMax(0, above);
        place.controlTop += qMax(0, -above);
        place.bottom = place.labelTop + row.label->sizeHint().height();
    }
    place.bottom = qMax(place.bottom, place.controlTop + place.controlHeight);
    return place;
}

QSize BaselineForm::sizeFor(bool minimum) const
{
    int control = 0;
    for (const Row &row : m_rows) {
        if (row.control)
            control = qMax(control, (minimum ? row.control->minimumSize() : row.control->sizeHint()).width());
    }
    const QMargins margins = contentsMargins();
    const int width = labelWidth() + columnGap + control + margins.left() + margins.right();
    return {width, heightForWidth(width)};
}

QSize BaselineForm::sizeHint() const
{
    return sizeFor(false);
}

QSize BaselineForm::minimumSize() const
{
    return {sizeFor(true).width(), sizeFor(false).height()};
}

int BaselineForm::heightForWidth(int width) const
{
    const QMargins margins = contentsMargins();
    const int control = width - margins.left() - margins.right() - labelWidth() - columnGap;
    int top = margins.top();
    for (const Row &row : m_rows)
        top = placeOf(row, top, control).bottom + spacing();
    return top - (m_rows.isEmpty() ? 0 : spacing()) + margins.bottom();
}

void BaselineForm::setGeometry(const QRect &rect)
{
    QLayout::setGeometry(rect);
    const QRect room = contentsRect();
    const Qt::LayoutDirection direction = parentWidget() ? parentWidget()->layoutDirection() : Qt::LeftToRight;
    const int labels = labelWidth();
    const int left = room.left() + labels + columnGap;
    const int across = room.right() + 1 - left;
    const auto put = [&](QLayoutItem *item, const QRect &place) {
        item->setGeometry(QStyle::visualRect(direction, room, place));
    };
    int top = room.top();
    for (const Row &row : std::as_const(m_rows)) {
        const RowPlace place = placeOf(row, top, across);
        if (row.label)
            put(row.label, {room.left(), place.labelTop, labels, row.label->sizeHint().height()});
        if (row.control)
            put(row.control, {left, place.controlTop, qMin(across, row.control->sizeHint().width()), place.controlHeight});
        top = place.bottom + spacing();
    }
}

} // namespace tuppi

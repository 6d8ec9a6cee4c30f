#include "settings/PathField.h"

#include "ui/Colours.h"
#include "ui/Fonts.h"
#include "ui/LightPalette.h"
#include "ui/Painting.h"

#include <QFocusEvent>
#include <QPainter>

namespace tuppi {
namespace {

constexpr int editorPad = 2; ///< what the line editor keeps free on either side
constexpr int caret = 2;
constexpr int focusLine = 2;

} // namespace

PathField::PathField(int mostWidth, QWidget *parent)
    : QLineEdit(parent)
    , m_mostWidth(mostWidth)
{
    setFont(System(13));
    setReadOnly(true);
    setFrame(false);
    setTextMargins(-editorPad, 0, -editorPad, 0); // in line with what stands above and below
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    QPalette light = LightPalette();
    light.setColor(QPalette::Base, Colours::window);
    setPalette(light);
}

void PathField::setPath(const QString &shown, const QString &tip)
{
    m_path = onOneLine(shown);
    setToolTip(plainToolTip(tip));
    setAccessibleDescription(tip);
    showPath();
    updateGeometry();
}

QSize PathField::sizeHint() const
{
    const int text = fontMetrics().horizontalAdvance(m_path) + 1 + caret;
    return {qMin(m_mostWidth, text), fontMetrics().height() + 2 * (focusLine + 1)};
}

/// A path runs from the left, but stands where the interface's texts begin.
void PathField::showPath()
{
    setAlignment((isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignAbsolute | Qt::AlignVCenter);
    if (hasFocus()) {
        if (text() != m_path) // the same again would drop what is selected
            setText(m_path);
        return;
    }
    setText(fontMetrics().elidedText(m_path, Qt::ElideMiddle, width() - caret));
    setCursorPosition(0);
}

void PathField::focusInEvent(QFocusEvent *event)
{
    setText(m_path);
    QLineEdit::focusInEvent(event);
    if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason)
        selectAll();
}

void PathField::focusOutEvent(QFocusEvent *event)
{
    QLineEdit::focusOutEvent(event);
    // The menu that copies it must find it still selected.
    if (event->reason() != Qt::PopupFocusReason)
        showPath();
}

void PathField::resizeEvent(QResizeEvent *event)
{
    QLineEdit::resizeEvent(event);
    showPath();
}

void PathField::changeEvent(QEvent *event)
{
    QLineEdit::changeEvent(event);
    if (event->type() == QEvent::LayoutDirectionChange)
        showPath();
}

void PathField::paintEvent(QPaintEvent *event)
{
    QLineEdit::paintEvent(event);
    if (!hasFocus())
        return;
    QPainter painter(this);
    painter.fillRect(0, height() - focusLine, width(), focusLine, Colours::focusRing);
}

} // namespace tuppi

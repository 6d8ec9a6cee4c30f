#include "ui/TranscriptList.h"

#include "settings/L.h"
#include "ui/Accessibility.h"
#include "ui/Metrics.h"
#include "ui/SlimScrollBar.h"

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPushButton>
#include <QScrollBar>

namespace tuppi {

using namespace Qt::StringLiterals;

TranscriptList::TranscriptList(RowFactory makeRow, QWidget *parent)
    : QAbstractScrollArea(parent)
    , m_makeRow(std::move(makeRow))
{
    setObjectName(u"table"_s);
    installControlAccessibility(); // before the name: with it the toolkit makes the interface that it keeps
    setAccessibleName(L(u"Transcripts"_s));
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBar(new SlimScrollBar(Qt::Vertical));
    setFocusPolicy(Qt::StrongFocus);
    // What lies behind, the drop area, shows between the cards and takes the drops.
    viewport()->setAutoFillBackground(false);
    setAttribute(Qt::WA_NoSystemBackground);
    verticalScrollBar()->setSingleStep(Metrics::rowHeight / 2);
}

void TranscriptList::setContent(const ListContent &content)
{
    QMultiHash<QString, RowView *> byKey; // a file may wait twice
    for (auto shown = m_shown.begin(); shown != m_shown.end(); ++shown)
        byKey.insert(shown.value()->look().key, shown.value());
    m_content = content;
    const int before = m_selected;
    m_selected = m_selectedKey.isEmpty() ? -1 : IndexOfKey(m_content, m_selectedKey);
    if (m_selected < 0)
        m_selectedKey.clear();
    if (m_selected < 0 && before >= 0)
        m_left = before;
    m_takingOver = true;
    updateScrollRange();
    m_takingOver = false;

    // A row that is still in sight keeps its view, so that focus, hover and mascot go on undisturbed.
    m_shown.clear();
    const auto [first, last] = rowsInSight();
    for (int index = first; index <= last; ++index) {
        if (RowView *view = byKey.take(m_content.keyAt(index)))
            m_shown.insert(index, view);
    }
    for (RowView *view : std::as_const(byKey))
        retire(view);
    showRowsInSight();
}

void TranscriptList::updateScrollRange()
{
    const int contentHeight = int(m_content.size()) * Metrics::rowHeight;
    verticalScrollBar()->setRange(0, qMax(0, contentHeight - viewport()->height()));
    verticalScrollBar()->setPageStep(viewport()->height());
}

std::pair<int, int> TranscriptList::rowsInSight() const
{
    const int top = verticalScrollBar()->value();
    const int last = (top + viewport()->height() - 1) / Metrics::rowHeight;
    return {top / Metrics::rowHeight, qMin(last, int(m_content.size()) - 1)};
}

void TranscriptList::showRowsInSight()
{
    if (m_takingOver)
        return; // scrolled by a list that has become shorter, before the new rows have found their views
    const auto [first, last] = rowsInSight();
    for (auto shown = m_shown.begin(); shown != m_shown.end();) {
        if (shown.key() >= first && shown.key() <= last) {
            ++shown;
            continue;
        }
        retire(shown.value());
        shown = m_shown.erase(shown);
    }
    for (int index = first; index <= last; ++index) {
        RowView *&view = m_shown[index];
        if (!view)
            view = takeView();
        place(index, view);
    }
    orderTabs();
}

/// A view may come to serve any row: Tab follows the rows all the same.
void TranscriptList::orderTabs()
{
    QList<QPushButton *> order;
    const auto [first, last] = rowsInSight();
    for (int index = first; index <= last; ++index)
        order += m_shown.value(index)->buttons();
    if (order == m_tabOrder)
        return;
    m_tabOrder = order;
    QWidget *before = this;
    for (QPushButton *button : std::as_const(order)) {
        setTabOrder(before, button);
        before = button;
    }
}

void TranscriptList::place(int index, RowView *view)
{
    RowLook look = m_content.lookAt(index);
    look.selected = index == m_selected;
    look.focused = look.selected && m_showsFocus && hasFocus();
    const bool hadFocus = view->isAncestorOf(QApplication::focusWidget());
    view->setLook(look);
    // A button that vanishes under the keyboard would hand it to the next one, of whatever row that is.
    if (hadFocus && !view->isAncestorOf(QApplication::focusWidget()))
        setFocus(Qt::OtherFocusReason);
    view->setGeometry(0, index * Metrics::rowHeight - verticalScrollBar()->value(), viewport()->width(),
                      Metrics::rowHeight);
    view->show();
}

RowView *TranscriptList::takeView()
{
    if (!m_pool.isEmpty())
        return m_pool.takeLast();
    RowView *view = m_makeRow(viewport());
    connect(view, &RowView::action, this, &TranscriptList::rowAction);
    view->installEventFilter(this);
    return view;
}

void TranscriptList::retire(RowView *view)
{
    // The keyboard stays in the list when the button that has it scrolls away.
    if (view->isAncestorOf(QApplication::focusWidget()))
        setFocus(Qt::OtherFocusReason);
    Q_ASSERT(!m_pool.contains(view));
    view->hide();
    view->clearLook();
    m_pool.append(view);
}

void TranscriptList::selectRow(int index)
{
    if (index == m_selected)
        return;
    const int before = m_selected;
    m_selected = index >= 0 && index < m_content.size() ? index : -1;
    m_selectedKey = m_selected < 0 ? QString() : m_content.keyAt(m_selected);
    m_left = -1;
    for (const int changed : {before, m_selected}) {
        if (RowView *view = m_shown.value(changed))
            place(changed, view);
    }
    if (hasFocus())
        tellFocus();
}

void TranscriptList::focusRow(const RowView *row)
{
    setFocus(Qt::OtherFocusReason);
    setShowsFocus(true);
    selectRow(m_shown.key(const_cast<RowView *>(row), -1));
}

/// The ring is for those who use the keyboard: a click shows by itself where it was.
void TranscriptList::setShowsFocus(bool shown)
{
    m_showsFocus = shown;
    if (RowView *view = viewAt(m_selected))
        place(m_selected, view);
}

/// To assistive tools the selected row has the keyboard, and not the list around it.
void TranscriptList::tellFocus()
{
    RowView *view = viewAt(m_selected);
    if (!view || !QAccessible::isActive())
        return;
    QAccessibleEvent focused(view, QAccessible::Focus);
    QAccessible::updateAccessibility(&focused);
}

int TranscriptList::rowAt(const QPoint &viewportPosition) const
{
    const int index = (viewportPosition.y() + verticalScrollBar()->value()) / Metrics::rowHeight;
    return viewportPosition.y() >= 0 && index < m_content.size() ? index : -1;
}

void TranscriptList::scrollTo(int index)
{
    const int top = index * Metrics::rowHeight;
    QScrollBar *bar = verticalScrollBar();
    if (top < bar->value())
        bar->setValue(top);
    else if (top + Metrics::rowHeight > bar->value() + viewport()->height())
        bar->setValue(top + Metrics::rowHeight - viewport()->height());
}

void TranscriptList::pressed(const QPoint &viewportPosition, Qt::MouseButton button)
{
    const int index = rowAt(viewportPosition);
    setFocus(Qt::MouseFocusReason);
    setShowsFocus(false);
    if (index >= 0 || button == Qt::LeftButton)
        selectRow(index);
}

bool TranscriptList::viewportEvent(QEvent *event)
{
    if (event->type() == QEvent::MouseButtonPress) {
        const auto *mouse = static_cast<QMouseEvent *>(event);
        pressed(mouse->position().toPoint(), mouse->button());
        return true;
    }
    if (event->type() == QEvent::ContextMenu) {
        const auto *menu = static_cast<QContextMenuEvent *>(event);
        const int index = rowAt(menu->pos());
        Q_EMIT menuRequested(index < 0 ? QString() : m_content.keyAt(index), menu->globalPos());
        return true;
    }
    return QAbstractScrollArea::viewportEvent(event);
}

bool TranscriptList::eventFilter(QObject *watched, QEvent *event)
{
    auto *view = qobject_cast<RowView *>(watched);
    if (!view)
        return QAbstractScrollArea::eventFilter(watched, event);
    if (event->type() == QEvent::MouseButtonPress) {
        const auto *mouse = static_cast<QMouseEvent *>(event);
        pressed(view->mapTo(viewport(), mouse->position().toPoint()), mouse->button());
    } else if (event->type() == QEvent::MouseButtonDblClick) {
        if (static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton)
            Q_EMIT openRequested(view->look().key);
    } else if (event->type() == QEvent::ContextMenu) {
        const auto *menu = static_cast<QContextMenuEvent *>(event);
        Q_EMIT menuRequested(view->look().key, menu->globalPos());
        return true;
    }
    return false;
}

void TranscriptList::resizeEvent(QResizeEvent *event)
{
    QAbstractScrollArea::resizeEvent(event);
    updateScrollRange();
    showRowsInSight();
}

void TranscriptList::scrollContentsBy(int, int)
{
    showRowsInSight();
}

bool TranscriptList::moveSelection(QKeyEvent *event)
{
    const int count = int(m_content.size());
    const int page = qMax(1, viewport()->height() / Metrics::rowHeight);
    const int from = m_selected < 0 ? m_left : m_selected;
    int target = from;
    switch (event->key()) {
    case Qt::Key_Up:
        target = from < 0 ? count - 1 : from - 1;
        break;
    case Qt::Key_Down:
        target = m_left < 0 ? from + 1 : m_left; // another row has come there
        break;
    case Qt::Key_PageUp:
        target = from - page;
        break;
    case Qt::Key_PageDown:
        target = from + page;
        break;
    case Qt::Key_Home:
        target = 0;
        break;
    case Qt::Key_End:
        target = count - 1;
        break;
    default:
        return false;
    }
    setShowsFocus(true);
    if (count > 0) {
        target = qBound(0, target, count - 1);
        selectRow(target);
        scrollTo(target);
    }
    return true;
}

void TranscriptList::typeSelect(const QString &text)
{
    if (!m_lastTyped.isValid() || m_lastTyped.hasExpired(QApplication::keyboardInputInterval()))
        m_typed.clear();
    m_lastTyped.start();
    m_typed += text;
    // The first letter moves on from the selected row; a longer word may still be that row's own.
    const int from = qMax(0, m_selected) + (m_typed.size() == 1 && m_selected >= 0 ? 1 : 0);
    const int index = IndexOfTitle(m_content, m_typed, from);
    if (index >= 0) {
        selectRow(index);
        scrollTo(index);
    }
}

void TranscriptList::keyPressEvent(QKeyEvent *event)
{
    const bool plain = !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    const QString key = keyWithKeyboard();
    if (!key.isEmpty() && (event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace)) {
        Q_EMIT removeRequested(key);
    } else if (!key.isEmpty() && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) {
        Q_EMIT openRequested(key);
    } else if (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier) {
        askForMenu();
    } else if (!moveSelection(event)) {
        if (plain && !event->text().isEmpty() && event->text().at(0).isPrint())
            typeSelect(event->text());
        else
            QAbstractScrollArea::keyPressEvent(event);
    }
}

/// The row that a key is for: the one whose button has the keyboard, else the selected one.
QString TranscriptList::keyWithKeyboard() const
{
    for (const RowView *view : m_shown) {
        if (view->isAncestorOf(QApplication::focusWidget()))
            return view->look().key;
    }
    return m_selectedKey;
}

/// As the menu key does, which not every keyboard has.
void TranscriptList::askForMenu()
{
    QWidget *focus = QApplication::focusWidget() ? QApplication::focusWidget() : this;
    const QPoint centre = focus->rect().center();
    QContextMenuEvent asked(QContextMenuEvent::Keyboard, centre, focus->mapToGlobal(centre));
    QCoreApplication::sendEvent(focus, &asked);
}

/// Of the menu key alone: a click is the viewport's.
void TranscriptList::contextMenuEvent(QContextMenuEvent *)
{
    if (m_selected >= 0)
        scrollTo(m_selected);
    const RowView *view = viewAt(m_selected);
    const QWidget *place = view ? view : viewport();
    Q_EMIT menuRequested(m_selectedKey, place->mapToGlobal(place->rect().center()));
}

bool TranscriptList::focusNextPrevChild(bool next)
{
    // From the list into the row that is selected, and not through all those above it. Buttons ask here too.
    const RowView *view = next && hasFocus() ? viewAt(m_selected) : nullptr;
    if (!view || view->buttons().isEmpty())
        return QAbstractScrollArea::focusNextPrevChild(next);
    view->buttons().constFirst()->setFocus(Qt::TabFocusReason);
    return true;
}

void TranscriptList::focusInEvent(QFocusEvent *event)
{
    // Arriving by Tab there is something to see and to act on.
    if (m_selected < 0 && m_content.size() > 0
        && (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason))
        selectRow(rowsInSight().first);
    QAbstractScrollArea::focusInEvent(event);
    if (event->reason() != Qt::MouseFocusReason)
        setShowsFocus(m_showsFocus || event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason);
    // The toolkit names the list itself only after this.
    QMetaObject::invokeMethod(this, &TranscriptList::tellFocus, Qt::QueuedConnection);
}

void TranscriptList::focusOutEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusOutEvent(event);
    setShowsFocus(m_showsFocus);
}

} // namespace tuppi

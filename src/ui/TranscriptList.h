#pragma once

#include "list/ListContent.h"
#include "ui/RowView.h"

#include <QAbstractScrollArea>
#include <QElapsedTimer>
#include <QHash>
#include <QList>

#include <functional>

namespace tuppi {

/// The transcript list: one card per row, all of one height. Widgets exist only for the rows in sight and are
/// taken from a pool; the others are data. A new content keeps selection, scroll place, keyboard focus and
/// running animations wherever a row with the same key is still there.
class TranscriptList : public QAbstractScrollArea
{
    Q_OBJECT
public:
    using RowFactory = std::function<RowView *(QWidget *parent)>;

    /// `makeRow` makes a row view owned by the given parent.
    explicit TranscriptList(RowFactory makeRow, QWidget *parent = nullptr);

    void setContent(const ListContent &content);
    const ListContent &content() const { return m_content; }

    /// Key of the selected row, empty for none.
    QString selectedKey() const { return m_selectedKey; }
    void selectRow(int index);
    int selectedIndex() const { return m_selected; }

    /// The view of a row in sight, null otherwise. Owned by the list.
    RowView *viewAt(int index) const { return m_shown.value(index); }
    /// Rows that fit the viewport, the last one perhaps in part.
    std::pair<int, int> rowsInSight() const;

    /// Selects that row and takes the keyboard, as assistive tools ask for.
    void focusRow(const RowView *row);

Q_SIGNALS:
    void rowAction(const QString &key, const QString &action);
    void openRequested(const QString &key);
    void removeRequested(const QString &key);
    /// `key` is empty where the click was on no row.
    void menuRequested(const QString &key, const QPoint &globalPosition);

protected:
    bool viewportEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    bool focusNextPrevChild(bool next) override;

private:
    int rowAt(const QPoint &viewportPosition) const;
    void updateScrollRange();
    void showRowsInSight();
    void place(int index, RowView *view);
    void orderTabs();
    RowView *takeView();
    void retire(RowView *view);
    void scrollTo(int index);
    bool moveSelection(QKeyEvent *event);
    void typeSelect(const QString &text);
    QString keyWithKeyboard() const;
    void askForMenu();
    void pressed(const QPoint &viewportPosition, Qt::MouseButton button);
    void setShowsFocus(bool shown);
    void tellFocus();

    RowFactory m_makeRow;
    ListContent m_content;
    QHash<int, RowView *> m_shown;
    QList<RowView *> m_pool;
    QList<QPushButton *> m_tabOrder; ///< the buttons in sight, as Tab visits them
    int m_selected = -1;
    QString m_selectedKey;
    int m_left = -1; ///< where the selected row was when it left the list: the arrow keys go on from there
    bool m_showsFocus = false; ///< keys are in use here, and not only the mouse
    bool m_takingOver = false; ///< a new content is there, and its rows have no views yet
    QString m_typed;
    QElapsedTimer m_lastTyped;
};

} // namespace tuppi

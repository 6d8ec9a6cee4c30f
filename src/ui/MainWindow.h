#pragma once

#include "list/ListContent.h"

#include <QMainWindow>
#include <QTimer>
#include <QUrl>

QT_BEGIN_NAMESPACE
class QMenu;
QT_END_NAMESPACE

namespace tuppi {

class DropView;
class Footer;
class Stage;
class TranscriptList;

/// The main window: title strip, transcript list over the drop area, empty state, footer, menu bar. It shows
/// what it is given and says what the user asks for.
class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    /// `stage` outlives the window.
    explicit MainWindow(Stage &stage, QWidget *parent = nullptr);

    void setContent(const ListContent &content);
    void setEmpty(bool empty);
    void setSummary(const QString &summary);
    void setSoundsOn(bool on);
    /// Which items of the row menu can be used, by the command's name.
    void setRowMenuRule(std::function<bool(const QString &key, const QString &action)> allowed);

    /// Shows the window and brings it to the front.
    void bringForward();

    TranscriptList *list() const { return m_list; }
    DropView *dropArea() const { return m_drop; }

Q_SIGNALS:
    /// A command of the menu bar or the footer, by its name.
    void command(const QString &action);
    /// A command on a row.
    void rowCommand(const QString &key, const QString &action);
    void filesDropped(const QList<QUrl> &files);
    /// The frame is worth remembering: the window was closed, or moved or sized a moment ago. A session that ends may
    /// give no other chance.
    void frameChanged();
    /// The window has been on the screen, once; or it was shown where nobody looks and is not going to be soon.
    void firstPainted();

protected:
    bool event(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void buildMenuBar();
    void addMenuKey();
    void buildContent();
    QWidget *buildEmptyState();
    void openRowMenu(const QString &key, const QPoint &position);

    Stage &m_stage;
    DropView *m_drop = nullptr;
    TranscriptList *m_list = nullptr;
    QWidget *m_emptyState = nullptr; ///< none before it is first shown
    Footer *m_footer = nullptr;
    std::function<bool(const QString &, const QString &)> m_rowMenuRule;
    QTimer m_untilPainted;
};

} // namespace tuppi

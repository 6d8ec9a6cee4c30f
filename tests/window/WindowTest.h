#pragma once

#include "app/AppTest.h"
#include "intake/SetupPanel.h"
#include "ui/DropView.h"
#include "ui/IconButton.h"
#include "ui/Labels.h"
#include "ui/MainWindow.h"
#include "ui/MascotView.h"
#include "ui/Metrics.h"
#include "ui/PillButton.h"
#include "ui/RowView.h"
#include "ui/Sheet.h"
#include "ui/SkyBar.h"
#include "ui/TranscriptList.h"

#include <QMimeData>
#include <QPointer>
#include <QScrollBar>

namespace tuppi::test {

/// What a row shows, read off its widgets.
struct Shown
{
    QString title;
    QString detail;
    QString pose;
    bool moves = false;  ///< the mascot is the animated one
    double bar = -2;     ///< -2 no bar, -1 running without an amount, else the part of it that is filled
    QStringList buttons; ///< "title/style", or an icon's symbol
    bool active = false; ///< outlined as being worked on

    bool operator==(const Shown &) const = default;
};
void PrintTo(const Shown &shown, std::ostream *stream);

/// A drag that travels as the window system would deliver it: what lies under the pointer is found by place.
class Drag
{
public:
    explicit Drag(const QStringList &paths = {});
    explicit Drag(const QList<QUrl> &urls) { m_data.setUrls(urls); }

    QMimeData &data() { return m_data; }
    /// Whether it may be dropped there.
    bool enter(QWidget *over);
    bool move(QWidget *over);
    void leave(QWidget *over);
    /// Whether it was taken, as a copy.
    bool drop(QWidget *over);

private:
    QMimeData m_data;
};

/// Clicks where the widget is, on whatever receives it there; the widget must not be covered.
void click(QWidget *widget, Qt::MouseButton button = Qt::LeftButton);
void clickAt(QWidget *widget, const QPoint &place, Qt::MouseButton button = Qt::LeftButton);
/// Presses a key in the window that has the keyboard.
void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
void type(const QString &ascii);
/// Name of the widget that has the keyboard.
QString focusName();
/// Presses Tab (or another key) until the widget of that name has the keyboard.
bool tabTo(const QString &name, Qt::Key key = Qt::Key_Tab);

QJsonObject job(const QString &id, const QString &title, const QString &status, bool paused = false);
QByteArray historyOf(const QList<QJsonObject> &jobs);
/// Finished jobs "job-0", "job-1" … with titles "Talk 0" …
QList<QJsonObject> readyJobs(int count);

/// The application with its main window, the scripted engine and a home of its own.
class WindowTest : public AppTest
{
protected:
    void TearDown() override;

    /// Opens it and waits for the first history.
    void openWindow();
    /// Opens it; the engine has not answered yet.
    void openEarly();
    /// Gives the window the keyboard, as a window manager does when a sheet over it has gone.
    void activate();
    void show(const QList<QJsonObject> &jobs);

    MainWindow *window() const { return m_window; }
    TranscriptList *list() const { return m_window->list(); }
    DropView *dropArea() const { return m_window->dropArea(); }
    bool isEmptyStateShown() const;
    QString summary() const;
    ElidedLabel *summaryLabel() const;

    /// Views that exist, in use or waiting for use.
    int rowViews() const;
    /// The row in sight under that key, null otherwise.
    RowView *row(const QString &key) const;
    Shown shown(const QString &key) const;
    bool rowSays(const QString &key, const QString &detail) const;
    QPushButton *rowButton(const QString &key, const QString &action) const;

    /// Null while it is closed.
    SetupPanel *panel() const;
    bool panelCloses() const;
    QStringList panelFiles() const;
    QString panelLength() const;
    PillButton *startButton() const;
    /// Null when there is none.
    Sheet *sheet() const;
    bool sheetCloses() const;
    QStringList sheetButtons() const;

    QPointer<MainWindow> m_window;
};

} // namespace tuppi::test

#include "window/WindowTest.h"

#include "intake/FileBox.h"

#include <QApplication>
#include <QDropEvent>
#include <QJsonDocument>
#include <QTest>
#include <QWindow>

namespace tuppi::test {

using namespace Qt::StringLiterals;

namespace {

QWindow *handleOf(QWidget *widget)
{
    return widget->window()->windowHandle();
}

QPoint placeOf(QWidget *widget)
{
    return widget->mapTo(widget->window(), widget->rect().center());
}

QString nameOf(const QPushButton *button)
{
    if (const auto *pill = qobject_cast<const PillButton *>(button))
        return u"%1/%2"_s.arg(pill->title()).arg(pill->pill());
    return qobject_cast<const IconButton *>(button)->symbol();
}

template <typename Child> Child *visibleChild(const QWidget *window, const QString &name = {})
{
    for (Child *child : window->findChildren<Child *>(name)) {
        if (child->isVisible())
            return child;
    }
    return nullptr;
}

} // namespace

Drag::Drag(const QStringList &paths)
{
    QList<QUrl> urls;
    for (const QString &path : paths)
        urls.append(QUrl::fromLocalFile(path));
    if (!urls.isEmpty())
        m_data.setUrls(urls);
}

bool Drag::enter(QWidget *over)
{
    QDragEnterEvent event(placeOf(over), Qt::CopyAction | Qt::MoveAction, &m_data, Qt::LeftButton,
                          Qt::NoModifier);
    QCoreApplication::sendEvent(handleOf(over), &event);
    return event.isAccepted() && event.dropAction() == Qt::CopyAction;
}

bool Drag::move(QWidget *over)
{
    QDragMoveEvent event(placeOf(over), Qt::CopyAction | Qt::MoveAction, &m_data, Qt::LeftButton,
                         Qt::NoModifier);
    QCoreApplication::sendEvent(handleOf(over), &event);
    return event.isAccepted() && event.dropAction() == Qt::CopyAction;
}

void Drag::leave(QWidget *over)
{
    QDragLeaveEvent event;
    QCoreApplication::sendEvent(handleOf(over), &event);
}

bool Drag::drop(QWidget *over)
{
    QDropEvent event(placeOf(over), Qt::CopyAction | Qt::MoveAction, &m_data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(handleOf(over), &event);
    return event.isAccepted() && event.dropAction() == Qt::CopyAction;
}

void clickAt(QWidget *widget, const QPoint &place, Qt::MouseButton button)
{
    QWidget *window = widget->window();
    // What has just come may not be in its place yet.
    ASSERT_TRUE(waitFor([&] {
        const QWidget *hit = window->childAt(widget->mapTo(window, place));
        return hit == widget || widget->isAncestorOf(hit);
    })) << "covered by something else";
    QTest::mouseClick(window->windowHandle(), button, Qt::NoModifier, widget->mapTo(window, place));
}

void click(QWidget *widget, Qt::MouseButton button)
{
    ASSERT_NE(widget, nullptr);
    clickAt(widget, widget->rect().center(), button);
}

void press(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    QWindow *window = QGuiApplication::focusWindow();
    ASSERT_NE(window, nullptr) << "no window has the keyboard";
    QTest::keyClick(window, key, modifiers);
}

void type(const QString &ascii)
{
    for (const QChar character : ascii) {
        ASSERT_NE(QGuiApplication::focusWindow(), nullptr);
        QTest::keyClick(QGuiApplication::focusWindow(), character.toLatin1());
    }
}

QString focusName()
{
    return QApplication::focusWidget() ? QApplication::focusWidget()->objectName() : QString();
}

bool tabTo(const QString &name, Qt::Key key)
{
    constexpr int patience = 60;
    for (int step = 0; step < patience; ++step) {
        if (focusName() == name)
            return true;
        press(key, key == Qt::Key_Backtab ? Qt::ShiftModifier : Qt::NoModifier);
    }
    return false;
}

QJsonObject job(const QString &id, const QString &title, const QString &status, bool paused)
{
    return {{u"id"_s, id},
            {u"title"_s, title},
            {u"status"_s, status},
            {u"paused"_s, paused},
            {u"call_dir"_s, QString(u"/calls/"_s + title)},
            {u"recorded_at"_s, u"2025-03-14T10:22:33"_s},
            {u"duration_seconds"_s, 2520},
            {u"engine"_s, u"whisper"_s}};
}

QByteArray historyOf(const QList<QJsonObject> &jobs)
{
    QJsonArray history;
    for (const QJsonObject &entry : jobs)
        history.append(entry);
    return QJsonDocument(history).toJson(QJsonDocument::Compact);
}

QList<QJsonObject> readyJobs(int count)
{
    QList<QJsonObject> jobs;
    for (int i = 0; i < count; ++i)
        jobs.append(job(u"job-%1"_s.arg(i), u"Talk %1"_s.arg(i), u"ready"_s));
    return jobs;
}

void WindowTest::TearDown()
{
    destroy();
}

void WindowTest::openEarly()
{
    create();
    m_app->applicationDidFinishLaunching(AppDelegate::Face::Window);
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (auto *window = qobject_cast<MainWindow *>(widget))
            m_window = window;
    }
    ASSERT_TRUE(m_window);
    ASSERT_TRUE(waitFor([this] { return m_window->windowHandle()->isExposed(); }));
    ASSERT_TRUE(waitFor([this] { return jobs().polling || jobs().loaded; })); // asked once the window is painted
    activate();
}

void WindowTest::openWindow()
{
    openEarly();
    ASSERT_TRUE(waitFor([this] { return jobs().loaded && !jobs().polling; }));
}

void WindowTest::activate()
{
    // Asked again: the system drops a wish that comes while another window goes.
    ASSERT_TRUE(waitFor([this] {
        m_window->activateWindow();
        return m_window->isActiveWindow();
    }));
}

void WindowTest::show(const QList<QJsonObject> &jobs)
{
    m_engine.answerHistory(historyOf(jobs));
    poll();
}

bool WindowTest::isEmptyStateShown() const
{
    const auto *view = m_window->findChild<QWidget *>(u"emptyState"_s);
    return view && view->isVisible();
}

ElidedLabel *WindowTest::summaryLabel() const
{
    return m_window->findChild<ElidedLabel *>(u"statusLabel"_s);
}

QString WindowTest::summary() const
{
    return summaryLabel()->text();
}

int WindowTest::rowViews() const
{
    return int(list()->viewport()->findChildren<RowView *>().size());
}

RowView *WindowTest::row(const QString &key) const
{
    const auto [first, last] = list()->rowsInSight();
    for (int index = first; index <= last; ++index) {
        RowView *view = list()->viewAt(index);
        if (view && view->isVisible() && view->look().key == key)
            return view;
    }
    return nullptr;
}

Shown WindowTest::shown(const QString &key) const
{
    const RowView *view = row(key);
    if (!view)
        return {};
    Shown shown{view->title()->text(),
                view->detail()->text(),
                view->icon()->pose(),
                view->icon()->isAnimated(),
                -2,
                {},
                view->isActiveCard()};
    if (const SkyBar *bar = view->bar(); bar->isVisible())
        shown.bar = bar->isSweeping() ? -1 : qRound(1000 * bar->fillRect().width() / bar->width()) / 1000.0;
    for (const QPushButton *button : view->buttons())
        shown.buttons.append(button->isVisible() ? nameOf(button) : u"(hidden)"_s);
    return shown;
}

bool WindowTest::rowSays(const QString &key, const QString &detail) const
{
    return waitFor([&] {
        const RowView *view = row(key);
        return view && view->detail()->text() == detail;
    });
}

QPushButton *WindowTest::rowButton(const QString &key, const QString &action) const
{
    if (const RowView *view = row(key)) {
        for (QPushButton *button : view->buttons()) {
            if (button->objectName() == action)
                return button;
        }
    }
    return nullptr;
}

SetupPanel *WindowTest::panel() const
{
    // One that was just made is shown a turn later.
    for (const SetupPanel *made : m_window->findChildren<SetupPanel *>()) {
        const bool isComing = !made->testAttribute(Qt::WA_WState_Created);
        EXPECT_TRUE(!isComing || waitFor([made] { return made->isVisible(); }));
    }
    return visibleChild<SetupPanel>(m_window);
}

bool WindowTest::panelCloses() const
{
    return waitFor([this] { return m_window->findChild<SetupPanel *>() == nullptr; });
}

QStringList WindowTest::panelFiles() const
{
    QStringList shown;
    for (const ElidedLabel *label :
         panel()->findChild<FileList *>(u"setupList"_s)->findChildren<ElidedLabel *>()) {
        if (!label->isHidden())
            shown.append(label->shownText());
    }
    return shown;
}

QString WindowTest::panelLength() const
{
    const auto *length = panel()->findChild<QLabel *>(u"setupDuration"_s);
    return length->isVisible() ? length->text() : QString();
}

PillButton *WindowTest::startButton() const
{
    return panel()->findChild<PillButton *>(u"startButton"_s);
}

Sheet *WindowTest::sheet() const
{
    return visibleChild<Sheet>(m_window);
}

bool WindowTest::sheetCloses() const
{
    return waitFor([this] { return m_window->findChild<Sheet *>() == nullptr; });
}

QStringList WindowTest::sheetButtons() const
{
    QStringList titles;
    for (const PillButton *button : sheet()->findChildren<PillButton *>())
        titles.append(button->title());
    return titles;
}

void PrintTo(const Shown &shown, std::ostream *stream)
{
    *stream << '"' << shown.title.toStdString() << "\" \"" << shown.detail.toStdString() << "\" "
            << shown.pose.toStdString() << (shown.moves ? " moving" : " still") << " bar " << shown.bar
            << " [" << shown.buttons.join(u", "_s).toStdString() << "]" << (shown.active ? " active" : "");
}

} // namespace tuppi::test

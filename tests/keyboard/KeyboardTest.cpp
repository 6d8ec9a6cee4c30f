// Every window, pane and sheet by keyboard alone: Tab and Shift+Tab reach whatever takes keys, in the order in which it
// is read, and never hold the keyboard; what has it can be told from what has not.

#include "settings/SettingsTabs.h"
#include "settings/SettingsWindow.h"
#include "window/WindowTest.h"

#include <QAccessible>
#include <QApplication>
#include <QImage>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QScrollArea>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::job;
using test::press;
using test::waitFor;

namespace {

/// A name for a message.
QString nameOf(const QWidget *widget)
{
    if (!widget)
        return u"nobody"_s;
    const QString name = widget->objectName().isEmpty() ? widget->accessibleName() : widget->objectName();
    return QString::fromLatin1(widget->metaObject()->className()) + u' ' + name;
}

QStringList namesOf(const QList<QWidget *> &widgets)
{
    QStringList names;
    for (const QWidget *widget : widgets)
        names.append(nameOf(widget));
    return names;
}

/// Presses the key until the keyboard is back where it was; what had it on the way, in order.
QList<QWidget *> round(Qt::Key key)
{
    constexpr int patience = 80;
    const Qt::KeyboardModifiers modifiers = key == Qt::Key_Backtab ? Qt::ShiftModifier : Qt::NoModifier;
    QList<QWidget *> stops{QApplication::focusWidget()};
    for (int step = 0; step < patience; ++step) {
        press(key, modifiers);
        if (QApplication::focusWidget() == stops.constFirst())
            return stops;
        stops.append(QApplication::focusWidget());
    }
    ADD_FAILURE() << "the keyboard does not come back to " << qPrintable(nameOf(stops.constFirst()));
    return stops;
}

/// What takes keys in a window and can be seen or scrolled to.
QList<QWidget *> keyTakers(const QWidget *window)
{
    QList<QWidget *> takers;
    for (QWidget *widget : window->findChildren<QWidget *>()) {
        const bool takes = widget->focusPolicy() & Qt::TabFocus && widget->isEnabled() && !widget->focusProxy();
        if (takes && widget->isVisibleTo(window) && widget->window() == window && !qobject_cast<QMenuBar *>(widget))
            takers.append(widget);
    }
    return takers;
}

QRect placeIn(const QWidget *window, const QWidget *widget)
{
    return {widget->mapTo(window, QPoint()), widget->size()};
}

/// Whether the second is read after the first.
bool isReadAfter(const QWidget *window, const QWidget *first, const QWidget *second)
{
    const QRect one = placeIn(window, first), other = placeIn(window, second);
    if (one.contains(other))
        return true; // the list, then what stands in it
    if (other.top() > one.bottom())
        return true;
    if (other.bottom() < one.top())
        return false;
    return window->isRightToLeft() ? other.right() <= one.right() : other.left() >= one.left();
}

QImage pictureOf(QWidget *widget)
{
    constexpr int around = 3;
    QWidget *window = widget->window();
    return window->grab(placeIn(window, widget).adjusted(-around, -around, around, around)).toImage();
}

int differences(const QImage &one, const QImage &other)
{
    int count = 0;
    for (int y = 0; y < qMin(one.height(), other.height()); ++y) {
        for (int x = 0; x < qMin(one.width(), other.width()); ++x)
            count += one.pixel(x, y) != other.pixel(x, y);
    }
    return count;
}

class Keyboard : public test::WindowTest, public testing::WithParamInterface<Qt::LayoutDirection>
{
protected:
    void SetUp() override
    {
        QGuiApplication::setLayoutDirection(GetParam());
        m_flash = QApplication::cursorFlashTime();
        QApplication::setCursorFlashTime(0); // a caret that stands still
    }
    void TearDown() override
    {
        WindowTest::TearDown();
        QApplication::setCursorFlashTime(m_flash);
        QGuiApplication::setLayoutDirection(Qt::LeftToRight);
    }
    static QList<QJsonObject> threeJobs()
    {
        return {job(u"a"_s, u"Working"_s, u"transcribing"_s), job(u"b"_s, u"Ready"_s, u"ready"_s),
                job(u"c"_s, u"Failed"_s, u"failed"_s)};
    }
    void openList()
    {
        m_engine.answerHistory(test::historyOf(threeJobs()));
        ASSERT_NO_FATAL_FAILURE(openWindow());
        ASSERT_TRUE(waitFor([this] { return row(u"c"_s) != nullptr; }));
    }
    void openPanel()
    {
        ASSERT_NO_FATAL_FAILURE(openWindow());
        m_app->addFiles({QUrl::fromLocalFile(m_engine.recording(u"talk.wav"_s))});
        ASSERT_TRUE(waitFor([this] { return panel() && panel()->isActiveWindow(); }));
    }
    SettingsWindow *openSettings()
    {
        m_engine.answer(u"models"_s, {R"({"custom":[{"id":"a","name":"Ada","repo":"ada/p"}],"text_model":"q"})"});
        m_app->showSettings();
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (auto *settings = qobject_cast<SettingsWindow *>(widget)) {
                EXPECT_TRUE(waitFor([&] { return settings->isActiveWindow()
                                              && settings->findChild<QWidget *>(u"removeModel.0"_s); }));
                return settings;
            }
        }
        return nullptr;
    }
    void openSheet(const QString &action)
    {
        m_app->performOnRow(action == u"cancelRow"_s ? u"a"_s : u"b"_s, action);
        ASSERT_TRUE(waitFor([this] { return sheet() && sheet()->isActiveWindow(); }));
    }

    /// All that was said at the top, of the window that has the keyboard.
    static void tour(QWidget *window)
    {
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        const QList<QWidget *> forward = round(Qt::Key_Tab);
        QList<QWidget *> backward = round(Qt::Key_Backtab);
        std::reverse(backward.begin() + 1, backward.end());
        EXPECT_EQ(namesOf(forward), namesOf(backward));

        QStringList reached = namesOf(forward), takers = namesOf(keyTakers(window));
        reached.sort();
        takers.sort();
        EXPECT_EQ(reached, takers);

        int upward = 0; // once, from the last to the first
        for (qsizetype at = 0; at < forward.size(); ++at) {
            const QWidget *next = forward.at((at + 1) % forward.size());
            upward += !isReadAfter(window, forward.at(at), next);
        }
        EXPECT_LE(upward, 1) << qPrintable(namesOf(forward).join(u'\n'));
        everyStopShows(forward);
    }

    static void everyStopShows(const QList<QWidget *> &stops)
    {
        constexpr int enough = 24; // points of a picture
        for (QWidget *stop : stops) {
            if (qobject_cast<TranscriptList *>(stop))
                continue; // its selected row shows it: see there
            stop->setFocus(Qt::TabFocusReason);
            const QImage with = pictureOf(stop);
            press(Qt::Key_Tab);
            if (QApplication::focusWidget() == stop)
                stop->clearFocus(); // the only one
            EXPECT_GE(differences(with, pictureOf(stop)), enough) << qPrintable(nameOf(stop));
        }
    }

private:
    int m_flash = 0;
};

INSTANTIATE_TEST_SUITE_P(Directions, Keyboard, testing::Values(Qt::LeftToRight, Qt::RightToLeft),
                         [](const testing::TestParamInfo<Qt::LayoutDirection> &direction) {
                             return direction.param == Qt::LeftToRight ? "LeftToRight" : "RightToLeft";
                         });

TEST_P(Keyboard, TheEmptyWindow)
{
    ASSERT_NO_FATAL_FAILURE(openWindow());
    ASSERT_TRUE(waitFor([this] { return isEmptyStateShown(); }));
    test::tabTo(u"addButton"_s);
    tour(window());
}

TEST_P(Keyboard, TheList)
{
    openList();
    tour(window());
}

TEST_P(Keyboard, ThePanel)
{
    openPanel();
    EXPECT_EQ(test::focusName(), u"startButton"_s);
    tour(panel());
}

TEST_P(Keyboard, EveryPaneOfTheSettings)
{
    ASSERT_NO_FATAL_FAILURE(openWindow());
    SettingsWindow *settings = openSettings();
    ASSERT_NE(settings, nullptr);
    auto *tabs = settings->findChild<SettingsTabs *>();
    for (int tab = 0; tab < tabs->count(); ++tab) {
        SCOPED_TRACE(qPrintable(tabs->accessibleTabName(tab)));
        tabs->setFocus(Qt::TabFocusReason);
        tabs->setCurrentIndex(tab);
        tour(settings);
    }
    press(Qt::Key_Escape);
    EXPECT_FALSE(settings->isVisible());
}

TEST_P(Keyboard, EverySheetOfARow)
{
    openList();
    for (const QString &action : {u"renameRow"_s, u"removeRow"_s, u"cancelRow"_s}) {
        SCOPED_TRACE(qPrintable(action));
        openSheet(action);
        tour(sheet());
        press(Qt::Key_Escape);
        EXPECT_TRUE(sheetCloses());
    }
    EXPECT_EQ(m_engine.count(u"cancel"_s) + m_engine.count(u"hide"_s) + m_engine.count(u"rename"_s), 0);
}

TEST_P(Keyboard, TheSheetThatAddsAModel)
{
    ASSERT_NO_FATAL_FAILURE(openWindow());
    openSettings();
    m_app->addCustomModel();
    ASSERT_TRUE(waitFor([] { return qobject_cast<Sheet *>(QApplication::activeWindow()); }));
    tour(QApplication::activeWindow());
    press(Qt::Key_Escape);
}

TEST_P(Keyboard, TheRowWithTheKeyboardShows)
{
    openList();
    press(Qt::Key_Down);
    for (const QString &key : {u"a"_s, u"b"_s, u"c"_s}) {
        ASSERT_EQ(list()->selectedKey(), key);
        EXPECT_TRUE(row(key)->showsFocus());
        press(Qt::Key_Down);
        EXPECT_EQ(row(key)->showsFocus(), key == u"c"_s) << "the last row keeps it";
    }
    QWidget *last = row(u"c"_s);
    const QImage with = last->grab().toImage();
    test::tabTo(u"addButton"_s);
    EXPECT_FALSE(row(u"c"_s)->showsFocus());
    EXPECT_GE(differences(with, last->grab().toImage()), 500);
    test::tabTo(u"table"_s, Qt::Key_Backtab);
    EXPECT_TRUE(row(u"c"_s)->showsFocus());
    test::click(row(u"b"_s)->title());
    EXPECT_FALSE(row(u"b"_s)->showsFocus()) << "who uses the mouse sees where it is";
    press(Qt::Key_Up);
    EXPECT_TRUE(row(u"a"_s)->showsFocus());
}

TEST_P(Keyboard, ReturnPressesTheDefaultButton)
{
    openPanel();
    press(Qt::Key_Return);
    ASSERT_TRUE(panelCloses());
    EXPECT_TRUE(waitFor([this] { return m_engine.count(u"process"_s) == 1; }));
}

TEST_P(Keyboard, ReturnInAFieldPressesTheDefaultButtonOfItsSheet)
{
    openList();
    openSheet(u"renameRow"_s);
    ASSERT_EQ(test::focusName(), u"titleField"_s);
    test::type(u"New"_s);
    press(Qt::Key_Return);
    ASSERT_TRUE(sheetCloses());
    ASSERT_TRUE(waitFor([this] { return m_engine.count(u"rename"_s) == 1; }));
    EXPECT_EQ(m_engine.calls(u"rename"_s).constFirst().constLast(), u"New"_s);
}

TEST_P(Keyboard, EscapeLeavesThePanel)
{
    openPanel();
    press(Qt::Key_Escape);
    EXPECT_TRUE(panelCloses());
    EXPECT_EQ(m_engine.count(u"process"_s), 0);
}

TEST_P(Keyboard, F10AndAltLeadToTheMenus)
{
    openList();
    for (const Qt::Key key : {Qt::Key_F10, Qt::Key_Alt}) {
        press(key, key == Qt::Key_Alt ? Qt::AltModifier : Qt::NoModifier);
        const QAction *active = window()->menuBar()->activeAction();
        ASSERT_NE(active, nullptr) << key;
        press(Qt::Key_Down);
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr) << key;
        EXPECT_EQ(menu->menuAction(), window()->menuBar()->actions().constFirst());
        press(Qt::Key_Escape);
        if (QApplication::focusWidget() == window()->menuBar())
            press(Qt::Key_Escape);
        EXPECT_EQ(QApplication::focusWidget(), list()) << "and back where it was";
    }
}

TEST_P(Keyboard, ArrowKeysGoOnWhereTheSelectedRowLeftTheList)
{
    openList();
    QList<QJsonObject> two = threeJobs();
    two.removeAt(1);
    const auto show = [this](const QList<QJsonObject> &jobs) {
        m_engine.answerHistory(test::historyOf(jobs));
        m_engine.touchState();
        return waitFor([&] { return (row(u"b"_s) != nullptr) == (jobs.size() == 3); });
    };
    for (const auto &[key, expected] : {std::pair(Qt::Key_Down, u"c"_s), std::pair(Qt::Key_Up, u"a"_s)}) {
        test::click(row(u"b"_s)->title());
        ASSERT_EQ(list()->selectedKey(), u"b"_s);
        ASSERT_TRUE(show(two));
        EXPECT_EQ(list()->selectedKey(), QString());
        press(key);
        EXPECT_EQ(list()->selectedKey(), expected);
        ASSERT_TRUE(show(threeJobs()));
    }
}

TEST_P(Keyboard, AssistiveToolsFindTheKeyboardOnTheSelectedRow)
{
    openList();
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    const QAccessibleInterface *there = QAccessible::queryAccessibleInterface(list())->focusChild();
    ASSERT_EQ(there->object(), row(u"b"_s));
    EXPECT_TRUE(there->state().focused);
    EXPECT_TRUE(there->state().selected);
}

} // namespace

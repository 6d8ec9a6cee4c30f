// The menu bar and what its items reach.

#include "window/WindowTest.h"

#include "actions/Menus.h"

#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::click;
using test::press;
using test::waitFor;

namespace {

class MenuBar : public test::WindowTest
{
protected:
    /// "menu|title|command|keys" for every item, "menu|-" for a separator.
    QStringList items() const
    {
        QStringList items;
        for (const QAction *top : window()->menuBar()->actions()) {
            for (const QAction *action : top->menu()->actions()) {
                const QStringList fields{top->text(), action->text(), action->objectName(),
                                         action->shortcut().toString(QKeySequence::PortableText)};
                items.append(action->isSeparator() ? top->text() + u"|-"_s : fields.join(u'|'));
            }
        }
        return items;
    }
    /// The active window where that is not the main one, else null.
    QWidget *otherWindow() const
    {
        QWidget *active = QApplication::activeWindow();
        return active == window() ? nullptr : active;
    }
    QAction *action(const QString &name) const { return window()->menuBar()->findChild<QAction *>(name); }
};

TEST_F(MenuBar, TheTableExactly)
{
    openWindow();
    EXPECT_EQ(items(), (QStringList{u"Tuppi Transcriber|About Tuppi Transcriber|showAbout|"_s,
                                    u"Tuppi Transcriber|Acknowledgements…|showAcknowledgements|"_s,
                                    u"Tuppi Transcriber|-"_s,
                                    u"Tuppi Transcriber|Settings…|showSettings|Ctrl+,"_s,
                                    u"Tuppi Transcriber|-"_s,
                                    u"Tuppi Transcriber|Hide Tuppi Transcriber|hide|Ctrl+H"_s,
                                    u"Tuppi Transcriber|Quit Tuppi Transcriber|terminate|Ctrl+Q"_s,
                                    u"File|Add Audio File…|chooseFiles|Ctrl+O"_s,
                                    u"File|Show All Transcripts in Finder|openLibrary|Ctrl+L"_s,
                                    u"File|Save Transcript as Text…|saveFrontText|Ctrl+S"_s,
                                    u"File|-"_s,
                                    u"File|Clear List…|clearList|"_s,
                                    u"File|Show Hidden Transcripts|showHidden|"_s,
                                    u"File|-"_s,
                                    u"File|Close Window|performClose|Ctrl+W"_s,
                                    u"Edit|Undo|undo|Ctrl+Z"_s,
                                    u"Edit|Redo|redo|Ctrl+Shift+Z"_s,
                                    u"Edit|-"_s,
                                    u"Edit|Cut|cut|Ctrl+X"_s,
                                    u"Edit|Copy|copy|Ctrl+C"_s,
                                    u"Edit|Paste|paste|Ctrl+V"_s,
                                    u"Edit|Delete|delete|"_s,
                                    u"Edit|Select All|selectAll|Ctrl+A"_s,
                                    u"Window|Minimize|performMiniaturize|Ctrl+M"_s}));
    for (const QAction *action : window()->menuBar()->findChildren<QAction *>())
        EXPECT_TRUE(action->isEnabled()) << qPrintable(action->text());
}

TEST_F(MenuBar, EveryControllerItemIsHandedOnAndHarmless)
{
    openWindow();
    QStringList handedOn;
    QObject::connect(window(), &MainWindow::command, window(),
                     [&](const QString &name) { handedOn.append(name); });
    QStringList expected;
    for (const Menu &menu : MainMenu()) {
        for (const MenuItem &item : menu.items) {
            if (item.title.isEmpty() || item.forFocus)
                continue;
            ASSERT_NE(action(item.action), nullptr) << qPrintable(item.action);
            action(item.action)->trigger();
            expected.append(item.action);
        }
    }
    EXPECT_EQ(handedOn, expected);
    EXPECT_NE(window()->findChild<QFileDialog *>(u"chooseFiles"_s), nullptr);
    poll();
    EXPECT_TRUE(window()->isVisible());
}

TEST_F(MenuBar, EveryRowCommandOnEveryRowIsHarmless)
{
    m_engine.answerHistory(
        R"([{"id":"a","status":"ready"},{"id":"b","status":"elsewhere"},{"status":"ready"}])");
    openWindow();
    for (const QString &key : {u"a"_s, u"b"_s, u"gone"_s, u"starting"_s, QString()}) {
        for (const MenuItem &item : RowMenu())
            m_app->performOnRow(key, item.action);
        m_app->performOnRow(key, u"removeWaiting"_s);
        m_app->performOnRow(key, u"no such command"_s);
    }
    m_app->perform(u"no such command"_s);
    m_app->perform({});
    poll();
    EXPECT_EQ(rowKeys(), (QStringList{u"a"_s, u"b"_s}));
}

TEST_F(MenuBar, FooterButtonsHandOnTheirCommands)
{
    openWindow();
    QStringList handedOn;
    QObject::connect(window(), &MainWindow::command, window(),
                     [&](const QString &name) { handedOn.append(name); });
    for (const QString &name :
         {u"soundButton"_s, u"settingsButton"_s, u"clearButton"_s, u"folderButton"_s, u"addButton"_s})
        click(window()->findChild<QPushButton *>(name));
    EXPECT_EQ(handedOn, (QStringList{u"toggleSounds"_s, u"showSettings"_s, u"clearList"_s, u"openLibrary"_s,
                                     u"chooseFiles"_s}));
    EXPECT_NE(window()->findChild<QFileDialog *>(u"chooseFiles"_s), nullptr);
    EXPECT_EQ(window()->findChild<QWidget *>(u"settingsButton"_s)->toolTip(), u"Settings…"_s);
    EXPECT_EQ(window()->findChild<QWidget *>(u"clearButton"_s)->toolTip(), u"Clear the list…"_s);
    EXPECT_EQ(window()->findChild<QWidget *>(u"folderButton"_s)->toolTip(),
              u"Show all transcripts in Finder"_s);
    EXPECT_EQ(window()->findChild<QWidget *>(u"addButton"_s)->toolTip(), u"Add audio file"_s);
}

TEST_F(MenuBar, EditItemsReachTheEditorWithTheKeyboard)
{
    openWindow();
    QLineEdit editor(window());
    editor.show();
    editor.setFocus();
    editor.setText(u"Tuppi"_s);
    action(u"selectAll"_s)->trigger();
    EXPECT_EQ(editor.selectedText(), u"Tuppi"_s);
    action(u"cut"_s)->trigger();
    EXPECT_EQ(editor.text(), QString());
    EXPECT_EQ(QApplication::clipboard()->text(), u"Tuppi"_s);
    action(u"undo"_s)->trigger();
    EXPECT_EQ(editor.text(), u"Tuppi"_s);
    action(u"redo"_s)->trigger();
    EXPECT_EQ(editor.text(), QString());
    action(u"paste"_s)->trigger();
    action(u"paste"_s)->trigger();
    EXPECT_EQ(editor.text(), u"TuppiTuppi"_s);
    editor.setSelection(0, 2);
    action(u"copy"_s)->trigger();
    EXPECT_EQ(QApplication::clipboard()->text(), u"Tu"_s);
    action(u"delete"_s)->trigger();
    EXPECT_EQ(editor.text(), u"ppiTuppi"_s);

    list()->setFocus(); // knows none of them
    for (const QString &name :
         {u"undo"_s, u"redo"_s, u"cut"_s, u"copy"_s, u"paste"_s, u"delete"_s, u"selectAll"_s})
        action(name)->trigger();
    EXPECT_EQ(editor.text(), u"ppiTuppi"_s);
}

TEST_F(MenuBar, WindowItemsByTheirKeys)
{
    openWindow();
    press(Qt::Key_M, Qt::ControlModifier);
    EXPECT_TRUE(window()->isMinimized());
    m_app->applicationShouldHandleReopen({});
    EXPECT_FALSE(window()->isMinimized());
    activate();
    press(Qt::Key_H, Qt::ControlModifier);
    EXPECT_TRUE(window()->isMinimized());
    m_app->applicationShouldHandleReopen({});
    activate();
    press(Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(window()->isVisible());
}

TEST_F(MenuBar, KeysWorkInTheWindowsBesideIt)
{
    openWindow();
    press(Qt::Key_Comma, Qt::ControlModifier);
    ASSERT_TRUE(waitFor([this] { return otherWindow(); }));
    QWidget *settings = otherWindow();
    press(Qt::Key_O, Qt::ControlModifier);
    ASSERT_TRUE(waitFor([&] { return window()->findChild<QFileDialog *>(); }));
    window()->findChild<QFileDialog *>()->reject();
    settings->activateWindow();
    ASSERT_TRUE(waitFor([&] { return QApplication::activeWindow() == settings; }));
    press(Qt::Key_M, Qt::ControlModifier);
    EXPECT_FALSE(settings->isMinimized()) << "it has no such button";
    EXPECT_FALSE(window()->isMinimized());
    press(Qt::Key_H, Qt::ControlModifier);
    EXPECT_TRUE(settings->isMinimized());
    EXPECT_TRUE(window()->isMinimized());
    settings->showNormal();
    settings->activateWindow();
    ASSERT_TRUE(waitFor([&] { return QApplication::activeWindow() == settings; }));
    press(Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(settings->isVisible());
}

TEST_F(MenuBar, WindowMenuListsTheOpenWindows)
{
    openWindow();
    QMenu *menu = window()->menuBar()->actions().constLast()->menu();
    const auto titles = [menu] {
        Q_EMIT menu->aboutToShow();
        QStringList listed;
        for (const QAction *action : menu->actions().sliced(2))
            listed.append((action->isChecked() ? u"✓ "_s : QString()) + action->text());
        return listed;
    };
    EXPECT_EQ(titles(), QStringList{u"✓ Tuppi Transcriber"_s});
    action(u"showSettings"_s)->trigger();
    ASSERT_TRUE(waitFor([this] { return otherWindow(); }));
    EXPECT_EQ(titles(), (QStringList{u"Tuppi Transcriber"_s, u"✓ Settings"_s}));
    menu->actions().at(2)->trigger();
    EXPECT_TRUE(waitFor([&] { return QApplication::activeWindow() == window(); }));
    press(Qt::Key_Comma, Qt::ControlModifier);
    ASSERT_TRUE(waitFor([this] { return otherWindow(); }));
    press(Qt::Key_W, Qt::ControlModifier);
    EXPECT_EQ(titles().size(), 1);
}

TEST_F(MenuBar, KeysOfTheWindowAreDeadUnderASheet)
{
    openWindow();
    m_app->addFiles({QUrl::fromLocalFile(m_engine.recording(u"a.m4a"_s))});
    ASSERT_TRUE(waitFor([this] { return panel() && panel()->isActiveWindow(); }));
    press(Qt::Key_O, Qt::ControlModifier);
    press(Qt::Key_W, Qt::ControlModifier);
    EXPECT_EQ(window()->findChild<QFileDialog *>(), nullptr);
    EXPECT_TRUE(window()->isVisible());
    EXPECT_NE(panel(), nullptr);
}

} // namespace

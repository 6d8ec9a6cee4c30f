#include "ui/MainWindow.h"

#include "actions/Menus.h"
#include "settings/L.h"
#include "ui/Colours.h"
#include "ui/DropView.h"
#include "ui/Fonts.h"
#include "ui/Footer.h"
#include "ui/FrameRest.h"
#include "ui/Labels.h"
#include "ui/MascotView.h"
#include "ui/Metrics.h"
#include "ui/Stage.h"
#include "ui/TitleStrip.h"
#include "ui/TranscriptList.h"
#include "ui/WindowCommands.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMenu>
#include <QMenuBar>
#include <QShortcut>
#include <QStackedLayout>
#include <QVBoxLayout>

namespace tuppi {

using namespace Qt::StringLiterals;

MainWindow::MainWindow(Stage &stage, QWidget *parent)
    : QMainWindow(parent)
    , m_stage(stage)
{
    setObjectName(u"TranscriberMain"_s);
    setWindowTitle(L(u"Tuppi Transcriber"_s));
    QPalette ground = palette();
    ground.setColor(QPalette::Window, Colours::window);
    setPalette(ground);
    buildMenuBar();
    addMenuKey();
    buildContent();
    const int menuHeight = menuBar()->isNativeMenuBar() ? 0 : menuBar()->sizeHint().height();
    setMinimumSize(Metrics::windowMinimumWidth, Metrics::windowMinimumHeight + menuHeight);
    resize(Metrics::windowWidth, Metrics::windowHeight + menuHeight);
    constexpr int longestWaitMilliseconds = 500; // a window that starts minimised or covered is not painted
    m_untilPainted.setSingleShot(true);
    connect(&m_untilPainted, &QTimer::timeout, this, &MainWindow::firstPainted);
    m_untilPainted.start(longestWaitMilliseconds);
    whenFrameRests(this, [this] { Q_EMIT frameChanged(); });
}

void MainWindow::buildMenuBar()
{
    const QList<Menu> menus = MainMenu();
    for (const Menu &menu : menus) {
        QMenu *built = menuBar()->addMenu(L(menu.title));
        if (menu.listsWindows)
            ListWindowsIn(built);
        for (const MenuItem &item : menu.items) {
            if (item.title.isEmpty()) {
                built->addSeparator();
                continue;
            }
            QAction *action = built->addAction(L(item.title));
            action->setObjectName(item.action);
            // Settings, quit and about stay where the table puts them, whatever they are called.
            action->setMenuRole(QAction::NoRole);
            action->setShortcut(QKeySequence(KeySequenceOf(item), QKeySequence::PortableText));
            connect(action, &QAction::triggered, this, [this, name = item.action, forFocus = item.forFocus] {
                if (forFocus)
                    PerformForFocus(this, name);
                else
                    Q_EMIT command(name);
            });
        }
    }
}

/// As on every desktop; the toolkit knows only the Alt key.
void MainWindow::addMenuKey()
{
    connect(new QShortcut(Qt::Key_F10, this), &QShortcut::activated, this,
            [this] { menuBar()->setActiveAction(menuBar()->actions().constFirst()); });
}

QWidget *MainWindow::buildEmptyState()
{
    auto *view = new QWidget;
    view->setObjectName(u"emptyState"_s);
    view->setAttribute(Qt::WA_TransparentForMouseEvents);
    auto *title = new QLabel(L(u"Drop an audio file for Tuppi"_s));
    title->setFont(Rounded(28, QFont::DemiBold));
    title->setAlignment(Qt::AlignCenter);
    title->setWordWrap(true);
    QPalette navy = title->palette();
    navy.setColor(QPalette::WindowText, Colours::navy);
    title->setPalette(navy);
    auto *line = new WrapLabel;
    line->setText(L(u"or press + to choose one. The language is detected automatically."_s));
    line->setFont(System(15));
    line->setColour(Colours::slate);
    line->setAlignment(Qt::AlignCenter);
    line->setPreferredWidth(420);
    line->setMaximumLines(2);
    auto *column = new QVBoxLayout(view);
    column->setSpacing(10);
    column->setContentsMargins(20, 0, 20, 0);
    column->addStretch();
    column->addWidget(TuppiAnim(m_stage.mascots, u"waiting"_s, 200), 0, Qt::AlignHCenter);
    column->addWidget(title);
    auto *centred = new QHBoxLayout;
    centred->addStretch();
    centred->addWidget(line, 1);
    centred->addStretch();
    column->addLayout(centred);
    column->addStretch();
    return view;
}

void MainWindow::buildContent()
{
    m_drop = new DropView;
    m_drop->setObjectName(u"drop"_s);
    m_list = new TranscriptList([this](QWidget *parent) { return m_stage.makeRow(parent); });
    auto *layers = new QStackedLayout(m_drop);
    layers->setStackingMode(QStackedLayout::StackOne);
    auto *listPage = new QWidget;
    auto *listRow = new QVBoxLayout(listPage);
    listRow->setContentsMargins(Metrics::listInset, 0, Metrics::listInset, 0);
    listRow->addWidget(m_list);
    layers->addWidget(listPage);
    m_footer = new Footer;

    auto *content = new QWidget;
    auto *column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(new TitleStrip);
    column->addSpacing(Metrics::dropAreaTop);
    column->addWidget(m_drop, 1);
    column->addSpacing(Metrics::dropAreaBottom);
    auto *footerRow = new QVBoxLayout;
    footerRow->setContentsMargins(Metrics::footerInset, 0, Metrics::footerInset, Metrics::footerBottom);
    footerRow->addWidget(m_footer);
    column->addLayout(footerRow);
    setCentralWidget(content);
    // Without this the first button of the window has the keyboard at start and looks chosen.
    m_list->setFocus();

    connect(m_drop, &DropView::filesDropped, this, &MainWindow::filesDropped);
    connect(m_footer, &Footer::command, this, &MainWindow::command);
    connect(m_list, &TranscriptList::rowAction, this, &MainWindow::rowCommand);
    connect(m_list, &TranscriptList::openRequested, this,
            [this](const QString &key) { Q_EMIT rowCommand(key, u"openRowViewer"_s); });
    connect(m_list, &TranscriptList::removeRequested, this,
            [this](const QString &key) { Q_EMIT rowCommand(key, u"removeRow"_s); });
    connect(m_list, &TranscriptList::menuRequested, this, &MainWindow::openRowMenu);
}

void MainWindow::setContent(const ListContent &content)
{
    m_list->setContent(content);
}

void MainWindow::setEmpty(bool empty)
{
    auto *layers = qobject_cast<QStackedLayout *>(m_drop->layout());
    if (empty && !m_emptyState) {
        m_emptyState = buildEmptyState();
        layers->addWidget(m_emptyState);
    }
    layers->setCurrentIndex(empty ? 1 : 0);
    m_drop->setShowsCard(empty);
}

void MainWindow::setSummary(const QString &summary)
{
    m_footer->setSummary(summary);
}

void MainWindow::setSoundsOn(bool on)
{
    m_footer->setSoundsOn(on);
}

void MainWindow::setRowMenuRule(std::function<bool(const QString &, const QString &)> allowed)
{
    m_rowMenuRule = std::move(allowed);
}

void MainWindow::openRowMenu(const QString &key, const QPoint &position)
{
    const QString target = key.isEmpty() ? m_list->selectedKey() : key;
    auto *menu = new QMenu(this);
    menu->setObjectName(u"rowMenu"_s);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const QList<MenuItem> items = RowMenu();
    for (const MenuItem &item : items) {
        QAction *action = menu->addAction(L(item.title));
        action->setObjectName(item.action);
        action->setEnabled(m_rowMenuRule && m_rowMenuRule(target, item.action));
        connect(action, &QAction::triggered, this,
                [this, target, name = item.action] { Q_EMIT rowCommand(target, name); });
    }
    // A choice that an assistive tool makes would leave it open, above the sheet that asks.
    connect(menu, &QMenu::triggered, menu, &QMenu::close);
    menu->popup(position);
}

void MainWindow::bringForward()
{
    bringWindowForward(this);
}

bool MainWindow::event(QEvent *event)
{
    // The children are painted after the window and before the next turn of the event loop.
    if (event->type() == QEvent::Paint && m_untilPainted.isActive())
        m_untilPainted.start(0);
    return QMainWindow::event(event);
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    Q_EMIT frameChanged();
    QMainWindow::closeEvent(event);
}

} // namespace tuppi

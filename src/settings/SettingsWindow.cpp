#include "settings/SettingsWindow.h"

#include "settings/BaselineForm.h"
#include "settings/EnginePane.h"
#include "settings/L.h"
#include "settings/ModelsPane.h"
#include "settings/PaneParts.h"
#include "settings/SettingsTabs.h"
#include "settings/StoragePane.h"
#include "ui/Colours.h"
#include "ui/PillButton.h"
#include "ui/PopUpButton.h"
#include "ui/SlimScrollBar.h"
#include "ui/TickBox.h"

#include <QEvent>
#include <QScreen>
#include <QScrollArea>
#include <QShortcut>
#include <QStackedWidget>
#include <QStyle>
#include <QVBoxLayout>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

constexpr int headerMargin = 6;
constexpr int headerLine = 1;

} // namespace

SettingsWindow::SettingsWindow(const SettingsOpening &opening)
    : SideWindow(L(u"Settings"_s))
{
    setObjectName("Settings"_L1);
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint
                   | Qt::WindowCloseButtonHint);
    m_panes = new QStackedWidget;
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(buildHeader());
    column->addWidget(m_panes, 1);

    m_storage = new StoragePane;
    m_models = new ModelsPane;
    m_engine = new EnginePane;
    addPane(u"gearshape"_s, L(u"General"_s), generalPane(opening));
    addPane(u"waveform"_s, L(u"Transcription"_s), transcriptionPane(opening));
    addPane(u"folder"_s, L(u"Storage"_s), m_storage);
    addPane(u"square.stack.3d.up"_s, L(u"Models"_s), m_models);
    addPane(u"checkmark.seal"_s, L(u"Engine"_s), m_engine);
    connect(m_storage, &StoragePane::command, this, &SettingsWindow::command);
    connect(m_engine, &EnginePane::command, this, &SettingsWindow::command);
    connect(m_tabs, &QTabBar::currentChanged, this, &SettingsWindow::showTab);
    addKeys();
    m_tabs->setFocus();
    showTab(0);
}

QWidget *SettingsWindow::buildHeader()
{
    m_header = new QWidget;
    m_header->setAutoFillBackground(true);
    QPalette ground = m_header->palette();
    ground.setColor(QPalette::Window, Colours::titleStrip);
    m_header->setPalette(ground);
    m_tabs = new SettingsTabs;
    m_tabs->setObjectName("settingsTabs"_L1);
    m_tabs->setAccessibleName(L(u"Settings"_s));
    auto *line = new QWidget;
    line->setFixedHeight(headerLine);
    line->setAutoFillBackground(true);
    ground.setColor(QPalette::Window, Colours::titleSeparator);
    line->setPalette(ground);

    auto *column = new QVBoxLayout(m_header);
    column->setContentsMargins(0, headerMargin, 0, 0);
    column->setSpacing(headerMargin);
    column->addWidget(m_tabs, 0, Qt::AlignHCenter);
    column->addWidget(line);
    return m_header;
}

void SettingsWindow::addPane(const QString &symbol, const QString &title, QWidget *pane)
{
    auto *page = new QWidget;
    auto *column = new QVBoxLayout(page);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(pane);
    column->addStretch();
    page->installEventFilter(this);
    m_pages.append(page);

    auto *scroll = new QScrollArea;
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setVerticalScrollBar(new SlimScrollBar(Qt::Vertical));
    scroll->setWidgetResizable(true);
    scroll->setWidget(page);
    m_panes->addWidget(scroll);
    m_tabs->addTabOf(symbol, title);
}

void SettingsWindow::addKeys()
{
    const auto add = [this](const QKeySequence &keys, int by) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, [this, by] { stepTab(by); });
    };
    for (const auto key : {Qt::Key_Tab, Qt::Key_PageDown})
        add(Qt::CTRL | key, 1);
    for (const auto keys : {Qt::CTRL | Qt::SHIFT | Qt::Key_Tab, Qt::CTRL | Qt::SHIFT | Qt::Key_Backtab,
                            Qt::KeyboardModifiers(Qt::ControlModifier) | Qt::Key_PageUp})
        add(keys, -1);
}

TickBox *SettingsWindow::boundToggle(const QString &title, const QString &key, const SettingsOpening &opening)
{
    TickBox *box = toggle(title, key, opening.toggles.value(key));
    connect(box, &QAbstractButton::clicked, this, [this, key](bool on) { Q_EMIT toggleChanged(key, on); });
    return box;
}

PopUpButton *SettingsWindow::boundPopup(const QString &key, const QList<Choice> &choices, const QString &value)
{
    PopUpButton *menu = popup(key, choices, value);
    connect(menu, &QComboBox::activated, this,
            [this, menu, key] { Q_EMIT choiceChanged(key, menu->currentData().toString()); });
    return menu;
}

QWidget *SettingsWindow::generalPane(const SettingsOpening &opening)
{
    PopUpButton *language = popup(u"AppleLanguages"_s, opening.interfaceLanguages, opening.interfaceLanguage);
    connect(language, &QComboBox::activated, this,
            [this, language] { Q_EMIT interfaceLanguageChosen(language->currentData().toString()); });
    PillButton *hidden = paneButton(L(u"Show Hidden Transcripts"_s), u"showHidden"_s);
    PillButton *credits = paneButton(L(u"Acknowledgements…"_s), u"showAcknowledgements"_s);
    for (PillButton *button : {hidden, credits})
        connect(button, &QAbstractButton::clicked, this, [this, button] { Q_EMIT command(button->objectName()); });

    BaselineForm *rows = paneForm();
    addRow(rows, L(u"Interface language:"_s), language);
    addRow(rows, L(u"Notifications:"_s), boundToggle(L(u"Tell me when a transcript is ready"_s), u"notify"_s, opening));
    addRow(rows, L(u"Sounds:"_s), boundToggle(L(u"Purr while working, mew when done"_s), u"sounds"_s, opening));
    addRow(rows, L(u"List:"_s), hidden);
    addRow(rows, L(u"Credits:"_s), credits);
    return pane(rows, L(u"Tuppi Transcriber runs entirely on this Mac. Audio and transcripts never leave it."_s));
}

QWidget *SettingsWindow::transcriptionPane(const SettingsOpening &opening)
{
    BaselineForm *rows = paneForm();
    addRow(rows, L(u"Model:"_s), boundPopup(u"engine"_s, opening.models, opening.model));
    addRow(rows, L(u"Language:"_s), boundPopup(u"language"_s, opening.languages, opening.language));
    addRow(rows, L(u"Speakers:"_s),
           boundToggle(L(u"Separate speakers (Speaker 1, Speaker 2…)"_s), u"speakers"_s, opening));
    addRow(rows, L(u"Speed:"_s),
           boundToggle(L(u"Text only — skip the summary, tasks and polishing"_s), u"quickMode"_s, opening));
    return pane(rows, L(u"These are the starting choices in the New Transcription panel. You can still change them for "
                        "each file."_s));
}

void SettingsWindow::showTab(int tab)
{
    m_tabs->setCurrentIndex(tab);
    m_panes->setCurrentIndex(tab);
    fit();
}

void SettingsWindow::stepTab(int by)
{
    const int count = m_tabs->count();
    showTab((m_tabs->currentIndex() + by + count) % count);
}

void SettingsWindow::setToggle(const QString &key, bool on)
{
    if (auto *box = findChild<TickBox *>(key))
        box->setChecked(on);
}

void SettingsWindow::setChoice(const QString &key, const QString &value)
{
    if (auto *menu = findChild<PopUpButton *>(key))
        selectValue(value, menu);
}

void SettingsWindow::setModelChoices(const QList<Choice> &models, const QString &current)
{
    setChoices(findChild<PopUpButton *>(u"engine"_s), models, current);
}

bool SettingsWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::LayoutRequest)
        fit();
    return SideWindow::eventFilter(watched, event);
}

void SettingsWindow::showEvent(QShowEvent *event)
{
    fit();
    SideWindow::showEvent(event);
}

int SettingsWindow::neededWidth() const
{
    int needed = qMax(PaneMetrics::width, m_tabs->sizeHint().width() + 2 * headerMargin);
    for (const QWidget *page : m_pages)
        needed = qMax(needed, qMin(PaneMetrics::widest, page->sizeHint().width()));
    return needed;
}

void SettingsWindow::fit()
{
    const int frame = style()->pixelMetric(QStyle::PM_TitleBarHeight);
    const QSize free = screen()->availableGeometry().size() - QSize(0, frame);
    const int width = qMin(neededWidth(), free.width());
    const int header = m_header->sizeHint().height();
    const QWidget *page = m_pages.at(m_panes->currentIndex());
    const int wanted = qMax(PaneMetrics::leastHeight, page->layout()->totalHeightForWidth(width));
    setFixedSize(width, qMin(header + wanted, free.height()));
}

} // namespace tuppi

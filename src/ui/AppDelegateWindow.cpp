#include "app/AppDelegate.h"

#include "actions/RowRules.h"
#include "list/ListContent.h"
#include "settings/L.h"
#include "ui/Appearance.h"
#include "ui/MainWindow.h"
#include "ui/Sheet.h"
#include "ui/Stage.h"
#include "ui/TranscriptList.h"

#include <QApplication>
#include <QHash>
#include <QLocale>
#include <QScreen>

namespace tuppi {

using namespace Qt::StringLiterals;

UiState::UiState() = default;
UiState::~UiState() = default;

void AppDelegate::buildWindow()
{
    m_ui.language = InterfaceLanguageInUse(ChosenInterfaceLanguage(m_queue.defaults.value(u"AppleLanguages"_s)),
                                           QLocale::system().uiLanguages());
    m_ui.stage = std::make_unique<Stage>();
    m_ui.window = std::make_unique<MainWindow>(*m_ui.stage);
    MainWindow *window = m_ui.window.get();
    window->setRowMenuRule(
        [this](const QString &key, const QString &action) { return IsRowCommandAllowed(rowWithKey(key), action); });
    connect(window, &MainWindow::command, this, &AppDelegate::perform);
    connect(window, &MainWindow::rowCommand, this, &AppDelegate::performOnRow);
    connect(window, &MainWindow::filesDropped, this, &AppDelegate::addFiles);
    const auto remember = [this, window] { rememberFrame(window, u"windowFrame"_s); };
    connect(window, &MainWindow::frameChanged, this, remember);
    connect(window, &MainWindow::firstPainted, window, applyIcon);
    connect(this, &AppDelegate::rowsChanged, window, [this] { showRows(); });
    connect(this, &AppDelegate::refreshed, window, [this] { showEmptyState(); });
    connect(this, &AppDelegate::summaryChanged, window, &MainWindow::setSummary);
    connect(this, &AppDelegate::failureReported, window, [window](const QString &title, const QString &detail) {
        SheetText text;
        text.message = title;
        text.detail = detail;
        Sheet::open(window, text);
    });
    connect(qApp, &QCoreApplication::aboutToQuit, this, remember);
    restoreFrame(window, u"windowFrame"_s);
    refreshSoundUI();
    refresh();
    window->bringForward();
}

void AppDelegate::showRows()
{
    m_ui.window->setContent({m_list.snapshot.rows, m_jobs.latestJob, m_models.custom});
}

void AppDelegate::showEmptyState()
{
    m_ui.window->setEmpty(m_list.snapshot.rows.isEmpty() && m_jobs.loaded);
}

/// Where it stood when that was last remembered, else in the middle of the screen.
void AppDelegate::restoreFrame(QWidget *window, const QString &key)
{
    if (!window->restoreGeometry(QByteArray::fromBase64(m_queue.defaults.text(key).toLatin1())))
        window->move(window->screen()->availableGeometry().center() - window->rect().center());
}

void AppDelegate::rememberFrame(const QWidget *window, const QString &key)
{
    m_queue.defaults.set({{key, QString::fromLatin1(window->saveGeometry().toBase64())}});
}

void AppDelegate::perform(const QString &action)
{
    using Command = void (AppDelegate::*)();
    static const QHash<QString, Command> commands{
        {u"chooseFiles"_s, &AppDelegate::chooseFiles},
        {u"clearList"_s, &AppDelegate::clearList},
        {u"openLibrary"_s, &AppDelegate::openLibrary},
        {u"saveFrontText"_s, &AppDelegate::saveFrontText},
        {u"showHidden"_s, &AppDelegate::showHidden},
        {u"showSettings"_s, &AppDelegate::showSettings},
        {u"changeLibrary"_s, &AppDelegate::changeLibrary},
        {u"refreshHealth"_s, &AppDelegate::refreshHealth},
        {u"openInstallLog"_s, &AppDelegate::openInstallLog},
        {u"showAbout"_s, &AppDelegate::showAbout},
        {u"showAcknowledgements"_s, &AppDelegate::showAcknowledgements},
        {u"toggleSounds"_s, &AppDelegate::toggleSounds},
    };
    if (const Command command = commands.value(action))
        (this->*command)();
}

void AppDelegate::performOnRow(const QString &rowKey, const QString &action)
{
    using Command = void (AppDelegate::*)(const QString &);
    static const QHash<QString, Command> commands{
        {u"pauseRow"_s, &AppDelegate::pauseRow},   {u"resumeRow"_s, &AppDelegate::resumeRow},
        {u"retryRow"_s, &AppDelegate::retryRow},   {u"cancelRow"_s, &AppDelegate::cancelRow},
        {u"removeWaiting"_s, &AppDelegate::removeWaiting},
        {u"openRowViewer"_s, &AppDelegate::openRowViewer},
        {u"openRowText"_s, &AppDelegate::openRowText},
        {u"copyRowText"_s, &AppDelegate::copyRowText},
        {u"showRowInFinder"_s, &AppDelegate::showRowInFinder},
        {u"renameRow"_s, &AppDelegate::renameRow},
        {u"removeRow"_s, &AppDelegate::removeRow},
        {u"saveRowText"_s, &AppDelegate::saveRowText},
        {u"shareRowText"_s, &AppDelegate::shareRowText},
    };
    if (const Command command = commands.value(action))
        (this->*command)(rowKey);
}

} // namespace tuppi

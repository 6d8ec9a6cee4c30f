#include "app/AppDelegate.h"

#include "app/NextTurn.h"
#include "intake/AcceptedFiles.h"
#include "intake/ChooseFiles.h"
#include "intake/Languages.h"
#include "intake/SetupChoices.h"
#include "intake/SetupFiles.h"
#include "intake/SetupPanel.h"
#include "intake/SetupTexts.h"
#include "platform/MediaLengths.h"
#include "settings/Models.h"
#include "ui/MainWindow.h"
#include "ui/Stage.h"

#include <QFileDialog>
#include <QLocale>

namespace tuppi {

using namespace Qt::StringLiterals;

void AppDelegate::openUrls(const QList<QUrl> &urls)
{
    const QList<QUrl> accepted = AcceptedFiles(urls);
    if (!accepted.isEmpty())
        addFiles(accepted);
}

void AppDelegate::openRequested(const QList<QUrl> &urls, const QString &token)
{
    if (AcceptedFiles(urls).isEmpty())
        return;
    applicationShouldHandleReopen(token);
    openUrls(urls);
}

void AppDelegate::addFiles(const QList<QUrl> &files)
{
    m_viewer.callQuitOff();
    m_ui.window->bringForward();
    if (!m_setup.panel)
        openSetup();
    const auto take = [this, files] {
        mediaLengths().measure(AddSetupFiles(m_setup, files));
        updateSetupList();
    };
    constexpr qsizetype many = 1000; // taking them takes a good part of a frame; in the next turn, the panel may be shown
    if (files.size() < many)
        take();
    else
        InNextTurn(m_setup.panel, [this, take] { InNextTurn(m_setup.panel, take); });
}

MediaLengths &AppDelegate::mediaLengths()
{
    if (!m_platform.lengths) {
        m_platform.lengths = std::make_unique<MediaLengths>();
        connect(m_platform.lengths.get(), &MediaLengths::measured, this, [this](const QString &path, double seconds) {
            if (SetDuration(m_setup, path, seconds))
                updateSetupList();
        });
    }
    return *m_platform.lengths;
}

void AppDelegate::openSetup()
{
    SetupOpening opening;
    opening.choices.engine = m_queue.defaults.text(u"engine"_s);
    opening.models = m_models.known ? allModels(m_models.custom) : ModelsBeforeAnswer(opening.choices.engine);
    opening.languages = Languages(QLocale());
    opening.choices.language = m_queue.defaults.text(u"language"_s);
    opening.choices.speakers = m_queue.defaults.isOn(u"speakers"_s);
    opening.choices.quick = m_queue.defaults.isOn(u"quickMode"_s);
    opening.interfaceLanguage = m_ui.language;
    auto *panel = new SetupPanel(opening, m_ui.stage->mascots, m_ui.window.get());
    connect(panel, &SetupPanel::startRequested, this, &AppDelegate::startSetup);
    connect(panel, &SetupPanel::cancelled, this, &AppDelegate::cancelSetup);
    connect(panel, &SetupPanel::addMoreRequested, this, &AppDelegate::chooseFiles);
    connect(panel, &SetupPanel::filesDropped, this, &AppDelegate::addFiles);
    m_setup.panel = panel;
    InNextTurn(panel, [this, panel] {
        if (m_setup.panel == panel)
            panel->open();
    });
}

void AppDelegate::updateSetupList()
{
    if (m_setup.panel)
        m_setup.panel->showTexts(TextsOfBatch(m_setup.files, m_setup.seconds));
}

void AppDelegate::startSetup(const StartChoices &choices)
{
    m_queue.defaults.set(RememberedChoices(choices));
    const QStringList files = m_setup.files;
    closeSetup();
    enqueue(files, choices);
}

void AppDelegate::cancelSetup()
{
    closeSetup();
}

void AppDelegate::closeSetup()
{
    if (m_setup.panel) {
        m_setup.panel->done(QDialog::Accepted);
        m_setup.panel->deleteLater();
        m_setup.panel.clear();
    }
    ClearSetupFiles(m_setup);
}

void AppDelegate::chooseFiles()
{
    QWidget *window = m_setup.panel.data();
    QFileDialog *dialog = ChooseFilesDialog(window ? window : m_ui.window.get());
    connect(dialog, &QDialog::accepted, this, [this, dialog] { addFiles(dialog->selectedUrls()); });
    dialog->open();
}

} // namespace tuppi

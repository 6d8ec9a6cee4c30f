#include "app/AppDelegate.h"

#include "engine/EngineCommands.h"
#include "engine/EngineErrors.h"
#include "platform/FolderSize.h"
#include "settings/ChooseFolder.h"
#include "settings/EnginePane.h"
#include "settings/Health.h"
#include "settings/L.h"
#include "settings/LibraryTexts.h"
#include "settings/SettingsWindow.h"
#include "settings/StoragePane.h"
#include "ui/Sheet.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLocale>

namespace tuppi {

using namespace Qt::StringLiterals;

void AppDelegate::refreshLibrary()
{
    RunCallRead(
        command::settings(), this, {}, [](const RawReply &raw) { return ReadObject(raw.out); },
        [this](const std::optional<QJsonObject> &reply) {
            const QString library = reply ? reply->value("library"_L1).toString() : QString();
            if (library.isEmpty())
                return;
            m_jobs.library = library;
            if (!m_settings.window)
                return;
            m_settings.window->storage()->setLibrary(AbbreviatedPath(library, QDir::homePath()), library);
            folderSize().measure(library);
        });
}

FolderSize &AppDelegate::folderSize()
{
    if (!m_settings.folderSize) {
        m_settings.folderSize = std::make_unique<FolderSize>();
        connect(m_settings.folderSize.get(), &FolderSize::measured, this, [this](const QString &, const QByteArray &report) {
            m_settings.window->storage()->setSize(SizeOnDisk(KilobytesInReport(report), QLocale()));
        });
    }
    return *m_settings.folderSize;
}

void AppDelegate::changeLibrary()
{
    QFileDialog *dialog = ChooseFolderDialog(settingsSheetWindow(), m_jobs.library);
    connect(dialog, &QDialog::accepted, this, [this, dialog] {
        const QString folder = dialog->selectedUrls().value(0).toLocalFile();
        if (!folder.isEmpty())
            useLibrary(folder);
    });
    dialog->open();
}

void AppDelegate::useLibrary(const QString &folder)
{
    RunCallTimeout(command::setLibrary(folder), this, [this](const EngineReply &reply) {
        if (reply.status != 0) {
            SheetText text;
            text.message = L(u"Could not use this folder"_s);
            text.detail = WithoutErrorPrefixes(reply.err);
            Sheet::open(settingsSheetWindow(), text);
        }
        refreshLibrary();
        pollAnew();
    }, 0);
}

void AppDelegate::refreshHealth()
{
    if (!m_settings.window)
        return;
    m_settings.window->engine()->setSummary(HealthChecking());
    RunCallRead(
        command::doctor(), this, {}, [](const RawReply &raw) { return ReadArray(raw.out); },
        [this](const std::optional<QJsonArray> &reply) { m_settings.window->engine()->setReport(ReportHealth(reply)); });
}

void AppDelegate::openInstallLog()
{
    const QString logs = QDir::homePath() + u"/Library/Logs"_s;
    const QString log = logs + u"/TuppiTranscriberInstall.log"_s;
    const bool exists = QFile::exists(log);
    if (!exists)
        QDir().mkpath(logs);
    openPath(exists ? log : logs);
}

} // namespace tuppi

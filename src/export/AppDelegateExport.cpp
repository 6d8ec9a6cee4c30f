#include "app/AppDelegate.h"

#include "export/SaveTextDialog.h"
#include "export/ShareMenu.h"
#include "export/TextFile.h"
#include "export/TranscriptText.h"
#include "platform/PortalRequest.h"
#include "platform/RevealInFileManager.h"
#include "platform/ShareFile.h"
#include "settings/Fill.h"
#include "settings/L.h"
#include "ui/MainWindow.h"
#include "ui/Sheet.h"
#include "ui/TranscriptList.h"

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFileInfo>
#include <QMimeData>
#include <QPointer>
#include <QStandardPaths>

namespace tuppi {

using namespace Qt::StringLiterals;

namespace {

/// Where a save dialog starts: where the last text went, while that folder is there.
QString folderToStartWith(const QString &last)
{
    if (!last.isEmpty() && QFileInfo(last).isDir())
        return last;
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
}

QString titleOf(const History &history, const QString &callDir)
{
    return TitleForDir(history.entries.withCallDir(callDir), callDir).value_or(QString());
}

QString fileNameOf(const QString &title)
{
    return FileNameThatFits(SafeFileName(title));
}

} // namespace

void AppDelegate::saveTextForDir(const QString &callDir, QWidget *window)
{
    if (callDir.isEmpty()) {
        QApplication::beep();
        return;
    }
    QWidget *over = window ? window : m_ui.window.get();
    auto *dialog = new SaveTextDialog({.folder = folderToStartWith(m_queue.defaults.text(u"saveFolder"_s)),
                                       .fileName = fileNameOf(titleOf(*m_jobs.history, callDir)),
                                       .format = m_queue.defaults.text(u"txtFormat"_s)},
                                      over);
    connect(dialog, &QDialog::accepted, this, [this, callDir, dialog, over] { saveText(callDir, *dialog, over); });
    dialog->open();
}

/// Runs `then` when the files have all that was corrected, or the person knows that they have not.
void AppDelegate::whenTextIsWhole(const QString &callDir, QWidget *window, const std::function<void()> &then)
{
    m_viewer.whenSaved({callDir}, [this, callDir, over = QPointer(window), then](bool complete) {
        if (complete) {
            then();
            return;
        }
        SheetText text;
        text.message = Fill(L(u"A correction to “%@” was not saved"_s), {titleOf(*m_jobs.history, callDir)});
        text.detail = L(u"The text is without it."_s);
        text.isWarning = true;
        QWidget *place = over && over->isVisible() ? over.data() : m_ui.window.get();
        Sheet::open(place, text, [then](int) { then(); });
    });
}

void AppDelegate::saveText(const QString &callDir, const SaveTextDialog &dialog, QWidget *window)
{
    const QFileInfo file(dialog.chosenPath());
    const QString format = dialog.chosenFormat();
    m_queue.defaults.set({{u"txtFormat"_s, format}, {u"saveFolder"_s, file.absolutePath()}});
    whenTextIsWhole(callDir, window, [this, callDir, file, format, over = QPointer(window)] {
        QWidget *place = over && over->isVisible() ? over.data() : m_ui.window.get();
        const std::optional<QString> text = TextForDir(callDir, format);
        if (!text)
            tellNotSaved(L(u"This transcript has no text yet."_s), place);
        else if (const std::optional<QString> error = WriteTextFile(file.absoluteFilePath(), *text))
            tellNotSaved(*error, place);
        else
            flash(L(u"Saved "_s) + file.fileName());
    });
}

void AppDelegate::tellNotSaved(const QString &reason, QWidget *window)
{
    SheetText text;
    text.message = L(u"Could not save the text file"_s);
    text.detail = reason;
    Sheet::open(window, text);
}

void AppDelegate::shareTextForDir(const QString &callDir, QWidget *anchor)
{
    whenTextIsWhole(callDir, anchor->window(), [this, callDir, place = QPointer(anchor)] {
        if (place)
            shareText(callDir, place);
    });
}

void AppDelegate::shareText(const QString &callDir, QWidget *anchor)
{
    const std::optional<QString> text =
        callDir.isEmpty() ? std::nullopt : TextForDir(callDir, m_queue.defaults.text(u"txtFormat"_s));
    if (!text) {
        QApplication::beep();
        return;
    }
    const QString title = titleOf(*m_jobs.history, callDir);
    const QString folder = PrivateFolder(QDir::tempPath(), u"Tuppi Transcriber"_s);
    const SharedFile file{folder + u'/' + fileNameOf(title), title, PortalParent(anchor->window()->windowHandle())};
    const std::optional<QString> error = folder.isEmpty() ? L(u"There is no safe place for a temporary file."_s)
                                                          : WriteTextFile(file.path, *text);
    if (error) {
        tellNotSaved(*error, anchor->window());
        return;
    }
    LookForShareOffers(QDBusConnection::sessionBus(), this,
                       [this, file, place = QPointer(anchor)](const ShareOffers &offers) {
                           if (place && place->isVisible())
                               openShareMenu(place, ShareChoices(offers),
                                             [this, file](ShareChoice choice) { share(choice, file); });
                       });
}

void AppDelegate::share(ShareChoice choice, const SharedFile &file)
{
    const QDBusConnection session = QDBusConnection::sessionBus();
    switch (choice) {
    case ShareChoice::Email:
        SendByEmail(session, file, this, [this] { flash(L(u"There is no mail program to send it with."_s)); });
        break;
    case ShareChoice::OpenWith:
        OpenWithProgram(session, file, this, [this] { flash(L(u"There is no program to open it with."_s)); });
        break;
    case ShareChoice::Open:
        openPath(file.path);
        break;
    case ShareChoice::CopyFile:
        QApplication::clipboard()->setMimeData(FileMimeData(file.path));
        flash(L(u"File copied — paste it anywhere with ⌘V"_s));
        break;
    case ShareChoice::Reveal:
        RevealInFileManager(session, file.path, this);
        break;
    }
}

void AppDelegate::saveRowText(const QString &rowKey)
{
    saveTextForDir(rowWithKey(rowKey).value("call_dir"_L1).toString(), m_ui.window.get());
}

void AppDelegate::shareRowText(const QString &rowKey)
{
    TranscriptList *list = m_ui.window->list();
    QWidget *row = list->viewAt(IndexOfKey(list->content(), rowKey));
    shareTextForDir(rowWithKey(rowKey).value("call_dir"_L1).toString(), row ? row : list);
}

void AppDelegate::saveFrontText()
{
    QWidget *front = QApplication::activeWindow();
    const QString callDir = front && front != m_ui.window.get() ? front->property("callDir").toString() : QString();
    if (!callDir.isEmpty() && QFileInfo::exists(callDir)) {
        saveTextForDir(callDir, front);
        return;
    }
    const QJsonObject row = rowWithKey(m_ui.window->list()->selectedKey());
    if (row.value("status"_L1).toString() == "ready"_L1)
        saveTextForDir(row.value("call_dir"_L1).toString(), m_ui.window.get());
    else
        QApplication::beep();
}

} // namespace tuppi

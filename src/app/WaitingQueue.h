#pragma once

#include <QList>
#include <QString>
#include <QVariantMap>

namespace tuppi {

/// A file not yet handed to the engine, with its options. Keys: "url" (QUrl of a local file), "engine" (model
/// id), "language" (code or "auto"), "speakers" and "quick" (booleans).
using WaitingEntry = QVariantMap;
using WaitingQueue = QList<WaitingEntry>;

/// The choices that one start gives to all its files.
struct StartChoices
{
    QString engine;
    QString language;
    bool speakers = true;
    bool quick = false;
};

/// Full path of an entry's file, empty when it has none.
QString WaitingPath(const WaitingEntry &entry);

/// The title that a file has until the engine gives its job another: its name without the extension; a name that is an
/// extension alone stands whole.
QString TitleOfFile(const QString &path);
/// Whether a job's title may be that file's: the engine tidies up the blanks of names.
bool IsTitleOfFile(const QString &title, const QString &path);

/// Appends an entry for each file that is not waiting yet (compared by full path), in order.
void AddWaiting(WaitingQueue &queue, const QStringList &paths, const StartChoices &choices);

/// Appends those of `more` whose file is not waiting yet, in order.
void AddWaiting(WaitingQueue &queue, const WaitingQueue &more);

/// Puts a file whose start was interrupted back to the head. Left out where the file is gone, as at any restart, or was
/// added again meanwhile.
void TakeBack(WaitingQueue &queue, const WaitingEntry &entry);

/// Removes every entry of that file.
void RemoveWaitingPath(WaitingQueue &queue, const QString &path);

/// The stored form ("path" in place of "url", absent values filled in) and back.
QVariantMap StoredEntry(const WaitingEntry &entry);
QVariantList StoredQueue(const WaitingQueue &queue);
WaitingEntry EntryFromStored(const QVariantMap &stored);

/// Reads the stored queue: what is no entry, and what names a file that is known to be gone, is left out.
WaitingQueue RestoredQueue(const QVariant &stored);

} // namespace tuppi

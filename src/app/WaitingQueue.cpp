#include "app/WaitingQueue.h"

#include "app/GoneFiles.h"
#include "settings/Val.h"

#include <QFileInfo>
#include <QSet>
#include <QUrl>

#include <algorithm>
#include <utility>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

/// Copies a value over, or its default where there is none.
void carry(const QVariantMap &from, QVariantMap &to, const QString &key, const QVariant &fallback)
{
    const QVariant value = Val(from.value(key));
    to.insert(key, value.isValid() ? value : fallback);
}

void carryOptions(const QVariantMap &from, QVariantMap &to)
{
    carry(from, to, u"engine"_s, u"auto"_s);
    carry(from, to, u"language"_s, u"auto"_s);
    carry(from, to, u"speakers"_s, true);
    carry(from, to, u"quick"_s, false);
}

} // namespace

QString WaitingPath(const WaitingEntry &entry)
{
    return entry.value(u"url"_s).toUrl().toLocalFile();
}

QString TitleOfFile(const QString &path)
{
    const QFileInfo file(path);
    return file.completeBaseName().isEmpty() ? file.fileName() : file.completeBaseName();
}

bool IsTitleOfFile(const QString &title, const QString &path)
{
    return title.simplified() == TitleOfFile(path).simplified();
}

void AddWaiting(WaitingQueue &queue, const QStringList &paths, const StartChoices &choices)
{
    const WaitingEntry chosen{{u"engine"_s, choices.engine},
                              {u"language"_s, choices.language},
                              {u"speakers"_s, choices.speakers},
                              {u"quick"_s, choices.quick}};
    WaitingQueue more;
    more.reserve(paths.size());
    for (const QString &path : paths)
        more.emplaceBack(chosen).insert(u"url"_s, QUrl::fromLocalFile(path));
    AddWaiting(queue, more);
}

void AddWaiting(WaitingQueue &queue, const WaitingQueue &more)
{
    QSet<QString> known;
    known.reserve(queue.size() + more.size());
    for (const WaitingEntry &entry : std::as_const(queue))
        known.insert(WaitingPath(entry));
    queue.reserve(queue.size() + more.size());
    for (const WaitingEntry &entry : more) {
        const qsizetype before = known.size();
        known.insert(WaitingPath(entry));
        if (known.size() > before)
            queue.append(entry);
    }
}

void TakeBack(WaitingQueue &queue, const WaitingEntry &entry)
{
    const QString path = WaitingPath(entry);
    const bool waits = std::any_of(queue.cbegin(), queue.cend(),
                                   [&](const WaitingEntry &other) { return WaitingPath(other) == path; });
    if (!waits && GoneFiles({path}).isEmpty())
        queue.prepend(entry);
}

void RemoveWaitingPath(WaitingQueue &queue, const QString &path)
{
    queue.removeIf([&](const WaitingEntry &entry) { return WaitingPath(entry) == path; });
}

QVariantMap StoredEntry(const WaitingEntry &entry)
{
    QVariantMap stored{{u"path"_s, WaitingPath(entry)}};
    carryOptions(entry, stored);
    return stored;
}

QVariantList StoredQueue(const WaitingQueue &queue)
{
    QVariantList stored;
    for (const WaitingEntry &entry : queue)
        stored.append(StoredEntry(entry));
    return stored;
}

WaitingEntry EntryFromStored(const QVariantMap &stored)
{
    WaitingEntry entry{{u"url"_s, QUrl::fromLocalFile(stored.value(u"path"_s).toString())}};
    carryOptions(stored, entry);
    return entry;
}

WaitingQueue RestoredQueue(const QVariant &stored)
{
    if (stored.typeId() != QMetaType::QVariantList)
        return {};
    WaitingQueue queue;
    QStringList paths;
    for (const QVariant &element : stored.toList()) {
        const QVariantMap record = element.toMap();
        if (record.value(u"path"_s).typeId() != QMetaType::QString)
            continue;
        queue.append(EntryFromStored(record));
        paths.append(WaitingPath(queue.last()));
    }
    const QSet<QString> gone = GoneFiles(paths);
    queue.removeIf([&](const WaitingEntry &entry) { return gone.contains(WaitingPath(entry)); });
    return queue;
}

} // namespace tuppi

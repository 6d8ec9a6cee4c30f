#include "engine/JobList.h"

#include "settings/Val.h"

#include <QDateTime>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

constexpr size_t firstSeed = 0x9e3779b97f4a7c15;
constexpr size_t secondSeed = 0xc2b2ae3d27d4eb4f;

size_t hashOf(QByteArrayView bytes, size_t seed)
{
    return qHashBits(bytes.data(), size_t(bytes.size()), seed);
}

quint32 folderHash(const QString &callDir)
{
    return quint32(qHash(callDir, firstSeed));
}

/// When the job ended; unknown when that is not told, or not with its time zone.
qint64 completedAt(const QJsonObject &job)
{
    const QString told = job.value("completed_at"_L1).toString();
    const QDateTime date = told.isEmpty() ? QDateTime() : QDateTime::fromString(told, Qt::ISODate);
    return date.isValid() && date.timeSpec() != Qt::LocalTime ? date.toMSecsSinceEpoch() : JobNote::unknownTime;
}

JobNote noteOf(const QJsonObject &job, QByteArray &names)
{
    const auto name = [&](QLatin1StringView key) {
        const QByteArray text = job.value(key).toString().toUtf8();
        names += text;
        return quint32(text.size());
    };
    JobNote note;
    note.names = quint32(names.size());
    note.idSize = name("id"_L1);
    note.titleSize = name("title"_L1);
    note.statusSize = name("status"_L1);
    note.idIsText = job.value("id"_L1).isString();
    note.paused = IsTrue(job.value("paused"_L1));
    note.hidden = job.value("hidden"_L1).toBool();
    note.folder = folderHash(job.value("call_dir"_L1).toString());
    note.completedAt = completedAt(job);
    note.digest = hashOf(QJsonDocument(job).toJson(QJsonDocument::Compact), firstSeed);
    return note;
}

QJsonObject opened(const QByteArray &text, const JobNote &note)
{
    return QJsonDocument::fromJson(QByteArray::fromRawData(text.constData() + note.begin, note.size)).object();
}

} // namespace

/// Two hashes of unlike seeds: that both stay the same while the bytes change does not happen by chance.
SourceMark MarkOf(QByteArrayView bytes)
{
    return {bytes.size(), hashOf(bytes, firstSeed), hashOf(bytes, secondSeed)};
}

JobList::JobList(QList<JobBlockPointer> blocks, QList<Place> places)
    : m_blocks(std::move(blocks))
    , m_places(std::move(places))
{
}

QJsonObject JobList::at(qsizetype index) const
{
    return opened(blockAt(index).text(), noteAt(index));
}

qsizetype JobList::indexOfId(const QString &id) const
{
    const QByteArray wanted = id.toUtf8();
    for (qsizetype index = 0; index < size(); ++index) {
        const JobNote &note = noteAt(index);
        if (note.idIsText && blockAt(index).id(note) == wanted)
            return index;
    }
    return -1;
}

QList<QJsonObject> JobList::withCallDir(const QString &callDir) const
{
    const quint32 hash = folderHash(callDir);
    QList<QJsonObject> found;
    for (qsizetype index = 0; index < size(); ++index) {
        if (noteAt(index).folder != hash)
            continue;
        const QJsonObject job = at(index);
        if (job.value("call_dir"_L1).isString() && job.value("call_dir"_L1).toString() == callDir)
            found.append(job);
    }
    return found;
}

QJsonObject JobList::const_iterator::operator*()
{
    const JobBlock &block = m_list->blockAt(m_index);
    if (m_block != &block) {
        m_block = &block;
        m_text = block.text();
    }
    return opened(m_text, m_list->noteAt(m_index));
}

JobBlockPointer PackJobs(const QByteArray &source, const QList<std::pair<qsizetype, qsizetype>> &spans)
{
    constexpr int fastest = 1;
    if (!source.isValidUtf8())
        return nullptr;
    auto block = std::make_shared<JobBlock>();
    block->source = MarkOf(source);
    QByteArray text;
    for (const auto &[begin, size] : spans) {
        // In brackets, as it stood in the reply: whatever the value is, it is read by the same rules.
        const QJsonArray alone = QJsonDocument::fromJson('[' + source.sliced(begin, size) + ']').array();
        if (alone.size() != 1)
            return nullptr;
        const QJsonObject job = alone.first().toObject();
        if (Val(job.value("id"_L1)).isUndefined())
            continue;
        JobNote note = noteOf(job, block->names);
        note.begin = quint32(text.size());
        note.size = quint32(size);
        text.append(source.constData() + begin, size);
        block->notes.append(note);
    }
    block->packed = qCompress(text, fastest);
    block->packed.squeeze();
    block->names.squeeze();
    block->notes.squeeze();
    return block;
}

} // namespace tuppi

#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>

#include <iterator>
#include <limits>
#include <memory>

namespace tuppi {

/// Tells one piece of a reply from another without keeping its bytes.
struct SourceMark
{
    qsizetype size = 0;
    size_t first = 0;
    size_t second = 0;

    bool operator==(const SourceMark &) const = default;
};
SourceMark MarkOf(QByteArrayView bytes);

/// What is known of a packed job without opening it. A text that a job lacks, or has as another type, is empty.
struct JobNote
{
    static constexpr qint64 unknownTime = std::numeric_limits<qint64>::min();

    quint32 begin = 0;   ///< of the job's object in its block's text
    quint32 size = 0;
    quint32 names = 0;   ///< of its id, title and status, one after the other, in the block's names
    quint32 idSize = 0;
    quint32 titleSize = 0;
    quint32 statusSize = 0;
    quint32 folder = 0;  ///< hash of its call dir, for a first look
    bool idIsText = false;
    bool paused = false;
    bool hidden = false;
    qint64 completedAt = unknownTime;  ///< milliseconds since 1970; unknown when not told with its time zone
    quint64 digest = 0;                ///< of all its fields, however they were written
};

/// Some jobs that stood one after the other in a reply, packed. Never changed once it is made, so that the histories
/// before and after a change share all the others.
struct JobBlock
{
    SourceMark source;
    QByteArray packed;
    QByteArray names;
    QList<JobNote> notes;

    QByteArray text() const { return qUncompress(packed); }
    QByteArrayView id(const JobNote &note) const { return name(note.names, note.idSize); }
    QByteArrayView title(const JobNote &note) const { return name(note.names + note.idSize, note.titleSize); }
    QByteArrayView status(const JobNote &note) const
    {
        return name(note.names + note.idSize + note.titleSize, note.statusSize);
    }

private:
    QByteArrayView name(quint32 begin, quint32 size) const { return QByteArrayView(names).sliced(begin, size); }
};
using JobBlockPointer = std::shared_ptr<const JobBlock>;

/// Jobs of the engine's history in little memory: ten thousand dictionaries take fifteen megabytes, packed two. A job
/// is opened each time that it is asked for; what every row is asked for (id, title, status) is at hand. Cheap to
/// copy, and any thread may read it.
class JobList
{
public:
    struct Place
    {
        quint32 block = 0;
        quint32 note = 0;
    };

    JobList() = default;
    explicit JobList(QList<JobBlockPointer> blocks, QList<Place> places = {});

    const QList<JobBlockPointer> &blocks() const { return m_blocks; }
    const QList<Place> &places() const { return m_places; }
    void append(Place place) { m_places.append(place); }
    void append(const JobList &others) { m_places.append(others.m_places); }  ///< of the same blocks

    /// The one job, by its index, for itself.
    JobList only(qsizetype index) const { return JobList(m_blocks, {m_places.at(index)}); }

    qsizetype size() const { return m_places.size(); }
    bool isEmpty() const { return m_places.isEmpty(); }
    const JobBlock &blockAt(qsizetype index) const { return *m_blocks.at(m_places.at(index).block); }
    const JobNote &noteAt(qsizetype index) const { return blockAt(index).notes.at(m_places.at(index).note); }

    /// Empty where the id is no text.
    QString idAt(qsizetype index) const { return QString::fromUtf8(blockAt(index).id(noteAt(index))); }
    QString titleAt(qsizetype index) const { return QString::fromUtf8(blockAt(index).title(noteAt(index))); }
    QString statusAt(qsizetype index) const { return QString::fromUtf8(blockAt(index).status(noteAt(index))); }
    QJsonObject at(qsizetype index) const;
    QJsonObject first() const { return at(0); }
    QJsonObject last() const { return at(size() - 1); }

    /// Of the first job with that id; -1 when there is none.
    qsizetype indexOfId(const QString &id) const;
    /// The jobs with that call dir.
    QList<QJsonObject> withCallDir(const QString &callDir) const;

    /// Opens one job after the other, each block once.
    class const_iterator
    {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = QJsonObject;
        using difference_type = qsizetype;
        using pointer = void;
        using reference = QJsonObject;

        const_iterator(const JobList &list, qsizetype index) : m_list(&list), m_index(index) {}
        QJsonObject operator*();
        const_iterator &operator++()
        {
            ++m_index;
            return *this;
        }
        bool operator==(const const_iterator &other) const { return m_index == other.m_index; }

    private:
        const JobList *m_list;
        qsizetype m_index;
        const JobBlock *m_block = nullptr;
        QByteArray m_text;
    };
    const_iterator begin() const { return {*this, 0}; }
    const_iterator end() const { return {*this, size()}; }

private:
    QList<JobBlockPointer> m_blocks;
    QList<Place> m_places;
};

/// Packs the jobs among some elements of a reply, whose bytes stand at `spans` (begin and size) of `source`. Null when
/// one of them is no JSON.
JobBlockPointer PackJobs(const QByteArray &source, const QList<std::pair<qsizetype, qsizetype>> &spans);

} // namespace tuppi

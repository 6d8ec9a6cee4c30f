#include "media/EditList.h"

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QtEndian>

#include <algorithm>
#include <optional>

namespace engine {

namespace {

constexpr double aboutSeconds = 0.2; // what encoders put in front of a track and behind it
constexpr int mostBoxes = 100'000;   // of a file that means no harm there are some dozens
constexpr int longestHeader = 64;

struct Box
{
    QByteArray kind;
    qint64 begin = 0; // of what it holds
    qint64 end = 0;
};

// What stands in seconds is in units of the track (mdhd) or of the whole film (mvhd).
struct Clock
{
    double perSecond = 0;
    double length = 0;
};

struct Track
{
    Clock clock;
    int edits = 0;
    double editLength = 0; // in units of the film; 0 is all that there is
    double editStart = 0;  // in units of the track, negative for a delay
    bool usualSpeed = true;
};

class Boxes
{
public:
    explicit Boxes(const QString &path) : m_file(path) {}

    bool playedAsTheyStand()
    {
        if (!m_file.open(QIODevice::ReadOnly) || !startsAsFilm())
            return false;
        const std::optional<Box> film = find({{}, 0, m_file.size()}, "moov");
        const std::optional<Box> head = film ? find(*film, "mvhd") : std::nullopt;
        if (!head)
            return false;
        const Clock clock = clockOf(*head);
        int tracks = 0;
        for (const Box &box : inside(*film)) {
            if (box.kind != "trak")
                continue;
            ++tracks;
            if (!isPlain(box, clock))
                return false;
        }
        return tracks > 0 && m_boxes < mostBoxes;
    }

private:
    bool startsAsFilm()
    {
        const std::optional<Box> first = next(0, m_file.size());
        return first && QByteArrayList{"ftyp", "moov", "mdat", "wide", "free", "skip"}.contains(first->kind);
    }

    QByteArray bytes(qint64 at, qint64 count)
    {
        return m_file.seek(at) ? m_file.read(count) : QByteArray();
    }

    // The box at `at`, whole.
    std::optional<Box> next(qint64 at, qint64 end)
    {
        if (++m_boxes > mostBoxes)
            return std::nullopt;
        const QByteArray head = bytes(at, 16);
        if (head.size() < 8)
            return std::nullopt;
        quint64 size = qFromBigEndian<quint32>(head.constData());
        qint64 header = 8;
        if (size == 1 && head.size() == 16) {
            size = qFromBigEndian<quint64>(head.constData() + 8);
            header = 16;
        } else if (size == 0) {
            size = quint64(end - at);
        }
        if (size < quint64(header) || size > quint64(end - at))
            return std::nullopt;
        return Box{head.mid(4, 4), at + header, at + qint64(size)};
    }

    QList<Box> inside(const Box &parent)
    {
        QList<Box> boxes;
        qint64 at = parent.begin;
        while (const std::optional<Box> box = next(at, parent.end)) {
            boxes.append(*box);
            at = box->end;
        }
        return boxes;
    }

    std::optional<Box> find(const Box &parent, QByteArrayView kind)
    {
        const QList<Box> boxes = inside(parent);
        const auto found = std::ranges::find(boxes, kind, &Box::kind);
        return found == boxes.end() ? std::nullopt : std::optional(*found);
    }

    // mvhd and mdhd have the same beginning: version, times of making, units in a second, length.
    Clock clockOf(const Box &box)
    {
        const QByteArray head = bytes(box.begin, qMin(box.end - box.begin, qint64(longestHeader)));
        const bool wide = !head.isEmpty() && head.front() == 1;
        if (head.size() < (wide ? 32 : 20))
            return {};
        const char *units = head.constData() + (wide ? 20 : 12);
        return {double(qFromBigEndian<quint32>(units)),
                wide ? double(qFromBigEndian<quint64>(units + 4)) : double(qFromBigEndian<quint32>(units + 4))};
    }

    bool readEdits(const Box &box, Track &track)
    {
        const QByteArray head = bytes(box.begin, qMin(box.end - box.begin, qint64(longestHeader)));
        const bool wide = !head.isEmpty() && head.front() == 1;
        if (head.size() < 8)
            return false;
        track.edits = int(qMin(qFromBigEndian<quint32>(head.constData() + 4), 2U));
        if (track.edits == 0)
            return true;
        if (head.size() < (wide ? 28 : 20))
            return false;
        const char *edit = head.constData() + 8;
        track.editLength = wide ? double(qFromBigEndian<quint64>(edit)) : double(qFromBigEndian<quint32>(edit));
        track.editStart = wide ? double(qFromBigEndian<qint64>(edit + 8)) : double(qFromBigEndian<qint32>(edit + 4));
        track.usualSpeed = qFromBigEndian<quint32>(edit + (wide ? 16 : 8)) == 0x10000;
        return true;
    }

    bool isPlain(const Box &trak, const Clock &film)
    {
        const std::optional<Box> media = find(trak, "mdia");
        const std::optional<Box> head = media ? find(*media, "mdhd") : std::nullopt;
        if (!head)
            return false;
        Track track{.clock = clockOf(*head)};
        const std::optional<Box> edits = find(trak, "edts");
        if (const std::optional<Box> list = edits ? find(*edits, "elst") : std::nullopt; list && !readEdits(*list, track))
            return false;
        if (track.edits == 0)
            return true;
        if (track.edits > 1 || !track.usualSpeed || film.perSecond <= 0 || track.clock.perSecond <= 0)
            return false;
        const double start = track.editStart / track.clock.perSecond;
        const double played = track.editLength / film.perSecond;
        const double all = track.clock.length / track.clock.perSecond;
        return start >= 0 && start <= aboutSeconds && (track.editLength == 0 || start + played >= all - aboutSeconds);
    }

    QFile m_file;
    int m_boxes = 0;
};

} // namespace

bool isPlayedAsItStands(const QString &path)
{
    return Boxes(path).playedAsTheyStand();
}

} // namespace engine

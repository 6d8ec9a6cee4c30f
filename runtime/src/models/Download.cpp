#include "models/Download.h"

#include "core/Files.h"
#include "models/Hub.h"

#include <QFile>
#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

constexpr int stallSecondsOfFile = 60;
constexpr int mostFruitless = 4; // tries in a row that bring nothing new
constexpr auto pauseAfterFruitless = std::chrono::seconds(1);
constexpr qint64 roomToSpare = qint64(50) << 20; // for the store and what else is written meanwhile
constexpr QByteArrayView ggmlMark = "lmgg";      // how a file of whisper.cpp begins

const QString doing = u"The model could not be saved"_s;

// Thrown out of a transfer whose bytes would not fit what is there; the next try begins at the start.
struct UselessAnswer
{
};

Failure otherFile()
{
    return Failure(u"Hugging Face sent another file than it announced. Try again later."_s);
}

bool mayGetBetter(const HttpReply &reply)
{
    switch (reply.end) {
    case HttpReply::End::Unreachable:
    case HttpReply::End::TooSlow:
    case HttpReply::End::BrokenOff:
        return true;
    case HttpReply::End::Unsafe:
    case HttpReply::End::Misled:
        return false;
    case HttpReply::End::Whole:
        break;
    }
    return reply.status < 300 || reply.status == 408 || reply.status == 416 || reply.status == 429 ||
           reply.status >= 500;
}

// Feeds the hash with the file from its start; how many bytes there were, -1 on an error.
qint64 hashFile(int fd, QCryptographicHash &hash)
{
    std::array<char, 1 << 16> block;
    for (qint64 at = 0;;) {
        const ssize_t count = ::pread(fd, block.data(), block.size(), at);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return count < 0 ? -1 : at;
        hash.addData(QByteArrayView(block.data(), count));
        at += count;
    }
}

} // namespace

Download::Download(Http &http, const QString &folder, const WantedFile &file)
    : m_http(http)
    , m_folder(folder)
    , m_file(file)
    , m_whole(QFile::encodeName(folder + u'/' + file.sha256 + u".bin"_s))
    , m_partName(QFile::encodeName(folder + u'/' + file.sha256 + u".part"_s))
    , m_etagName(folder + u'/' + file.sha256 + u".etag"_s)
{
    takePart();
}

// Who had it may just have renamed it: then what was locked is not what stands there.
void Download::takePart()
{
    struct stat locked
    {
    };
    struct stat named
    {
    };
    do {
        m_part = FileDescriptor(::open(m_partName.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
        if (!m_part.valid())
            throw systemFailure(doing, errno);
        if (::flock(m_part.get(), LOCK_EX | LOCK_NB) != 0)
            throw Failure(u"This model is being downloaded already."_s);
    } while (::fstat(m_part.get(), &locked) != 0 || ::stat(m_partName.constData(), &named) != 0 ||
             locked.st_ino != named.st_ino);
}

void Download::run(const Progress &progress)
{
    if (wholeIsThere()) {
        ::unlink(m_partName.constData());
        return;
    }
    hashPart();
    requireRoom();
    for (;;) {
        loadRest(progress);
        if (m_hash.result().toHex() == m_file.sha256.toLatin1())
            return finish();
        // An old part may be what is wrong: after a power cut, say.
        const bool startedHere = m_startedHere;
        startAgain();
        if (startedHere)
            throw Failure(u"The download of “"_s + m_file.repo +
                          u"” arrived damaged: its checksum is wrong. Try again later."_s);
    }
}

bool Download::wholeIsThere() const
{
    const FileDescriptor whole(::open(m_whole.constData(), O_RDONLY | O_CLOEXEC));
    QCryptographicHash hash(QCryptographicHash::Sha256);
    return whole.valid() && hashFile(whole.get(), hash) == m_file.size &&
           hash.result().toHex() == m_file.sha256.toLatin1();
}

void Download::hashPart()
{
    m_there = hashFile(m_part.get(), m_hash);
    m_startedHere = m_there == 0;
    if (m_there < 0 || m_there > m_file.size)
        startAgain();
}

void Download::requireRoom() const
{
    const qint64 room = roomAt(m_folder);
    const qint64 needed = m_file.size - m_there + roomToSpare;
    if (room >= 0 && room < needed)
        throw Failure(u"There is not enough room for this model: it needs "_s + sizeText(needed) +
                      u", and "_s + sizeText(room) + u" are free. Make room and try again."_s);
}

void Download::loadRest(const Progress &progress)
{
    qint64 furthest = m_there;
    int fruitless = 0;
    while (m_there < m_file.size) {
        const HttpReply reply = ask(progress);
        if (m_there >= m_file.size)
            return;
        if (reply.status == 416)
            startAgain();
        fruitless = m_there > furthest ? 0 : fruitless + 1;
        furthest = std::max(furthest, m_there);
        if (!mayGetBetter(reply) || fruitless == mostFruitless)
            throw hubFailure(reply, m_file.repo);
        std::this_thread::sleep_for(pauseAfterFruitless * fruitless);
    }
}

HttpReply Download::ask(const Progress &progress)
{
    HttpRequest request;
    request.url = m_file.url;
    request.headers = headers();
    request.stallSeconds = stallSeconds(stallSecondsOfFile);
    bool begun = false;
    try {
        return m_http.send(request, [&](const HttpReply &head, QByteArrayView piece) {
            if (head.status != 200 && head.status != 206)
                return; // a page about an error
            if (!begun)
                begin(head, piece);
            begun = true;
            take(piece);
            progress(m_there, m_file.size);
        });
    } catch (const UselessAnswer &) {
        startAgain();
        return {HttpReply::End::BrokenOff, 0, {}, {}};
    }
}

QList<QByteArray> Download::headers() const
{
    if (m_there == 0)
        return {};
    QList<QByteArray> headers{"Range: bytes=" + QByteArray::number(m_there) + '-'};
    if (QFile etag(m_etagName); etag.open(QIODevice::ReadOnly))
        headers.append("If-Range: " + etag.readAll().trimmed());
    return headers;
}

void Download::begin(const HttpReply &head, QByteArrayView firstPiece)
{
    static const QRegularExpression rangeForm(u"^bytes (\\d+)-\\d+/(\\d+|\\*)$"_s);
    const QByteArray length = head.header("content-length");
    if (head.status == 206) {
        const QRegularExpressionMatch range =
            rangeForm.match(QString::fromLatin1(head.header("content-range")));
        const QString total = range.captured(2);
        if (range.captured(1) != QString::number(m_there) ||
            (total != u"*" && total != QString::number(m_file.size)))
            throw UselessAnswer();
    } else {
        // What is there is not given up for the page of a network that wants one to sign in.
        const bool marked =
            ggmlMark.startsWith(firstPiece.first(std::min(ggmlMark.size(), firstPiece.size())));
        if ((!length.isEmpty() && length.toLongLong() != m_file.size) || (m_there > 0 && !marked))
            throw otherFile();
        startAgain();
    }
    const QByteArray etag = head.header("etag");
    QFile kept(m_etagName);
    if (etag.startsWith('"') && kept.open(QIODevice::WriteOnly))
        kept.write(etag);
}

void Download::take(QByteArrayView piece)
{
    if (m_there + piece.size() > m_file.size) {
        startAgain();
        throw otherFile();
    }
    // Known at once, and not after gigabytes.
    const qsizetype marked = std::min<qsizetype>(ggmlMark.size() - m_there, piece.size());
    if (marked > 0 && piece.first(marked) != ggmlMark.sliced(m_there, marked)) {
        startAgain();
        throw Failure(u"“"_s + m_file.repo +
                      u"” is not a Whisper model in whisper.cpp's form (ggml-….bin)."_s);
    }
    for (qsizetype done = 0; done < piece.size();) {
        const ssize_t count =
            ::pwrite(m_part.get(), piece.data() + done, size_t(piece.size() - done), m_there + done);
        if (count < 0 && errno != EINTR) {
            const int error = errno;
            if (error == ENOSPC || error == EDQUOT)
                startAgain(); // transcripts need the room more
            throw systemFailure(doing, error);
        }
        done += std::max<ssize_t>(count, 0);
    }
    m_hash.addData(piece);
    m_there += piece.size();
}

void Download::startAgain()
{
    if (::ftruncate(m_part.get(), 0) != 0)
        throw systemFailure(doing, errno);
    QFile::remove(m_etagName);
    m_hash.reset();
    m_there = 0;
    m_startedHere = true;
}

void Download::finish()
{
    if (::fsync(m_part.get()) != 0 || std::rename(m_partName.constData(), m_whole.constData()) != 0)
        throw systemFailure(doing, errno);
    QFile::remove(m_etagName);
    syncFolder(m_folder);
}

} // namespace engine

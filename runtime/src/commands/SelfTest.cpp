#include "commands/SelfTest.h"

#include "core/Failure.h"
#include "core/Files.h"
#include "core/SpeechModel.h"
#include "core/WorkerStart.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace engine::commands {

namespace {

constexpr int limitMs = 30000;
constexpr qint64 dayMs = 24 * 3600 * 1000;
constexpr qint64 clockStepMs = 20; // files get the time of the last tick

qint64 milliseconds(const timespec &time)
{
    return qint64(time.tv_sec) * 1000 + time.tv_nsec / 1000000;
}

// Another one when the file is another one or was written since; empty where there is none, or where it may be
// changing just now.
QByteArray identity(const QByteArray &path, qint64 unchangedSinceMs)
{
    struct stat found;
    if (::stat(path.constData(), &found) != 0 || milliseconds(found.st_ctim) >= unchangedSinceMs)
        return {};
    return QByteArray::number(qulonglong(found.st_dev)) + ' ' + QByteArray::number(qulonglong(found.st_ino)) +
           ' ' + QByteArray::number(qlonglong(found.st_size)) + ' ' +
           QByteArray::number(qlonglong(found.st_mtim.tv_sec)) + '.' +
           QByteArray::number(qlonglong(found.st_mtim.tv_nsec)) + ' ' +
           QByteArray::number(qlonglong(found.st_ctim.tv_sec)) + '.' +
           QByteArray::number(qlonglong(found.st_ctim.tv_nsec));
}

// What tells the worker where to look, and what it finds there; its libraries are told by itself.
QByteArrayList knownFiles()
{
    QByteArrayList files{QFile::encodeName(workerProgram()), "/etc/ld.so.cache"};
    if (const std::optional<SpeechModel> model = findSpeechModel()) {
        files << QFile::encodeName(model->words) << QFile::encodeName(model->dictionary);
        for (const QFileInfo &part : QDir(model->acoustic).entryInfoList(QDir::Files, QDir::Name))
            files << QFile::encodeName(part.filePath());
    }
    return files;
}

// A line of the environment, then one for each file. Empty where nothing should be remembered.
QByteArray memoryOf(const QByteArrayList &files, qint64 unchangedSinceMs)
{
    QByteArray memory = qgetenv("LD_LIBRARY_PATH") + ' ' + qgetenv("LD_PRELOAD") + '\n';
    for (const QByteArray &file : files) {
        const QByteArray one = identity(file, unchangedSinceMs);
        if (one.isEmpty())
            return {};
        memory += one + '\t' + file + '\n';
    }
    return memory;
}

bool holds(const QString &path)
{
    QFile file(path);
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    if (::access(QFile::encodeName(workerProgram()).constData(), X_OK) != 0 || !findSpeechModel() ||
        !file.open(QIODevice::ReadOnly))
        return false;
    const qint64 age = now - file.fileTime(QFileDevice::FileModificationTime).toMSecsSinceEpoch();
    if (age < 0 || age > dayMs)
        return false;
    const QByteArray memory = file.readAll();
    QByteArrayList files;
    for (const QByteArray &line : memory.split('\n')) {
        if (const qsizetype at = line.indexOf('\t'); at >= 0)
            files << line.mid(at + 1);
    }
    const QByteArrayList known = knownFiles();
    return files.size() > known.size() && files.first(known.size()) == known && memoryOf(files, now) == memory;
}

void remember(const QString &path, const QJsonArray &libraries, qint64 startedMs)
{
    QByteArrayList files = knownFiles();
    for (const QJsonValue &library : libraries)
        files << QFile::encodeName(library.toString());
    const QByteArray memory = memoryOf(files, startedMs - clockStepMs);
    if (memory.isEmpty())
        return;
    try {
        writeFile(path, memory);
    } catch (const Failure &) {
        // It is only looked at once more then.
    }
}

} // namespace

SelfTest::SelfTest(const Paths &paths)
    : m_memory(paths.store + u"/self-test"_s)
{
    if (holds(m_memory))
        return;
    m_startedMs = QDateTime::currentMSecsSinceEpoch();
    m_worker.emplace(workerProgram(), QStringList{u"--check"_s});
}

SelfTest::Troubles SelfTest::finish()
{
    if (!m_worker)
        return {};
    const bool inTime = m_worker->ended(limitMs);
    const auto silent = [inTime](const QString &why) {
        return inTime ? why : u"The computer is too busy to try it out. Ask again later."_s;
    };
    // A line for each part: the worker that falls over the speech model has told of decoding before.
    const QList<QByteArray> lines = m_worker->finish(0).output.split('\n');
    const auto part = [&](qsizetype line) { return QJsonDocument::fromJson(lines.value(line)).object(); };
    const QString broken = silent(u"The worker program does not run. Install the engine again."_s);
    if (!part(0).contains(u"decoding"))
        return {broken, broken};
    const QString fallen = silent(u"The speech model is damaged. Install it again."_s);
    const Troubles found{part(1)[u"recogniser"].toString(fallen), part(0)[u"decoding"].toString()};
    if (found.recogniser.isEmpty() && found.decoding.isEmpty())
        remember(m_memory, part(2)[u"libraries"].toArray(), m_startedMs);
    return found;
}

} // namespace engine::commands

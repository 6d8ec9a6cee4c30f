#include "recognise/WhisperRecogniser.h"

#include "core/Failure.h"
#include "core/FileDescriptor.h"
#include "core/Files.h"
#include "recognise/WhisperOutput.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QThread>
#include <QtEndian>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

constexpr qint64 samplesPerMs = 16;
constexpr int mostThreads = 8; // more only wait for each other
constexpr int noModel = 3;
constexpr int notStarted = 127;
constexpr int badArguments = 2; // and below: it did not take what it was given

template <typename Number> void append(QByteArray &bytes, Number number)
{
    const Number little = qToLittleEndian(number);
    bytes.append(reinterpret_cast<const char *>(&little), sizeof little);
}

QByteArray wavHeader(quint32 size)
{
    constexpr quint32 rate = 16000;
    QByteArray wav = "RIFF";
    append<quint32>(wav, 36 + size);
    wav += "WAVEfmt ";
    append<quint32>(wav, 16);
    append<quint16>(wav, 1); // PCM
    append<quint16>(wav, 1); // channels
    append<quint32>(wav, rate);
    append<quint32>(wav, rate * 2);
    append<quint16>(wav, 2);
    append<quint16>(wav, 16);
    wav += "data";
    append<quint32>(wav, size);
    return wav;
}

// In slices: there is one copy of the sound in memory, which this process shares with the worker.
void writeWav(const QString &path, std::span<const int16_t> samples)
{
    constexpr size_t sliceSamples = 16384;
    const QString doing = u"“"_s + QFileInfo(path).fileName() + u"” could not be written"_s;
    const FileDescriptor file(
        ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    if (!file.valid())
        throw systemFailure(doing, errno);
    writeAll(file.get(), wavHeader(quint32(samples.size_bytes())), doing);
    while (!samples.empty()) {
        const auto slice = samples.first(std::min(samples.size(), sliceSamples));
        QByteArray bytes;
        for (const int16_t sample : slice)
            append(bytes, sample);
        writeAll(file.get(), bytes, doing);
        samples = samples.subspan(slice.size());
    }
}

// whisper-cli ends well also where its text did not fit on the disk.
void requireRoomFor(const QString &path)
{
    constexpr qint64 moreThanAnyText = qint64(1) << 20;
    const QFileInfo file(path);
    if (const qint64 room = roomAt(file.path()); room >= 0 && room < moreThanAnyText)
        throw systemFailure(u"“"_s + file.fileName() + u"” could not be written"_s, ENOSPC);
}

// Only this user may look into it: what was said is in there.
class PrivateFolder
{
public:
    explicit PrivateFolder(const QString &path)
        : m_path(path)
    {
        QDir(path).removeRecursively();
        makeFolder(path, u"The folder for the speech recogniser could not be made"_s);
        ::chmod(QFile::encodeName(path).constData(), 0700);
    }
    ~PrivateFolder() { QDir(m_path).removeRecursively(); }
    PrivateFolder(const PrivateFolder &) = delete;
    PrivateFolder &operator=(const PrivateFolder &) = delete;

private:
    QString m_path;
};

} // namespace

WhisperRecogniser::WhisperRecogniser(WhisperSetup setup)
    : m_setup(std::move(setup))
{
}

QString WhisperRecogniser::name() const
{
    return u"Whisper ("_s + m_setup.model.name + u")"_s;
}

QString WhisperRecogniser::contractName() const
{
    return u"whisper"_s;
}

QString WhisperRecogniser::language() const
{
    return m_setup.language;
}

// Whisper hears in windows of thirty seconds, shorter sound costs as much, and each start loads the model
// again. Two minutes make both small, and are what a pause or a kill may cost.
qint64 WhisperRecogniser::longestSoundMs() const
{
    return qint64(2) * 60 * 1000;
}

int WhisperRecogniser::mostBreakdowns() const
{
    return 3;
}

void WhisperRecogniser::prepare() {}

QStringList WhisperRecogniser::arguments(const QString &base, const QString &language) const
{
    // By this process, which waits: a removed model has no other name, and a script around whisper-cli need
    // not hand down what is open.
    const QString model = u"/proc/%1/fd/%2"_s.arg(::getpid()).arg(m_setup.modelFile.get());
    const int threads = std::clamp(QThread::idealThreadCount(), 1, mostThreads);
    return {u"-m"_s,  model, u"-f"_s, base + u".wav"_s,         u"-l"_s,  language, u"-ojf"_s,
            u"-of"_s, base,  u"-t"_s, QString::number(threads), u"-pp"_s, u"-np"_s};
}

void WhisperRecogniser::requireSuccess(int status) const
{
    if (status == notStarted)
        throw Failure(u"whisper-cli could not be started. Install whisper.cpp again."_s);
    if (status == noModel)
        throw Failure(u"whisper-cli could not load the speech model “"_s + m_setup.model.name +
                      u"”. Free memory, or remove the model and add it again."_s);
    if (status > 0 && status <= badArguments)
        throw Failure(u"whisper-cli did not take what it was given. Install a newer whisper.cpp."_s);
    if (status != 0)
        throw RecogniserBroke();
}

Heard WhisperRecogniser::recognise(const Sound &sound)
{
    const PrivateFolder folder(m_setup.workFolder);
    const QString base = m_setup.workFolder + u"/sound"_s;
    const bool known = m_setup.language != u"auto" || sound.language.isEmpty();
    writeWav(base + u".wav"_s, sound.samples);
    WhisperProgram program(m_setup.program, arguments(base, known ? m_setup.language : sound.language));
    requireSuccess(program.finish(m_setup.patience, sound.progress));
    QFile file(base + u".json"_s);
    const bool opened = file.open(QIODevice::ReadOnly);
    std::optional<Heard> heard;
    if (opened)
        heard = readWhisperOutput(file.readAll(), qint64(sound.samples.size()) / samplesPerMs);
    if (heard)
        return *std::move(heard);
    requireRoomFor(file.fileName());
    // It ends well also where it knows neither the language nor an option.
    if (!opened)
        throw Failure(u"whisper-cli gave no text. Install a newer whisper.cpp."_s);
    throw RecogniserBroke();
}

QString findWhisperCli()
{
    if (const QString chosen = qEnvironmentVariable("TUPPI_WHISPER_CLI"); !chosen.isEmpty())
        return QFileInfo(chosen).isExecutable() ? chosen : QString();
    return QStandardPaths::findExecutable(u"whisper-cli"_s);
}

bool hearsOnlyEnglish(const CustomModel &model)
{
    return model.file.contains(u".en.") || model.file.contains(u".en-");
}

} // namespace engine

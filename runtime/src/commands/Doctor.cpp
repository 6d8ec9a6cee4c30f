#include "commands/Command.h"
#include "commands/SelfTest.h"

#include "core/ChildProgram.h"
#include "core/Failure.h"
#include "core/Files.h"
#include "core/SpeechModel.h"
#include "core/WorkerLock.h"
#include "models/CustomModels.h"
#include "store/Jobs.h"
#include "store/Settings.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>

#include <algorithm>
#include <functional>
#include <optional>
#include <vector>

using namespace Qt::StringLiterals;

namespace engine::commands {

namespace {

constexpr qint64 roomForWork = qint64(100) << 20;
constexpr int ollamaLimitMs = 2000; // it keeps a shorter one itself

struct Check
{
    QString name;
    bool optional = false;
    QString trouble; // empty when all is well
};

Check check(const QString &name, const std::function<void()> &look)
{
    try {
        look();
        return {name, false, {}};
    } catch (const Failure &failure) {
        return {name, false, failure.sentence()};
    }
}

// Any of these programs will do.
Check program(const QString &name, const QStringList &executables)
{
    for (const QString &executable : executables) {
        if (!QStandardPaths::findExecutable(executable).isEmpty())
            return {name, true, {}};
    }
    return {name, true, u"Not installed: "_s + executables.join(u", "_s)};
}

bool hasWhisperModel()
{
    try {
        return std::ranges::any_of(customModels(Paths::ofThisUser()),
                                   [](const CustomModel &model) { return model.kind == u"whisper"; });
    } catch (const Failure &) {
        return false; // the list is damaged, which is told of by itself
    }
}

Check whisper()
{
    Check found = program(u"Whisper (whisper-cli)"_s, {qEnvironmentVariable("TUPPI_WHISPER_CLI", u"whisper-cli"_s)});
    if (found.trouble.isEmpty() && !hasWhisperModel())
        found.trouble = u"There is no model for it. Add a Whisper model in the Settings."_s;
    return found;
}

// Where its model is not installed, English too is Whisper's.
void appendWorkerChecks(std::vector<Check> &checks, const SelfTest::Troubles &found)
{
    const bool spare = !findSpeechModel() && whisper().trouble.isEmpty();
    checks.push_back({u"Speech recogniser (PocketSphinx, English)"_s, spare, found.recogniser});
    checks.push_back({u"Decoding of audio and video (FFmpeg)"_s, false, found.decoding});
}

void requireRoom(const QString &folder)
{
    QString existing = folder;
    while (!QFileInfo::exists(existing) && existing.size() > 1)
        existing = QFileInfo(existing).path();
    const qint64 room = roomAt(existing);
    if (room >= 0 && room < roomForWork)
        throw Failure(u"Only "_s + sizeText(room) + u" are free at “"_s + existing + u"”."_s);
}

bool standsStill(pid_t process)
{
    QFile file(u"/proc/%1/stat"_s.arg(process));
    const QByteArray line = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    const qsizetype name = line.lastIndexOf(") ");
    return name >= 0 && line.mid(name + 2, 1) == "T";
}

// What keeps the jobs that are not done from going on.
void requireProgress(Database &database)
{
    const std::vector<Job> jobs = unfinishedJobs(database);
    for (const Job &job : jobs) {
        if (!QFileInfo::exists(job.callDir))
            throw Failure(u"The folder of “"_s + job.title + u"” is not in its place: “"_s + job.callDir +
                          u"”. Put it back, or cancel this transcription."_s);
    }
    if (jobs.empty())
        return;
    const std::optional<pid_t> worker = WorkerLock(Paths::ofThisUser()).owner();
    if (worker && standsStill(*worker))
        throw Failure(u"The program at work was stopped from outside and waits to be continued: process "_s +
                      QString::number(*worker) + u'.');
}

void requireClock(Database &database)
{
    const std::optional<Job> newest = newestJob(database);
    const QDateTime now = QDateTime::currentDateTimeUtc();
    if (newest && QDateTime::fromString(newest->createdAt, Qt::ISODate) > now.addDays(1))
        throw Failure(u"This computer's clock says "_s + now.toString(Qt::ISODate) +
                      u", but the newest transcription was begun "_s + newest->createdAt + u'.');
}

// What the rest of the checks need of the store.
struct Settings
{
    Library library{Paths::ofThisUser().defaultLibrary};
    QString textModel;
};

Settings appendStoreChecks(std::vector<Check> &checks)
{
    std::optional<Database> database;
    Settings settings;
    checks.push_back(check(u"List of transcripts"_s, [&] {
        database.emplace(Paths::ofThisUser());
        if (const QString verdict = database->integrity(); verdict != u"ok")
            throw Failure(u"The list of transcripts is damaged: "_s + verdict);
        settings = {libraryInUse(*database), textModel(*database)};
        // SQLite begins to write without a word where it may only read: it refuses the first change.
        const Transaction writing(*database);
        database->run(u"UPDATE settings SET value = value WHERE FALSE"_s);
    }));
    checks.push_back(check(u"Transcripts folder"_s, [&] { requireLibrary(settings.library); }));
    checks.push_back(check(u"Room on the disk"_s, [&] {
        requireRoom(settings.library.folder);
        requireRoom(Paths::ofThisUser().base);
    }));
    if (database) {
        checks.push_back(check(u"Unfinished transcriptions"_s, [&] { requireProgress(*database); }));
        checks.push_back(check(u"Date and time"_s, [&] { requireClock(*database); }));
    }
    return settings;
}

void appendModelChecks(std::vector<Check> &checks)
{
    const Paths paths = Paths::ofThisUser();
    std::vector<CustomModel> models;
    const Check list = check(u"List of your speech models"_s, [&] { models = customModels(paths); });
    if (!list.trouble.isEmpty())
        checks.push_back(list);
    for (const CustomModel &model : models)
        checks.push_back(
            check(u"Your speech model “"_s + model.name + u"”"_s, [&] { openCustomModel(paths, model); }));
}

void appendOllamaChecks(std::vector<Check> &checks, const QJsonObject &found, const QString &textModel)
{
    const bool runs = found.contains(u"ollama");
    checks.push_back({u"Downloads of models"_s, false,
                      runs ? QString() : u"The program for them does not run. Install the engine again."_s});
    QString trouble = runs ? found[u"ollama"].toString() : u"It could not be asked."_s;
    if (trouble.isEmpty() && !textModel.isEmpty() && !found[u"models"].toArray().contains(textModel))
        trouble = u"Ollama does not have “"_s + textModel + u"” any more. Choose a text model again."_s;
    checks.push_back({u"Text model (Ollama)"_s, true, trouble});
}

// The parts that only other programs are linked with look at themselves, beside everything else.
std::vector<Check> allChecks()
{
    SelfTest worker(Paths::ofThisUser());
    ChildProgram models(executableFolder() + u"/tuppi-engine-models"_s, {u"--check"_s});
    std::vector<Check> ofStore;
    const Settings settings = appendStoreChecks(ofStore);
    std::vector<Check> ofOllama;
    appendOllamaChecks(ofOllama, QJsonDocument::fromJson(models.finish(ollamaLimitMs).output).object(), settings.textModel);
    std::vector<Check> checks;
    appendWorkerChecks(checks, worker.finish());
    checks.insert(checks.end(), ofStore.begin(), ofStore.end());
    appendModelChecks(checks);
    checks.insert(checks.end(), ofOllama.begin(), ofOllama.end());
    checks.push_back(whisper());
    checks.push_back(
        program(u"Clipboard tool (wl-copy, xclip or xsel)"_s, {u"wl-copy"_s, u"xclip"_s, u"xsel"_s}));
    return checks;
}

QByteArray asJson(const std::vector<Check> &checks)
{
    QJsonArray list;
    for (const Check &one : checks) {
        QJsonObject object{
            {u"check"_s, one.name}, {u"ok"_s, one.trouble.isEmpty()}, {u"optional"_s, one.optional}};
        if (!one.trouble.isEmpty())
            object[u"detail"] = one.trouble;
        list.append(object);
    }
    return QJsonDocument(list).toJson(QJsonDocument::Compact) + '\n';
}

} // namespace

int doctor(const Arguments &arguments)
{
    const std::vector<Check> checks = allChecks();
    if (arguments.has(u"--json")) {
        print(asJson(checks));
        return 0;
    }
    bool whole = true;
    for (const Check &one : checks) {
        whole = whole && (one.optional || one.trouble.isEmpty());
        const QString mark = one.trouble.isEmpty() ? u"✓ "_s : one.optional ? u"– "_s : u"✗ "_s;
        printLine(mark + one.name + (one.trouble.isEmpty() ? QString() : u": "_s + one.trouble));
    }
    return whole ? 0 : 1;
}

} // namespace engine::commands

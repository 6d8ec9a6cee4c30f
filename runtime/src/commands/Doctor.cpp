#include "commands/Command.h"

#include "core/ChildProgram.h"
#include "core/Failure.h"
#include "core/Files.h"
#include "store/Settings.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>

#include <functional>
#include <optional>
#include <vector>

using namespace Qt::StringLiterals;

namespace engine::commands {

namespace {

constexpr qint64 roomForWork = qint64(100) << 20;
constexpr int selfTestLimitMs = 30000;

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

Check program(const QString &name, const QString &executable)
{
    if (!QStandardPaths::findExecutable(executable).isEmpty())
        return {name, true, {}};
    return {name, true, u"“"_s + executable + u"” is not on the path."_s};
}

// The worker looks at itself, because only it is linked with what decodes and recognises.
void appendWorkerChecks(std::vector<Check> &checks)
{
    const ProgramResult result =
        runProgram(executableFolder() + u"/tuppi-engine-worker"_s, {u"--check"_s}, selfTestLimitMs);
    const QJsonObject found = QJsonDocument::fromJson(result.output).object();
    const auto trouble = [&](QStringView part) {
        return found.contains(part) ? found[part].toString()
                                    : u"The worker program does not run. Install the engine again."_s;
    };
    checks.push_back({u"Speech recogniser (PocketSphinx, English)"_s, false, trouble(u"recogniser")});
    checks.push_back({u"Decoding of audio and video (FFmpeg)"_s, false, trouble(u"decoding")});
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

void appendStoreChecks(std::vector<Check> &checks)
{
    std::optional<Database> database;
    QString library = Paths::ofThisUser().defaultLibrary;
    checks.push_back(check(u"List of transcripts"_s, [&] {
        database.emplace(Paths::ofThisUser());
        if (const QString verdict = database->integrity(); verdict != u"ok")
            throw Failure(u"The list of transcripts is damaged: "_s + verdict);
        Transaction writing(*database); // the store may be open for reading alone
        library = libraryFolder(*database);
    }));
    checks.push_back(check(u"Transcripts folder can be written"_s, [&] {
        makeFolder(library, u"The transcripts folder “"_s + library + u"” could not be made"_s);
        requireWritable(library);
    }));
    checks.push_back(check(u"Room on the disk"_s, [&] {
        requireRoom(library);
        requireRoom(Paths::ofThisUser().base);
    }));
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
    std::vector<Check> checks;
    appendWorkerChecks(checks);
    appendStoreChecks(checks);
    checks.push_back(program(u"More languages (whisper-cli)"_s, u"whisper-cli"_s));
    checks.push_back(program(u"Text model (Ollama)"_s, u"ollama"_s));
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

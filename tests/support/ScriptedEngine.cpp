#include "support/ScriptedEngine.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tuppi::test {

using namespace Qt::StringLiterals;

namespace {

/// The lock that the engine's script takes while it records.
class RecordLock
{
public:
    explicit RecordLock(const QString &path)
        : m_descriptor(::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600))
    {
        ::flock(m_descriptor, LOCK_EX);
    }
    ~RecordLock() { ::close(m_descriptor); }
    Q_DISABLE_COPY(RecordLock)

private:
    int m_descriptor;
};

/// What call.bash knows.
QStringList Subcommands()
{
    const QString script = QString::fromUtf8(readFile(QStringLiteral(TUPPI_SCRIPTED_CALL)));
    return script.section(u"\ncommands='"_s, 1).section(u'\'', 0, 0).simplified().split(u' ');
}

} // namespace

Answer Answer::failure(int status, const QByteArray &err)
{
    return {{}, err, status, {}, {}};
}

Answer Answer::script(const QByteArray &bash)
{
    return {{}, {}, 0, bash, {}};
}

Answer Answer::heldAt(const QByteArray &gate) const
{
    Answer held = *this;
    held.before = "wait_for '" + gate + "'\n" + held.before;
    held.after = ": >\"$root/gates/" + gate + ".passed\"\n" + held.after;
    return held;
}

ScriptedEngine::ScriptedEngine()
    : m_home(home())
{
    for (const QString &folder : {u"calls"_s, u"answers"_s, u"gates"_s, u"book"_s})
        QDir().mkpath(path(folder));
    ::mkfifo(QFile::encodeName(path(u"never"_s)).constData(), 0600);
    install();
    answerHistory("[]");
    answerStatus(R"({"latest_job":null,"library":null})");
    answer(u"models"_s, {R"({"custom":[]})"});
}

ScriptedEngine::~ScriptedEngine()
{
    // A script that is still at work may put a file into a folder that is being removed.
    m_root.setAutoRemove(false);
    waitFor([this] { return QDir(m_root.path()).removeRecursively(); });
}

QString ScriptedEngine::path(const QString &relative) const
{
    return m_root.filePath(relative);
}

QString ScriptedEngine::stateFolder() const
{
    return home() + u"/Library/Application Support/Larkspire"_s;
}

QString ScriptedEngine::enginePath() const
{
    return stateFolder() + u"/runtime/call"_s;
}

void ScriptedEngine::install()
{
    QDir().mkpath(stateFolder() + u"/runtime"_s);
    QFile::copy(QStringLiteral(TUPPI_SCRIPTED_CALL), enginePath());
}

void ScriptedEngine::uninstall()
{
    QFile::remove(enginePath());
}

QString ScriptedEngine::storeAnswer(const Answer &answer)
{
    const QString name = u"set.%1"_s.arg(++m_answers);
    const QString folder = path(u"answers/"_s + name);
    QDir().mkpath(folder);
    writeFile(folder + u"/out"_s, answer.out);
    writeFile(folder + u"/err"_s, answer.err);
    writeFile(folder + u"/before"_s, answer.before + '\n');
    writeFile(folder + u"/after"_s, answer.after + '\n');
    writeFile(folder + u"/status"_s, QByteArray::number(answer.status) + '\n');
    return name;
}

void ScriptedEngine::setAnswer(const QString &subcommand, const QString &calls, const Answer &answer)
{
    if (!Subcommands().contains(subcommand))
        qFatal("The engine has no subcommand “%s” to answer", qUtf8Printable(subcommand));
    replaceFile(path(u"answers/"_s + subcommand + calls), storeAnswer(answer).toUtf8() + '\n');
}

void ScriptedEngine::answer(const QString &subcommand, const Answer &answer)
{
    setAnswer(subcommand, {}, answer);
}

void ScriptedEngine::answerTo(const QString &subcommand, const QString &argument, const Answer &answer)
{
    setAnswer(subcommand, u' ' + argument, answer);
}

void ScriptedEngine::answerCall(const QString &subcommand, int nth, const Answer &answer)
{
    setAnswer(subcommand, u".%1"_s.arg(nth), answer);
}

void ScriptedEngine::openGate(const QByteArray &gate)
{
    writeFile(path(u"gates/"_s + QString::fromUtf8(gate)), {});
}

bool ScriptedEngine::letPass(const QByteArray &gate)
{
    openGate(gate);
    return waitFor([&] { return QFile::exists(path(u"gates/%1.passed"_s.arg(QString::fromUtf8(gate)))); });
}

void ScriptedEngine::keepBook(const QByteArray &firstStatus)
{
    writeFile(path(u"book/first-status"_s), firstStatus + '\n');
    answer(u"process"_s, Answer::script(R"(locked book_add "$2")"));
    answer(u"history"_s, Answer::script("locked book_list"));
}

void ScriptedEngine::setJob(int number, const QJsonObject &job)
{
    const RecordLock lock(path(u"lock"_s));
    writeFile(path(u"book/%1.job"_s.arg(number, 8, 10, '0'_L1)), QJsonDocument(job).toJson(QJsonDocument::Compact));
}

int ScriptedEngine::jobCount() const
{
    return int(QDir(path(u"book"_s)).entryList({u"*.job"_s}).size());
}

QList<QStringList> ScriptedEngine::calls() const
{
    const RecordLock lock(path(u"lock"_s));
    QList<QStringList> calls;
    const QDir folder(path(u"calls"_s));
    for (const QString &name : folder.entryList(QDir::Files, QDir::Name)) {
        QList<QByteArray> words = readFile(folder.filePath(name)).split('\0');
        const int count = words.takeFirst().toInt();
        QStringList arguments;
        for (const QByteArray &word : words.first(count))
            arguments.append(QString::fromUtf8(word));
        calls.append(arguments);
    }
    return calls;
}

QList<QStringList> ScriptedEngine::calls(const QString &subcommand) const
{
    QList<QStringList> chosen = calls();
    chosen.removeIf([&](const QStringList &call) { return call.value(0) != subcommand; });
    return chosen;
}

QString ScriptedEngine::recording(const QString &name) const
{
    const QString file = home() + u'/' + name;
    writeFile(file, {});
    return file;
}

void ScriptedEngine::touchState()
{
    writeFile(stateFolder() + u"/change-%1"_s.arg(++m_touches), {});
}

} // namespace tuppi::test

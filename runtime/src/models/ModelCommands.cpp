#include "models/ModelCommands.h"

#include "core/Files.h"
#include "models/CustomModels.h"
#include "models/Download.h"
#include "models/Hub.h"
#include "models/Ollama.h"
#include "store/Settings.h"

#include <QDateTime>
#include <QDirIterator>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

constexpr int glanceLimitMs = 1000;
constexpr int checkLimitMs = 700;
constexpr int useLimitMs = 5000;
constexpr qsizetype longestName = 80;
constexpr qint64 daysToKeepParts = 14;

QByteArray jsonLine(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

QJsonObject forReaders(const CustomModel &model)
{
    return {{u"id"_s, model.id}, {u"name"_s, model.name}, {u"kind"_s, model.kind}, {u"repo"_s, model.repo}};
}

// A line that a person at a terminal sees change. Elsewhere standard error is for what went wrong alone: its
// readers show all of it.
class ProgressLine
{
public:
    ~ProgressLine()
    {
        if (m_shown >= 0)
            std::fputc('\n', stderr);
    }

    void show(qint64 there, qint64 size)
    {
        const int percent = int(100.0 * double(there) / double(size));
        if (percent == m_shown || !::isatty(STDERR_FILENO))
            return;
        m_shown = percent;
        std::fprintf(stderr, "\r%3d %% of %s ", percent, sizeText(size).toUtf8().constData());
    }

private:
    int m_shown = -1;
};

QByteArray list(const Arguments &arguments)
{
    const Paths paths = Paths::ofThisUser();
    Database database(paths);
    Http http;
    const std::vector<CustomModel> models = customModels(paths);
    const QString text = textModel(database);
    const QStringList texts = Ollama(http).models(glanceLimitMs).names();
    if (arguments.has(u"--json")) {
        QJsonArray custom;
        for (const CustomModel &model : models)
            custom.append(forReaders(model));
        return jsonLine({{u"custom"_s, custom},
                         {u"text_model"_s, text.isEmpty() ? QJsonValue() : QJsonValue(text)},
                         {u"ollama_models"_s, QJsonArray::fromStringList(texts)}});
    }
    QString lines;
    for (const CustomModel &model : models)
        lines += model.id + u"  "_s + model.name + u"  ("_s + model.repo + u")\n"_s;
    lines += u"Text model: "_s + (text.isEmpty() ? u"none"_s : text) + u'\n';
    for (const QString &name : texts)
        lines += u"In Ollama: "_s + name + u'\n';
    return lines.toUtf8();
}

QString modelName(const QString &typed)
{
    const QString name = typed.simplified();
    if (name.isEmpty())
        throw Failure(u"Give the model a name."_s);
    if (name.size() > longestName)
        throw Failure(u"This name is too long. Give one of at most %1 characters."_s.arg(longestName));
    if (std::ranges::any_of(name, [](QChar c) { return c.category() == QChar::Other_Control; }))
        throw Failure(u"This name holds characters that cannot be shown. Give another one."_s);
    return name;
}

void requireWhisper(const QString &kind)
{
    if (kind == u"parakeet")
        throw Failure(
            u"Parakeet models cannot run on this computer. Choose a Whisper model in whisper.cpp's form "
            "(ggml-….bin)."_s);
    if (kind != u"whisper")
        throw Failure(u"“"_s + kind + u"” is not a kind of speech model. Choose whisper."_s);
}

// What downloads that nobody went on with have left, and a file whose record a killed program did not write.
void removeOldParts(const Paths &paths, const std::vector<CustomModel> &models)
{
    const QDateTime limit = QDateTime::currentDateTimeUtc().addDays(-daysToKeepParts);
    QDirIterator files(paths.models, {u"*.part"_s, u"*.etag"_s, u"*.bin"_s}, QDir::Files);
    while (files.hasNext()) {
        const QFileInfo file(files.next());
        if (file.lastModified() > limit || std::ranges::any_of(models, [&](const CustomModel &model) {
                return customModelFile(paths, model) == file.filePath();
            }))
            continue;
        const FileDescriptor lock(
            ::open(QFile::encodeName(file.filePath()).constData(), O_RDONLY | O_CLOEXEC));
        if (::flock(lock.get(), LOCK_EX | LOCK_NB) == 0)
            QFile::remove(file.filePath());
    }
}

QByteArray add(const Arguments &arguments)
{
    const Paths paths = Paths::ofThisUser();
    CustomModel model;
    model.name = modelName(arguments.value(u"--name"));
    model.kind = arguments.value(u"--kind");
    requireWhisper(model.kind);
    const RepositoryName wanted = readRepositoryName(arguments.value(u"--repo"));
    const std::vector<CustomModel> known = customModels(paths);
    requireNewModel(known, model.name);
    makeFolder(paths.models, u"The folder of your speech models could not be made"_s);
    removeOldParts(paths, known);

    Http http;
    const Repository repository = askForRepository(http, wanted.repo);
    const RepositoryFile file = chooseFile(repository, wanted);
    model.repo = wanted.repo;
    model.file = file.path;
    model.sha256 = file.sha256;
    model.size = file.size;
    requireNewModel(known, model.name, model.sha256);
    {
        ProgressLine line;
        Download(http, paths.models,
                 {addressOf(wanted.repo, repository.commit, file.path), file.size, file.sha256, wanted.repo})
            .run([&](qint64 there, qint64 size) { line.show(there, size); });
    }
    return jsonLine(forReaders(addCustomModel(paths, model)));
}

QByteArray remove(const Arguments &arguments)
{
    removeCustomModel(Paths::ofThisUser(), arguments.value(u"--id"));
    return "{}\n";
}

QString textModelName(const QString &typed)
{
    static const QRegularExpression form(u"^[A-Za-z0-9][A-Za-z0-9._:/-]{0,254}$"_s);
    static const QRegularExpression cloud(u"[:-]cloud$"_s);
    const QString name = typed.trimmed();
    if (name.isEmpty())
        throw Failure(u"Give the name of a text model, as in qwen3:8b."_s);
    if (!form.match(name).hasMatch())
        throw Failure(u"“"_s + name.left(100) +
                      u"” is not the name of a text model. One looks like qwen3:8b."_s);
    if (cloud.match(name).hasMatch())
        throw Failure(
            u"“"_s + name +
            u"” runs on Ollama's computers, and what you record must not leave yours. Choose another one."_s);
    return name;
}

QByteArray useTextModel(const Arguments &arguments)
{
    const QString name = textModelName(arguments.value(u"--name"));
    Database database(Paths::ofThisUser());
    Http http;
    Ollama ollama(http);
    const auto look = [&] {
        const Ollama::Models models = ollama.models(useLimitMs);
        if (!models.trouble.isEmpty())
            throw Failure(models.trouble);
        return models.find(name);
    };
    std::optional<Ollama::Model> found = look();
    if (!found) {
        ProgressLine line;
        ollama.pull(name, [&](qint64 there, qint64 size) { line.show(there, size); });
        found = look();
    }
    const Ollama::Model model = found.value_or(Ollama::Model{name, false});
    if (model.remote)
        throw Failure(
            u"“"_s + name +
            u"” runs on Ollama's computers, and what you record must not leave yours. Choose another one."_s);
    setTextModel(database, model.name);
    return jsonLine({{u"text_model"_s, model.name}});
}

struct Action
{
    QString word;
    QByteArray (*run)(const Arguments &arguments);
    QStringList options; // all of them needed
};

} // namespace

QByteArray runModels(const Arguments &arguments)
{
    static const std::array actions = {
        Action{{}, &list, {}}, Action{u"add"_s, &add, {u"--name"_s, u"--kind"_s, u"--repo"_s}},
        Action{u"remove"_s, &remove, {u"--id"_s}}, Action{u"text-model"_s, &useTextModel, {u"--name"_s}}};
    const QString word = arguments.words.value(0);
    const auto action = std::ranges::find(actions, word, &Action::word);
    if (action == actions.end())
        throw usageFailure(u"“"_s + word + u"” is nothing that can be done with models. See: call --help"_s);
    for (const QString &option : action->options) {
        if (!arguments.has(option))
            throw usageFailure(u"“"_s + option + u"” is missing. See: call --help"_s);
    }
    for (auto option = arguments.options.keyBegin(); option != arguments.options.keyEnd(); ++option) {
        if (*option != u"--json" && !action->options.contains(*option))
            throw usageFailure(u"“"_s + *option + u"” is not an option here. See: call --help"_s);
    }
    return action->run(arguments);
}

QByteArray checkOllama()
{
    Http http;
    const Ollama::Models models = Ollama(http).models(checkLimitMs);
    return jsonLine(
        {{u"ollama"_s, models.trouble}, {u"models"_s, QJsonArray::fromStringList(models.names())}});
}

QByteArray askTextModel(const QByteArray &question)
{
    const QJsonObject object = QJsonDocument::fromJson(question).object();
    Http http;
    return Ollama(http)
        .answer({object[u"model"].toString(), object[u"system"].toString(), object[u"text"].toString(), object[u"json"].toBool()})
        .toUtf8();
}

} // namespace engine

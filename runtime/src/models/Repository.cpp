#include "models/Repository.h"

#include "core/Failure.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

constexpr qsizetype mostListed = 6;

QString fileName(const QString &path)
{
    return path.section(u'/', -1);
}

bool isGgml(const RepositoryFile &file)
{
    const QString name = fileName(file.path);
    return name.startsWith(u"ggml-") && name.endsWith(u".bin");
}

// "ggml-small" for ggml-small.bin and for ggml-small-q5_1.bin.
QString modelOf(const RepositoryFile &file)
{
    static const QRegularExpression packing(u"(-q\\d+(_[\\dk][\\w]*)?)?\\.bin$"_s,
                                            QRegularExpression::CaseInsensitiveOption);
    return fileName(file.path).remove(packing);
}

bool isUnpacked(const RepositoryFile &file)
{
    return fileName(file.path) == modelOf(file) + u".bin"_s;
}

bool isMlx(const QJsonObject &object, const QString &repo)
{
    const QJsonArray tags = object[u"tags"].toArray();
    return object[u"library_name"].toString() == u"mlx" || tags.contains(u"mlx"_s) ||
           repo.startsWith(u"mlx-community/");
}

Failure noModel(const Repository &repository, const QString &repo)
{
    if (repository.mlx)
        return Failure(u"“"_s + repo +
                       u"” is in Apple's MLX format, which this computer cannot run. Choose a Whisper model "
                       "in whisper.cpp's form (ggml-….bin)."_s);
    return Failure(u"“"_s + repo +
                   u"” holds no model that this computer can run. Choose a Whisper model in whisper.cpp's "
                   "form (ggml-….bin)."_s);
}

Failure severalModels(const QStringList &models, const QString &repo)
{
    QString list = models.first(std::min(mostListed, models.size())).join(u".bin, "_s) + u".bin"_s;
    if (models.size() > mostListed)
        list += u" …"_s;
    return Failure(u"“"_s + repo + u"” holds several models. Add the name of one, as in “"_s + repo + u':' +
                   models.first() + u".bin”. There are: "_s + list);
}

const RepositoryFile &namedFile(const Repository &repository, const RepositoryName &name)
{
    const auto found = std::ranges::find_if(
        repository.files, [&](const RepositoryFile &file) { return file.path == name.file; });
    if (found == repository.files.end())
        throw Failure(u"“"_s + name.repo + u"” holds no file named “"_s + name.file + u"”."_s);
    if (!found->path.endsWith(u".bin"))
        throw Failure(u"“"_s + name.file + u"” is not a Whisper model in whisper.cpp's form (ggml-….bin)."_s);
    return *found;
}

const RepositoryFile &onlyModel(const Repository &repository, const RepositoryName &name)
{
    QMap<QString, std::vector<const RepositoryFile *>> models;
    for (const RepositoryFile &file : repository.files) {
        if (isGgml(file))
            models[modelOf(file)].push_back(&file);
    }
    if (models.isEmpty())
        throw noModel(repository, name.repo);
    if (models.size() > 1)
        throw severalModels(models.keys(), name.repo);
    return **std::ranges::max_element(models.first(), {}, [](const RepositoryFile *file) {
        return std::pair(isUnpacked(*file), file->size);
    });
}

} // namespace

RepositoryName readRepositoryName(const QString &typed)
{
    static const QRegularExpression form(
        u"^(?:https?://(?:www\\.)?huggingface\\.co/)?"
        "(?<repo>[A-Za-z0-9_][\\w.-]{0,95}/[A-Za-z0-9_][\\w.-]{0,95}?)"
        "(?:/?|/tree/[^/]+/?|(?:/(?:blob|resolve)/[^/]+/|:)(?<file>[^?#]+)(?:\\?[^?]*)?)$"_s);
    const QRegularExpressionMatch match = form.match(typed.trimmed());
    if (!match.hasMatch())
        throw Failure(typed.trimmed().isEmpty()
                          ? u"Give the model's name on Hugging Face, as in owner/model-name."_s
                          : u"“"_s + typed.trimmed().left(100) +
                                u"” is not the name of a model on Hugging Face. One looks like "
                                "owner/model-name."_s);
    return {match.captured(u"repo"), match.captured(u"file")};
}

Repository readRepository(const QByteArray &answer)
{
    static const QRegularExpression checksum(u"^[0-9a-f]{64}$"_s);
    const QJsonObject object = QJsonDocument::fromJson(answer).object();
    if (!object[u"siblings"].isArray())
        throw Failure(u"Hugging Face gave an answer that cannot be understood. Try again later."_s);
    Repository repository;
    repository.commit = object[u"sha"].toString(u"main"_s);
    // false, or how people are let in: "auto" or "manual".
    repository.closed =
        object[u"gated"].isString() || object[u"gated"].toBool() || object[u"private"].toBool();
    repository.mlx = isMlx(object, object[u"id"].toString());
    for (const QJsonValue &item : object[u"siblings"].toArray()) {
        const QJsonObject large = item[u"lfs"].toObject();
        const QString sum = large[u"sha256"].toString();
        const qint64 size = large[u"size"].toInteger(item[u"size"].toInteger());
        repository.files.push_back(
            {item[u"rfilename"].toString(), size, checksum.match(sum).hasMatch() ? sum : QString()});
    }
    return repository;
}

RepositoryFile chooseFile(const Repository &repository, const RepositoryName &name)
{
    if (repository.closed)
        throw Failure(u"The owners of “"_s + name.repo +
                      u"” let only people load it who have signed in. Choose an open model."_s);
    const RepositoryFile &file =
        name.file.isEmpty() ? onlyModel(repository, name) : namedFile(repository, name);
    if (file.sha256.isEmpty() || file.size <= 0)
        throw Failure(u"Hugging Face tells no checksum for “"_s + file.path +
                      u"”, so that it could not be checked. Choose another model."_s);
    return file;
}

} // namespace engine

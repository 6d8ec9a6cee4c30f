#include "models/CustomModels.h"

#include "core/Failure.h"
#include "core/Files.h"
#include "store/Job.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

QString listFile(const Paths &paths)
{
    return paths.models + u"/models.json"_s;
}

Failure damaged(const Paths &paths)
{
    return Failure(u"The list of your speech models is damaged. Move “"_s + listFile(paths) +
                   u"” away to start a new one."_s);
}

QJsonObject toJson(const CustomModel &model)
{
    return {{u"id"_s, model.id},     {u"name"_s, model.name}, {u"kind"_s, model.kind},
            {u"repo"_s, model.repo}, {u"file"_s, model.file}, {u"sha256"_s, model.sha256},
            {u"size"_s, model.size}};
}

CustomModel fromJson(const QJsonObject &object)
{
    return {object[u"id"].toString(),   object[u"name"].toString(), object[u"kind"].toString(),
            object[u"repo"].toString(), object[u"file"].toString(), object[u"sha256"].toString(),
            object[u"size"].toInteger()};
}

void writeList(const Paths &paths, const std::vector<CustomModel> &models)
{
    QJsonArray list;
    for (const CustomModel &model : models)
        list.append(toJson(model));
    writeFile(listFile(paths), QJsonDocument(QJsonObject{{u"models"_s, list}}).toJson());
    syncFolder(paths.models);
}

// Held while the list is read, changed and written; the kernel gives it back.
FileDescriptor lockList(const Paths &paths)
{
    makeFolder(paths.models, u"The folder of your speech models could not be made"_s);
    const QByteArray name = QFile::encodeName(paths.models + u"/lock"_s);
    FileDescriptor lock(::open(name.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
    if (!lock.valid() || ::flock(lock.get(), LOCK_EX) != 0)
        throw systemFailure(u"The list of your speech models could not be changed"_s, errno);
    return lock;
}

auto withId(const std::vector<CustomModel> &models, const QString &id)
{
    const auto found = std::ranges::find(models, id, &CustomModel::id);
    if (found == models.end())
        throw Failure(u"This speech model is not installed any more. Choose another one."_s);
    return found;
}

} // namespace

std::vector<CustomModel> customModels(const Paths &paths)
{
    QFile file(listFile(paths));
    if (!file.exists())
        return {};
    if (!file.open(QIODevice::ReadOnly))
        throw Failure(u"The list of your speech models could not be read: "_s + file.errorString() + u"."_s);
    const QJsonValue list = QJsonDocument::fromJson(file.readAll()).object()[u"models"];
    if (!list.isArray())
        throw damaged(paths);
    std::vector<CustomModel> models;
    for (const QJsonValue &item : list.toArray())
        models.push_back(fromJson(item.toObject()));
    if (std::ranges::any_of(models,
                            [](const CustomModel &m) { return m.id.isEmpty() || m.sha256.isEmpty(); }))
        throw damaged(paths);
    return models;
}

CustomModel customModelById(const Paths &paths, const QString &id)
{
    const std::vector<CustomModel> models = customModels(paths);
    return *withId(models, id);
}

QString customModelFile(const Paths &paths, const CustomModel &model)
{
    return paths.models + u'/' + model.sha256 + u".bin"_s;
}

FileDescriptor openCustomModel(const Paths &paths, const CustomModel &model)
{
    const QByteArray name = QFile::encodeName(customModelFile(paths, model));
    FileDescriptor file(::open(name.constData(), O_RDONLY | O_CLOEXEC));
    struct stat info
    {
    };
    if (!file.valid() || ::fstat(file.get(), &info) != 0 || info.st_size != model.size)
        throw Failure(u"The file of the speech model “"_s + model.name +
                      u"” is missing or damaged. Remove the model and add it again."_s);
    return file;
}

void requireNewModel(const std::vector<CustomModel> &models, const QString &name, const QString &sha256)
{
    for (const CustomModel &model : models) {
        if (model.name.compare(name, Qt::CaseInsensitive) == 0)
            throw Failure(u"There is already a speech model named “"_s + model.name +
                          u"”. Choose another name."_s);
        if (!sha256.isEmpty() && model.sha256 == sha256)
            throw Failure(u"You have this speech model already: “"_s + model.name + u"”."_s);
    }
}

CustomModel addCustomModel(const Paths &paths, CustomModel model)
{
    const FileDescriptor lock = lockList(paths);
    std::vector<CustomModel> models = customModels(paths);
    requireNewModel(models, model.name, model.sha256);
    model.id = newJobId();
    models.push_back(model);
    writeList(paths, models);
    return model;
}

void removeCustomModel(const Paths &paths, const QString &id)
{
    const FileDescriptor lock = lockList(paths);
    std::vector<CustomModel> models = customModels(paths);
    const auto found = withId(models, id);
    const QString file = customModelFile(paths, *found);
    models.erase(found);
    writeList(paths, models);
    QFile::remove(file);
}

} // namespace engine

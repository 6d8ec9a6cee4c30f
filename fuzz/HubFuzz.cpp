#include "Fuzz.h"

#include "core/Failure.h"
#include "core/Files.h"
#include "models/CustomModels.h"
#include "models/Ollama.h"
#include "models/Repository.h"

#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace engine;

namespace {

/// Whether it went well; what ends it otherwise must be a sentence.
bool went(const std::function<void()> &run)
{
    try {
        run();
        return true;
    } catch (const Failure &failure) {
        require(!failure.sentence().isEmpty() && !failure.sentence().contains(u'\n'));
        return false;
    }
}

void readList(const QByteArray &bytes)
{
    const QTemporaryDir home;
    const Paths paths = Paths::under(home.path());
    require(QDir().mkpath(paths.models));
    writeFile(paths.models + u"/models.json"_s, bytes);
    std::vector<CustomModel> models;
    if (!went([&] { models = customModels(paths); }))
        return;
    for (const CustomModel &model : models)
        went([&] { openCustomModel(paths, model); });
    // One more does not harm those that are there.
    CustomModel added;
    if (!went([&] {
            added =
                addCustomModel(paths, {{}, u"Mine"_s, u"whisper"_s, u"a/b"_s, u"ggml.bin"_s, u"sum"_s, 1});
        }))
        return;
    require(customModelById(paths, added.id).name == added.name);
    removeCustomModel(paths, added.id);
    const std::vector<CustomModel> left = customModels(paths);
    require(std::ranges::equal(left, models, {}, &CustomModel::id, &CustomModel::id));
    require(std::ranges::equal(left, models, {}, &CustomModel::sha256, &CustomModel::sha256));
}

} // namespace

/// The first line is what a person typed as a model's name, or as Ollama's address; the rest what a hub tells
/// of a repository, or the list of the models that were added.
void readInput(const QByteArray &bytes)
{
    static const QRegularExpression checksum(u"\\A[0-9a-f]{64}\\z"_s);
    const qsizetype end = bytes.indexOf('\n');
    const QString typed = QString::fromUtf8(bytes.left(end));
    const QByteArray rest = end < 0 ? QByteArray() : bytes.mid(end + 1);
    if (const std::optional<QString> address = ollamaAddress(typed))
        require(address->startsWith(u"http://127.") || address->startsWith(u"http://[::1]:"));
    RepositoryName name;
    went([&] { name = readRepositoryName(typed); });
    require(!name.repo.contains(u"..") || name.repo.count(u'/') == 1);
    Repository repository;
    if (went([&] { repository = readRepository(rest); })) {
        RepositoryFile file;
        if (went([&] { file = chooseFile(repository, name); }))
            require(file.size > 0 && file.path.endsWith(u".bin"_s) && checksum.match(file.sha256).hasMatch());
    }
    readList(rest);
}

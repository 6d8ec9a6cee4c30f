#include "models/Repository.h"

#include "Support.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

Repository holding(const std::vector<std::pair<QString, qint64>> &files)
{
    Repository repository;
    for (const auto &[path, size] : files)
        repository.files.push_back({path, size, QString(64, u'a')});
    return repository;
}

QString chosen(const Repository &repository, const QString &typed = u"o/n"_s)
{
    return chooseFile(repository, readRepositoryName(typed)).path;
}

QString refusal(const Repository &repository, const QString &typed = u"o/n"_s)
{
    return test::sentenceOf([&] { chosen(repository, typed); });
}

} // namespace

TEST(Repository, nameAsPeopleGiveIt)
{
    const std::vector<std::tuple<QString, QString, QString>> cases = {
        {u"owner/model-name"_s, u"owner/model-name"_s, {}},
        {u"  Owner_1/Model.v3-x  "_s, u"Owner_1/Model.v3-x"_s, {}},
        {u"owner/name:ggml-small.bin"_s, u"owner/name"_s, u"ggml-small.bin"_s},
        {u"owner/name:folder/ggml-small.bin"_s, u"owner/name"_s, u"folder/ggml-small.bin"_s},
        {u"https://huggingface.co/owner/name"_s, u"owner/name"_s, {}},
        {u"https://huggingface.co/owner/name/"_s, u"owner/name"_s, {}},
        {u"https://huggingface.co/owner/name/tree/main"_s, u"owner/name"_s, {}},
        {u"https://huggingface.co/owner/name/blob/main/ggml-small.bin"_s, u"owner/name"_s,
         u"ggml-small.bin"_s},
        {u"https://huggingface.co/owner/name/resolve/main/ggml-small.bin?download=true"_s, u"owner/name"_s,
         u"ggml-small.bin"_s},
    };
    for (const auto &[typed, repo, file] : cases) {
        const RepositoryName name = readRepositoryName(typed);
        EXPECT_EQ(name.repo, repo) << typed.toStdString();
        EXPECT_EQ(name.file, file) << typed.toStdString();
    }
}

TEST(Repository, ofSeveralPackingsTheUnpackedOneIsTaken)
{
    EXPECT_EQ(chosen(holding({{u"README.md"_s, 9}, {u"ggml-model.bin"_s, 5}})), u"ggml-model.bin"_s);
    EXPECT_EQ(chosen(holding(
                  {{u"ggml-small-q8_0.bin"_s, 7}, {u"ggml-small.bin"_s, 5}, {u"ggml-small-q5_1.bin"_s, 3}})),
              u"ggml-small.bin"_s);
    EXPECT_EQ(
        chosen(holding(
            {{u"ggml-small-q5_1.bin"_s, 3}, {u"ggml-small-q8_0.bin"_s, 7}, {u"ggml-small-q4_K.bin"_s, 4}})),
        u"ggml-small-q8_0.bin"_s);
    EXPECT_EQ(chosen(holding({{u"whisper/ggml-model.bin"_s, 5}, {u"pytorch_model.bin"_s, 50}})),
              u"whisper/ggml-model.bin"_s);
}

TEST(Repository, betweenSeveralModelsNobodyChoosesUnasked)
{
    const Repository many = holding({{u"ggml-base.bin"_s, 5},
                                     {u"ggml-base.en.bin"_s, 5},
                                     {u"ggml-base-q5_1.bin"_s, 3},
                                     {u"ggml-large-v3-turbo.bin"_s, 50}});
    EXPECT_EQ(refusal(many), u"“o/n” holds several models. Add the name of one, as in “o/n:ggml-base.bin”. "
                             "There are: ggml-base.bin, ggml-base.en.bin, ggml-large-v3-turbo.bin"_s);
    EXPECT_EQ(chosen(many, u"o/n:ggml-base-q5_1.bin"_s), u"ggml-base-q5_1.bin"_s);
    EXPECT_EQ(refusal(many, u"o/n:ggml-tiny.bin"_s), u"“o/n” holds no file named “ggml-tiny.bin”."_s);
    EXPECT_TRUE(
        refusal(holding({{u"model.gguf"_s, 5}}), u"o/n:model.gguf"_s).contains(u"is not a Whisper model"));
}

TEST(Repository, whatItIsToldByTheHub)
{
    const QJsonObject large{
        {u"sha256"_s, QString(64, u'b')}, {u"size"_s, qint64(123456789012)}, {u"pointerSize"_s, 134}};
    const QJsonArray files{QJsonObject{{u"rfilename"_s, u".gitattributes"_s}, {u"size"_s, 9}},
                           QJsonObject{{u"rfilename"_s, u"ggml-a.bin"_s}, {u"size"_s, 1}, {u"lfs"_s, large}},
                           QJsonObject{{u"rfilename"_s, u"ggml-b.bin"_s}, {u"lfs"_s, QJsonValue()}}};
    QJsonObject answer{{u"sha"_s, u"abc"_s}, {u"gated"_s, false}, {u"siblings"_s, files}};
    const Repository open = readRepository(QJsonDocument(answer).toJson());
    EXPECT_EQ(open.commit, u"abc"_s);
    EXPECT_FALSE(open.closed);
    EXPECT_FALSE(open.mlx);
    ASSERT_EQ(open.files.size(), 3U);
    EXPECT_EQ(open.files[1].size, 123456789012);
    EXPECT_EQ(open.files[1].sha256, QString(64, u'b'));
    EXPECT_EQ(open.files[2].sha256, QString());
    for (const QJsonValue &gated : {QJsonValue(u"auto"_s), QJsonValue(u"manual"_s), QJsonValue(true)}) {
        answer[u"gated"] = gated;
        EXPECT_TRUE(readRepository(QJsonDocument(answer).toJson()).closed);
    }
    answer[u"tags"] = QJsonArray{u"mlx"_s};
    EXPECT_TRUE(readRepository(QJsonDocument(answer).toJson()).mlx);
}

} // namespace engine

#include "models/CustomModels.h"

#include "core/Files.h"

#include "Support.h"

#include <QFileInfo>

#include <thread>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

const QByteArray content = "lmgg and what follows";

CustomModel added(const Paths &paths, const QString &name, QChar sum)
{
    CustomModel model{
        {}, name, u"whisper"_s, u"owner/name"_s, u"ggml-a.bin"_s, QString(64, sum), content.size()};
    makeFolder(paths.models, u"No folder"_s);
    writeFile(customModelFile(paths, model), content);
    return addCustomModel(paths, model);
}

} // namespace

TEST(CustomModels, areKeptInOrder)
{
    const test::Home home;
    EXPECT_TRUE(customModels(home.paths()).empty());
    const CustomModel first = added(home.paths(), u"First"_s, u'a');
    const CustomModel second = added(home.paths(), u"Second"_s, u'b');
    EXPECT_NE(first.id, second.id);
    const std::vector<CustomModel> models = customModels(home.paths());
    ASSERT_EQ(models.size(), 2U);
    EXPECT_EQ(models[0].name, u"First"_s);
    EXPECT_EQ(models[1].id, second.id);
    EXPECT_EQ(models[1].size, content.size());
    EXPECT_EQ(customModelById(home.paths(), first.id).sha256, first.sha256);
}

// A job that uses the model keeps it open.
TEST(CustomModels, staysReadableForWhoHasItOpenWhenItIsRemoved)
{
    const test::Home home;
    const CustomModel model = added(home.paths(), u"Mine"_s, u'a');
    const FileDescriptor open = openCustomModel(home.paths(), model);
    removeCustomModel(home.paths(), model.id);
    EXPECT_FALSE(QFileInfo::exists(customModelFile(home.paths(), model)));
    EXPECT_TRUE(customModels(home.paths()).empty());
    EXPECT_EQ(test::contentOf(u"/proc/self/fd/%1"_s.arg(open.get())), content);
    EXPECT_EQ(
        test::sentenceOf([&] { openCustomModel(home.paths(), model); }),
        u"The file of the speech model “Mine” is missing or damaged. Remove the model and add it again."_s);
}

TEST(CustomModels, nothingIsLostWhenManyAreAddedAtOnce)
{
    const test::Home home;
    std::vector<std::thread> adding;
    for (const QChar sum : QStringView(u"0123456789abcdef"))
        adding.emplace_back([&home, sum] { added(home.paths(), sum, sum); });
    for (std::thread &one : adding)
        one.join();
    EXPECT_EQ(customModels(home.paths()).size(), 16U);
}

} // namespace engine

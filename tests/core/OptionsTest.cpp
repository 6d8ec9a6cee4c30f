#include "terminal/Options.h"

#include "support/Support.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

class OptionsTest : public testing::Test
{
protected:
    QString file(const QString &name)
    {
        const QString path = m_folder.filePath(name);
        test::writeFile(path, {});
        return path;
    }

    QTemporaryDir m_folder;
};

TEST_F(OptionsTest, NothingGivenIsTheWindow)
{
    const Options options = ParseOptions({});
    EXPECT_EQ(options.mode, Options::Mode::Window);
    EXPECT_TRUE(options.files.isEmpty());
    EXPECT_FALSE(options.model);
    EXPECT_FALSE(options.language);
    EXPECT_TRUE(options.speakers);
    EXPECT_FALSE(options.textOnly);
}

TEST_F(OptionsTest, TranscribeWithEveryOption)
{
    const QString a = file(u"a.m4a"_s), b = file(u"b.WAV"_s);
    const Options options = ParseOptions({u"--transcribe"_s, b, u"--model"_s, u"custom:m1"_s, u"--language=uk"_s,
                                          u"--no-speakers"_s, u"--text-only"_s, a});
    EXPECT_EQ(options.mode, Options::Mode::Transcribe);
    EXPECT_EQ(options.files, (QStringList{b, a}));
    EXPECT_EQ(options.model, u"custom:m1"_s);
    EXPECT_EQ(options.language, u"uk"_s);
    EXPECT_FALSE(options.speakers);
    EXPECT_TRUE(options.textOnly);
}

TEST_F(OptionsTest, TranscribeWithoutFilesGoesOnWithWhatWaits)
{
    const Options options = ParseOptions({u"--transcribe"_s});
    EXPECT_EQ(options.mode, Options::Mode::Transcribe);
    EXPECT_TRUE(options.files.isEmpty());
}

TEST_F(OptionsTest, RelativeNamesBecomeFullPaths)
{
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(m_folder.path()));
    file(u"a.m4a"_s);
    const Options options = ParseOptions({u"--transcribe"_s, u"a.m4a"_s});
    QDir::setCurrent(before);
    EXPECT_EQ(options.files, QStringList{QFileInfo(m_folder.filePath(u"a.m4a"_s)).absoluteFilePath()});
}

TEST_F(OptionsTest, NamesAfterTwoDashesAreFiles)
{
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(m_folder.path()));
    file(u"--help.m4a"_s);
    const Options options = ParseOptions({u"--transcribe"_s, u"--"_s, u"--help.m4a"_s});
    QDir::setCurrent(before);
    EXPECT_EQ(options.mode, Options::Mode::Transcribe);
    EXPECT_EQ(options.files.size(), 1);
}

TEST_F(OptionsTest, MissingFileIsAUsageError)
{
    const QString gone = m_folder.filePath(u"gone.m4a"_s);
    const Options options = ParseOptions({u"--transcribe"_s, file(u"a.m4a"_s), gone});
    EXPECT_EQ(options.mode, Options::Mode::UsageError);
    EXPECT_EQ(options.message, u"There is no file “%1”."_s.arg(gone));
}

TEST_F(OptionsTest, FolderIsAUsageError)
{
    const QString folder = m_folder.filePath(u"folder.m4a"_s);
    ASSERT_TRUE(QDir().mkpath(folder));
    const Options options = ParseOptions({u"--transcribe"_s, folder});
    EXPECT_EQ(options.mode, Options::Mode::UsageError);
    EXPECT_EQ(options.message, u"“%1” is not a file."_s.arg(folder));
}

TEST_F(OptionsTest, FileOfAnotherKindIsAUsageErrorThatListsTheKinds)
{
    const QString notes = file(u"notes.txt"_s);
    const Options options = ParseOptions({u"--transcribe"_s, notes});
    EXPECT_EQ(options.mode, Options::Mode::UsageError);
    EXPECT_TRUE(options.message.startsWith(u"“%1” is not a recording of a kind that Tuppi knows (m4a, mp3, "_s.arg(notes)))
        << options.message.toStdString();
}

TEST_F(OptionsTest, ForTheWindowUnusableFilesAreLeftOut)
{
    const QString a = file(u"a.m4a"_s);
    const Options options = ParseOptions({m_folder.filePath(u"gone.m4a"_s), file(u"notes.txt"_s), a, m_folder.path()});
    EXPECT_EQ(options.mode, Options::Mode::Window);
    EXPECT_EQ(options.files, QStringList{a});
}

TEST_F(OptionsTest, UnknownOptionAndMissingValueAreUsageErrors)
{
    for (const QStringList &arguments : {QStringList{u"--nonsense"_s}, QStringList{u"--transcribe"_s, u"-x"_s},
                                         QStringList{u"--transcribe"_s, u"--model"_s}, QStringList{u"--language"_s},
                                         QStringList{u"--transcribe=yes"_s}}) {
        const Options options = ParseOptions(arguments);
        EXPECT_EQ(options.mode, Options::Mode::UsageError) << arguments.join(u' ').toStdString();
        EXPECT_FALSE(options.message.isEmpty());
    }
}

TEST_F(OptionsTest, ChoicesForTheWindowAreUsageErrors)
{
    const QString a = file(u"a.m4a"_s);
    for (const QStringList &choice : {QStringList{u"--model"_s, u"whisper"_s}, QStringList{u"--language"_s, u"uk"_s},
                                      QStringList{u"--no-speakers"_s}, QStringList{u"--text-only"_s}}) {
        const Options options = ParseOptions(choice + QStringList{a});
        EXPECT_EQ(options.mode, Options::Mode::UsageError);
        EXPECT_EQ(options.message, u"The option “%1” goes with --transcribe."_s.arg(choice.first()));
    }
}

TEST_F(OptionsTest, HelpNamesEveryOption)
{
    for (const QString &option : {u"--help"_s, u"-h"_s}) {
        const Options options = ParseOptions({option});
        EXPECT_EQ(options.mode, Options::Mode::Help);
        for (const QString &word : {u"--transcribe"_s, u"--model"_s, u"--language"_s, u"--no-speakers"_s, u"--text-only"_s,
                                    u"--version"_s, u"FILE"_s})
            EXPECT_TRUE(options.message.contains(word)) << word.toStdString();
    }
}

TEST_F(OptionsTest, VersionAndHelpWinOverFiles)
{
    const QString gone = m_folder.filePath(u"gone.m4a"_s);
    EXPECT_EQ(ParseOptions({u"--version"_s, u"--transcribe"_s, gone}).mode, Options::Mode::Version);
    EXPECT_EQ(ParseOptions({u"--transcribe"_s, gone, u"--help"_s}).mode, Options::Mode::Help);
}

} // namespace

// Where and how a transcript's text becomes a file.

#include "export/ShareChoices.h"
#include "export/TextFile.h"
#include "export/TranscriptText.h"

#include "support/Support.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

TEST(WithTextSuffix, EveryNameEndsInTxt)
{
    EXPECT_EQ(WithTextSuffix(u"/a/b.txt"_s), u"/a/b.txt"_s);
    EXPECT_EQ(WithTextSuffix(u"/a/b.TXT"_s), u"/a/b.TXT"_s);
    EXPECT_EQ(WithTextSuffix(u"/a/b"_s), u"/a/b.txt"_s);
    EXPECT_EQ(WithTextSuffix(u"/a/Meeting 12.5"_s), u"/a/Meeting 12.5.txt"_s);
    EXPECT_EQ(WithTextSuffix(u"/a/b.md"_s), u"/a/b.md.txt"_s);
    EXPECT_EQ(WithTextSuffix(u"/a.txt/b"_s), u"/a.txt/b.txt"_s);
}

TEST(FileNameThatFits, CutsWholeCharactersOffALongName)
{
    EXPECT_EQ(FileNameThatFits(u"Q3- plan-budget-.txt"_s), u"Q3- plan-budget-.txt"_s);
    EXPECT_EQ(FileNameThatFits(QString(236, u'a') + u".txt"_s), QString(QString(236, u'a') + u".txt"_s));
    EXPECT_EQ(FileNameThatFits(QString(237, u'a') + u".txt"_s), QString(QString(236, u'a') + u".txt"_s));
    EXPECT_EQ(FileNameThatFits(QString(300, u'ї') + u".txt"_s), QString(QString(118, u'ї') + u".txt"_s));
    const QString cats = FileNameThatFits(u"a"_s + u"🐈"_s.repeated(100) + u".txt"_s);
    EXPECT_EQ(cats, QString(u"a"_s + u"🐈"_s.repeated(58) + u".txt"_s));
}

class TextFile : public testing::Test
{
protected:
    QString path(const QString &name) const { return m_dir.filePath(name); }
    QStringList files() const { return QDir(m_dir.path()).entryList(QDir::Files | QDir::Hidden); }

    QTemporaryDir m_dir;
};

TEST_F(TextFile, IsWrittenAsItStandsInUtf8)
{
    EXPECT_EQ(WriteTextFile(path(u"a.txt"_s), u"Привіт 🐈\r\n\n"_s), std::nullopt);
    EXPECT_EQ(test::readFile(path(u"a.txt"_s)), QByteArray("Привіт 🐈\r\n\n"));
}

TEST_F(TextFile, ReplacesAnEarlierOneWhole)
{
    test::writeFile(path(u"a.txt"_s), QByteArray(10'000, 'x'));
    EXPECT_EQ(WriteTextFile(path(u"a.txt"_s), u"short"_s), std::nullopt);
    EXPECT_EQ(test::readFile(path(u"a.txt"_s)), "short");
    EXPECT_EQ(files(), QStringList{u"a.txt"_s});
}

TEST_F(TextFile, ALongNameThatFitsCanBeWritten)
{
    const QString name = FileNameThatFits(SafeFileName(QString(1000, u'ї')));
    EXPECT_EQ(WriteTextFile(path(name), u"text"_s), std::nullopt);
    EXPECT_EQ(files(), QStringList{name});
}

TEST_F(TextFile, SaysWhatIsWrongWithThePlace)
{
    QDir(m_dir.path()).mkdir(u"folder.txt"_s);
    for (const QString &place : {path(u"gone/a.txt"_s), path(u"folder.txt"_s), path(QString(400, u'x') + u".txt"_s)}) {
        const std::optional<QString> error = WriteTextFile(place, u"text"_s);
        ASSERT_TRUE(error) << qPrintable(place);
        EXPECT_FALSE(error->isEmpty());
    }
    EXPECT_EQ(files(), QStringList());
}

/// Files of this process end at so many bytes, as they do on a full disk.
class FileLimit
{
public:
    explicit FileLimit(rlim_t bytes)
    {
        m_signal = std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_signal);
    }
    Q_DISABLE_COPY(FileLimit)

private:
    rlimit m_before{};
    void (*m_signal)(int) = SIG_DFL;
};

TEST_F(TextFile, TheEarlierOneStaysWhereTheDiskIsFull)
{
    for (const int size : {4097, 20'000, 1'000'000}) {
        test::writeFile(path(u"a.txt"_s), "earlier");
        std::optional<QString> error;
        {
            const FileLimit limit(4096);
            error = WriteTextFile(path(u"a.txt"_s), QString(size, u'x'));
        }
        ASSERT_TRUE(error) << size;
        EXPECT_FALSE(error->isEmpty());
        EXPECT_EQ(test::readFile(path(u"a.txt"_s)), "earlier");
        EXPECT_EQ(files(), QStringList{u"a.txt"_s});
    }
}

mode_t modeOf(const QString &path)
{
    struct stat found{};
    EXPECT_EQ(::lstat(QFile::encodeName(path).constData(), &found), 0);
    return found.st_mode & 07777;
}

class PrivateFolderTest : public TextFile
{
protected:
    QString make() const { return PrivateFolder(m_dir.path(), u"Tuppi"_s); }
};

TEST_F(PrivateFolderTest, IsMadeForItsOwnerAlone)
{
    EXPECT_EQ(make(), path(u"Tuppi"_s));
    EXPECT_EQ(modeOf(path(u"Tuppi"_s)), 0700U);
    test::writeFile(path(u"Tuppi/a"_s), "kept");
    EXPECT_EQ(make(), path(u"Tuppi"_s));
    EXPECT_EQ(test::readFile(path(u"Tuppi/a"_s)), "kept");
}

TEST_F(PrivateFolderTest, AnOpenOneOfOursIsClosed)
{
    QDir(m_dir.path()).mkdir(u"Tuppi"_s);
    ::chmod(QFile::encodeName(path(u"Tuppi"_s)).constData(), 0777);
    EXPECT_EQ(make(), path(u"Tuppi"_s));
    EXPECT_EQ(modeOf(path(u"Tuppi"_s)), 0700U);
}

TEST_F(PrivateFolderTest, ALinkAndAFileArePassedOver)
{
    QDir(m_dir.path()).mkdir(u"trap"_s);
    ::chmod(QFile::encodeName(path(u"trap"_s)).constData(), 0755);
    QFile::link(path(u"trap"_s), path(u"Tuppi"_s));
    EXPECT_EQ(make(), path(u"Tuppi 2"_s));
    EXPECT_EQ(modeOf(path(u"trap"_s)), 0755U);
    QDir(m_dir.path()).rmdir(u"Tuppi 2"_s);
    test::writeFile(path(u"Tuppi 2"_s), {});
    EXPECT_EQ(make(), path(u"Tuppi 3"_s));
}

TEST_F(PrivateFolderTest, SomebodyElsesIsPassedOver)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can make a folder that is somebody else's";
    constexpr uid_t nobody = 65534;
    QDir(m_dir.path()).mkdir(u"Tuppi"_s);
    ASSERT_EQ(::chown(QFile::encodeName(path(u"Tuppi"_s)).constData(), nobody, nobody), 0);
    EXPECT_EQ(make(), path(u"Tuppi 2"_s));
}

TEST_F(PrivateFolderTest, ThereIsNoneWhereNothingCanBeMade)
{
    EXPECT_EQ(PrivateFolder(path(u"gone"_s), u"Tuppi"_s), QString());
    EXPECT_EQ(PrivateFolder({}, u"Tuppi"_s), QString());
}

TEST(ShareChoices, OnlyWhatTheDesktopCanDo)
{
    using enum ShareChoice;
    EXPECT_EQ(ShareChoices({}), (QList{CopyFile, Reveal}));
    EXPECT_EQ(ShareChoices({.email = true}), (QList{Email, CopyFile, Reveal}));
    EXPECT_EQ(ShareChoices({.openers = true}), (QList{Open, CopyFile, Reveal}));
    EXPECT_EQ(ShareChoices({.email = true, .chooser = true, .openers = true}),
              (QList{Email, OpenWith, CopyFile, Reveal}));
}

TEST(ShareChoices, EachHasItsTitle)
{
    using enum ShareChoice;
    QStringList titles;
    for (const ShareChoice choice : {Email, OpenWith, Open, CopyFile, Reveal})
        titles.append(ShareTitle(choice));
    EXPECT_EQ(titles, (QStringList{u"Send by Email…"_s, u"Open With…"_s, u"Open"_s, u"Copy File"_s,
                                   u"Show in Finder"_s}));
}

} // namespace

#include "export/CallFile.h"
#include "export/TranscriptText.h"

#include "support/Support.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

class CallDirTest : public testing::Test
{
protected:
    QString dir() const { return m_dir.path(); }
    void put(const QString &name, const QByteArray &bytes)
    {
        ASSERT_TRUE(QDir().mkpath(QFileInfo(dir() + u'/' + name).path()));
        QFile file(dir() + u'/' + name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }

private:
    QTemporaryDir m_dir;
};

TEST_F(CallDirTest, FlatFilesStandInTheCallDir)
{
    EXPECT_EQ(CallFile(dir(), u"call.md"_s), dir() + u"/call.md"_s);
    EXPECT_EQ(CallFile(dir(), u"viewer.html"_s), dir() + u"/viewer.html"_s);
}

TEST_F(CallDirTest, TechnicalFilesHideAllButTwo)
{
    ASSERT_TRUE(QDir(dir()).mkdir(u"Technical files"_s));
    EXPECT_EQ(CallFile(dir(), u"call.md"_s), dir() + u"/Summary.md"_s);
    EXPECT_EQ(CallFile(dir(), u"transcript.raw.txt"_s), dir() + u"/Transcript.txt"_s);
    EXPECT_EQ(CallFile(dir(), u"transcript.txt"_s), dir() + u"/Technical files/transcript.txt"_s);
    EXPECT_EQ(CallFile(dir(), u"viewer.html"_s), dir() + u"/Technical files/viewer.html"_s);
}

TEST_F(CallDirTest, APlainFileOfThatNameIsNoLayout)
{
    put(u"Technical files"_s, "a note");
    EXPECT_EQ(CallFile(dir(), u"call.md"_s), dir() + u"/call.md"_s);
    EXPECT_EQ(CallFile(dir(), u"viewer.html"_s), dir() + u"/viewer.html"_s);
}

TEST_F(CallDirTest, AMissingFormGivesTheNextBest)
{
    EXPECT_EQ(TextForDir(dir(), u"summary"_s), std::nullopt);
    put(u"transcript.txt"_s, "clean");
    for (const QString &format : {u"summary"_s, u"plain"_s, u"timestamps"_s, u"other"_s})
        EXPECT_EQ(TextForDir(dir(), format), u"clean"_s) << qPrintable(format);
    put(u"transcript.raw.txt"_s, "timed");
    EXPECT_EQ(TextForDir(dir(), u"summary"_s), u"clean"_s);
    EXPECT_EQ(TextForDir(dir(), u"other"_s), u"timed"_s);
    put(u"call.md"_s, "summary");
    EXPECT_EQ(TextForDir(dir(), u"summary"_s), u"summary"_s);
    EXPECT_EQ(TextForDir(dir(), u"plain"_s), u"clean"_s);
}

TEST_F(CallDirTest, EmptyAndUndecodableFilesCountAsMissing)
{
    put(u"transcript.txt"_s, "clean");
    put(u"transcript.raw.txt"_s, "");
    EXPECT_EQ(TextForDir(dir(), u"timestamps"_s), u"clean"_s);
    put(u"transcript.raw.txt"_s, "\xff\xfe broken");
    EXPECT_EQ(TextForDir(dir(), u"timestamps"_s), u"clean"_s);
}

TEST_F(CallDirTest, OnlyASummaryLosesItsFrontMatter)
{
    put(u"transcript.txt"_s, "---\na: b\n---\nclean");
    put(u"call.md"_s, "---\ntitle: a\n---\n\n# Summary\n");
    EXPECT_EQ(TextForDir(dir(), u"summary"_s), u"\n# Summary\n"_s);
    EXPECT_EQ(TextForDir(dir(), u"plain"_s), u"---\na: b\n---\nclean"_s);
}

TEST_F(CallDirTest, ASummaryThatIsNothingButFrontMatterIsAText)
{
    put(u"transcript.txt"_s, "clean");
    put(u"call.md"_s, "---\ntitle: a\n---\n");
    EXPECT_EQ(TextForDir(dir(), u"summary"_s), QString());
}

TEST(FrontMatter, EndsAtItsClosingLine)
{
    EXPECT_EQ(WithoutFrontMatter(u"---\nno end"_s), u"---\nno end"_s);
    EXPECT_EQ(WithoutFrontMatter(u"--- \na\n---\nb"_s), u"--- \na\n---\nb"_s);
    EXPECT_EQ(WithoutFrontMatter(u"---\n---\nb"_s), u"---\n---\nb"_s);
    EXPECT_EQ(WithoutFrontMatter(u"---\n\n---\nb\n---\nc"_s), u"b\n---\nc"_s);
    EXPECT_EQ(WithoutFrontMatter(QString()), QString());
}

TEST(TitleOfCallDir, ComesFromTheFirstEntryElseFromTheFolder)
{
    const QList<QJsonObject> history{
        test::object(R"({"id":"a","call_dir":null,"title":"none"})"),
        test::object(R"({"id":"b","call_dir":"/x/one","title":"First"})"),
        test::object(R"({"id":"c","call_dir":"/x/one","title":"Second"})"),
        test::object(R"({"id":"d","call_dir":"/x/two","title":null})"),
    };
    EXPECT_EQ(TitleForDir(history, u"/x/one"_s), u"First"_s);
    EXPECT_EQ(TitleForDir(history, u"/x/two"_s), std::nullopt);
    EXPECT_EQ(TitleForDir(history, u"/x/three"_s), u"three"_s);
}

TEST(FileNameOfTitle, HasADashForEachUnsafeCharacter)
{
    EXPECT_EQ(SafeFileName(u"Q3: plan/budget?"_s), u"Q3- plan-budget-.txt"_s);
    EXPECT_EQ(SafeFileName(uR"(/:\?*"<>|)"_s), u"---------.txt"_s);
    EXPECT_EQ(SafeFileName(QString()), u"Transcript.txt"_s);
    EXPECT_EQ(SafeFileName(u"Інтерв’ю"_s), u"Інтерв’ю.txt"_s);
}

} // namespace

#include "engine/DebugLog.h"

#include "support/Support.h"

#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

class DebugLogTest : public testing::Test
{
protected:
    QStringList lines() const { return QString::fromUtf8(test::readFile(DebugLogPath())).split(u'\n'); }

    QTemporaryDir m_folder;
    const test::HomeFolder m_home{m_folder.filePath(u"home"_s)};
};

TEST_F(DebugLogTest, OnAFreshSystemTheFirstLineMakesTheFile)
{
    EXPECT_EQ(DebugLogPath(), m_folder.filePath(u"home/Library/Logs/TuppiTranscriber.log"_s));
    DebugLog(u"sound status %@: %@ -> %@"_s, {u"j1"_s, u"cleaning"_s, u"ready"_s});
    ASSERT_EQ(lines().size(), 2);
    static const QRegularExpression shape(
        uR"(^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d \+0000 sound status j1: cleaning -> ready$)"_s);
    EXPECT_TRUE(shape.match(lines().first()).hasMatch()) << lines().first().toStdString();
    EXPECT_EQ(lines().last(), u""_s);
}

TEST_F(DebugLogTest, LaterCallsAppend)
{
    DebugLog(u"first"_s);
    DebugLog(u"second: %lu"_s, {2});
    ASSERT_EQ(lines().size(), 3);
    EXPECT_TRUE(lines().at(0).endsWith(u"+0000 first"_s));
    EXPECT_TRUE(lines().at(1).endsWith(u"+0000 second: 2"_s));
}

TEST_F(DebugLogTest, SeveralMessagesAreALineEach)
{
    DebugLogLines({u"first"_s, u"100%@"_s});
    DebugLogLines({});
    ASSERT_EQ(lines().size(), 3);
    EXPECT_TRUE(lines().at(0).endsWith(u"+0000 first"_s));
    EXPECT_TRUE(lines().at(1).endsWith(u"+0000 100%@"_s));
}

TEST_F(DebugLogTest, LinesOfSeveralThreadsStayWhole)
{
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([number] {
            for (int line = 0; line < 50; ++line)
                DebugLog(u"%@"_s, {QString(200, QChar(u'a' + number))});
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    static const QRegularExpression shape(uR"(^\S+ \S+ \+0000 (a{200}|b{200}|c{200}|d{200})$)"_s);
    EXPECT_EQ(lines().filter(shape).size(), 200);
    EXPECT_EQ(lines().size(), 201);
}

TEST_F(DebugLogTest, ArgumentsAreNotFilledAgain)
{
    DebugLog(u"%@"_s, {u"100%@ %lu"_s});
    EXPECT_TRUE(lines().first().endsWith(u"+0000 100%@ %lu"_s)) << lines().first().toStdString();
}

TEST_F(DebugLogTest, FileThatCannotBeWrittenIsNoFailure)
{
    test::writeFile(m_folder.filePath(u"home/Library"_s), "a file where the folder should be");
    DebugLog(u"lost"_s);
    EXPECT_EQ(test::readFile(m_folder.filePath(u"home/Library"_s)), "a file where the folder should be");
}

} // namespace

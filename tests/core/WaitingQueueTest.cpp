#include "app/WaitingQueue.h"

#include "support/Support.h"

#include <QJsonDocument>
#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

const StartChoices choices{u"whisper"_s, u"uk"_s, false, true};

class WaitingQueueTest : public testing::Test
{
protected:
    QString file(const QString &name)
    {
        const QString path = m_folder.filePath(name);
        test::writeFile(path, {});
        return path;
    }
    static QStringList paths(const WaitingQueue &queue)
    {
        QStringList paths;
        for (const WaitingEntry &entry : queue)
            paths.append(WaitingPath(entry));
        return paths;
    }
    static QVariantMap stored(const QString &path, const QVariantMap &more = {})
    {
        QVariantMap map{{u"path"_s, path}};
        map.insert(more);
        return map;
    }

    QTemporaryDir m_folder;
};

TEST_F(WaitingQueueTest, FilesOfOneStartGetTheSameChoices)
{
    WaitingQueue queue;
    AddWaiting(queue, {u"/a.m4a"_s, u"/b.m4a"_s}, choices);
    ASSERT_EQ(queue.size(), 2);
    for (const WaitingEntry &entry : queue) {
        EXPECT_EQ(entry.value(u"engine"_s), QVariant(u"whisper"_s));
        EXPECT_EQ(entry.value(u"language"_s), QVariant(u"uk"_s));
        EXPECT_EQ(entry.value(u"speakers"_s), QVariant(false));
        EXPECT_EQ(entry.value(u"quick"_s), QVariant(true));
    }
    EXPECT_EQ(queue.first().value(u"url"_s), QVariant(QUrl::fromLocalFile(u"/a.m4a"_s)));
    EXPECT_EQ(paths(queue), (QStringList{u"/a.m4a"_s, u"/b.m4a"_s}));
}

TEST_F(WaitingQueueTest, FileAlreadyWaitingIsNotQueuedAgain)
{
    WaitingQueue queue;
    AddWaiting(queue, {u"/a.m4a"_s}, choices);
    AddWaiting(queue, {u"/b.m4a"_s, u"/a.m4a"_s, u"/b.m4a"_s}, {u"auto"_s, u"en"_s, true, false});
    EXPECT_EQ(paths(queue), (QStringList{u"/a.m4a"_s, u"/b.m4a"_s}));
    EXPECT_EQ(queue.first().value(u"engine"_s), QVariant(u"whisper"_s));
}

TEST_F(WaitingQueueTest, PathsAreComparedExactly)
{
    WaitingQueue queue;
    AddWaiting(queue, {u"/a.m4a"_s, u"/A.m4a"_s, u"/a.M4A"_s}, choices);
    EXPECT_EQ(queue.size(), 3);
}

TEST_F(WaitingQueueTest, PathsWithMeaningInUrlsAreKept)
{
    WaitingQueue queue;
    const QString path = u"/x/100% #1?; «я»\n.m4a"_s;
    AddWaiting(queue, {path}, choices);
    EXPECT_EQ(paths(queue), QStringList{path});
    EXPECT_EQ(StoredEntry(queue.first()).value(u"path"_s), QVariant(path));
    EXPECT_EQ(WaitingPath(EntryFromStored(StoredEntry(queue.first()))), path);
}

TEST_F(WaitingQueueTest, RemovingAPathThatStandsTwiceRemovesBoth)
{
    WaitingQueue queue;
    AddWaiting(queue, {u"/a.m4a"_s, u"/b.m4a"_s}, choices);
    queue.append(queue.first());
    ASSERT_EQ(queue.size(), 3);
    RemoveWaitingPath(queue, u"/a.m4a"_s);
    EXPECT_EQ(paths(queue), QStringList{u"/b.m4a"_s});
}

TEST_F(WaitingQueueTest, StoredFormHoldsExactlyTheFiveKeys)
{
    WaitingQueue queue;
    AddWaiting(queue, {u"/a.m4a"_s}, choices);
    EXPECT_EQ(StoredEntry(queue.first()), (QVariantMap{{u"path"_s, u"/a.m4a"_s},
                                                       {u"engine"_s, u"whisper"_s},
                                                       {u"language"_s, u"uk"_s},
                                                       {u"speakers"_s, false},
                                                       {u"quick"_s, true}}));
}

TEST_F(WaitingQueueTest, AbsentValuesAreStoredAsTheirDefaults)
{
    const WaitingEntry bare{{u"url"_s, QUrl::fromLocalFile(u"/a.m4a"_s)}};
    EXPECT_EQ(StoredEntry(bare), (QVariantMap{{u"path"_s, u"/a.m4a"_s},
                                              {u"engine"_s, u"auto"_s},
                                              {u"language"_s, u"auto"_s},
                                              {u"speakers"_s, true},
                                              {u"quick"_s, false}}));
}

TEST_F(WaitingQueueTest, EntryStoredWithoutSpeakersAndQuickComesBackWithSpeakersOnAndQuickOff)
{
    const WaitingQueue queue = RestoredQueue(QVariantList{stored(file(u"a.m4a"_s))});
    ASSERT_EQ(queue.size(), 1);
    EXPECT_EQ(queue.first().value(u"speakers"_s), QVariant(true));
    EXPECT_EQ(queue.first().value(u"quick"_s), QVariant(false));
    EXPECT_EQ(queue.first().value(u"engine"_s), QVariant(u"auto"_s));
    EXPECT_EQ(queue.first().value(u"language"_s), QVariant(u"auto"_s));
}

TEST_F(WaitingQueueTest, StoredNullReadsAsAbsent)
{
    const QVariant null = QVariant::fromValue(nullptr);
    const WaitingQueue queue = RestoredQueue(
        QVariantList{stored(file(u"a.m4a"_s), {{u"speakers"_s, null}, {u"quick"_s, null}, {u"engine"_s, null}})});
    ASSERT_EQ(queue.size(), 1);
    EXPECT_EQ(queue.first().value(u"speakers"_s), QVariant(true));
    EXPECT_EQ(queue.first().value(u"quick"_s), QVariant(false));
    EXPECT_EQ(queue.first().value(u"engine"_s), QVariant(u"auto"_s));
}

TEST_F(WaitingQueueTest, StoredNoIsNotAbsent)
{
    const WaitingQueue queue = RestoredQueue(QVariantList{stored(file(u"a.m4a"_s), {{u"speakers"_s, false}})});
    ASSERT_EQ(queue.size(), 1);
    EXPECT_EQ(queue.first().value(u"speakers"_s), QVariant(false));
}

TEST_F(WaitingQueueTest, RestoredQueueHasTheSameOrderWithoutTheFilesThatAreGone)
{
    const QString a = file(u"a.m4a"_s), b = file(u"b.m4a"_s);
    const WaitingQueue queue =
        RestoredQueue(QVariantList{stored(b), stored(m_folder.filePath(u"gone.m4a"_s)), stored(a)});
    EXPECT_EQ(paths(queue), (QStringList{b, a}));
}

TEST_F(WaitingQueueTest, MalformedElementsAreSkipped)
{
    const QString a = file(u"a.m4a"_s);
    const WaitingQueue queue = RestoredQueue(
        QVariantList{u"text"_s, 5, QVariant(), QVariantList{a}, QVariantMap{{u"path"_s, 5}},
                     QVariantMap{{u"path"_s, QVariantList{a}}}, QVariantMap{{u"engine"_s, u"auto"_s}}, stored(a)});
    EXPECT_EQ(paths(queue), QStringList{a});
}

TEST_F(WaitingQueueTest, StoredValueThatIsNoArrayRestoresNothing)
{
    const QString a = file(u"a.m4a"_s);
    EXPECT_TRUE(RestoredQueue({}).isEmpty());
    EXPECT_TRUE(RestoredQueue(a).isEmpty());
    EXPECT_TRUE(RestoredQueue(stored(a)).isEmpty());
}

TEST_F(WaitingQueueTest, StoredValuesAreTakenWithoutATypeCheck)
{
    const WaitingQueue queue = RestoredQueue(QVariantList{stored(file(u"a.m4a"_s), {{u"engine"_s, 5}})});
    ASSERT_EQ(queue.size(), 1);
    EXPECT_EQ(queue.first().value(u"engine"_s), QVariant(5));
}

TEST_F(WaitingQueueTest, StoringAndRestoringThroughJsonGivesTheSameQueue)
{
    WaitingQueue queue;
    AddWaiting(queue, {file(u"b.m4a"_s), file(u"a.m4a"_s)}, choices);
    const QByteArray json = QJsonDocument(QJsonArray::fromVariantList(StoredQueue(queue))).toJson();
    EXPECT_EQ(RestoredQueue(QJsonDocument::fromJson(json).array().toVariantList()), queue);
}

TEST_F(WaitingQueueTest, AnotherQueueFollowsWithoutTheFilesThatAlreadyWait)
{
    WaitingQueue queue;
    WaitingQueue more;
    AddWaiting(queue, {u"/a.m4a"_s, u"/b.m4a"_s}, choices);
    AddWaiting(more, {u"/c.m4a"_s, u"/b.m4a"_s, u"/d.m4a"_s}, {u"parakeet"_s, u"pl"_s, true, false});
    AddWaiting(queue, more);
    EXPECT_EQ(paths(queue), (QStringList{u"/a.m4a"_s, u"/b.m4a"_s, u"/c.m4a"_s, u"/d.m4a"_s}));
    EXPECT_EQ(queue.at(1).value(u"engine"_s), u"whisper"_s);
    EXPECT_EQ(queue.at(2).value(u"engine"_s), u"parakeet"_s);
}

} // namespace

#include "app/FileLock.h"

#include "engine/RunCallTimeout.h"
#include "support/Support.h"

#include <QFile>
#include <QTemporaryDir>

#include <optional>
#include <sys/stat.h>
#include <thread>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

class FileLockTest : public testing::Test
{
protected:
    /// Runs a child that has `descriptor` from its start until finishChild().
    void startChild(int descriptor)
    {
        for (const QString &fifo : {fifoUp(), fifoDown()})
            ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
        m_child = std::thread([this, descriptor] {
            RunAndWait(u"/bin/bash"_s, {u"-c"_s, u"echo up >\"$0\"; read -r word <\"$1\""_s, fifoUp(), fifoDown()},
                       {0, descriptor});
        });
        EXPECT_EQ(test::readFile(fifoUp()), "up\n");
    }
    void finishChild()
    {
        test::writeFile(fifoDown(), "end\n");
        m_child.join();
    }

    QString path() const { return m_folder.filePath(u"lock"_s); }
    QString fifoUp() const { return m_folder.filePath(u"up"_s); }
    QString fifoDown() const { return m_folder.filePath(u"down"_s); }

    QTemporaryDir m_folder;
    std::thread m_child;
};

TEST_F(FileLockTest, SecondHolderIsRefusedUntilTheFirstIsGone)
{
    FileLock second(path());
    {
        FileLock first(path());
        EXPECT_EQ(first.tryLock(), FileLock::Result::Held);
        EXPECT_TRUE(first.isHeld());
        EXPECT_EQ(second.tryLock(), FileLock::Result::Elsewhere);
        EXPECT_FALSE(second.isHeld());
        EXPECT_EQ(second.descriptor(), -1);
    }
    EXPECT_EQ(second.tryLock(), FileLock::Result::Held);
}

TEST_F(FileLockTest, TakingAHeldLockAgainKeepsIt)
{
    FileLock lock(path());
    ASSERT_EQ(lock.tryLock(), FileLock::Result::Held);
    const int descriptor = lock.descriptor();
    EXPECT_EQ(lock.tryLock(), FileLock::Result::Held);
    EXPECT_EQ(lock.descriptor(), descriptor);
}

TEST_F(FileLockTest, FolderOfTheLockIsMade)
{
    FileLock lock(m_folder.filePath(u"a/b/lock"_s));
    EXPECT_EQ(lock.tryLock(), FileLock::Result::Held);
}

TEST_F(FileLockTest, FileThatCannotBeMadeIsImpossible)
{
    test::writeFile(m_folder.filePath(u"file"_s), {});
    FileLock lock(m_folder.filePath(u"file/lock"_s));
    EXPECT_EQ(lock.tryLock(), FileLock::Result::Impossible);
    EXPECT_FALSE(lock.isHeld());
}

TEST_F(FileLockTest, RefusedLockLeavesNoDescriptor)
{
    FileLock first(path());
    ASSERT_EQ(first.tryLock(), FileLock::Result::Held);
    const int before = test::openDescriptors();
    FileLock second(path());
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(second.tryLock(), FileLock::Result::Elsewhere);
    EXPECT_EQ(test::openDescriptors(), before);
}

TEST_F(FileLockTest, ChildThatIsGivenTheLockOutlivesItsOwner)
{
    std::optional<FileLock> first(path());
    ASSERT_EQ(first->tryLock(), FileLock::Result::Held);
    startChild(first->descriptor());
    first.reset();
    FileLock second(path());
    EXPECT_EQ(second.tryLock(), FileLock::Result::Elsewhere);
    finishChild();
    EXPECT_EQ(second.tryLock(), FileLock::Result::Held);
}

TEST_F(FileLockTest, ChildThatIsNotGivenTheLockDoesNotHoldIt)
{
    std::optional<FileLock> first(path());
    ASSERT_EQ(first->tryLock(), FileLock::Result::Held);
    startChild(-1);
    first.reset();
    FileLock second(path());
    EXPECT_EQ(second.tryLock(), FileLock::Result::Held);
    finishChild();
}

} // namespace

#include "core/WorkerLock.h"

#include "Support.h"

#include <QDir>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/file.h>

namespace engine {

TEST(WorkerLock, whoLooksIsNotTakenForAWorker)
{
    const test::Home home;
    const Paths paths = home.paths();
    QDir().mkpath(QFileInfo(paths.workerLock).path());
    WorkerLock worker(paths);
    const WorkerLock looker(paths);
    EXPECT_FALSE(looker.isHeld());
    {
        const FileDescriptor another(::open(QFile::encodeName(paths.workerLock).constData(), O_RDWR | O_CLOEXEC));
        ASSERT_EQ(::flock(another.get(), LOCK_SH | LOCK_NB), 0);
        EXPECT_FALSE(looker.isHeld());
    }
    ASSERT_TRUE(worker.tryTake());
    worker.signOwner();
    EXPECT_TRUE(looker.isHeld());
    EXPECT_EQ(looker.owner(), ::getpid());
    EXPECT_FALSE(worker.tryTake());
    EXPECT_TRUE(looker.isHeld());
    worker.release();
    EXPECT_FALSE(looker.isHeld());
    EXPECT_FALSE(looker.owner());
}

} // namespace engine

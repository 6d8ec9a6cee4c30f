#include "media/SoundCopy.h"

#include "Recordings.h"

#include <QDir>

#include <csignal>
#include <sys/resource.h>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

std::vector<int16_t> someSound(double seconds)
{
    std::vector<int16_t> samples;
    test::appendBabble(samples, seconds, 12000);
    samples.insert(samples.end(), {32767, -32768, 0, 1, -1});
    return samples;
}

// Of files that this process writes; a write beyond it fails, as on a disk that is full.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
        : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit limit = m_before;
        limit.rlim_cur = bytes;
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    Q_DISABLE_COPY(FileSizeLimit)

private:
    void (*m_handler)(int);
    rlimit m_before{};
};

} // namespace

TEST(SoundCopy, holdsEverySample)
{
    const test::Home home;
    for (const double seconds : {0.0, 0.1, 7.3, 60.0}) {
        SCOPED_TRACE(seconds);
        const std::vector<int16_t> samples = someSound(seconds);
        SoundCopy copy(home.path(), seconds);
        copy.add(samples);
        copy.add({});
        copy.add(samples);
        ASSERT_TRUE(copy.isWhole());
        std::vector<int16_t> twice = samples;
        twice.insert(twice.end(), samples.begin(), samples.end());
        EXPECT_EQ(test::soundOf(copy.path()), twice);
        EXPECT_EQ(test::soundOf(copy.path()), twice) << "it can be read again";
    }
}

TEST(SoundCopy, hasNoNameInItsFolder)
{
    const test::Home home;
    SoundCopy copy(home.file(u"work"_s), 1);
    copy.add(someSound(1));
    ASSERT_TRUE(copy.isWhole());
    EXPECT_EQ(QDir(home.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList{u"work"_s});
    EXPECT_TRUE(QDir(home.file(u"work"_s)).isEmpty());
}

TEST(SoundCopy, isNotMadeWhereItCannotBeWritten)
{
    const test::Home home;
    test::write(home.file(u"file"_s), "no folder");
    SoundCopy nowhere(home.file(u"file"_s), 1);
    nowhere.add(someSound(1));
    EXPECT_FALSE(nowhere.isWhole());

    SoundCopy cut(home.path(), 60);
    EXPECT_TRUE(cut.isWhole());
    {
        const FileSizeLimit limit(100'000);
        cut.add(someSound(60));
    }
    EXPECT_FALSE(cut.isWhole());
    cut.add(someSound(1));
    EXPECT_FALSE(cut.isWhole()) << "whatever comes later";
}

TEST(SoundCopy, isNotMadeWhereItCouldFillTheDisk)
{
    const test::Home home;
    SoundCopy copy(home.path(), 1e12);
    copy.add(someSound(1));
    EXPECT_FALSE(copy.isWhole());
}

TEST(SoundCopy, isGivenUpForARecordingFarLongerThanItSays)
{
    const test::Home home;
    SoundCopy copy(home.path(), 10);
    copy.add(someSound(15));
    EXPECT_TRUE(copy.isWhole());
    copy.add(someSound(15));
    EXPECT_FALSE(copy.isWhole());
    copy.add({});
    EXPECT_FALSE(copy.isWhole()) << "whatever comes later";
}

} // namespace engine

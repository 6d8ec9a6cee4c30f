#include "intake/CallDir.h"

#include "Support.h"

#include <QDir>

#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

QStringList everythingIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

bool neverRecorded(const QString &)
{
    return false;
}

Recording recordingIn(const test::Home &home)
{
    test::write(home.file(u"a.wav"_s), "sound");
    return openRecording(home.file(u"a.wav"_s));
}

} // namespace

TEST(CallDirName, hasDateAndTitleAndNothingThatHurts)
{
    const QDateTime time(QDate(2025, 3, 14), QTime(10, 22, 33));
    EXPECT_EQ(callDirName(time, u"Interview"_s), u"2025-03-14 10.22 Interview"_s);
    EXPECT_EQ(callDirName(time, u"Q3: plan/budget?"_s), u"2025-03-14 10.22 Q3- plan-budget-"_s);
    EXPECT_EQ(callDirName(time, u"..."_s), u"2025-03-14 10.22"_s);
    EXPECT_LT(callDirName(time, QString(500, u'ї')).toUtf8().size(), 200);
    EXPECT_FALSE(callDirName(time, u"🐈"_s.repeated(200)).back().isHighSurrogate());
}

TEST(NewCallDir, twoOfTheSameNameStandBesideEachOther)
{
    const test::Home home;
    const QString library = home.file(u"some/library"_s);
    QStringList placed;
    for (int i = 0; i < 3; ++i) {
        NewCallDir folder(library, neverRecorded);
        EXPECT_EQ(folder.take(recordingIn(home)), u"Technical files/audio.wav"_s);
        placed.append(folder.place(u"Talk"_s));
        folder.keep();
    }
    EXPECT_EQ(placed,
              (QStringList{library + u"/Talk"_s, library + u"/Talk (2)"_s, library + u"/Talk (3)"_s}));
    EXPECT_EQ(everythingIn(library).size(), 3);
    EXPECT_EQ(test::contentOf(placed.last() + u"/Technical files/audio.wav"_s), "sound");
}

TEST(NewCallDir, leavesNothingUnlessKept)
{
    const test::Home home;
    {
        NewCallDir unfinished(home.file(u"library"_s), neverRecorded);
        unfinished.take(recordingIn(home));
    }
    {
        NewCallDir placed(home.file(u"library"_s), neverRecorded);
        placed.take(recordingIn(home));
        placed.place(u"Talk"_s);
    }
    EXPECT_TRUE(everythingIn(home.file(u"library"_s)).isEmpty());
}

TEST(NewCallDir, removesWhatAKilledProgramLeftButNotWhatIsInTheMaking)
{
    const test::Home home;
    const QString library = home.file(u"library"_s);
    QDir().mkpath(library + u"/.tuppi-incoming-dead00/Technical files"_s);
    const NewCallDir inTheMaking(library, neverRecorded);
    EXPECT_EQ(everythingIn(library).size(), 1);
    {
        const NewCallDir another(library, neverRecorded);
        EXPECT_EQ(everythingIn(library).size(), 2);
    }
}

TEST(NewCallDir, whatAKilledProgramHasPlacedGoesUnlessAJobHasIt)
{
    const test::Home home;
    const QString library = home.file(u"library"_s);
    const QString placed = library + u"/Talk"_s;
    for (const bool recorded : {true, false}) {
        const pid_t child = ::fork();
        if (child == 0) {
            NewCallDir folder(library, neverRecorded);
            folder.take(recordingIn(home));
            folder.place(u"Talk"_s);
            ::_exit(0); // nothing is tidied up
        }
        ASSERT_EQ(::waitpid(child, nullptr, 0), child);
        ASSERT_EQ(everythingIn(library).size(), 2) << "it, and where it was made";
        const NewCallDir next(library, [&](const QString &name) {
            EXPECT_EQ(name, u"Talk"_s) << "the library may be reached by another path than when it was placed";
            return recorded;
        });
        EXPECT_EQ(QDir(placed).exists(), recorded);
        QDir(placed).removeRecursively();
    }
}

TEST(NewCallDir, aFolderOfAnotherInThePlaceOfWhatAKilledProgramLeftStays)
{
    const test::Home home;
    const QString library = home.file(u"library"_s);
    QDir().mkpath(library + u"/.tuppi-incoming-dead00"_s);
    QDir().mkpath(library + u"/Talk/mine"_s);
    test::write(library + u"/.tuppi-incoming-dead00/name of the transcript"_s, "12345\nTalk");
    const NewCallDir next(library, neverRecorded);
    EXPECT_TRUE(QDir(library + u"/Talk/mine"_s).exists());
    EXPECT_FALSE(QDir(library + u"/.tuppi-incoming-dead00"_s).exists());
}

TEST(NewCallDir, aFileInPlaceOfTheLibraryIsToldOf)
{
    const test::Home home;
    test::write(home.file(u"library"_s), "a file");
    const QString sentence = test::sentenceOf([&] { NewCallDir folder(home.file(u"library"_s), neverRecorded); });
    EXPECT_TRUE(sentence.contains(u"a file stands where the folder")) << sentence.toStdString();
}

TEST(CallDirName, tellsWhetherTheTitleIsStillTheFirst)
{
    EXPECT_TRUE(hasFirstTitle(u"/library/2025-03-14 10.22 Interview"_s, u"Interview"_s));
    EXPECT_TRUE(hasFirstTitle(u"/library/2025-03-14 10.22 Interview (2)"_s, u"Interview"_s));
    EXPECT_TRUE(hasFirstTitle(u"/library/2025-03-14 10.22 Take (2)"_s, u"Take (2)"_s));
    EXPECT_TRUE(hasFirstTitle(u"/library/2025-03-14 10.22 A-B"_s, u"A/B"_s));
    EXPECT_FALSE(hasFirstTitle(u"/library/2025-03-14 10.22 Interview"_s, u"My own title"_s));
    EXPECT_FALSE(hasFirstTitle(u"/library/moved by hand"_s, u"Interview"_s));
}

} // namespace engine

#include "intake/Recording.h"

#include "Support.h"

#include <QDir>
#include <QFileInfo>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace engine {

TEST(Recording, tellsWhatIsWrongWithTheFile)
{
    const test::Home home;
    const auto refusal = [&](const QString &name) {
        return test::sentenceOf([&] { openRecording(home.file(name)); });
    };
    QDir(home.path()).mkdir(u"folder.m4a"_s);
    test::write(home.file(u"empty.wav"_s), {});
    ASSERT_EQ(::mkfifo(QFile::encodeName(home.file(u"pipe.wav"_s)).constData(), 0600), 0);
    EXPECT_EQ(refusal(u"folder.m4a"_s), u"“folder.m4a” is a folder. Choose a recording inside it."_s);
    EXPECT_EQ(refusal(u"gone.wav"_s), u"The file “gone.wav” is not there any more."_s);
    EXPECT_EQ(refusal(u"empty.wav"_s), u"The file “empty.wav” is empty."_s);
    EXPECT_EQ(refusal(u"pipe.wav"_s), u"“pipe.wav” is not a file that can be transcribed."_s);
}

TEST(Recording, takesTitleAndExtensionFromTheName)
{
    const test::Home home;
    const auto opened = [&](const QString &name) {
        test::write(home.file(name), "x");
        return openRecording(home.file(name));
    };
    EXPECT_EQ(opened(u"Q3: plan.v2.M4A"_s).title, u"Q3: plan.v2"_s);
    EXPECT_EQ(opened(u"Q3: plan.v2.M4A"_s).extension, u"m4a"_s);
    EXPECT_EQ(opened(u"запис.wav"_s).title, u"запис"_s);
    EXPECT_EQ(opened(u".wav"_s).title, u"Recording"_s);
    EXPECT_EQ(opened(u"odd.a b"_s).extension, QString());
}

TEST(Recording, theCopyIsEqualAndKeepsItsTime)
{
    const test::Home home;
    QByteArray bytes;
    for (int i = 0; i < 3'000'000; ++i)
        bytes.append(char(i * 7));
    test::write(home.file(u"a.wav"_s), bytes);
    {
        QFile file(home.file(u"a.wav"_s));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        file.setFileTime(QDateTime(QDate(2020, 1, 2), QTime(3, 4, 5)), QFileDevice::FileModificationTime);
    }
    copyRecording(openRecording(home.file(u"a.wav"_s)), home.file(u"b.wav"_s));
    EXPECT_EQ(test::contentOf(home.file(u"b.wav"_s)), bytes);
    EXPECT_EQ(QFileInfo(home.file(u"b.wav"_s)).lastModified(), QDateTime(QDate(2020, 1, 2), QTime(3, 4, 5)));
}

TEST(Recording, aShortCopyIsNoCopy)
{
    const test::Home home;
    const auto copied = [&](const QByteArray &become) {
        test::write(home.file(u"a.wav"_s), "0123456789");
        const Recording recording = openRecording(home.file(u"a.wav"_s));
        test::write(home.file(u"a.wav"_s), become);
        QFile::remove(home.file(u"b.wav"_s));
        return test::sentenceOf([&] { copyRecording(recording, home.file(u"b.wav"_s)); });
    };
    const QString refused = u"The recording became shorter while it was copied. Try again."_s;
    EXPECT_EQ(copied("012345678"), refused);
    EXPECT_EQ(copied(""), refused);
    EXPECT_EQ(copied("0123456789"), u"no failure"_s);
    EXPECT_EQ(copied("0123456789, and more"), u"no failure"_s);
    EXPECT_EQ(test::contentOf(home.file(u"b.wav"_s)), "0123456789, and more");
}

} // namespace engine

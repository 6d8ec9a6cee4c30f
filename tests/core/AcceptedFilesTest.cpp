#include "intake/AcceptedFiles.h"

#include "support/Support.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

TEST(AcceptedFiles, TheFourteenExtensionsPassInAnyCase)
{
    EXPECT_EQ(AcceptedExtensions(),
              (QStringList{u"m4a"_s, u"mp3"_s, u"wav"_s, u"mp4"_s, u"mov"_s, u"aac"_s, u"flac"_s, u"ogg"_s, u"opus"_s,
                           u"webm"_s, u"aiff"_s, u"aif"_s, u"caf"_s, u"mkv"_s}));
    for (const QString &extension : AcceptedExtensions()) {
        EXPECT_TRUE(IsAcceptedFile(u"/x/a."_s + extension)) << extension.toStdString();
        EXPECT_TRUE(IsAcceptedFile(u"/x/a."_s + extension.toUpper())) << extension.toStdString();
    }
    EXPECT_TRUE(IsAcceptedFile(u"Interview.Mp3"_s));
    EXPECT_TRUE(IsAcceptedFile(u"a.txt.wav"_s));
    EXPECT_TRUE(IsAcceptedFile(u"/x/.hidden.wav"_s));
}

TEST(AcceptedFiles, OthersDoNotPass)
{
    for (const QString &name : {u"notes.txt"_s, u"song.m4v"_s, u"mp3"_s, u"/x.wav/noextension"_s, u"a.mp3.zip"_s,
                                u"a."_s, u"a.mp3 "_s, u""_s, u".mp3"_s, u"/x.wav/.MP3"_s})
        EXPECT_FALSE(IsAcceptedFile(name)) << name.toStdString();
}

TEST(AcceptedFiles, KeepsTheOrderAndLeavesOutWhatIsNoLocalRecording)
{
    const QList<QUrl> urls{QUrl::fromLocalFile(u"/b.M4A"_s), QUrl::fromLocalFile(u"/notes.txt"_s),
                           QUrl(u"https://example.org/a.mp3"_s), QUrl::fromLocalFile(u"/folder"_s),
                           QUrl::fromLocalFile(u"/a.wav"_s), QUrl::fromLocalFile(u"/b.M4A"_s)};
    EXPECT_EQ(AcceptedFiles(urls), (QList<QUrl>{urls.at(0), urls.at(4), urls.at(5)}));
    EXPECT_TRUE(AcceptedFiles({}).isEmpty());
}

} // namespace

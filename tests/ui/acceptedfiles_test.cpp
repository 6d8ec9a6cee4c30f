#include "intake/AcceptedFiles.h"

#include <gtest/gtest.h>

using namespace tuppi;

namespace {

struct FileCase
{
    const char *url;
    bool accepted;
};

class AcceptedFiles : public testing::TestWithParam<FileCase>
{
};

TEST_P(AcceptedFiles, isDecidedByTheName)
{
    const QUrl url(QString::fromUtf8(GetParam().url));
    EXPECT_EQ(isAcceptedAudioFile(url), GetParam().accepted) << GetParam().url;
    EXPECT_EQ(acceptedAudioFiles({url}).size(), GetParam().accepted ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(
    Table, AcceptedFiles,
    testing::Values(FileCase{"file:///a/Interview.MP3", true}, FileCase{"file:///a/b.Opus", true},
                    FileCase{"file:///a/two.dots.m4a", true}, FileCase{"file:///a/with%20blank.wav", true},
                    FileCase{"file:///a/line%0Abreak.mp3", true}, FileCase{"file:///a/hash%23%3F.mp3", true},
                    FileCase{"file:///a/مقابلة.ogg", true}, FileCase{"file://localhost/a/b.mp3", true},
                    FileCase{"file:///a/notes.txt", false}, FileCase{"file:///a/song.m4v", false},
                    FileCase{"file:///a/mp3", false}, FileCase{"file:///a/.mp3", false},
                    FileCase{"file:///a/b.", false}, FileCase{"file:///a/b.mp3 ", false},
                    FileCase{"file:///a/b.mp3.part", false}, FileCase{"file:///a.mp3/b", false},
                    FileCase{"file:///a/folder.mp3/", false}, FileCase{"file://server/a/b.mp3", false},
                    FileCase{"https://example.org/b.mp3", false}, FileCase{"smb://server/b.mp3", false},
                    FileCase{"/a/b.mp3", false}, FileCase{"", false}));

TEST(AcceptedFilesList, holdsTheFourteenExtensions)
{
    const QStringList expected =
        u"m4a mp3 wav mp4 mov aac flac ogg opus webm aiff aif caf mkv"_qs.split(u' ');
    EXPECT_EQ(acceptedExtensions(), expected);
    for (const QString &extension : expected)
        EXPECT_TRUE(isAcceptedAudioFile(QUrl::fromLocalFile(u"/a."_qs + extension.toUpper())));
}

TEST(AcceptedFilesList, keepsOrderAndDuplicates)
{
    const QUrl b = QUrl::fromLocalFile(u"/b.mp3"_qs);
    const QUrl a = QUrl::fromLocalFile(u"/a.wav"_qs);
    const QUrl text = QUrl::fromLocalFile(u"/t.txt"_qs);
    EXPECT_EQ(acceptedAudioFiles({b, text, a, b}), QList<QUrl>({b, a, b}));
}

} // namespace

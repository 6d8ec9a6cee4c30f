#include "media/EditList.h"

#include "Support.h"
#include "media/AudioReader.h"

#include <QtEndian>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

QByteArray sample()
{
    return test::contentOf(QStringLiteral(SAMPLE_RECORDING));
}

// A number of the sample's only list of edits, `at` bytes behind its name.
QByteArray edited(int at, qint32 value)
{
    QByteArray film = sample();
    const qsizetype list = film.indexOf("elst");
    EXPECT_GT(list, 0);
    qToBigEndian(value, film.data() + list + at);
    return film;
}

constexpr int editCount = 8;
constexpr int editLength = 12; // milliseconds
constexpr int editStart = 16;  // samples
constexpr int editSpeed = 20;

double secondsOf(const QString &path)
{
    AudioReader reader(path);
    reader.skip(int64_t(sampleRate) * 3600);
    return double(reader.position()) / sampleRate;
}

} // namespace

struct Edited
{
    const char *name;
    int at;
    qint32 value;
    bool asItStands;
};

void PrintTo(const Edited &edited, std::ostream *out)
{
    *out << edited.name;
}

class EditLists : public testing::TestWithParam<Edited>
{
};

TEST_P(EditLists, tellWhetherAllIsPlayed)
{
    const test::Home home;
    const QString path = home.file(u"film.m4a"_s);
    test::write(path, edited(GetParam().at, GetParam().value));
    EXPECT_EQ(isPlayedAsItStands(path), GetParam().asItStands);
}

INSTANTIATE_TEST_SUITE_P(OfTheSample, EditLists,
                         testing::Values(Edited{"NoEdit", editCount, 0, true}, Edited{"TwoEdits", editCount, 2, false},
                                         Edited{"UntilTheEnd", editLength, 0, true},
                                         Edited{"CutBehind", editLength, 10'000, false},
                                         Edited{"CutInFront", editStart, 16'000, false}, Edited{"Delayed", editStart, -1, false},
                                         Edited{"AtTwiceTheSpeed", editSpeed, 0x20000, false}),
                         [](const auto &one) { return std::string(one.param.name); });

TEST(EditList, aRecordingAsItIsPackedIsPlayedAsItStands)
{
    EXPECT_TRUE(isPlayedAsItStands(QStringLiteral(SAMPLE_RECORDING)));
    EXPECT_NEAR(secondsOf(QStringLiteral(SAMPLE_RECORDING)), 58.6, 0.1);
}

TEST(EditList, whatIsCutAwayIsNotHeard)
{
    const test::Home home;
    const QString path = home.file(u"cut.m4a"_s);
    test::write(path, edited(editLength, 10'000));
    EXPECT_NEAR(secondsOf(path), 10.0, 0.1);
}

TEST(EditList, isLookedForInFilmsThatAreWholeOnly)
{
    const test::Home home;
    const QString path = home.file(u"other"_s);
    EXPECT_FALSE(isPlayedAsItStands(path));
    for (const QByteArray &content : {QByteArray(), QByteArray("RIFF and what follows it"), QByteArray(200, '\0'),
                                      sample().left(100), QByteArray("\0\0\0\x08moov", 8)}) {
        test::write(path, content);
        EXPECT_FALSE(isPlayedAsItStands(path));
    }
}

} // namespace engine

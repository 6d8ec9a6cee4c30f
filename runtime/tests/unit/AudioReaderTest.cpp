#include "media/AudioReader.h"

#include "Recordings.h"

using namespace Qt::StringLiterals;

namespace engine {

using test::ffmpeg;
using test::soundOf;

namespace {

// How much of a tone is in the middle of the samples; 1 for a full-scale one.
double toneIn(const std::vector<int16_t> &samples, double frequency)
{
    double sine = 0;
    double cosine = 0;
    const size_t from = samples.size() / 4;
    const size_t to = samples.size() * 3 / 4;
    for (size_t i = from; i < to; ++i) {
        const double phase = double(i) * 2 * 3.14159265358979 * frequency / sampleRate;
        sine += samples[i] * std::sin(phase);
        cosine += samples[i] * std::cos(phase);
    }
    return std::hypot(sine, cosine) * 2 / double(to - from) / 32768;
}

const QStringList tone{u"-f"_s, u"lavfi"_s, u"-i"_s, u"sine=frequency=440:sample_rate=44100:duration=3"_s};

} // namespace

struct Form
{
    const char *extension;
    QStringList encoding;
};

void PrintTo(const Form &form, std::ostream *out)
{
    *out << form.extension;
}

class AudioReaderForms : public testing::TestWithParam<Form>
{
};

TEST_P(AudioReaderForms, comesOutAs16kHzMono)
{
    const test::Home home;
    const QString path = home.file(u"tone."_s + QString::fromLatin1(GetParam().extension));
    ASSERT_NO_FATAL_FAILURE(ffmpeg(tone + GetParam().encoding + QStringList{path}));
    const std::vector<int16_t> samples = soundOf(path);
    EXPECT_NEAR(double(samples.size()) / sampleRate, 3.0, 0.15);
    EXPECT_NEAR(toneIn(samples, 440), 0.125, 0.02); // the amplitude that the generator gives
    EXPECT_LT(toneIn(samples, 700), 0.01);
    const AudioReader reader(path);
    if (reader.durationSeconds()) {
        EXPECT_NEAR(*reader.durationSeconds(), 3.0, 0.15);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Accepted, AudioReaderForms,
    testing::Values(Form{"m4a", {}}, Form{"mp3", {}}, Form{"wav", {}},
                    Form{"mp4", {u"-f"_s, u"lavfi"_s, u"-i"_s, u"testsrc=duration=3:size=64x48:rate=5"_s}},
                    Form{"mov", {u"-c:a"_s, u"alac"_s}}, Form{"aac", {}}, Form{"flac", {}},
                    Form{"ogg", {u"-ac"_s, u"1"_s, u"-c:a"_s, u"libvorbis"_s}}, Form{"opus", {}},
                    Form{"webm", {u"-c:a"_s, u"libopus"_s}}, Form{"aiff", {u"-ar"_s, u"8000"_s}},
                    Form{"aif", {u"-ar"_s, u"96000"_s, u"-c:a"_s, u"pcm_s24be"_s}}, Form{"caf", {}},
                    Form{"mkv", {u"-f"_s, u"lavfi"_s, u"-i"_s, u"testsrc=duration=3:size=64x48:rate=5"_s}}),
    [](const auto &form) { return std::string(form.param.extension); });

TEST(AudioReader, bothSidesOfAStereoRecordingAreHeard)
{
    const test::Home home;
    std::vector<int16_t> samples;
    for (int i = 0; i < 48000; ++i) {
        samples.push_back(int16_t(8000 * std::sin(i * 2 * 3.14159265 * 300 / 48000)));
        samples.push_back(int16_t(8000 * std::sin(i * 2 * 3.14159265 * 900 / 48000)));
    }
    test::write(home.file(u"two.wav"_s), test::wav(samples, 48000, 2));
    const std::vector<int16_t> mono = soundOf(home.file(u"two.wav"_s));
    EXPECT_GT(toneIn(mono, 300), 0.08);
    EXPECT_GT(toneIn(mono, 900), 0.08);
}

TEST(AudioReader, skippingLeadsToTheSameSamplesAsReading)
{
    const test::Home home;
    ASSERT_NO_FATAL_FAILURE(ffmpeg(tone + QStringList{home.file(u"a.m4a"_s)}));
    const std::vector<int16_t> all = soundOf(home.file(u"a.m4a"_s));
    AudioReader reader(home.file(u"a.m4a"_s));
    reader.skip(12345);
    EXPECT_EQ(reader.position(), 12345);
    std::vector<int16_t> part(2000);
    ASSERT_EQ(reader.read(part), part.size());
    EXPECT_TRUE(std::equal(part.begin(), part.end(), all.begin() + 12345));
}

TEST(AudioReader, soundThatBeginsBehindThePictureHasSilenceInFrontOfIt)
{
    const test::Home home;
    const QStringList picture{u"-f"_s, u"lavfi"_s, u"-i"_s, u"testsrc=duration=5:size=64x48:rate=5"_s};
    for (const char *extension : {"mkv", "mp4", "ts", "mov"}) {
        SCOPED_TRACE(extension);
        const QString path = home.file(u"late."_s + QString::fromLatin1(extension));
        ASSERT_NO_FATAL_FAILURE(ffmpeg(picture + QStringList{u"-itsoffset"_s, u"2"_s} + tone +
                                       QStringList{u"-map"_s, u"0:v"_s, u"-map"_s, u"1:a"_s, path}));
        const std::vector<int16_t> samples = soundOf(path);
        EXPECT_NEAR(double(samples.size()) / sampleRate, 5.0, 0.15);
        ASSERT_GT(samples.size(), 40000U);
        EXPECT_LT(toneIn({samples.begin(), samples.begin() + 30000}, 440), 0.001);
        EXPECT_NEAR(toneIn({samples.begin() + 34000, samples.end()}, 440), 0.125, 0.02);
    }
}

TEST(AudioReader, refusesWhatIsNoRecording)
{
    const test::Home home;
    const auto refusal = [&](const QString &name) {
        return test::sentenceOf([&] { AudioReader reader(home.file(name)); });
    };
    const QString start = u"The file is not a recording that can be read: "_s;
    test::write(home.file(u"text.mp3"_s), "This is only text, whatever its name says.\n");
    EXPECT_TRUE(refusal(u"text.mp3"_s).startsWith(start)) << refusal(u"text.mp3"_s).toStdString();
    EXPECT_TRUE(refusal(u"gone.mp3"_s).startsWith(u"The recording is no longer in its folder"));
    ASSERT_NO_FATAL_FAILURE(ffmpeg({u"-f"_s, u"lavfi"_s, u"-i"_s, u"testsrc=duration=1:size=64x48:rate=5"_s,
                                    home.file(u"silent.mp4"_s)}));
    EXPECT_EQ(refusal(u"silent.mp4"_s), start + u"there is no sound in it."_s);
}

TEST(AudioReader, aFileWithoutItsEndIsToldOfOrReadAsFarAsItGoes)
{
    const test::Home home;
    ASSERT_NO_FATAL_FAILURE(ffmpeg(tone + QStringList{home.file(u"whole.m4a"_s)}));
    const QByteArray whole = test::contentOf(home.file(u"whole.m4a"_s));
    test::write(home.file(u"headless.m4a"_s), whole.left(whole.size() / 2));
    EXPECT_TRUE(test::sentenceOf([&] {
                    AudioReader reader(home.file(u"headless.m4a"_s));
                }).startsWith(u"The file is not a recording that can be read: "));

    ASSERT_NO_FATAL_FAILURE(
        ffmpeg(tone + QStringList{u"-movflags"_s, u"+faststart"_s, home.file(u"front.m4a"_s)}));
    const QByteArray front = test::contentOf(home.file(u"front.m4a"_s));
    test::write(home.file(u"cut.m4a"_s), front.left(front.size() * 2 / 3));
    const size_t count = soundOf(home.file(u"cut.m4a"_s)).size();
    EXPECT_GT(count, 16000U);
    EXPECT_LT(count, 40000U);
}

TEST(AudioReader, damageInTheMiddleCostsOnlyTheDamagedPart)
{
    const test::Home home;
    ASSERT_NO_FATAL_FAILURE(ffmpeg(tone + QStringList{home.file(u"a.mp3"_s)}));
    QByteArray bytes = test::contentOf(home.file(u"a.mp3"_s));
    for (qsizetype i = bytes.size() / 2; i < bytes.size() / 2 + 2000; ++i)
        bytes[i] = char(i * 31);
    test::write(home.file(u"a.mp3"_s), bytes);
    EXPECT_GT(soundOf(home.file(u"a.mp3"_s)).size(), 35000U);
}

TEST(AudioReader, neverFollowsAFileToOtherFiles)
{
    const test::Home home;
    ASSERT_NO_FATAL_FAILURE(ffmpeg(tone + QStringList{home.file(u"real.mp3"_s)}));
    const QByteArray address = QFile::encodeName(home.file(u"real.mp3"_s));
    test::write(home.file(u"list.mp3"_s), "ffconcat version 1.0\nfile " + address + "\n");
    test::write(home.file(u"play.mp3"_s),
                "#EXTM3U\n#EXT-X-TARGETDURATION:3\n#EXTINF:3,\n" + address + "\n#EXT-X-ENDLIST\n");
    for (const QString &name : {u"list.mp3"_s, u"play.mp3"_s})
        EXPECT_TRUE(test::sentenceOf([&] {
                        AudioReader reader(home.file(name));
                    }).startsWith(u"The file is not a recording that can be read: "))
            << name.toStdString();
}

TEST(AudioReader, readsTheTimeOfRecordingButNoBogusOne)
{
    const test::Home home;
    const auto recordedAt = [&](const QString &time) {
        ffmpeg(tone + QStringList{u"-metadata"_s, u"creation_time="_s + time, home.file(u"a.m4a"_s)});
        return AudioReader(home.file(u"a.m4a"_s)).recordedAt();
    };
    ASSERT_TRUE(recordedAt(u"2025-03-14T10:22:33Z"_s));
    EXPECT_EQ(*recordedAt(u"2025-03-14T10:22:33Z"_s),
              QDateTime(QDate(2025, 3, 14), QTime(10, 22, 33), Qt::UTC));
    EXPECT_FALSE(recordedAt(u"1970-01-01T00:00:00Z"_s));
    EXPECT_FALSE(recordedAt(QDateTime::currentDateTimeUtc().addDays(400).toString(Qt::ISODate)));
    ffmpeg(tone + QStringList{u"-write_bext"_s, u"1"_s, u"-metadata"_s, u"origination_date=2025-03-14"_s,
                              u"-metadata"_s, u"origination_time=10:22:33"_s, home.file(u"field.wav"_s)});
    ASSERT_TRUE(AudioReader(home.file(u"field.wav"_s)).recordedAt());
    EXPECT_EQ(*AudioReader(home.file(u"field.wav"_s)).recordedAt(),
              QDateTime(QDate(2025, 3, 14), QTime(10, 22, 33)));
    ffmpeg(tone + QStringList{home.file(u"b.wav"_s)});
    EXPECT_FALSE(AudioReader(home.file(u"b.wav"_s)).recordedAt());
}

TEST(AudioReader, tellsOfALongTableOfPackets)
{
    const test::Home home;
    // 400 packets in each second.
    const QStringList inSmallPackets{u"-c:a"_s, u"libopus"_s, u"-frame_duration"_s, u"2.5"_s};
    const auto silence = [](int seconds) {
        return QStringList{u"-f"_s, u"lavfi"_s, u"-i"_s, u"anullsrc=channel_layout=mono:sample_rate=48000"_s, u"-t"_s,
                           QString::number(seconds)};
    };
    for (const auto &[name, seconds, isLong] : {std::tuple{u"short.mp4"_s, 100, false}, std::tuple{u"long.mp4"_s, 150, true},
                                                std::tuple{u"long.opus"_s, 150, false}}) {
        ASSERT_NO_FATAL_FAILURE(ffmpeg(silence(seconds) + inSmallPackets + QStringList{home.file(name)}));
        EXPECT_EQ(AudioReader(home.file(name)).holdsLongTable(), isLong) << name.toStdString();
    }
}

TEST(AudioReader, everyAcceptedKindCanBeDecodedHere)
{
    EXPECT_EQ(decodingTrouble(), QString());
}

} // namespace engine

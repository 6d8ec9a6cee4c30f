#include "recognise/Recogniser.h"

#include "core/Files.h"
#include "models/CustomModels.h"

#include "Support.h"

using namespace Qt::StringLiterals;

namespace engine {

namespace {

QString refusal(const QString &engineChoice, const QString &language)
{
    return test::sentenceOf([&] { chooseRecogniser(engineChoice, language); });
}

// A home of its own, on a computer without whisper-cli.
class RecogniserChoice : public testing::Test
{
protected:
    test::Home m_home;
    test::Variable m_homeOfUser{"HOME", QFile::encodeName(m_home.path())};
    test::Variable m_whisperCli{"TUPPI_WHISPER_CLI", "/nonexistent"};
};

} // namespace

TEST_F(RecogniserChoice, automaticHearsEnglish)
{
    for (const QString &language : {u"auto"_s, u"en"_s, u"en-GB"_s, u"en_US"_s, u"EN"_s}) {
        const auto chosen = chooseRecogniser(u"auto"_s, language);
        EXPECT_EQ(chosen->language(), u"en"_s);
        EXPECT_EQ(chosen->contractName(), QString()) << "the application would show another model's name";
    }
}

TEST_F(RecogniserChoice, saysWhichLanguageIsMissingAndWhatWouldHelp)
{
    EXPECT_EQ(
        refusal(u"auto"_s, u"uk"_s),
        u"No installed speech model knows Ukrainian (uk). The installed one, PocketSphinx, knows English; "
        "install whisper.cpp's whisper-cli and a Whisper model for other languages."_s);
    EXPECT_TRUE(
        refusal(u"auto"_s, u"zh-Hans"_s).startsWith(u"No installed speech model knows Chinese (zh-Hans)."));
    EXPECT_TRUE(
        refusal(u"auto"_s, u"xx"_s).startsWith(u"No installed speech model knows the language (xx)."));
}

TEST_F(RecogniserChoice, saysWhichModelIsMissing)
{
    EXPECT_TRUE(refusal(u"whisper"_s, u"en"_s).startsWith(u"Whisper is not installed"));
    EXPECT_TRUE(refusal(u"whisper-large"_s, u"en"_s).startsWith(u"Whisper is not installed"));
    EXPECT_TRUE(refusal(u"parakeet"_s, u"en"_s).startsWith(u"Parakeet cannot run"));
    EXPECT_EQ(refusal(u"custom:mine"_s, u"en"_s),
              u"This speech model is not installed any more. Choose another one."_s);
}

namespace {

// With models in the home, and a whisper-cli that nobody starts.
class WhisperChoice : public RecogniserChoice
{
protected:
    QString add(const QString &file, QChar sum)
    {
        CustomModel model{{}, file, u"whisper"_s, u"owner/whisper"_s, file, QString(64, sum), 4};
        makeFolder(m_home.paths().models, u"No folder"_s);
        test::write(customModelFile(m_home.paths(), model), "lmgg");
        return addCustomModel(m_home.paths(), model).id;
    }

    static QString chosen(const QString &engineChoice, const QString &language)
    {
        return chooseRecogniser(engineChoice, language)->name();
    }

    test::Variable m_whisperCli{"TUPPI_WHISPER_CLI", "/bin/true"};
};

} // namespace

TEST_F(WhisperChoice, takesTheModelWhoseNameFits)
{
    const QString small = add(u"ggml-small.en.bin"_s, u'a');
    add(u"ggml-large-v3.bin"_s, u'b');
    add(u"ggml-large-v3-turbo.bin"_s, u'c');
    EXPECT_EQ(chosen(u"whisper"_s, u"uk"_s), u"Whisper (ggml-large-v3-turbo.bin)"_s);
    EXPECT_EQ(chosen(u"whisper-large"_s, u"auto"_s), u"Whisper (ggml-large-v3.bin)"_s);
    EXPECT_EQ(chosen(u"custom:"_s + small, u"en"_s), u"Whisper (ggml-small.en.bin)"_s);
    EXPECT_EQ(chosen(u"auto"_s, u"uk"_s), u"Whisper (ggml-large-v3-turbo.bin)"_s);
    EXPECT_EQ(chosen(u"auto"_s, u"auto"_s), u"Whisper (ggml-large-v3-turbo.bin)"_s);
    EXPECT_EQ(chosen(u"auto"_s, u"en-GB"_s), u"PocketSphinx"_s);
    EXPECT_EQ(refusal(u"custom:"_s + small, u"uk"_s),
              u"“ggml-small.en.bin” knows English only. Choose another model for Ukrainian."_s);
    EXPECT_EQ(refusal(u"whisper"_s, u"tlh"_s),
              u"Whisper does not know the language (tlh). Choose another language."_s);
}

TEST_F(WhisperChoice, saysWhatToAdd)
{
    EXPECT_EQ(refusal(u"whisper"_s, u"uk"_s),
              u"The model Whisper Large v3 Turbo is not installed. In the Settings, add "
              "ggerganov/whisper.cpp:ggml-large-v3-turbo.bin as a Whisper model. "
              "Choose Automatic to use what is installed."_s);
    EXPECT_TRUE(refusal(u"whisper-large"_s, u"uk"_s).contains(u"ggerganov/whisper.cpp:ggml-large-v3.bin"));
    EXPECT_EQ(chosen(u"auto"_s, u"auto"_s), u"PocketSphinx"_s);
}

TEST_F(RecogniserChoice, saysWhenThereIsNoModelAtAll)
{
    const test::Variable noModel("TUPPI_POCKETSPHINX_MODEL", QFile::encodeName(m_home.path()));
    EXPECT_EQ(refusal(u"auto"_s, u"en"_s),
              u"No speech model is installed. Install the package pocketsphinx-en-us."_s);
}

} // namespace engine

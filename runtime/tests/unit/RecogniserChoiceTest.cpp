#include "recognise/Recogniser.h"

#include "Support.h"

using namespace Qt::StringLiterals;

namespace engine {

namespace {

QString refusal(const QString &engineChoice, const QString &language)
{
    return test::sentenceOf([&] { chooseRecogniser(engineChoice, language); });
}

} // namespace

TEST(RecogniserChoice, automaticHearsEnglish)
{
    for (const QString &language : {u"auto"_s, u"en"_s, u"en-GB"_s, u"en_US"_s, u"EN"_s}) {
        const auto chosen = chooseRecogniser(u"auto"_s, language);
        EXPECT_EQ(chosen->language(), u"en"_s);
        EXPECT_EQ(chosen->contractName(), QString()) << "the application would show another model's name";
    }
}

TEST(RecogniserChoice, saysWhichLanguageIsMissingAndWhatWouldHelp)
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

TEST(RecogniserChoice, saysWhichModelIsMissing)
{
    EXPECT_TRUE(refusal(u"whisper"_s, u"en"_s).startsWith(u"Whisper is not installed"));
    EXPECT_TRUE(refusal(u"whisper-large"_s, u"en"_s).startsWith(u"Whisper is not installed"));
    EXPECT_TRUE(refusal(u"parakeet"_s, u"en"_s).startsWith(u"Parakeet cannot run"));
    EXPECT_EQ(refusal(u"custom:mine"_s, u"en"_s),
              u"This speech model is not installed any more. Choose another one."_s);
}

TEST(RecogniserChoice, saysWhenThereIsNoModelAtAll)
{
    const test::Home empty;
    qputenv("TUPPI_POCKETSPHINX_MODEL", QFile::encodeName(empty.path()));
    EXPECT_EQ(refusal(u"auto"_s, u"en"_s),
              u"No speech model is installed. Install the package pocketsphinx-en-us."_s);
    qunsetenv("TUPPI_POCKETSPHINX_MODEL");
}

} // namespace engine

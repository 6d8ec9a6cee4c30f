#include "core/Failure.h"
#include "core/SpeechModel.h"
#include "recognise/PocketSphinxRecogniser.h"
#include "recognise/Recogniser.h"

#include <QLocale>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

Failure missingModel(const QString &engineChoice)
{
    const QString instead = u" Choose Automatic to use what is installed."_s;
    if (engineChoice == u"parakeet")
        return Failure(u"Parakeet cannot run on this computer: no program for it is installed."_s + instead);
    if (engineChoice == u"whisper" || engineChoice == u"whisper-large")
        return Failure(
            u"Whisper is not installed: whisper.cpp's whisper-cli and a Whisper model are needed."_s +
            instead);
    return Failure(u"The speech model “"_s + engineChoice + u"” is not installed."_s + instead);
}

Failure missingLanguage(const QString &code)
{
    const QLocale::Language language = QLocale::codeToLanguage(code.section(u'-', 0, 0).section(u'_', 0, 0));
    const QString name =
        language == QLocale::AnyLanguage ? u"the language"_s : QLocale::languageToString(language);
    return Failure(
        u"No installed speech model knows "_s + name + u" ("_s + code +
        u"). The installed one, PocketSphinx, knows English; install whisper.cpp's whisper-cli and a "
        "Whisper model for other languages."_s);
}

bool isEnglish(const QString &code)
{
    return code == u"auto" || code == u"en" || code == u"eng" || code.startsWith(u"en-") ||
           code.startsWith(u"en_");
}

} // namespace

std::unique_ptr<Recogniser> chooseRecogniser(const QString &engineChoice, const QString &languageChoice)
{
    if (engineChoice != u"auto")
        throw missingModel(engineChoice);
    if (!isEnglish(languageChoice.toLower()))
        throw missingLanguage(languageChoice);
    const std::optional<SpeechModel> model = findSpeechModel();
    if (!model)
        throw Failure(u"No speech model is installed. Install the package pocketsphinx-en-us."_s);
    return std::make_unique<PocketSphinxRecogniser>(*model);
}

} // namespace engine

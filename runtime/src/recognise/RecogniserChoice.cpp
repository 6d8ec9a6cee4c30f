#include "core/Failure.h"
#include "core/SpeechModel.h"
#include "models/CustomModels.h"
#include "recognise/PocketSphinxRecogniser.h"
#include "recognise/Recogniser.h"

#include <QLocale>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

const QString instead = u" Choose Automatic to use what is installed."_s;

bool whisperCliIsThere()
{
    return !QStandardPaths::findExecutable(u"whisper-cli"_s).isEmpty();
}

Failure missingModel(const QString &engineChoice)
{
    if (engineChoice == u"parakeet")
        return Failure(u"Parakeet cannot run on this computer: no program for it is installed."_s + instead);
    if (!whisperCliIsThere())
        return Failure(
            u"Whisper is not installed: whisper.cpp's whisper-cli and a Whisper model are needed."_s +
            instead);
    return Failure(u"Whisper models cannot be used yet."_s + instead);
}

// The place for a recogniser that runs whisper-cli with the file of the model. It should keep that file open
// (openCustomModel) and name it by its descriptor, so that removing the model does not harm the job.
Failure missingCustomModel(const QString &id)
{
    const CustomModel model = customModelById(Paths::ofThisUser(), id);
    openCustomModel(Paths::ofThisUser(), model);
    if (!whisperCliIsThere())
        return Failure(u"“"_s + model.name + u"” needs whisper.cpp's whisper-cli, which is not installed."_s +
                       instead);
    return Failure(u"Whisper models such as “"_s + model.name + u"” cannot be used yet."_s + instead);
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
    if (engineChoice.startsWith(customPrefix))
        throw missingCustomModel(engineChoice.mid(customPrefix.size()));
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

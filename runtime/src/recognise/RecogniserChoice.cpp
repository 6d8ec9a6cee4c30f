#include "core/Failure.h"
#include "core/SpeechModel.h"
#include "models/CustomModels.h"
#include "recognise/PocketSphinxRecogniser.h"
#include "recognise/WhisperOutput.h"
#include "recognise/WhisperRecogniser.h"

#include <QLocale>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

const QString instead = u" Choose Automatic to use what is installed."_s;

QString languageName(const QString &code)
{
    const QLocale::Language language = QLocale::codeToLanguage(code.section(u'-', 0, 0).section(u'_', 0, 0));
    return language == QLocale::AnyLanguage ? u"the language"_s : QLocale::languageToString(language);
}

bool isEnglish(const QString &code)
{
    return whisperLanguage(code) == u"en";
}

bool isNamed(const CustomModel &model, const QString &part)
{
    return model.file.contains(part, Qt::CaseInsensitive) || model.repo.contains(part, Qt::CaseInsensitive);
}

bool isTurbo(const CustomModel &model)
{
    return isNamed(model, u"turbo"_s);
}

bool isLarge(const CustomModel &model)
{
    return isNamed(model, u"large"_s) && !isTurbo(model);
}

bool isWhisper(const CustomModel &model)
{
    return model.kind == u"whisper";
}

bool knows(const CustomModel &model, const QString &language)
{
    return !hearsOnlyEnglish(model) || isEnglish(language);
}

std::unique_ptr<Recogniser> whisperWith(const CustomModel &model, const QString &languageChoice)
{
    const Paths paths = Paths::ofThisUser();
    return std::make_unique<WhisperRecogniser>(WhisperSetup{
        findWhisperCli(), model, openCustomModel(paths, model), whisperLanguage(languageChoice), paths.work});
}

// The models of the user that fit, the best one first.
std::vector<CustomModel> fitting(bool (*fits)(const CustomModel &))
{
    std::vector<CustomModel> models = customModels(Paths::ofThisUser());
    std::erase_if(models, [fits](const CustomModel &model) { return !isWhisper(model) || !fits(model); });
    std::ranges::stable_sort(models, [](const CustomModel &a, const CustomModel &b) {
        return std::tuple(isTurbo(a), isLarge(a), a.size) > std::tuple(isTurbo(b), isLarge(b), b.size);
    });
    return models;
}

void requireLanguage(const QString &languageChoice)
{
    if (whisperLanguage(languageChoice).isEmpty())
        throw Failure(u"Whisper does not know "_s + languageName(languageChoice) + u" ("_s + languageChoice +
                      u"). Choose another language."_s);
}

std::unique_ptr<Recogniser> namedWhisper(bool large, const QString &languageChoice)
{
    if (findWhisperCli().isEmpty())
        throw Failure(
            u"Whisper is not installed: whisper.cpp's whisper-cli and a Whisper model are needed."_s +
            instead);
    requireLanguage(languageChoice);
    const std::vector<CustomModel> models = fitting(large ? &isLarge : &isTurbo);
    if (models.empty())
        throw Failure(u"The model %1 is not installed. In the Settings, add "
                      "ggerganov/whisper.cpp:%2 as a Whisper model."_s.arg(
                          large ? u"Whisper Large v3"_s : u"Whisper Large v3 Turbo"_s,
                          large ? u"ggml-large-v3.bin"_s : u"ggml-large-v3-turbo.bin"_s) +
                      instead);
    return whisperWith(models.front(), languageChoice);
}

std::unique_ptr<Recogniser> customWhisper(const QString &id, const QString &languageChoice)
{
    const CustomModel model = customModelById(Paths::ofThisUser(), id);
    openCustomModel(Paths::ofThisUser(), model);
    if (findWhisperCli().isEmpty())
        throw Failure(u"“"_s + model.name + u"” needs whisper.cpp's whisper-cli, which is not installed."_s +
                      instead);
    if (!isWhisper(model))
        throw Failure(u"“"_s + model.name + u"” is no Whisper model, and cannot run on this computer."_s +
                      instead);
    requireLanguage(languageChoice);
    if (!knows(model, languageChoice) && languageChoice != u"auto")
        throw Failure(u"“"_s + model.name + u"” knows English only. Choose another model for "_s +
                      languageName(languageChoice) + u"."_s);
    return whisperWith(model, languageChoice);
}

Failure missingLanguage(const QString &code)
{
    return Failure(
        u"No installed speech model knows "_s + languageName(code) + u" ("_s + code +
        u"). The installed one, PocketSphinx, knows English; install whisper.cpp's whisper-cli and a "
        "Whisper model for other languages."_s);
}

// Whisper where there is one that knows the language: for English there is PocketSphinx, which is quicker.
std::unique_ptr<Recogniser> automatic(const QString &languageChoice)
{
    const bool maybeOther = !isEnglish(languageChoice);
    if ((maybeOther || !findSpeechModel()) && !findWhisperCli().isEmpty() &&
        !whisperLanguage(languageChoice).isEmpty()) {
        for (const CustomModel &model : fitting(&isWhisper)) {
            if (knows(model, languageChoice))
                return whisperWith(model, languageChoice);
        }
    }
    if (maybeOther && languageChoice != u"auto")
        throw missingLanguage(languageChoice);
    return pocketSphinx();
}

} // namespace

std::unique_ptr<Recogniser> pocketSphinx()
{
    const std::optional<SpeechModel> english = findSpeechModel();
    if (!english)
        throw Failure(u"No speech model is installed. Install the package pocketsphinx-en-us."_s);
    return std::make_unique<PocketSphinxRecogniser>(*english);
}

std::unique_ptr<Recogniser> chooseRecogniser(const QString &engineChoice, const QString &languageChoice)
{
    if (engineChoice.startsWith(customPrefix))
        return customWhisper(engineChoice.mid(customPrefix.size()), languageChoice);
    if (engineChoice == u"parakeet")
        throw Failure(u"Parakeet cannot run on this computer: no program for it is installed."_s + instead);
    if (engineChoice != u"auto")
        return namedWhisper(engineChoice == u"whisper-large", languageChoice);
    return automatic(languageChoice);
}

} // namespace engine

#pragma once

#include "core/FileDescriptor.h"
#include "models/CustomModels.h"
#include "recognise/Recogniser.h"
#include "recognise/WhisperProgram.h"

namespace engine {

// What a Whisper recogniser is made of.
struct WhisperSetup
{
    QString program; // whisper-cli
    CustomModel model;
    FileDescriptor modelFile; // open, so that the model may be removed meanwhile
    QString language;         // as Whisper calls it, or "auto"
    QString workFolder;       // for the sound and the text, while whisper-cli is at work
    WhisperPatience patience = {};
};

// About a hundred languages with whisper.cpp's whisper-cli and a model that the user has added.
class WhisperRecogniser : public Recogniser
{
public:
    explicit WhisperRecogniser(WhisperSetup setup);

    QString name() const override;
    QString contractName() const override;
    QString language() const override;
    qint64 longestSoundMs() const override;
    int mostBreakdowns() const override;
    void prepare() override;
    Heard recognise(const Sound &sound) override;

private:
    QStringList arguments(const QString &base, const QString &language) const;
    void requireSuccess(int status) const;

    WhisperSetup m_setup;
};

// whisper-cli from TUPPI_WHISPER_CLI, or on the path; empty when it is not installed.
QString findWhisperCli();

// Only models for English alone have it in their name.
bool hearsOnlyEnglish(const CustomModel &model);

} // namespace engine

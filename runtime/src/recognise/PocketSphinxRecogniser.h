#pragma once

#include "core/Failure.h"
#include "core/SpeechModel.h"
#include "recognise/Recogniser.h"

struct ps_decoder_s;

namespace engine {

// US English with PocketSphinx, inside this program.
class PocketSphinxRecogniser : public Recogniser
{
public:
    explicit PocketSphinxRecogniser(const SpeechModel &model);
    ~PocketSphinxRecogniser() override;

    QString name() const override;
    QString contractName() const override { return {}; }
    QString language() const override;
    bool usesOneCore() const override { return true; }
    void prepare() override;
    bool staysLoaded() const override { return true; }
    void check() override;
    Heard recognise(const Sound &sound) override;

private:
    bool search(const Sound &sound);
    bool partsAreWhole() const;
    Failure unusable() const;

    struct Release
    {
        void operator()(ps_decoder_s *decoder) const;
    };

    SpeechModel m_model;
    std::unique_ptr<ps_decoder_s, Release> m_decoder;
};

} // namespace engine

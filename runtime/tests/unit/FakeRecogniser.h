#pragma once

#include "recognise/Recogniser.h"

#include <functional>

namespace engine::test {

// Hears one word in every sound: how many samples there were.
class FakeRecogniser : public Recogniser
{
public:
    QString name() const override { return called; }
    QString contractName() const override { return contract; }
    QString language() const override { return hears; }
    void prepare() override {}
    bool usesOneCore() const override { return oneCore; }
    qint64 longestSoundMs() const override { return longest; }
    Heard recognise(const Sound &sound) override
    {
        if (percent > 0)
            sound.progress(percent);
        const auto lengthMs = qint64(sound.samples.size() / 16);
        return {{{0, lengthMs, act ? act(sound.samples) : words(sound.samples)}}, heardLanguage};
    }

    static std::vector<Word> words(std::span<const int16_t> samples)
    {
        return {{QString::number(samples.size()), 0, qint64(samples.size() / 16)}};
    }

    QString called = QStringLiteral("Fake");
    QString contract;
    qint64 longest = 0;
    bool oneCore = false;
    int percent = 0; // told before anything is heard
    QString hears = QStringLiteral("en");
    QString heardLanguage;

    std::function<std::vector<Word>(std::span<const int16_t>)> act;
};

} // namespace engine::test

#pragma once

#include "recognise/Recogniser.h"

#include <functional>

namespace engine::test {

// Hears one word in every sound: how many samples there were.
class FakeRecogniser : public Recogniser
{
public:
    QString name() const override { return QStringLiteral("Fake"); }
    QString contractName() const override { return {}; }
    QString language() const override { return QStringLiteral("en"); }
    void prepare() override {}
    std::vector<Word> recognise(std::span<const int16_t> samples) override
    {
        if (act)
            return act(samples);
        return {{QString::number(samples.size()), 0, qint64(samples.size() / 16)}};
    }

    std::function<std::vector<Word>(std::span<const int16_t>)> act;
};

} // namespace engine::test

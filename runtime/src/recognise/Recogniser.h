#pragma once

#include "store/Segments.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace engine {

// What turns speech into words. One implementation per engine; `recognise` runs in a forked child, so it may
// crash or be killed without harm, and what it keeps in memory is forgotten afterwards: the words of a
// segment depend on that segment alone.
class Recogniser
{
public:
    virtual ~Recogniser() = default;

    // For people, as in "PocketSphinx".
    virtual QString name() const = 0;

    // For the history's `engine`: a text with "parakeet" or "whisper" in it, empty for anything else.
    virtual QString contractName() const = 0;

    // The code of the language that it hears.
    virtual QString language() const = 0;

    // Loads the model, once; in the parent, so that every child shares it. Throws Failure.
    virtual void prepare() = 0;

    // Words of 16 kHz mono sound, their times in milliseconds from its start. Throws Failure.
    virtual std::vector<Word> recognise(std::span<const int16_t> samples) = 0;
};

// The recogniser for what was asked: "auto" takes the best one that is installed and knows the language; the
// language "auto" leaves it to the recogniser. Throws Failure with what is missing.
std::unique_ptr<Recogniser> chooseRecogniser(const QString &engineChoice, const QString &languageChoice);

} // namespace engine

#pragma once

#include "text/Segment.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

namespace engine {

// What is to be recognised.
struct Sound
{
    std::span<const int16_t> samples; // 16 kHz mono
    QString language = {};            // heard in this recording before; empty: not known yet
    std::function<void(int percent)> progress = [](int) {};
};

// Words that were recognised together, such as a sentence. The times of the whole are surer than those of its
// words. Milliseconds from the start of the sound.
struct Phrase
{
    qint64 startMs = 0;
    qint64 endMs = 0;
    std::vector<Word> words;

    bool operator==(const Phrase &) const = default;
};

struct Heard
{
    std::vector<Phrase> phrases;
    QString language; // the code of the language that was heard; empty when nobody listened for it

    bool operator==(const Heard &) const = default;
};

// Thrown by `recognise` when it broke down in a way that may not happen again: it is tried once more.
struct RecogniserBroke
{
};

// What turns speech into words. One implementation per engine; `recognise` runs in a forked child, so it may
// crash or be killed without harm, and what it keeps in memory is forgotten afterwards: the words of a
// sound depend on that sound alone.
class Recogniser
{
public:
    virtual ~Recogniser() = default;

    // For people, as in "PocketSphinx".
    virtual QString name() const = 0;

    // For the history's `engine`: a text with "parakeet" or "whisper" in it, empty for anything else.
    virtual QString contractName() const = 0;

    // The code of the language that it hears; "auto" when it finds out by itself.
    virtual QString language() const = 0;

    // How much sound it wants at once, in milliseconds; 0 for one segment at a time.
    virtual qint64 longestSoundMs() const { return 0; }

    // Whether a sound keeps one core busy and no more, so that several can be recognised side by side.
    virtual bool usesOneCore() const { return false; }

    // How often it may break down in one place before the job has failed.
    virtual int mostBreakdowns() const { return 10; }

    // Loads the model, once; in the parent, so that every child shares it. Throws Failure.
    virtual void prepare() = 0;

    // Whether what `prepare` has loaded is worth keeping for the next job.
    virtual bool staysLoaded() const { return false; }

    // Looks whether it could work, for less than loading everything. Throws Failure.
    virtual void check() { prepare(); }

    // Throws Failure, or RecogniserBroke.
    virtual Heard recognise(const Sound &sound) = 0;
};

// The recogniser for what was asked: "auto" takes the best one that is installed and knows the language; the
// language "auto" leaves it to the recogniser. Throws Failure with what is missing.
std::unique_ptr<Recogniser> chooseRecogniser(const QString &engineChoice, const QString &languageChoice);

// The one for English, whatever else is installed. Throws Failure without its model.
std::unique_ptr<Recogniser> pocketSphinx();

} // namespace engine

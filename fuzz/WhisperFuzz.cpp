#include "Fuzz.h"

#include "recognise/WhisperOutput.h"
#include "text/Words.h"

using namespace engine;

/// What whisper-cli writes: its file with the text, and its progress. Whatever it tells, words are words, and
/// their times rise within the sound.
void readInput(const QByteArray &bytes)
{
    constexpr qint64 soundMs = 10'000;
    if (const std::optional<int> percent = readWhisperProgress(bytes))
        require(*percent >= 0 && *percent <= 100);
    const std::optional<Heard> heard = readWhisperOutput(bytes, soundMs);
    if (!heard)
        return;
    whisperLanguage(heard->language);
    qint64 reached = 0;
    for (const Phrase &phrase : heard->phrases) {
        require(phrase.startMs >= reached && phrase.endMs >= phrase.startMs && phrase.endMs <= soundMs);
        require(!phrase.words.empty());
        reached = phrase.startMs;
        for (const Word &word : phrase.words) {
            require(wordsOf(word.text) == QStringList{word.text});
            require(word.startMs >= reached && word.endMs >= word.startMs && word.endMs <= phrase.endMs);
            reached = word.endMs;
        }
        reached = phrase.endMs;
    }
}

#pragma once

#include "recognise/Recogniser.h"

#include <QByteArray>

#include <optional>

namespace engine {

// Whisper's own code for a language ("en-GB", "eng" and "EN" are "en", "nb" is "no"); empty when it does not
// know the language. "auto" stays.
QString whisperLanguage(const QString &code);

// Reads the file of `whisper-cli --output-json-full`. Its tokens may be parts of characters, and are put
// together as bytes. Words are what stands between blanks; sounds that are only described, as in [Music], are
// left out. Nothing when this is no such file.
std::optional<Heard> readWhisperOutput(const QByteArray &file, qint64 soundMs);

// The last percentage in what `whisper-cli --print-progress` has written so far; nothing when there is none.
std::optional<int> readWhisperProgress(const QByteArray &written);

} // namespace engine

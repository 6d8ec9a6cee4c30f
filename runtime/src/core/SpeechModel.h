#pragma once

#include <QString>

#include <optional>

namespace engine {

// The three parts of a PocketSphinx model.
struct SpeechModel
{
    QString acoustic; // a folder
    QString words;    // language model
    QString dictionary;
};

// The US-English model: from the folder in TUPPI_POCKETSPHINX_MODEL, or where systems install it.
std::optional<SpeechModel> findSpeechModel();

} // namespace engine

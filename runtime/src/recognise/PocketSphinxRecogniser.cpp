#include "recognise/PocketSphinxRecogniser.h"

#include "core/Failure.h"

#include <QFile>

#include <pocketsphinx.h>
#include <sphinxbase/err.h>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

constexpr qint64 frameMs = 10;
constexpr qint64 samplesPerMs = 16;

// The dictionary marks silence and noise by brackets, and second pronunciations by a number: "either(2)".
QString spoken(const char *entry)
{
    QString word = QString::fromUtf8(entry);
    if (word.startsWith(u'<') || word.startsWith(u'[') || word.startsWith(u'+'))
        return {};
    const qsizetype mark = word.indexOf(u'(');
    return mark > 0 ? word.left(mark) : word;
}

} // namespace

PocketSphinxRecogniser::PocketSphinxRecogniser(const SpeechModel &model)
    : m_model(model)
{
}

PocketSphinxRecogniser::~PocketSphinxRecogniser() = default;

void PocketSphinxRecogniser::Release::operator()(ps_decoder_s *decoder) const
{
    ::ps_free(decoder);
}

QString PocketSphinxRecogniser::name() const
{
    return u"PocketSphinx"_s;
}

QString PocketSphinxRecogniser::language() const
{
    return u"en"_s;
}

void PocketSphinxRecogniser::prepare()
{
    if (m_decoder)
        return;
    ::err_set_logfp(nullptr);
    const QByteArray acoustic = QFile::encodeName(m_model.acoustic);
    const QByteArray words = QFile::encodeName(m_model.words);
    const QByteArray dictionary = QFile::encodeName(m_model.dictionary);
    // Silence stays in, so that the times of words hold; cutting at pauses is done before. The two limits (of
    // Gaussians a frame, of states a frame) take a quarter off the search, for one word in a hundred at most.
    cmd_ln_t *settings =
        ::cmd_ln_init(nullptr, ::ps_args(), TRUE, "-hmm", acoustic.constData(), "-lm", words.constData(),
                      "-dict", dictionary.constData(), "-samprate", "16000", "-remove_silence", "no", "-topn",
                      "2", "-maxhmmpf", "5000", "-logfn", "/dev/null", nullptr);
    m_decoder.reset(settings ? ::ps_init(settings) : nullptr);
    if (settings)
        ::cmd_ln_free_r(settings);
    if (!m_decoder)
        throw Failure(u"The speech model in “"_s + m_model.acoustic +
                      u"” could not be loaded. Install it again."_s);
}

Heard PocketSphinxRecogniser::recognise(const Sound &sound)
{
    ps_decoder_t *decoder = m_decoder.get();
    const bool heard =
        ::ps_start_stream(decoder) == 0 && ::ps_start_utt(decoder) == 0 &&
        ::ps_process_raw(decoder, sound.samples.data(), sound.samples.size(), FALSE, TRUE) >= 0 &&
        ::ps_end_utt(decoder) == 0;
    if (!heard)
        throw Failure(u"The speech recogniser stopped with an error."_s);
    std::vector<Word> words;
    for (ps_seg_t *part = ::ps_seg_iter(decoder); part; part = ::ps_seg_next(part)) {
        const QString text = spoken(::ps_seg_word(part));
        int first = 0;
        int last = 0;
        ::ps_seg_frames(part, &first, &last);
        if (!text.isEmpty())
            words.push_back({text, first * frameMs, (last + 1) * frameMs});
    }
    return {{{0, qint64(sound.samples.size()) / samplesPerMs, std::move(words)}}, {}};
}

} // namespace engine

#include "recognise/PocketSphinxRecogniser.h"

#include <QFile>
#include <QtEndian>

#include <pocketsphinx.h>
#include <sphinxbase/err.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <thread>

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

bool endsWithNewline(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.size() > 0 && file.seek(file.size() - 1) &&
           file.read(1) == "\n";
}

// A language model in PocketSphinx's own form begins with a mark, its order and the number of its words, and ends
// with the words themselves behind their length in bytes. The library loads it without them, too.
bool endsWithItsWords(const QString &path)
{
    constexpr QByteArrayView mark("Trie Language Model");
    QFile file(path);
    const qint64 size = file.open(QIODevice::ReadOnly) ? file.size() : 0;
    const uchar *bytes = size > 0 ? file.map(0, size) : nullptr;
    const qint64 numberAt = mark.size() + 1;
    if (!bytes || size < numberAt + 8 || std::memcmp(bytes, mark.data(), size_t(mark.size())) != 0)
        return false;
    const auto *words = bytes + size;
    for (qint64 word = qFromLittleEndian<quint32>(bytes + numberAt); word >= 0 && words; --word)
        words = static_cast<const uchar *>(::memrchr(bytes, 0, size_t(words - bytes)));
    // This is the last byte of the length.
    return words && words - bytes >= numberAt + 8 &&
           qFromLittleEndian<quint32>(words - 3) == size_t(bytes + size - words - 1);
}

// Tells how far the decoder has come while it works, from a thread of its own: the library gives no sign of
// life before it is through with a sound, and counts frames in a number that can be read beside it.
class FrameWatch
{
public:
    FrameWatch(ps_decoder_t *decoder, const Sound &sound)
        : m_decoder(decoder)
        , m_sound(sound)
        , m_thread([this](const std::stop_token &stop) { watch(stop); })
    {
    }

    // Everything was searched once, and is now searched again among the words that were found.
    void secondSearch() { m_second = true; }

private:
    void watch(const std::stop_token &stop)
    {
        std::mutex mutex;
        std::unique_lock lock(mutex);
        std::condition_variable_any ended;
        while (!ended.wait_for(lock, stop, every, [&] { return stop.stop_requested(); }))
            m_sound.progress(percent());
    }

    int percent() const
    {
        const qint64 frames = std::max<qint64>(1, qint64(m_sound.samples.size()) / samplesPerMs / frameMs);
        const qint64 searched = std::clamp<qint64>(::ps_get_n_frames(m_decoder), 0, frames);
        return int(m_second ? firstShare + (100 - firstShare) * searched / frames
                            : firstShare * searched / frames);
    }

    static constexpr std::chrono::milliseconds every{500};
    static constexpr qint64 firstShare = 80; // of the work, in per cent

    ps_decoder_t *m_decoder;
    const Sound &m_sound;
    std::atomic_bool m_second = false;
    std::jthread m_thread; // last: it uses the rest
};

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
        throw unusable();
}

Failure PocketSphinxRecogniser::unusable() const
{
    return Failure(u"The speech model in “"_s + m_model.acoustic +
                   u"” could not be loaded. Install it again."_s);
}

// Without the steps that cost most: making the dictionary's words out of the model's sounds, reading how often
// words follow one another, and tables of logarithms in fine steps.
void PocketSphinxRecogniser::check()
{
    if (!partsAreWhole())
        throw unusable();
}

bool PocketSphinxRecogniser::partsAreWhole() const
{
    ::err_set_logfp(nullptr);
    cmd_ln_t *settings =
        ::cmd_ln_init(nullptr, ::ps_args(), TRUE, "-hmm", QFile::encodeName(m_model.acoustic).constData(),
                      "-logbase", "1.01", "-logfn", "/dev/null", nullptr);
    const std::unique_ptr<ps_decoder_s, Release> sounds(settings ? ::ps_init(settings) : nullptr);
    if (settings)
        ::cmd_ln_free_r(settings);
    return sounds && endsWithNewline(m_model.dictionary) && endsWithItsWords(m_model.words);
}

bool PocketSphinxRecogniser::search(const Sound &sound)
{
    ps_decoder_t *decoder = m_decoder.get();
    FrameWatch watch(decoder, sound);
    if (::ps_start_stream(decoder) != 0 || ::ps_start_utt(decoder) != 0 ||
        ::ps_process_raw(decoder, sound.samples.data(), sound.samples.size(), FALSE, TRUE) < 0)
        return false;
    watch.secondSearch();
    return ::ps_end_utt(decoder) == 0;
}

Heard PocketSphinxRecogniser::recognise(const Sound &sound)
{
    ps_decoder_t *decoder = m_decoder.get();
    if (!search(sound))
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

#include "speakers/Cepstra.h"

#include "core/Failure.h"

#include <pocketsphinx.h>
#include <sphinxbase/err.h>
#include <sphinxbase/fe.h>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

// The first number of a cepstrum is the loudness, the others are the form of the spectrum.
constexpr int withLoudness = cepstrumSize + 1;
// Where between the quiet and the loud of a stretch a voice begins.
constexpr float voiceFrom = 0.4F;

Eigen::MatrixXf columns(float **rows, int count)
{
    Eigen::MatrixXf all(withLoudness, count);
    for (int i = 0; i < count; ++i)
        all.col(i) = Eigen::Map<const Eigen::VectorXf>(rows[i], withLoudness);
    return all;
}

float loudnessAt(std::vector<float> sorted, double share)
{
    const auto place = sorted.begin() + std::ptrdiff_t(share * double(sorted.size() - 1));
    std::ranges::nth_element(sorted, place);
    return *place;
}

} // namespace

void CepstraSource::Release::operator()(fe_s *frontEnd) const
{
    ::fe_free(frontEnd);
}

CepstraSource::CepstraSource()
{
    ::err_set_logfp(nullptr);
    cmd_ln_t *settings = ::cmd_ln_init(nullptr, ::fe_get_args(), TRUE, "-samprate", "16000", "-ncep", "20",
                                       "-nfilt", "30", "-lowerf", "100", "-upperf", "7000", "-transform",
                                       "dct", "-remove_dc", "yes", "-remove_noise", "no", "-remove_silence",
                                       "no", "-dither", "no", nullptr);
    m_frontEnd.reset(settings ? ::fe_init_auto_r(settings) : nullptr);
    if (settings)
        ::cmd_ln_free_r(settings);
    if (!m_frontEnd)
        throw Failure(u"The analysis of voices could not be started."_s);
}

VoicedFrames CepstraSource::voiced(std::span<const int16_t> samples)
{
    mfcc_t **rows = nullptr;
    int32 count = 0;
    ::fe_start_stream(m_frontEnd.get());
    ::fe_start_utt(m_frontEnd.get());
    if (::fe_process_utt(m_frontEnd.get(), samples.data(), samples.size(), &rows, &count) < 0)
        throw Failure(u"The analysis of voices stopped with an error."_s);
    Eigen::MatrixXf all = columns(rows, count);
    ::fe_free_2d(rows);
    // The end is less than a frame; it must be taken off all the same.
    std::array<mfcc_t, withLoudness> rest;
    int32 left = 0;
    ::fe_end_utt(m_frontEnd.get(), rest.data(), &left);

    VoicedFrames found;
    if (count == 0)
        return found;
    const std::vector<float> loudness(all.row(0).begin(), all.row(0).end());
    const float quiet = loudnessAt(loudness, 0.05);
    const float loud = loudnessAt(loudness, 0.95);
    for (int i = 0; i < count; ++i) {
        if (loudness[size_t(i)] >= quiet + voiceFrom * (loud - quiet))
            found.at.push_back(i);
    }
    found.cepstra.resize(Eigen::NoChange, found.count());
    for (int i = 0; i < found.count(); ++i)
        found.cepstra.col(i) = all.col(found.at[size_t(i)]).tail<cepstrumSize>();
    return found;
}

} // namespace engine

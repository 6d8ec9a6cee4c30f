#include "app/AppDelegate.h"

#include "engine/DebugLog.h"
#include "platform/SoundPlayer.h"
#include "settings/L.h"
#include "settings/SettingsWindow.h"
#include "ui/MainWindow.h"

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

const QString purrSound = u"cat-purr"_s;
const QString meowSound = u"cat-meow"_s;

} // namespace

SoundState::SoundState() = default;
SoundState::~SoundState() = default;

bool AppDelegate::soundsOn() const
{
    return m_queue.defaults.isOn(u"sounds"_s);
}

void AppDelegate::refreshSoundUI()
{
    m_ui.window->setSoundsOn(soundsOn());
    if (m_settings.window)
        m_settings.window->setToggle(u"sounds"_s, soundsOn());
}

void AppDelegate::toggleSounds()
{
    const bool wereOn = soundsOn();
    m_queue.defaults.set({{u"sounds"_s, !wereOn}});
    refreshSoundUI();
    updatePurr();
    flash(wereOn ? L(u"Sounds off"_s) : L(u"Sounds on"_s));
}

void AppDelegate::meow()
{
    if (soundsOn())
        soundPlayer().play(meowSound, soundVolume, false);
}

void AppDelegate::updatePurr()
{
    if (!m_ui.window) // a terminal makes no sound
        return;
    const bool wanted = soundsOn() && IsPurringWork(*m_jobs.history);
    if (!wanted)
        m_sounds.purrRefused = false;
    switch (NextPurrStep(m_sounds.purr, wanted)) {
    case PurrStep::None:
        return;
    case PurrStep::Start:
        soundPlayer().play(purrSound, soundVolume, true);
        break;
    case PurrStep::Restore:
        m_sounds.purrFade.stop();
        soundPlayer().setVolume(purrSound, soundVolume);
        break;
    case PurrStep::Fade:
        m_sounds.purr = Purr::Fading;
        m_sounds.purrFade.start();
        return;
    }
    m_sounds.purr = Purr::Playing;
    m_sounds.purrVolume = soundVolume;
}

void AppDelegate::fadePurr()
{
    m_sounds.purrVolume = FadedVolume(m_sounds.purrVolume);
    m_sounds.player->setVolume(purrSound, m_sounds.purrVolume);
    if (!IsFadedOut(m_sounds.purrVolume))
        return;
    m_sounds.player->stop(purrSound);
    m_sounds.purrFade.stop();
    m_sounds.purr = Purr::Silent;
}

void AppDelegate::soundStarted(const QString &name, bool loaded, bool plays)
{
    const QVariantList result{int(plays), loaded ? u"loaded"_s : u"nil"_s};
    if (name == meowSound) {
        DebugLog(u"sound meow play=%d sound=%@"_s, result);
        return;
    }
    // Tried again at every poll while there is work: once in the log is enough.
    if (plays || !m_sounds.purrRefused)
        DebugLog(u"sound purr start play=%d sound=%@"_s, result);
    m_sounds.purrRefused = !plays;
    if (!plays)
        soundLost(name);
}

void AppDelegate::soundLost(const QString &name)
{
    if (name != purrSound)
        return;
    m_sounds.purrFade.stop();
    m_sounds.purr = Purr::Silent;
}

SoundPlayer &AppDelegate::soundPlayer()
{
    if (!m_sounds.player) {
        m_sounds.player = std::make_unique<SoundPlayer>();
        connect(m_sounds.player.get(), &SoundPlayer::started, this, &AppDelegate::soundStarted);
        connect(m_sounds.player.get(), &SoundPlayer::lost, this, &AppDelegate::soundLost);
        m_sounds.purrFade.setInterval(fadeStepMilliseconds);
        m_sounds.purrFade.setTimerType(Qt::PreciseTimer);
        connect(&m_sounds.purrFade, &QTimer::timeout, this, &AppDelegate::fadePurr);
    }
    return *m_sounds.player;
}

} // namespace tuppi

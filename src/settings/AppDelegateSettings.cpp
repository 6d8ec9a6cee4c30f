#include "app/AppDelegate.h"

#include "intake/ConfirmRussian.h"
#include "intake/Languages.h"
#include "intake/SetupChoices.h"
#include "platform/FolderSize.h"
#include "settings/AboutWindow.h"
#include "settings/AcknowledgementsWindow.h"
#include "settings/L.h"
#include "settings/SettingsWindow.h"
#include "ui/MainWindow.h"
#include "ui/Sheet.h"

#include <QCoreApplication>
#include <QLocale>

namespace tuppi {

using namespace Qt::StringLiterals;

SettingsState::SettingsState() = default;
SettingsState::~SettingsState() = default;

void AppDelegate::showSettings()
{
    if (!m_settings.window)
        buildSettings();
    refreshLibrary();
    refreshHealth();
    refreshCustomModels();
    m_settings.window->bringForward();
}

void AppDelegate::buildSettings()
{
    const Defaults &defaults = m_queue.defaults;
    SettingsOpening opening;
    opening.interfaceLanguages = InterfaceLanguageChoices();
    opening.interfaceLanguage = ChosenInterfaceLanguage(defaults.value(u"AppleLanguages"_s));
    opening.models = ModelChoices(allModels(m_models.custom));
    opening.model = defaults.text(u"engine"_s);
    opening.languages = LanguageChoices(Languages(QLocale()));
    opening.language = defaults.text(u"language"_s);
    for (const QString &key : {u"notify"_s, u"sounds"_s, u"speakers"_s, u"quickMode"_s})
        opening.toggles.insert(key, defaults.isOn(key));
    m_settings.window = std::make_unique<SettingsWindow>(opening);
    SettingsWindow *window = m_settings.window.get();
    connect(window, &SettingsWindow::toggleChanged, this, &AppDelegate::settingToggleChanged);
    connect(window, &SettingsWindow::choiceChanged, this, &AppDelegate::settingPopupChanged);
    connect(window, &SettingsWindow::interfaceLanguageChosen, this, &AppDelegate::interfaceLanguageChanged);
    connect(window, &SettingsWindow::command, this, &AppDelegate::perform);
    connectModelsPane();
    rebuildModelsUI();
}

/// Where a sheet about a setting stands: a failure may come when the Settings window is closed again.
QWidget *AppDelegate::settingsSheetWindow() const
{
    if (m_settings.window && m_settings.window->isVisible())
        return m_settings.window.get();
    return m_ui.window.get();
}

void AppDelegate::settingToggleChanged(const QString &key, bool on)
{
    m_queue.defaults.set({{key, on}});
    if (key == "sounds"_L1) {
        refreshSoundUI();
        updatePurr();
    }
}

void AppDelegate::settingPopupChanged(const QString &key, const QString &value)
{
    const QString old = m_queue.defaults.text(key);
    if (key != "language"_L1 || !NeedsRussianConfirmation(old, value)) {
        m_queue.defaults.set({{key, value}});
        return;
    }
    confirmRussianOn(m_settings.window.get(), [this, key, value, old](bool accepted) {
        if (accepted)
            m_queue.defaults.set({{key, value}});
        else
            m_settings.window->setChoice(key, old);
    });
}

void AppDelegate::interfaceLanguageChanged(const QString &code)
{
    m_queue.defaults.set({{u"AppleLanguages"_s, StoredInterfaceLanguage(code)}});
    constexpr int restartNow = 0;
    SheetText text;
    text.message = L(u"Restart Tuppi Transcriber to switch the language?"_s);
    text.detail = L(u"Transcriptions in progress keep running while the app restarts."_s);
    text.buttons = {L(u"Restart Now"_s), L(u"Later"_s)};
    text.escapeButton = 1;
    Sheet::open(m_settings.window.get(), text, [this](int button) {
        if (button != restartNow)
            return;
        m_viewer.relaunches = true;
        QCoreApplication::quit();
    });
}

} // namespace tuppi

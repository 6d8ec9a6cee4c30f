#pragma once

#include "settings/AddModelForm.h"
#include "settings/PathField.h"
#include "settings/SettingsTabs.h"
#include "settings/SettingsWindow.h"
#include "ui/PopUpButton.h"
#include "ui/TextField.h"
#include "ui/TickBox.h"
#include "window/WindowTest.h"

#include <QApplication>

namespace tuppi::test {

enum Tab { General, Transcription, Storage, Models, Engine };

/// The application with its Settings window open.
class SettingsTest : public WindowTest
{
protected:
    void SetUp() override;

    void openSettings();
    /// Opens it on that tab.
    void openTab(Tab tab);

    SettingsWindow *settingsWindow() const;
    template <typename Child> Child *part(const QString &name) const
    {
        return settingsWindow()->findChild<Child *>(name);
    }
    QString text(const QString &name) const { return part<QLabel>(name)->text(); }
    bool says(const QString &name, const QString &text) const;
    PopUpButton *menu(const QString &name) const { return part<PopUpButton>(name); }
    QStringList itemsOf(const QString &name) const;
    /// Opens the menu, which must be in sight, and picks that item by keys.
    void choose(const QString &name, const QString &value) const;
    /// The sheet over the Settings window, null when there is none.
    Sheet *settingsSheet() const;
    /// Waits until it is there and has the keyboard.
    bool settingsSheetOpens() const;
    bool settingsSheetCloses() const;
    /// "message|detail|button|button…"
    QString sheetSays() const;
};

} // namespace tuppi::test

#pragma once

#include "settings/SettingsChoices.h"
#include "ui/SideWindow.h"

#include <QHash>

QT_BEGIN_NAMESPACE
class QScrollArea;
class QStackedWidget;
QT_END_NAMESPACE

namespace tuppi {

class EnginePane;
class ModelsPane;
class PopUpButton;
class SettingsTabs;
class StoragePane;
class TickBox;

/// What the Settings window is opened with: the stored choices, or their defaults.
struct SettingsOpening
{
    QList<Choice> interfaceLanguages;
    QList<Choice> models;
    QList<Choice> languages;
    QString interfaceLanguage;
    QString model;
    QString language;
    QHash<QString, bool> toggles;  ///< by key of the defaults store
};

/// The Settings window: five panes behind tabs. It stores nothing; it shows what it is given and says what was
/// changed. It is as wide as its widest pane and as high as the pane in front; where the screen is lower, that
/// one scrolls.
class SettingsWindow : public SideWindow
{
    Q_OBJECT
public:
    explicit SettingsWindow(const SettingsOpening &opening);

    void showTab(int tab);
    void setToggle(const QString &key, bool on);
    /// Selects the item of that value in the menu bound to a key, if there is one.
    void setChoice(const QString &key, const QString &value);
    void setModelChoices(const QList<Choice> &models, const QString &current);

    StoragePane *storage() const { return m_storage; }
    ModelsPane *models() const { return m_models; }
    EnginePane *engine() const { return m_engine; }

Q_SIGNALS:
    void toggleChanged(const QString &key, bool on);
    void choiceChanged(const QString &key, const QString &value);
    void interfaceLanguageChosen(const QString &code);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    QWidget *buildHeader();
    void addPane(const QString &symbol, const QString &title, QWidget *pane);
    void addKeys();
    QWidget *generalPane(const SettingsOpening &opening);
    QWidget *transcriptionPane(const SettingsOpening &opening);
    TickBox *boundToggle(const QString &title, const QString &key, const SettingsOpening &opening);
    PopUpButton *boundPopup(const QString &key, const QList<Choice> &choices, const QString &value);
    void stepTab(int by);
    void fit();
    int neededWidth() const;

    QWidget *m_header = nullptr;
    SettingsTabs *m_tabs = nullptr;
    QStackedWidget *m_panes = nullptr;
    QList<QWidget *> m_pages;
    StoragePane *m_storage = nullptr;
    ModelsPane *m_models = nullptr;
    EnginePane *m_engine = nullptr;
};

} // namespace tuppi

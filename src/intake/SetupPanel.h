#pragma once

#include "app/WaitingQueue.h"
#include "intake/Languages.h"
#include "intake/SetupTexts.h"
#include "settings/Models.h"

#include <QDialog>
#include <QList>
#include <QTimer>
#include <QUrl>

QT_BEGIN_NAMESPACE
class QScrollArea;
class QVBoxLayout;
QT_END_NAMESPACE

namespace tuppi {

class DropView;
class FileBox;
class Mascots;
class ModelCard;
class PillButton;
class PopUpButton;
class TickBox;
class WrapLabel;

/// What a panel is opened with.
struct SetupOpening
{
    QList<ModelRow> models;
    QList<LanguageRow> languages;
    StartChoices choices;       ///< the stored ones; what is not offered gives way
    QString interfaceLanguage;  ///< "ar", "zh-Hans" …
};

/// The New Transcription panel: where a batch of files waits while the person chooses how it is transcribed.
///
/// Shown with open(), as a sheet over its parent. It decides nothing and closes nothing: whoever opened it takes
/// the signals, hides it with done() and deletes it. It is as high as its content needs; where the screen is
/// lower, all but the row of buttons scrolls.
class SetupPanel : public QDialog
{
    Q_OBJECT
public:
    /// `mascots` outlives the panel.
    SetupPanel(const SetupOpening &opening, Mascots &mascots, QWidget *parent);

    /// Shows a batch. Lengths come in by the thousand: of those given within a moment, the last is shown.
    void showTexts(const SetupTexts &texts);

    /// Offers these from now on. The choice stays while it is among them, else the first takes its place.
    void setModels(const QList<ModelRow> &models);

    /// As they stand now. A language that is still to be confirmed is not among them.
    StartChoices choices() const;

    /// Escape, Cancel and the window system's own way of closing.
    void reject() override;

Q_SIGNALS:
    void startRequested(const tuppi::StartChoices &choices);
    void cancelled();
    void addMoreRequested();
    void filesDropped(const QList<QUrl> &files);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void buildPage(const SetupOpening &opening, Mascots &mascots);
    QWidget *buildHeader(Mascots &mascots);
    void fillCards(const QList<ModelRow> &models);
    QLayout *buildLanguageRow(const SetupOpening &opening);
    QWidget *buildButtons();
    void addOption(QVBoxLayout *stack, TickBox *option, const QString &help);
    void setTabOrders();
    void chooseModel(const QString &engine);
    void languageChanged();
    void selectLanguage(const QString &code);
    void refreshHint();
    void showLength();
    void fitHeight();
    void keepOnScreen();
    int availableHeight() const;

    QString m_engine;
    QList<ModelRow> m_models; ///< that the cards show
    QString m_language;            ///< the accepted choice; the pop-up may show one that waits for confirmation
    bool m_confirming = false;
    QString m_length;              ///< as last given
    QString m_lengthShown;
    QTimer m_lengthPause;

    DropView *m_ground;
    QScrollArea *m_scroll;
    QWidget *m_page;
    QWidget *m_edge;  ///< where the page ends and the buttons begin, while it scrolls
    FileBox *m_files = nullptr;
    QWidget *m_cardGround = nullptr;
    QList<ModelCard *> m_cards;
    PopUpButton *m_languages = nullptr;
    WrapLabel *m_hint = nullptr;
    TickBox *m_speakers = nullptr;
    TickBox *m_quick = nullptr;
    QWidget *m_buttons = nullptr;
    PillButton *m_cancel = nullptr;
    PillButton *m_start = nullptr;
};

} // namespace tuppi

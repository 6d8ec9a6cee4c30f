#include "intake/SetupPanel.h"

#include "intake/ConfirmRussian.h"
#include "intake/FileBox.h"
#include "intake/SetupChoices.h"
#include "intake/SetupMetrics.h"
#include "ui/Labels.h"
#include "ui/ModelCard.h"
#include "ui/PillButton.h"
#include "ui/PopUpButton.h"
#include "ui/SlimScrollBar.h"
#include "ui/TickBox.h"

#include <QEvent>
#include <QLayout>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>
#include <QWindow>

namespace tuppi {

using namespace SetupMetrics;

StartChoices SetupPanel::choices() const
{
    return {m_engine, m_language, m_speakers->isChecked(), m_quick->isChecked()};
}

void SetupPanel::reject()
{
    Q_EMIT cancelled();
}

void SetupPanel::showTexts(const SetupTexts &texts)
{
    m_files->setFiles(texts.files);
    m_start->setTitle(texts.start);
    m_length = texts.length;
    if (!m_lengthPause.isActive())
        showLength();
}

void SetupPanel::showLength()
{
    if (m_length == m_lengthShown)
        return;
    m_lengthShown = m_length;
    m_files->setLength(m_length);
    m_lengthPause.start();
}

void SetupPanel::chooseModel(const QString &engine)
{
    m_engine = engine;
    for (ModelCard *card : std::as_const(m_cards))
        card->setPicked(card->engine() == engine);
    refreshHint();
}

void SetupPanel::setModels(const QList<ModelRow> &models)
{
    if (models == m_models)
        return; // a card keeps the keyboard, and the pointer that is about to choose it
    const auto *focused = qobject_cast<ModelCard *>(focusWidget());
    const QString focusedEngine = focused ? focused->engine() : QString();
    fillCards(models);
    chooseModel(HasModel(models, m_engine) || models.isEmpty() ? m_engine : models.first().id);
    setTabOrders();
    for (ModelCard *card : std::as_const(m_cards)) {
        if (focused && card->engine() == focusedEngine)
            card->setFocus();
    }
}

void SetupPanel::languageChanged()
{
    const QString code = m_languages->currentData().toString();
    if (m_confirming)
        return;
    if (!NeedsRussianConfirmation(m_language, code)) {
        m_language = code;
        refreshHint();
        return;
    }
    m_confirming = true;
    confirmRussianOn(this, [this, code](bool accepted) {
        m_confirming = false;
        selectLanguage(accepted ? code : m_language);
    });
}

/// Takes a choice as accepted and shows it.
void SetupPanel::selectLanguage(const QString &code)
{
    m_language = code;
    m_languages->setCurrentIndex(m_languages->findData(code));
    refreshHint();
}

void SetupPanel::refreshHint()
{
    const QString name = m_languages->itemText(m_languages->findData(m_language));
    m_hint->setText(LanguageHint(m_engine, m_language, name));
    m_languages->setAccessibleDescription(m_hint->text());
}

bool SetupPanel::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_page && event->type() == QEvent::LayoutRequest)
        fitHeight();
    return QDialog::eventFilter(watched, event);
}

void SetupPanel::showEvent(QShowEvent *event)
{
    fitHeight();
    QDialog::showEvent(event);
    if (QWindow *window = windowHandle())
        connect(window, &QWindow::screenChanged, this, &SetupPanel::fitHeight, Qt::UniqueConnection);
}

/// What the screen leaves to the panel, its frame aside.
int SetupPanel::availableHeight() const
{
    const int frame = qMax(frameGeometry().height() - geometry().height(), style()->pixelMetric(QStyle::PM_TitleBarHeight));
    return screen()->availableGeometry().height() - frame;
}

void SetupPanel::fitHeight()
{
    const int buttons = buttonMargins.top() + m_start->sizeHint().height() + buttonMargins.bottom();
    const int wanted = m_page->layout()->totalHeightForWidth(panelWidth) + buttons;
    const int height = qMin(wanted, availableHeight());
    const bool scrolls = wanted > height;
    // The scroll bar stands in the trailing margin, so that the content keeps its width.
    constexpr int bar = SlimScrollBar::extent;
    const QMargins taken = layoutDirection() == Qt::RightToLeft ? QMargins(bar, 0, 0, 0) : QMargins(0, 0, bar, 0);
    m_page->layout()->setContentsMargins(scrolls ? pageMargins - taken : pageMargins);
    m_scroll->setVerticalScrollBarPolicy(scrolls ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
    m_edge->setVisible(scrolls);
    m_buttons->layout()->setContentsMargins(scrolls ? buttonMarginsBelowEdge : buttonMargins);
    setFixedSize(panelWidth, height);
    keepOnScreen();
}

/// A panel that has grown downwards moves up.
void SetupPanel::keepOnScreen()
{
    if (!isVisible())
        return;
    const QRect free = screen()->availableGeometry();
    const int over = frameGeometry().bottom() - free.bottom();
    if (over > 0)
        move(x(), qMax(free.top(), y() - over));
}

} // namespace tuppi

#include "ui/Footer.h"

#include "settings/L.h"
#include "ui/Colours.h"
#include "ui/Fonts.h"
#include "ui/IconButton.h"
#include "ui/Labels.h"
#include "ui/Metrics.h"
#include "ui/PillButton.h"

#include <QAccessible>
#include <QEvent>
#include <QPainter>
#include <QStyle>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

IconButton *slateButton(const QString &symbol, const QString &tip, const QString &name, QWidget *parent)
{
    IconButton *button = iconButton(symbol, tip, parent);
    button->setTint(Colours::slate);
    button->setObjectName(name);
    return button;
}

} // namespace

QRect SummaryRect(QRect bar, int textWidth, int leftEnd, int rightStart)
{
    const int width = qMax(0, qMin(textWidth, rightStart - leftEnd));
    const int left = qBound(leftEnd, bar.left() + (bar.width() - width) / 2, rightStart - width);
    return {left, bar.top(), width, bar.height()};
}

Footer::Footer(QWidget *parent)
    : QWidget(parent)
    , m_add(IconPill(u"plus"_s, L(u"Add audio file"_s), 0, this))
    , m_summary(new ElidedLabel(this))
    , m_sound(slateButton(u"speaker.wave.2.fill"_s, {}, u"soundButton"_s, this))
    , m_settings(slateButton(u"gearshape"_s, L(u"Settings…"_s), u"settingsButton"_s, this))
    , m_clear(slateButton(u"trash"_s, L(u"Clear the list…"_s), u"clearButton"_s, this))
    , m_folder(IconPill(u"folder"_s, L(u"Show all transcripts in Finder"_s), 3, this))
{
    m_add->setObjectName(u"addButton"_s);
    m_folder->setObjectName(u"folderButton"_s);
    m_summary->setObjectName(u"statusLabel"_s);
    m_summary->setFont(System(14));
    m_summary->setColour(Colours::slate);
    m_summary->setAlignment(Qt::AlignCenter);
    setSummary(L(u"No transcriptions"_s));
    setSoundsOn(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    const std::pair<QAbstractButton *, QString> commands[] = {{m_add, u"chooseFiles"_s},
                                                              {m_sound, u"toggleSounds"_s},
                                                              {m_settings, u"showSettings"_s},
                                                              {m_clear, u"clearList"_s},
                                                              {m_folder, u"openLibrary"_s}};
    for (const auto &[button, action] : commands)
        connect(button, &QAbstractButton::clicked, this, [this, name = action] { Q_EMIT command(name); });
}

void Footer::setSummary(const QString &text)
{
    if (text == m_summary->text() && !m_summary->accessibleName().isEmpty())
        return;
    m_summary->setText(text);
    m_summary->setAccessibleName(text);
    arrange();
}

QString Footer::summary() const
{
    return m_summary->text();
}

void Footer::setSoundsOn(bool on)
{
    m_sound->setSymbol(on ? u"speaker.wave.2.fill"_s : u"speaker.slash.fill"_s);
    m_sound->setTip(on ? L(u"Turn Tuppi's sounds off"_s) : L(u"Turn Tuppi's sounds on"_s));
}

QSize Footer::sizeHint() const
{
    return {680, Metrics::footerHeight};
}

QSize Footer::minimumSizeHint() const
{
    return {320, Metrics::footerHeight};
}

void Footer::arrange()
{
    const QRect bar = rect();
    const QRect inner = bar.adjusted(Metrics::footerMarginX, 0, -Metrics::footerMarginX, 0);
    int right = inner.right() + 1;
    const auto putRight = [&](QWidget *widget, int gap) {
        const QSize size = widget->sizeHint();
        right -= size.width();
        const QRect place(right, bar.center().y() - size.height() / 2 + 1, size.width(), size.height());
        widget->setGeometry(QStyle::visualRect(layoutDirection(), bar, place));
        right -= gap;
    };
    putRight(m_folder, 10);
    putRight(m_clear, 6);
    putRight(m_settings, 6);
    putRight(m_sound, 10);
    const QSize add = m_add->sizeHint();
    const QRect addPlace(inner.left(), bar.center().y() - add.height() / 2 + 1, add.width(), add.height());
    m_add->setGeometry(QStyle::visualRect(layoutDirection(), bar, addPlace));
    const QRect summary = SummaryRect(bar, m_summary->sizeHint().width() + 1, addPlace.right() + 1 + 10, right);
    m_summary->setGeometry(QStyle::visualRect(layoutDirection(), bar, summary));
}

void Footer::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Colours::cardBorder, 1));
    painter.setBrush(Colours::white);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), Metrics::footerRadius, Metrics::footerRadius);
}

void Footer::resizeEvent(QResizeEvent *)
{
    arrange();
}

void Footer::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LayoutDirectionChange || event->type() == QEvent::FontChange)
        arrange();
    QWidget::changeEvent(event);
}

} // namespace tuppi

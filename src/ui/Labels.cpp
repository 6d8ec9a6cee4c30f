#include "ui/Labels.h"

#include "ui/Colours.h"
#include "ui/Fonts.h"
#include "ui/Painting.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QHelpEvent>
#include <QLocale>
#include <QPainter>
#include <QStyle>
#include <QTextLayout>
#include <QTextOption>
#include <QToolTip>

#include <cmath>

namespace tuppi {

namespace {

constexpr int hintWidth = 400;

// Other scripts may stand taller than the font's own line.
constexpr int oneLine = Qt::TextSingleLine | Qt::TextDontClip;

/// The blank that a line breaks at is no part of it: at the trailing edge it would push the line outwards.
QString withoutTrailingBlanks(QString line)
{
    while (line.endsWith(u' '))
        line.chop(1);
    return line;
}

/// How much taller a line is than the font's own, where another font stands in for the script.
double extraHeight(const QTextLine &line, const QFontMetricsF &metrics)
{
    return line.isValid() ? qMax(0.0, line.height() - metrics.height()) : 0;
}

double extraHeight(const QString &text, const QLabel &label)
{
    QTextLayout layout(text, label.font(), const_cast<QLabel *>(&label));
    layout.beginLayout();
    QTextLine line = layout.createLine();
    if (line.isValid())
        line.setNumColumns(int(text.size()));
    layout.endLayout();
    return extraHeight(line, QFontMetricsF(label.font(), &label));
}

/// The alignment for the label's own direction, which the direction of the text must not turn round.
Qt::Alignment absolute(const QLabel &label)
{
    return QStyle::visualAlignment(label.layoutDirection(), label.alignment()) | Qt::AlignAbsolute;
}

} // namespace

ElidedLabel::ElidedLabel(QWidget *parent)
    : QLabel(parent)
    , m_colour(Colours::navy)
{
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void ElidedLabel::setColour(const QColor &colour)
{
    m_colour = colour;
    update();
}

void ElidedLabel::setElideMode(Qt::TextElideMode mode)
{
    m_elideMode = mode;
    update();
}

QString ElidedLabel::shownText() const
{
    return fontMetrics().elidedText(onOneLine(text()), m_elideMode, width());
}

QSize ElidedLabel::sizeHint() const
{
    const QString line = onOneLine(text());
    return {fontMetrics().horizontalAdvance(line) + 1, fontMetrics().height() + qRound(extraHeight(line, *this))};
}

QSize ElidedLabel::minimumSizeHint() const
{
    return {0, sizeHint().height()};
}

bool ElidedLabel::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty()) {
        if (shownText() != onOneLine(text()))
            QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), plainToolTip(text()), this);
        else
            QToolTip::hideText();
        return true;
    }
    return QLabel::event(event);
}

void ElidedLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setLayoutDirection(Qt::LayoutDirectionAuto);
    painter.setPen(m_colour);
    painter.drawText(rect(), int(absolute(*this)) | oneLine, shownText());
}

/// The lines of a label as they are laid out: plain texts, the last one elided where the rest does not fit.
struct WrapLabel::Lines
{
    QStringList texts;
    QList<Qt::LayoutDirection> directions; ///< of the paragraph that each belongs to
    double width = 0;
    double spacing = 0; ///< from one line to the next
};

WrapLabel::WrapLabel(QWidget *parent)
    : QLabel(parent)
    , m_colour(Colours::slate)
{
    setTextFormat(Qt::PlainText);
    setAlignment(Qt::AlignLeading | Qt::AlignTop);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void WrapLabel::setColour(const QColor &colour)
{
    m_colour = colour;
    update();
}

void WrapLabel::setPreferredWidth(int width)
{
    m_preferredWidth = width;
    updateGeometry();
}

void WrapLabel::setMaximumLines(int lines)
{
    m_maximumLines = lines;
    updateGeometry();
    update();
}

WrapLabel::Lines WrapLabel::breakLines(double width) const
{
    Lines lines;
    const QStringList paragraphs = text().split(u'\n');
    const QFontMetricsF metrics(font(), this);
    double extra = 0;
    QString whole = text();
    whole.replace(u'\n', QChar::LineSeparator);
    QTextLayout layout(whole, font(), const_cast<WrapLabel *>(this));
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        extra = qMax(extra, extraHeight(line, metrics));
        const bool last = m_maximumLines > 0 && lines.texts.size() == m_maximumLines - 1;
        const int end = line.textStart() + line.textLength();
        const auto paragraph = QStringView(whole).first(line.textStart()).count(QChar::LineSeparator);
        lines.directions.append(paragraphs.at(paragraph).isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
        if (last && end < whole.size()) {
            lines.texts.append(
                metrics.elidedText(onOneLine(whole.mid(line.textStart())), Qt::ElideRight, width));
            lines.width = width;
            break;
        }
        lines.texts.append(withoutTrailingBlanks(onOneLine(whole.mid(line.textStart(), line.textLength()))));
        lines.width = qMax(lines.width, line.naturalTextWidth());
    }
    layout.endLayout();
    lines.spacing = metrics.lineSpacing() + extra;
    return lines;
}

QString WrapLabel::shownText() const
{
    return breakLines(width()).texts.join(u'\n');
}

QSize WrapLabel::sizeHint() const
{
    const Lines lines = breakLines(m_preferredWidth);
    const int width = qMin(m_preferredWidth, int(std::ceil(lines.width)));
    return {width, heightForWidth(qMax(width, 1))};
}

QSize WrapLabel::minimumSizeHint() const
{
    return {qMin(sizeHint().width(), fontMetrics().averageCharWidth() * 8), fontMetrics().height()};
}

int WrapLabel::heightForWidth(int width) const
{
    const Lines lines = breakLines(width);
    return int(std::ceil(double(lines.texts.size()) * lines.spacing));
}

void WrapLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setPen(Colours::withOpacity(m_colour, isEnabled() ? 1 : 0.5));
    const Lines lines = breakLines(width());
    const int across = int(absolute(*this) & ~Qt::AlignVertical_Mask) | Qt::AlignTop | oneLine;
    const double free = qMax(0.0, height() - double(lines.texts.size()) * lines.spacing);
    double y = alignment() & Qt::AlignVCenter ? free / 2 : 0;
    for (qsizetype line = 0; line < lines.texts.size(); ++line) {
        // By its paragraph: a later line may begin with a name in another script.
        painter.setLayoutDirection(lines.directions.at(line));
        painter.drawText(QRectF(0, y, width(), lines.spacing), across, lines.texts.at(line));
        y += lines.spacing;
    }
}

BadgeLabel::BadgeLabel(const QString &note, QWidget *parent)
    : QLabel(note, parent)
{
    setTextFormat(Qt::PlainText);
    setFont(System(11, QFont::ExtraBold));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize BadgeLabel::sizeHint() const
{
    return {fontMetrics().horizontalAdvance(u' ' + text() + u' ') + 4, fontMetrics().height() + 1};
}

void BadgeLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Colours::badge);
    painter.drawRoundedRect(QRectF(rect()), 6, 6);
    painter.setLayoutDirection(Qt::LayoutDirectionAuto);
    painter.setPen(Colours::navy);
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(text(), Qt::ElideRight, width() - 4));
}

QLabel *SectionLabel(const QString &text, const QString &language, QWidget *parent)
{
    auto *label = new QLabel(QLocale().toUpper(text), parent);
    label->setTextFormat(Qt::PlainText);
    QFont font = System(12, QFont::ExtraBold);
    const bool spaced = language != QLatin1String("ar") && language != QLatin1String("hi") &&
                        language != QLatin1String("zh-Hans");
    font.setLetterSpacing(QFont::AbsoluteSpacing, spaced ? 0.6 : 0);
    label->setFont(font);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, Colours::slate);
    label->setPalette(palette);
    // By the interface's direction: left to itself, a text in another script stands at the wrong side.
    label->setAlignment(absolute(*label));
    return label;
}

WrapLabel *hint(const QString &text, QWidget *parent)
{
    auto *label = new WrapLabel(parent);
    label->setFont(System(11));
    label->setColour(Colours::hintText);
    label->setPreferredWidth(hintWidth);
    label->setText(text);
    return label;
}

QWidget *indent(QWidget *view, int by, QWidget *parent)
{
    auto *container = new QWidget(parent);
    auto *layout = new QHBoxLayout(container);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addSpacing(by); // an item and not a margin: items are mirrored
    layout->addWidget(view);
    return container;
}

} // namespace tuppi

#include "ui/TitleStrip.h"

#include "ui/Colours.h"
#include "ui/Fonts.h"
#include "ui/Metrics.h"
#include "ui/Pictures.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

/// The drawn word mark, sharp at every ratio.
class WordMark : public QWidget
{
public:
    explicit WordMark(QWidget *parent)
        : QWidget(parent)
    {
        setFixedSize(Metrics::wordMarkWidth, Metrics::wordMarkHeight);
        setAccessibleName(u"Tuppi"_s);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        drawDrawing(painter, ReadDrawing(u"mascot/tuppi-wordmark"_s), rect());
    }
};

} // namespace

TitleStrip::TitleStrip(QWidget *parent)
    : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    // A name and its mark read the same way in every language.
    setLayoutDirection(Qt::LeftToRight);
    auto *name = new QLabel(u"Transcriber"_s, this);
    name->setFont(Rounded(15, QFont::DemiBold));
    QPalette palette = name->palette();
    palette.setColor(QPalette::WindowText, Colours::navy);
    name->setPalette(palette);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 1);
    row->setSpacing(6);
    row->addStretch();
    row->addWidget(new WordMark(this));
    row->addWidget(name);
    row->addStretch();
}

QSize TitleStrip::sizeHint() const
{
    return {Metrics::windowWidth, Metrics::titleStripHeight};
}

void TitleStrip::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), Colours::titleStrip);
    painter.fillRect(0, height() - 1, width(), 1, Colours::titleSeparator);
}

} // namespace tuppi

#include "ui/Sheet.h"

#include "settings/L.h"
#include "ui/Colours.h"
#include "ui/Fonts.h"
#include "ui/Labels.h"
#include "ui/Metrics.h"
#include "ui/PillButton.h"
#include "ui/SlimScrollBar.h"
#include "ui/Symbols.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>
#include <QVBoxLayout>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

WrapLabel *textLabel(const QString &text, const QFont &font, const QColor &colour, QWidget *parent)
{
    auto *label = new WrapLabel(parent);
    label->setText(text);
    label->setFont(font);
    label->setColour(colour);
    label->setPreferredWidth(Metrics::sheetTextWidth);
    label->setVisible(!text.isEmpty());
    return label;
}

} // namespace

Sheet::Sheet(QWidget *window, const SheetText &text)
    : QDialog(window, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint)
    , m_text(text)
{
    if (m_text.buttons.isEmpty())
        m_text.buttons = {L(u"OK"_s)};
    if (m_text.escapeButton < 0)
        m_text.escapeButton = m_text.defaultButton;
    setObjectName(u"sheet"_s);
    setWindowTitle(L(u"Tuppi Transcriber"_s));
    setAccessibleName(m_text.message);
    setAccessibleDescription(m_text.detail);
    setWindowModality(Qt::WindowModal);
    setAttribute(Qt::WA_DeleteOnClose);
    QPalette ground = palette();
    ground.setColor(QPalette::Window, Colours::white);
    setPalette(ground);

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(28, 24, 28, 22);
    column->setSpacing(10);
    column->setSizeConstraint(QLayout::SetFixedSize);
    if (m_text.isWarning) {
        auto *sign = new QLabel(this);
        sign->setPixmap(SymbolPixmap(u"exclamationmark.triangle.fill"_s, Colours::attention, 36, devicePixelRatio()));
        column->addWidget(sign);
    }
    column->addWidget(textLabel(m_text.message, System(15, QFont::Bold), Colours::navy, this));
    WrapLabel *detail = textLabel(m_text.detail, System(13), Colours::slate, this);
    column->addWidget(detail);
    m_accessoryPlace = new QWidget(this);
    m_accessoryPlace->setLayout(new QVBoxLayout);
    m_accessoryPlace->layout()->setContentsMargins(0, 0, 0, 0);
    m_accessoryPlace->hide();
    column->addWidget(m_accessoryPlace);
    column->addSpacing(8);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(10);
    buttons->addStretch();
    for (int index = 0; index < m_text.buttons.size(); ++index)
        buttons->addWidget(addButton(index, m_text.buttons.at(index)));
    column->addLayout(buttons);
    keepOnScreen(detail);
}

void Sheet::keepOnScreen(WrapLabel *detail)
{
    const int room = screen()->availableGeometry().height() - style()->pixelMetric(QStyle::PM_TitleBarHeight);
    const int over = layout()->totalSizeHint().height() - room;
    if (over <= 0)
        return;
    const QSize whole = detail->sizeHint();
    auto *scroll = new QScrollArea(this);
    scroll->setObjectName(u"sheetScroll"_s);
    scroll->setAccessibleName(m_text.message);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setVerticalScrollBar(new SlimScrollBar(Qt::Vertical));
    scroll->setFixedSize(whole.width() + SlimScrollBar::extent, qMax(whole.height() - over, Metrics::sheetTextLeast));
    delete layout()->replaceWidget(detail, scroll);
    scroll->setWidget(detail);
    detail->resize(whole);
    detail->setAutoFillBackground(false);
    scroll->viewport()->setAutoFillBackground(false);
}

PillButton *Sheet::addButton(int index, const QString &title)
{
    int style = 1;
    if (index == m_text.defaultButton)
        style = 0;
    else if (index == m_text.destructiveButton)
        style = 2;
    PillButton *button = Pill(title, style, Metrics::sheetButtonHeight, this);
    button->setObjectName(u"sheetButton%1"_s.arg(index));
    button->setAutoDefault(true);
    button->setDefault(index == m_text.defaultButton);
    if (index == m_text.defaultButton)
        button->setFocus();
    connect(button, &QAbstractButton::clicked, this, [this, index] { answer(index); });
    return button;
}

void Sheet::setAccessory(QWidget *accessory)
{
    const QPoint centre = rect().center();
    m_accessoryPlace->layout()->addWidget(accessory);
    m_accessoryPlace->show();
    layout()->activate();
    move(pos() + centre - rect().center()); // it has grown, and stands where it stood without
    accessory->setFocus();
}

void Sheet::answer(int button)
{
    if (m_isAnswered)
        return;
    m_isAnswered = true;
    done(button);
    Q_EMIT answered(button); // last: whoever hears it may do away with the window, and so with the sheet
}

void Sheet::reject()
{
    answer(m_text.escapeButton);
}

/// Not every desktop puts a frame around a sheet; white on white rows it would have no edge.
void Sheet::paintEvent(QPaintEvent *event)
{
    QDialog::paintEvent(event);
    QPainter painter(this);
    painter.setPen(QPen(Colours::pillBorder, 1));
    painter.drawRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
}

Sheet *Sheet::open(QWidget *window, const SheetText &text, std::function<void(int)> answered)
{
    auto *sheet = new Sheet(window, text);
    if (answered)
        connect(sheet, &Sheet::answered, window, std::move(answered));
    sheet->QDialog::open();
    return sheet;
}

} // namespace tuppi

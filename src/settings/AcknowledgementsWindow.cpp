#include "settings/AcknowledgementsWindow.h"

#include "settings/Fill.h"
#include "settings/L.h"
#include "ui/Colours.h"
#include "ui/Fonts.h"
#include "ui/LightPalette.h"
#include "ui/SlimScrollBar.h"

#include <QTextBrowser>
#include <QTextCursor>
#include <QTextFrame>
#include <QVBoxLayout>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

constexpr QSize windowSize(640, 620);
constexpr int marginX = 24;
constexpr int marginY = 20;
constexpr int creditGap = 18;

QTextCharFormat format(const QFont &font)
{
    QTextCharFormat format;
    format.setFont(font);
    format.setForeground(Colours::navy);
    return format;
}

/// What the cursor writes next stands this far below what it wrote before.
void leave(QTextCursor &cursor, int space)
{
    QTextBlockFormat block;
    block.setTopMargin(space);
    cursor.setBlockFormat(block);
}

QTextCharFormat link(const QFont &font, const QString &address)
{
    QTextCharFormat format;
    format.setFont(font);
    format.setForeground(Colours::accentBlue);
    format.setFontUnderline(true);
    format.setAnchor(true);
    format.setAnchorHref(address);
    return format;
}

void write(QTextCursor &cursor, const Acknowledgement &row)
{
    const QFont small = System(12);
    cursor.insertText(L(row.component) + u'\n', format(Rounded(15, QFont::DemiBold)));
    leave(cursor, 3);
    cursor.insertText(Fill(L(u"%@ · "_s), {L(row.holder)}), format(small));
    cursor.insertText(row.licence, link(small, LicenceLink(row.licence)));
    cursor.insertText(u" · "_s, format(small));
    cursor.insertText(row.link, link(small, row.link));
    cursor.insertText(u"\n"_s, format(small));
    if (!row.note.isEmpty())
        cursor.insertText(L(row.note) + u'\n', format(small));
    leave(cursor, creditGap);
}

} // namespace

AcknowledgementsWindow::AcknowledgementsWindow(const QList<Acknowledgement> &rows)
    : SideWindow(L(u"Acknowledgements"_s))
{
    setObjectName("Acknowledgements"_L1);
    resize(windowSize);
    auto *text = new QTextBrowser;
    text->setObjectName("acknowledgements"_L1);
    text->setAccessibleName(windowTitle());
    text->setOpenLinks(false);
    text->setFrameShape(QFrame::NoFrame);
    text->setVerticalScrollBar(new SlimScrollBar(Qt::Vertical));
    QPalette light = LightPalette();
    light.setColor(QPalette::Base, Colours::window);
    text->setPalette(light);
    connect(text, &QTextBrowser::anchorClicked, this, &AcknowledgementsWindow::linkChosen);

    QTextCursor cursor(text->document());
    cursor.insertText(windowTitle() + u'\n', format(Rounded(22, QFont::DemiBold)));
    leave(cursor, 6);
    cursor.insertText(L(u"Tuppi Transcriber runs entirely on your Mac and is built on these open models and tools. Thank "
                        "you to everyone who made them. Your transcripts belong to you; none of these licences gives "
                        "their authors any claim over what you transcribe."_s)
                          + u"\n\n"_s,
                      format(System(13)));
    for (const Acknowledgement &row : rows)
        write(cursor, row);
    cursor.insertText(L(u"All models and tools are provided by their authors “as is”, without warranty of any kind. Full "
                        "licence texts are at the links above."_s),
                      format(System(12)));
    QTextBlockFormat reading; // also those that are all names and addresses
    reading.setLayoutDirection(layoutDirection());
    cursor.select(QTextCursor::Document);
    cursor.mergeBlockFormat(reading);
    QTextFrameFormat margins = text->document()->rootFrame()->frameFormat();
    margins.setMargin(0);
    margins.setLeftMargin(marginX);
    margins.setRightMargin(marginX);
    margins.setTopMargin(marginY);
    margins.setBottomMargin(marginY);
    text->document()->rootFrame()->setFrameFormat(margins);
    text->moveCursor(QTextCursor::Start);

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(text);
}

} // namespace tuppi

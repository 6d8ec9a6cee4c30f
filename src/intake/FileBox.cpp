#include "intake/FileBox.h"

#include "settings/L.h"
#include "ui/Colours.h"
#include "ui/Fonts.h"
#include "ui/Labels.h"
#include "ui/LinkButton.h"
#include "ui/SymbolView.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QVBoxLayout>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

constexpr double radius = 14;

} // namespace

FileList::FileList(QWidget *parent)
    : QWidget(parent)
    , m_stack(new QVBoxLayout(this))
{
    m_stack->setContentsMargins(0, 0, 0, 0);
    m_stack->setSpacing(1);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void FileList::setLines(const QStringList &lines)
{
    if (lines == m_lines)
        return;
    m_lines = lines;
    while (m_labels.size() < lines.size()) {
        auto *label = new ElidedLabel(this);
        label->setFont(System(13.5, QFont::Bold));
        label->setElideMode(Qt::ElideMiddle);
        m_stack->addWidget(label);
        m_labels.append(label);
    }
    for (qsizetype line = 0; line < m_labels.size(); ++line) {
        m_labels[line]->setText(lines.value(line));
        m_labels[line]->setVisible(line < lines.size());
    }
}

FileBox::FileBox(QWidget *parent)
    : QWidget(parent)
    , m_list(new FileList(this))
    , m_length(new QLabel(this))
    , m_addMore(new LinkButton(L(u"Add More…"_s), this))
{
    m_list->setObjectName("setupList"_L1);
    m_length->setObjectName("setupDuration"_L1);
    m_addMore->setObjectName("addMoreButton"_L1);
    m_length->setTextFormat(Qt::PlainText);
    m_length->setFont(System(12.5));
    QPalette slate = palette();
    slate.setColor(QPalette::WindowText, Colours::slate);
    m_length->setPalette(slate);

    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 8, 0, 8);
    row->setSpacing(10);
    // Items and not margins: items are mirrored.
    row->addSpacing(14);
    row->addWidget(new SymbolView(u"music.note"_s, Colours::accentBlue, 18, this));
    row->addWidget(m_list, 1);
    row->addWidget(m_length);
    row->addWidget(m_addMore);
    row->addSpacing(10);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    connect(m_addMore, &QPushButton::clicked, this, &FileBox::addMoreRequested);
}

void FileBox::setFiles(const QStringList &lines)
{
    m_list->setLines(lines);
}

void FileBox::setLength(const QString &length)
{
    m_length->setText(length);
    m_length->setVisible(!length.isEmpty());
}

void FileBox::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Colours::fileBox);
    painter.drawRoundedRect(QRectF(rect()), radius, radius);
}

} // namespace tuppi

#include "export/ExportAccessory.h"

#include "settings/L.h"
#include "ui/Colours.h"
#include "ui/IconButton.h"
#include "ui/Metrics.h"
#include "ui/Painting.h"
#include "ui/PillButton.h"

#include <QHBoxLayout>
#include <QPainter>

namespace tuppi {

using namespace Qt::StringLiterals;

ExportAccessory::ExportAccessory(QWidget *parent)
    : QWidget(parent)
{
    setFixedHeight(Metrics::accessoryHeight);
    PillButton *save = Pill(L(u"Save as .txt…"_s), 1, Metrics::accessoryButtonHeight, this);
    save->setObjectName(u"saveWindowText"_s);
    save->setToolTip(plainToolTip(L(u"Save this transcript as a text file"_s)));
    save->setAccessibleName(L(u"Save as .txt…"_s));
    IconButton *share =
        iconButton(u"square.and.arrow.up"_s, L(u"Share as a text file (AirDrop, Mail, Messages…)"_s), this);
    share->setObjectName(u"shareWindowText"_s);
    share->setAccessibleName(L(u"Share"_s));
    connect(save, &QAbstractButton::clicked, this, [this] { Q_EMIT saveRequested(); });
    connect(share, &QAbstractButton::clicked, this, [this, share] { Q_EMIT shareRequested(share); });
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 1);
    row->setSpacing(Metrics::accessorySpacing);
    row->addStretch();
    row->addWidget(save);
    row->addWidget(share);
    row->addSpacing(Metrics::accessoryEnd); // no margin: items are mirrored
}

void ExportAccessory::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), Colours::titleStrip);
    painter.fillRect(0, height() - 1, width(), 1, Colours::titleSeparator);
}

} // namespace tuppi

#include "settings/EnginePane.h"

#include "settings/L.h"
#include "settings/PaneParts.h"
#include "ui/Colours.h"
#include "ui/Fonts.h"
#include "ui/Labels.h"
#include "ui/PillButton.h"

#include <QVBoxLayout>

namespace tuppi {

using namespace Qt::StringLiterals;

EnginePane::EnginePane(QWidget *parent)
    : QWidget(parent)
    , m_summary(new WrapLabel)
{
    m_summary->setObjectName("healthSummary"_L1);
    m_summary->setFont(Rounded(15, QFont::DemiBold));
    m_summary->setPreferredWidth(PaneMetrics::width - PaneMetrics::margins.left() - PaneMetrics::margins.right());
    setSummary(HealthChecking());
    auto *checks = new QWidget; // their place among what is read, though they come later
    m_list = new QVBoxLayout(checks);
    m_list->setContentsMargins(0, 0, 0, 0);
    m_list->setSpacing(6);
    checks->hide();
    PillButton *again = paneButton(L(u"Check Again"_s), u"refreshHealth"_s);
    PillButton *log = paneButton(L(u"Open Install Log"_s), u"openInstallLog"_s);
    for (PillButton *button : {again, log})
        connect(button, &QAbstractButton::clicked, this, [this, button] { Q_EMIT command(button->objectName()); });

    QVBoxLayout *column = paneColumn(this, 14);
    column->addWidget(m_summary);
    column->addWidget(checks);
    column->addWidget(sideBySide({again, log}), 0, Qt::AlignLeading);
    column->addLayout(paneHint(L(u"If something shows ✗, run the installer again — it repairs missing parts and keeps your transcripts."_s)));
}

void EnginePane::setSummary(const ToneText &summary)
{
    m_summary->setText(summary.text);
    m_summary->setColour(ColourOf(summary.tone));
}

void EnginePane::setReport(const HealthReport &report)
{
    while (QLayoutItem *old = m_list->takeAt(0)) {
        delete old->widget();
        delete old;
    }
    // The marks stand at the leading edge, whatever language the engine words its checks in.
    const QString direction = isRightToLeft() ? QString(QChar(0x200f)) : QString();
    for (const ToneText &line : report.lines) {
        auto *label = new ElidedLabel(this);
        label->setObjectName("healthLine"_L1);
        label->setFont(System(13));
        label->setColour(ColourOf(line.tone));
        label->setText(direction + line.text);
        m_list->addWidget(label);
    }
    m_list->parentWidget()->setVisible(!report.lines.isEmpty());
    setSummary(report.summary);
}

} // namespace tuppi

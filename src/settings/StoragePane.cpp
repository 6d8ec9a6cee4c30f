#include "settings/StoragePane.h"

#include "settings/BaselineForm.h"
#include "settings/L.h"
#include "settings/PaneParts.h"
#include "settings/PathField.h"
#include "ui/Colours.h"
#include "ui/Fonts.h"
#include "ui/Labels.h"
#include "ui/PillButton.h"

#include <QVBoxLayout>

namespace tuppi {

using namespace Qt::StringLiterals;

StoragePane::StoragePane(QWidget *parent)
    : QWidget(parent)
    , m_path(new PathField(360))
    , m_size(new ElidedLabel)
{
    m_path->setObjectName("libraryPath"_L1);
    m_path->setPath(u"…"_s, {});
    m_size->setObjectName("librarySize"_L1);
    m_size->setFont(System(13));
    m_size->setColour(Colours::slate);
    m_size->setText(L(u"Calculating…"_s));
    PillButton *change = paneButton(L(u"Change…"_s), u"changeLibrary"_s);
    PillButton *show = paneButton(L(u"Show in Finder"_s), u"openLibrary"_s);
    for (PillButton *button : {change, show})
        connect(button, &QAbstractButton::clicked, this, [this, button] { Q_EMIT command(button->objectName()); });

    BaselineForm *rows = paneForm();
    addRow(rows, L(u"Transcripts folder:"_s), m_path);
    addRow(rows, {}, sideBySide({change, show}));
    addRow(rows, L(u"Space used:"_s), m_size);
    auto *whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->addWidget(pane(rows, L(u"Tuppi lists the transcripts in this folder. Choosing another folder doesn't move or "
                                  "delete anything: existing transcripts stay where they are, and new ones are saved in "
                                  "the new folder."_s)));
}

void StoragePane::setLibrary(const QString &shown, const QString &path)
{
    m_path->setPath(shown, path);
}

void StoragePane::setSize(const QString &size)
{
    m_size->setText(size);
}

} // namespace tuppi

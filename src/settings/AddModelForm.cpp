#include "settings/AddModelForm.h"

#include "settings/BaselineForm.h"
#include "settings/L.h"
#include "settings/PaneParts.h"
#include "ui/PopUpButton.h"
#include "ui/TextField.h"

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

constexpr int fieldWidth = 300;
constexpr int rowGap = 10;

} // namespace

AddModelForm::AddModelForm(QWidget *parent)
    : QWidget(parent)
    , m_name(new TextField(L(u"A name you'll recognise, e.g. Ukrainian Whisper"_s), fieldWidth))
    , m_kind(popup(u"modelKind"_s, {{L(u"Whisper-compatible (MLX)"_s), u"whisper"_s},
                                    {L(u"Parakeet-compatible (MLX)"_s), u"parakeet"_s}}, u"whisper"_s))
    , m_repo(new TextField(L(u"owner/model-name on Hugging Face"_s), fieldWidth))
{
    m_name->setObjectName("modelName"_L1);
    m_repo->setObjectName("modelRepo"_L1);
    const int widest = qMax(m_name->sizeHint().width(), m_repo->sizeHint().width());
    for (TextField *field : {m_name, m_repo})
        field->setMinimumWidth(widest);
    auto *rows = new BaselineForm(this);
    rows->setSpacing(rowGap);
    addRow(rows, L(u"Name:"_s), m_name);
    addRow(rows, L(u"Type:"_s), m_kind);
    addRow(rows, L(u"Hugging Face:"_s), m_repo);
    setFocusProxy(m_name);
}

QString AddModelForm::name() const
{
    return m_name->text();
}

QString AddModelForm::kind() const
{
    return m_kind->currentData().toString();
}

QString AddModelForm::repo() const
{
    return m_repo->text();
}

} // namespace tuppi

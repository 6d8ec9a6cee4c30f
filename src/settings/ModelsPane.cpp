#include "settings/ModelsPane.h"

#include "settings/Fill.h"
#include "settings/L.h"
#include "settings/PaneParts.h"
#include "ui/Colours.h"
#include "ui/Fonts.h"
#include "ui/Labels.h"
#include "ui/PillButton.h"
#include "ui/PopUpButton.h"
#include "ui/TextField.h"

#include <QVBoxLayout>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

constexpr int gap = 10;
constexpr int wideGap = 18;
constexpr int lineGap = 6;
constexpr int pullWidth = 260;
constexpr int statusWidth = 480;
constexpr int smallButtonHeight = 26;

QWidget *separator()
{
    auto *line = new QWidget;
    line->setFixedHeight(1);
    line->setAutoFillBackground(true);
    QPalette ground = line->palette();
    ground.setColor(QPalette::Window, Colours::titleSeparator);
    line->setPalette(ground);
    return line;
}

ElidedLabel *slateLine(const QString &text)
{
    auto *label = new ElidedLabel;
    label->setFont(System(13));
    label->setColour(Colours::slate);
    label->setText(text);
    return label;
}

} // namespace

ModelsPane::ModelsPane(QWidget *parent)
    : QWidget(parent)
{
    QVBoxLayout *column = paneColumn(this, gap);
    addSpeechModels(column);
    column->addSpacing(wideGap - gap);
    column->addWidget(separator());
    column->addSpacing(wideGap - gap);
    addTextModel(column);
}

void ModelsPane::addSpeechModels(QVBoxLayout *column)
{
    auto *models = new QWidget; // their place among what is read, though they come later
    m_list = new QVBoxLayout(models);
    m_list->setContentsMargins(0, 0, 0, 0);
    m_list->setSpacing(lineGap);
    PillButton *add = paneButton(L(u"Add Model…"_s), u"addCustomModel"_s);
    connect(add, &QAbstractButton::clicked, this, &ModelsPane::addRequested);
    column->addWidget(paneTitle(L(u"Speech models"_s), u"speechModelsTitle"_s));
    column->addWidget(models);
    m_below.append(add);
    column->addWidget(add, 0, Qt::AlignLeading);
    column->addLayout(paneHint(L(u"Add any Whisper- or Parakeet-compatible model in Apple's MLX format from Hugging Face, for "
                                 "example mlx-community/whisper-large-v3-mlx. Tuppi downloads it, checks it, and lists it in "
                                 "the Model menu."_s)));
}

void ModelsPane::addTextModel(QVBoxLayout *column)
{
    const QString title = L(u"Text model"_s);
    m_textModels = new PopUpButton;
    m_textModels->setObjectName("textModel"_L1);
    m_textModels->setAccessibleName(title);
    m_textModels->setMinimumWidth(pullWidth);
    connect(m_textModels, &QComboBox::activated, this,
            [this] { Q_EMIT textModelChosen(m_textModels->currentData().toString()); });
    const QString placeholder = L(u"Another Ollama model, e.g. qwen3:8b"_s);
    m_pull = new TextField(placeholder, pullWidth);
    m_pull->setObjectName("pullField"_L1);
    m_pull->setAccessibleName(placeholder);
    PillButton *pull = paneButton(L(u"Download and Use"_s), u"pullTextModel"_s);
    const auto request = [this] { Q_EMIT pullRequested(m_pull->text()); };
    connect(pull, &QAbstractButton::clicked, this, request);
    connect(m_pull, &QLineEdit::returnPressed, this, request);
    m_status = new WrapLabel;
    m_status->setObjectName("modelsStatus"_L1);
    m_status->setFont(System(13));
    m_status->setColour(ColourOf(Tone::News));
    m_status->setPreferredWidth(statusWidth);

    ElidedLabel *heading = paneTitle(title, u"textModelTitle"_s);
    heading->setBuddy(m_textModels);
    m_below += {m_textModels, m_pull, pull};
    column->addWidget(heading);
    column->addWidget(m_textModels, 0, Qt::AlignLeading);
    column->addLayout(paneHint(L(u"Writes the summaries, tasks and titles. It runs in Ollama on this Mac. A smaller model is "
                                 "faster on Macs with 16 GB of memory."_s)));
    column->addWidget(sideBySide({m_pull, pull}), 0, Qt::AlignLeading);
    column->addWidget(m_status);
}

QWidget *ModelsPane::customLine(const CustomModelLine &line)
{
    auto *name = new ElidedLabel;
    name->setFont(System(13, QFont::DemiBold));
    name->setText(line.name);
    ElidedLabel *detail = slateLine(line.detail);
    detail->setElideMode(Qt::ElideMiddle);
    detail->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    PillButton *remove = Pill(L(u"Remove…"_s), 1, smallButtonHeight);
    remove->setObjectName(u"removeModel.%1"_s.arg(line.index));
    remove->setAccessibleName(Fill(u"%@ — %@"_s, {remove->title(), line.name}));
    connect(remove, &QAbstractButton::clicked, this, [this, index = line.index] { Q_EMIT removeRequested(index); });

    auto *whole = new QWidget;
    whole->setObjectName("customModel"_L1);
    auto *row = new QHBoxLayout(whole);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(10);
    row->addWidget(name);
    row->addWidget(detail, 1);
    row->addWidget(remove);
    return whole;
}

void ModelsPane::setModels(const ModelLines &lines)
{
    if (lines == m_lines)
        return; // a button keeps the keyboard, and the pointer that is about to press it
    m_lines = lines;
    while (QLayoutItem *old = m_list->takeAt(0)) {
        old->widget()->deleteLater(); // one of its buttons may be speaking
        old->widget()->hide();
        delete old;
    }
    for (const QString &line : lines.builtIn) {
        ElidedLabel *label = slateLine(line);
        label->setObjectName("builtInModel"_L1);
        m_list->addWidget(label);
    }
    QList<QWidget *> stops; // Tab follows the lines, though they are younger than what is below
    for (const CustomModelLine &line : lines.custom) {
        QWidget *whole = customLine(line);
        m_list->addWidget(whole);
        stops.append(whole->findChild<PillButton *>());
    }
    stops += m_below;
    for (qsizetype next = 1; next < stops.size(); ++next)
        setTabOrder(stops.at(next - 1), stops.at(next));
}

void ModelsPane::setTextModels(const QStringList &names, const QString &current)
{
    if (names != m_textNames) { // else a menu that is open stays as it is
        m_textNames = names;
        m_textModels->clear();
        for (const QString &name : names)
            m_textModels->addItem(name, name);
    }
    m_textModels->setCurrentIndex(current.isEmpty() ? -1 : m_textModels->findData(current));
    m_textModels->setEnabled(!names.isEmpty());
    m_textModels->updateGeometry();
}

void ModelsPane::setStatus(const QString &text)
{
    m_status->setText(text);
    m_status->setAccessibleName(text);
}

void ModelsPane::clearPullField()
{
    m_pull->clear();
}

} // namespace tuppi

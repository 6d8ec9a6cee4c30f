// How the New Transcription panel is put together.

#include "intake/SetupPanel.h"

#include "intake/FileBox.h"
#include "intake/SetupChoices.h"
#include "intake/SetupMetrics.h"
#include "settings/L.h"
#include "ui/Colours.h"
#include "ui/DropView.h"
#include "ui/Fonts.h"
#include "ui/Labels.h"
#include "ui/LightPalette.h"
#include "ui/LinkButton.h"
#include "ui/MascotView.h"
#include "ui/Metrics.h"
#include "ui/ModelCard.h"
#include "ui/PillButton.h"
#include "ui/PopUpButton.h"
#include "ui/SlimScrollBar.h"
#include "ui/TickBox.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QScrollArea>
#include <QVBoxLayout>

#include <utility>

namespace tuppi {

using namespace Qt::StringLiterals;
namespace M = SetupMetrics;

SetupPanel::SetupPanel(const SetupOpening &opening, Mascots &mascots, QWidget *parent)
    : QDialog(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint)
    , m_ground(new DropView(this))
    , m_scroll(new QScrollArea(m_ground))
    , m_page(new QWidget)
    , m_edge(new QWidget(m_ground))
{
    setObjectName("setupPanel"_L1);
    setWindowTitle(L(u"New Transcription"_s));
    setPalette(LightPalette());
    setWindowModality(Qt::WindowModal);
    m_lengthPause.setInterval(M::lengthPause);
    m_lengthPause.setSingleShot(true);
    connect(&m_lengthPause, &QTimer::timeout, this, &SetupPanel::showLength);
    connect(m_ground, &DropView::filesDropped, this, &SetupPanel::filesDropped);

    buildPage(opening, mascots);
    m_scroll->setObjectName("setupScroll"_L1);
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scroll->setVerticalScrollBar(new SlimScrollBar(Qt::Vertical));
    m_scroll->setWidgetResizable(true);
    m_scroll->setWidget(m_page);
    m_scroll->setFocusPolicy(Qt::NoFocus);
    // The ground lights up behind everything while files are over it.
    m_page->setAutoFillBackground(false);
    m_scroll->viewport()->setAutoFillBackground(false);
    m_page->installEventFilter(this);

    QPalette line = palette();
    line.setColor(QPalette::Window, Colours::cardBorder);
    m_edge->setPalette(line);
    m_edge->setAutoFillBackground(true);
    m_edge->setFixedHeight(1);

    auto *parts = new QVBoxLayout(m_ground);
    parts->setContentsMargins(0, 0, 0, 0);
    parts->setSpacing(0);
    parts->addWidget(m_scroll, 1);
    parts->addWidget(m_edge);
    parts->addWidget(buildButtons());
    auto *whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->addWidget(m_ground);

    m_engine = opening.choices.engine;
    setModels(opening.models);
    m_start->setFocus();
    fitHeight();
}

void SetupPanel::buildPage(const SetupOpening &opening, Mascots &mascots)
{
    auto *stack = new QVBoxLayout(m_page);
    stack->setContentsMargins(M::pageMargins);
    stack->setSpacing(0);
    stack->addWidget(buildHeader(mascots));
    stack->addSpacing(14);
    m_files = new FileBox(m_page);
    connect(m_files, &FileBox::addMoreRequested, this, &SetupPanel::addMoreRequested);
    stack->addWidget(m_files);
    stack->addSpacing(16);
    stack->addWidget(SectionLabel(L(u"Model"_s), opening.interfaceLanguage));
    stack->addSpacing(M::gap);
    m_cardGround = new QWidget(m_page);
    stack->addWidget(m_cardGround);
    stack->addSpacing(16);
    QLabel *language = SectionLabel(L(u"Language"_s), opening.interfaceLanguage);
    stack->addWidget(language);
    stack->addSpacing(M::gap);
    stack->addLayout(buildLanguageRow(opening));
    // Where assistive tools look for the name of a pop-up: its own is the choice.
    language->setAccessibleName(L(u"Language"_s));
    language->setBuddy(m_languages);
    stack->addSpacing(16);

    m_speakers = new TickBox(L(u"Separate speakers"_s), m_page);
    m_speakers->setObjectName("speakers"_L1);
    m_speakers->setChecked(opening.choices.speakers);
    addOption(stack, m_speakers,
              L(u"Labels who is talking (Speaker 1, Speaker 2…). Best for interviews and meetings."_s));
    stack->addSpacing(10);
    m_quick = new TickBox(L(u"Text only (faster)"_s), m_page);
    m_quick->setObjectName("quick"_L1);
    m_quick->setChecked(opening.choices.quick);
    addOption(stack, m_quick, L(u"Only the transcript: skips the summary, tasks and text polishing."_s));
    stack->addStretch(1);
}

QWidget *SetupPanel::buildHeader(Mascots &mascots)
{
    auto *header = new QWidget(m_page);
    auto *row = new QHBoxLayout(header);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(12);
    row->addWidget(TuppiAnim(mascots, u"listening"_s, 64, header));
    auto *title = new ElidedLabel(header);
    title->setFont(Rounded(26, QFont::DemiBold));
    title->setText(L(u"New Transcription"_s));
    row->addWidget(title, 1);
    return header;
}

void SetupPanel::fillCards(const QList<ModelRow> &models)
{
    m_models = models;
    qDeleteAll(std::exchange(m_cards, {}));
    delete m_cardGround->layout();
    auto *grid = new QGridLayout(m_cardGround);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(M::cardGap);
    for (const ModelRow &model : models) {
        auto *card = new ModelCard(model.id, m_cardGround);
        card->setObjectName("model."_L1 + model.id);
        card->setTexts(model.title, model.badge, model.description);
        connect(card, &ModelCard::chosen, this, [this](ModelCard *chosen) { chooseModel(chosen->engine()); });
        const int cell = int(m_cards.size());
        grid->addWidget(card, cell / 2, cell % 2);
        card->show(); // the panel may be open, and a hidden card takes no focus
        m_cards.append(card);
    }
}

QLayout *SetupPanel::buildLanguageRow(const SetupOpening &opening)
{
    m_languages = new PopUpButton(m_page);
    m_languages->setObjectName("language"_L1);
    m_languages->setAccessibleName(L(u"Language"_s));
    for (const LanguageRow &language : opening.languages)
        m_languages->addItem(language.name, language.code);
    m_language = PreselectedLanguage(opening.choices.language, opening.languages);
    m_languages->setCurrentIndex(m_languages->findData(m_language));
    connect(m_languages, &QComboBox::currentIndexChanged, this, &SetupPanel::languageChanged);

    m_hint = new WrapLabel(m_page);
    m_hint->setObjectName("languageHint"_L1);
    m_hint->setFont(System(12));
    m_hint->setPreferredWidth(M::contentWidth);
    m_hint->setAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    auto *row = new QHBoxLayout;
    row->setSpacing(12);
    row->addWidget(m_languages);
    row->addWidget(m_hint, 1);
    return row;
}

void SetupPanel::addOption(QVBoxLayout *stack, TickBox *option, const QString &help)
{
    auto *label = new WrapLabel;
    label->setFont(System(12.5));
    label->setPreferredWidth(M::contentWidth - TickBox::titleIndent);
    label->setText(help);
    option->setAccessibleDescription(help);
    stack->addWidget(option);
    stack->addSpacing(M::optionGap);
    stack->addWidget(indent(label, TickBox::titleIndent, m_page));
}

QWidget *SetupPanel::buildButtons()
{
    m_buttons = new QWidget(m_ground);
    m_cancel = Pill(L(u"Cancel"_s), 1, Metrics::largePillHeight, m_buttons);
    m_cancel->setObjectName("cancelButton"_L1);
    connect(m_cancel, &QPushButton::clicked, this, &SetupPanel::reject);
    m_start = Pill(L(u"Start Transcription"_s), 0, Metrics::largePillHeight, m_buttons);
    m_start->setObjectName("startButton"_L1);
    m_start->setDefault(true);
    connect(m_start, &QPushButton::clicked, this, [this] { Q_EMIT startRequested(choices()); });

    auto *row = new QHBoxLayout(m_buttons);
    row->setContentsMargins(M::buttonMargins);
    row->setSpacing(10);
    row->addStretch(1);
    row->addWidget(m_cancel);
    row->addWidget(m_start);
    return m_buttons;
}

void SetupPanel::setTabOrders()
{
    QList<QWidget *> order{m_files->addMoreButton()};
    for (ModelCard *card : std::as_const(m_cards))
        order.append(card);
    order += {m_languages, m_speakers, m_quick, m_cancel, m_start};
    for (qsizetype next = 1; next < order.size(); ++next)
        setTabOrder(order[next - 1], order[next]);
}

} // namespace tuppi

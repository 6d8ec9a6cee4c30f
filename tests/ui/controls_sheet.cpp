// Draws every control in every state on one sheet, to be looked at: controls_sheet FILE.png [--rtl].
// The scale is the environment's (QT_SCALE_FACTOR).

#include "list/RowLook.h"
#include "ui/CardRowView.h"
#include "ui/Colours.h"
#include "ui/DropView.h"
#include "ui/Fonts.h"
#include "ui/IconButton.h"
#include "ui/Labels.h"
#include "ui/MascotView.h"
#include "ui/Mascots.h"
#include "ui/Metrics.h"
#include "ui/ModelCard.h"
#include "ui/MotionPolicy.h"
#include "ui/PillButton.h"
#include "ui/RowView.h"
#include "ui/SkyBar.h"
#include "ui/SweepClock.h"
#include "ui/TuppiCache.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QGridLayout>
#include <QMimeData>
#include <QPainter>
#include <QVBoxLayout>

#include <cstdio>

using namespace tuppi;

namespace {

struct Sheet
{
    bool arabic = false;
    MotionPolicy motion;
    SweepClock sweep{motion};
    Mascots mascots{motion};
    TuppiCache cache;

    QString text(const char16_t *english, const char16_t *translated) const
    {
        return QString::fromUtf16(arabic ? translated : english);
    }
};

/// Lays widgets side by side.
class Line : public QWidget
{
public:
    explicit Line(QWidget *parent)
        : QWidget(parent)
    {
        auto *line = new QHBoxLayout(this);
        line->setContentsMargins(0, 0, 0, 0);
        line->setSpacing(12);
        line->addStretch(1);
    }
    template <class W> W *add(W *widget)
    {
        auto *line = static_cast<QHBoxLayout *>(layout());
        line->insertWidget(line->count() - 1, widget);
        return widget;
    }
};

/// The state that only a mouse can bring about.
void hover(QWidget *widget)
{
    widget->setAttribute(Qt::WA_UnderMouse);
}

Line *pillLine(const Sheet &sheet, double height, int state, QWidget *parent)
{
    auto *line = new Line(parent);
    const QStringList titles{sheet.text(u"Start Transcription", u"بدء النسخ"),
                             sheet.text(u"Summary", u"الملخص"), sheet.text(u"Cancel", u"إلغاء"),
                             sheet.text(u"Yellow", u"أصفر"), sheet.text(u"Plain", u"عادي")};
    for (int style = 0; style < titles.size(); ++style) {
        PillButton *pill = line->add(Pill(titles.at(style), style, height));
        pill->setDown(state == 1);
        pill->setEnabled(state != 2);
        if (state == 3)
            hover(pill);
    }
    for (int style : {0, 1, 2, 3}) {
        PillButton *pill = line->add(IconPill(style == 2 ? u"trash"_qs
                                              : style    ? u"folder"_qs
                                                         : u"plus"_qs,
                                              u"tip"_qs, style));
        pill->setDown(state == 1);
        pill->setEnabled(state != 2);
        if (state == 3)
            hover(pill);
    }
    for (const QString &symbol : {u"speaker.wave.2.fill"_qs, u"gearshape"_qs, u"trash"_qs}) {
        IconButton *button = line->add(iconButton(symbol, u"tip"_qs));
        button->setTint(Colours::slate);
        button->setDown(state == 1);
        button->setEnabled(state != 2);
        if (state == 3)
            hover(button);
    }
    return line;
}

QWidget *bars(Sheet &sheet, QWidget *parent)
{
    auto *line = new Line(parent);
    for (double value : {0.0, 0.02, 0.35, 1.0, 1.2, -1.0}) {
        auto *bar = line->add(new SkyBar(sheet.sweep));
        bar->setValue(value);
        bar->setFixedWidth(140);
    }
    return line;
}

QWidget *cards(const Sheet &sheet, QWidget *parent)
{
    auto *line = new Line(parent);
    const auto add = [&](const QString &title, const QString &note, const QString &text) {
        auto *card = line->add(new ModelCard(title));
        card->setTexts(title, note, text);
        return card;
    };
    add(sheet.text(u"Automatic", u"تلقائي"), sheet.text(u"Recommended", u"موصى به"),
        sheet.text(u"Parakeet for European languages\nTuppi picks the best model for every recording.",
                   u"يختار Tuppi أفضل نموذج لكل تسجيل."))
        ->setPicked(true);
    hover(add(
        u"Parakeet"_qs, sheet.text(u"Fastest", u"الأسرع"),
        sheet.text(u"25 European languages. Very fast, and precise with clear speech in a quiet room, but it "
                   u"knows no others, and long words go on to a fourth line that is not shown",
                   u"خمس وعشرون لغة أوروبية، سريع جدًا ودقيق عندما يكون الكلام واضحًا")));
    add(u"My own model with a very long name indeed"_qs, QString(),
        sheet.text(u"custom model", u"نموذج مخصص"));
    return line;
}

QList<RowLook> rows(const Sheet &sheet)
{
    struct Row
    {
        const char16_t *status, *title, *detail, *arabicTitle, *arabicDetail;
        double progress;
        bool paused;
    };
    static const Row table[] = {
        {u"starting", u"Preparing…", u"Copying the file…", u"جارٍ التحضير…", u"جارٍ نسخ الملف…", -1, false},
        {u"waiting", u"Interview with the harbour master, second part", u"Waiting in line…",
         u"مقابلة مع مدير الميناء", u"في الانتظار…", -2, false},
        {u"transcribing", u"Team meeting", u"Listening and writing down… 45%", u"اجتماع الفريق",
         u"يستمع ويكتب… 45%", 0.45, false},
        {u"analyzing", u"Lecture 7", u"Writing the summary…", u"محاضرة 7", u"يكتب الملخص…", -1, false},
        {u"cleaning", u"A walk in the woods", u"Paused — Polishing the text… 12/40", u"نزهة في الغابة",
         u"متوقف — يصقل النص… 12/40", 0.3, true},
        {u"ready", u"Interview <b>one</b> & two", u"Done · 2025-03-14 10:22 · 42 min · Whisper Turbo",
         u"مقابلة one", u"تم · 2025-03-14 10:22 · 42 دقيقة · Whisper Turbo", -2, false},
        {u"failed", u"Voice memo 12", u"Failed — No speech found in this recording", u"مذكرة صوتية 12",
         u"فشل — لم يُعثر على كلام في هذا التسجيل", -2, false},
        {u"cancelled", u"A recording with such a long title that it does not fit beside its buttons at all",
         u"Cancelled — press Start Again to continue where it stopped",
         u"تسجيل بعنوان طويل جدًا لا يتسع له المكان بجانب الأزرار",
         u"أُلغي — اضغط «ابدأ من جديد» للمتابعة من حيث توقف", -2, false},
    };
    const QHash<QString, QString> arabic{{u"Open"_qs, u"فتح"_qs},
                                         {u"Summary"_qs, u"الملخص"_qs},
                                         {u"Copy Text"_qs, u"نسخ النص"_qs},
                                         {u"Pause"_qs, u"إيقاف مؤقت"_qs},
                                         {u"Resume"_qs, u"استئناف"_qs},
                                         {u"Cancel"_qs, u"إلغاء"_qs},
                                         {u"Remove"_qs, u"إزالة"_qs},
                                         {u"Try Again"_qs, u"حاول مجددًا"_qs},
                                         {u"Start Again"_qs, u"ابدأ من جديد"_qs}};
    QList<RowLook> looks;
    for (const Row &row : table) {
        const QJsonObject record{{u"status"_qs, QString::fromUtf16(row.status)},
                                 {u"id"_qs, QString::number(looks.size())},
                                 {u"paused"_qs, row.paused},
                                 {u"title"_qs, sheet.text(row.title, row.arabicTitle)}};
        RowLook look =
            RowLookFor(record, QString::number(looks.size()), sheet.text(row.detail, row.arabicDetail),
                       row.progress, [&](const QString &t) { return sheet.arabic ? arabic.value(t, t) : t; });
        look.selected = looks.size() == 5;
        looks.append(look);
    }
    return looks;
}

QWidget *list(Sheet &sheet, QWidget *parent)
{
    auto *list = new QWidget(parent);
    auto *stack = new QVBoxLayout(list);
    stack->setContentsMargins(0, 0, 0, 0);
    stack->setSpacing(0);
    for (const RowLook &look : rows(sheet)) {
        auto *row = new RowView({sheet.sweep, sheet.mascots, sheet.cache});
        row->setFixedHeight(Metrics::rowHeight);
        row->setLook(look);
        stack->addWidget(row);
    }
    return list;
}

QWidget *dropArea(Sheet &sheet, bool lit, QWidget *parent)
{
    auto *drop = new DropView(parent);
    drop->setFixedHeight(360);
    drop->setShowsCard(true);
    if (lit) {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(u"/a.mp3"_qs)});
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(drop, &enter);
    }
    auto *stack = new QVBoxLayout(drop);
    stack->setSpacing(10);
    stack->addStretch();
    stack->addWidget(TuppiAnim(sheet.mascots, u"waiting"_qs, 200), 0, Qt::AlignHCenter);
    auto *title = new QLabel(sheet.text(u"Drop an audio file for Tuppi", u"أفلِت ملفًا صوتيًا لتوبي"));
    title->setFont(Rounded(28, QFont::DemiBold));
    title->setAlignment(Qt::AlignCenter);
    QPalette palette;
    palette.setColor(QPalette::WindowText, Colours::navy);
    title->setPalette(palette);
    stack->addWidget(title);
    auto *line = new WrapLabel;
    line->setFont(System(15));
    line->setPreferredWidth(420);
    line->setMaximumLines(2);
    line->setAlignment(Qt::AlignCenter);
    line->setText(sheet.text(u"or press + to choose one. The language is detected automatically.",
                             u"أو اضغط + لاختيار ملف. تُكتشف اللغة تلقائيًا."));
    stack->addWidget(line, 0, Qt::AlignHCenter);
    stack->addStretch();
    return drop;
}

QWidget *build(Sheet &sheet)
{
    auto *page = new QWidget;
    QPalette palette = page->palette();
    palette.setColor(QPalette::Window, Colours::window);
    page->setPalette(palette);
    page->setFixedWidth(1040);
    auto *stack = new QVBoxLayout(page);
    stack->setContentsMargins(24, 20, 24, 24);
    stack->setSpacing(12);
    const QString language = sheet.arabic ? u"ar"_qs : u"en"_qs;
    stack->addWidget(SectionLabel(sheet.text(u"Buttons", u"الأزرار"), language));
    for (int state = 0; state < 4; ++state)
        stack->addWidget(pillLine(sheet, state == 0 ? 44 : 34, state, page));
    stack->addWidget(SectionLabel(sheet.text(u"Progress", u"التقدم"), language));
    stack->addWidget(bars(sheet, page));
    stack->addWidget(SectionLabel(sheet.text(u"Model", u"النموذج"), language));
    stack->addWidget(cards(sheet, page));
    stack->addWidget(
        indent(hint(sheet.text(u"Labels who is talking (Speaker 1, Speaker 2…). Best for interviews and "
                               u"meetings.",
                               u"يسمّي المتحدثين (المتحدث 1، المتحدث 2…). الأفضل للمقابلات والاجتماعات.")),
               22));
    stack->addWidget(list(sheet, page));
    auto *drops = new Line(page);
    stack->addWidget(drops);
    for (bool lit : {false, true})
        drops->add(dropArea(sheet, lit, page))->setFixedWidth(490);
    return page;
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 2) {
        std::fputs("usage: controls_sheet FILE.png [--rtl]\n", stderr);
        return 2;
    }
    Sheet sheet;
    sheet.arabic = arguments.contains(u"--rtl"_qs);
    if (sheet.arabic)
        QApplication::setLayoutDirection(Qt::RightToLeft);
    const std::unique_ptr<QWidget> page(build(sheet));
    page->show();
    page->resize(page->sizeHint());
    QCoreApplication::processEvents();
    return page->grab().save(arguments.at(1)) ? 0 : 1;
}

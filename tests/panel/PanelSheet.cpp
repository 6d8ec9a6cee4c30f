// Draws the New Transcription panel to be looked at: panel_sheet FILE.png [files=N] [custom=N] [rtl] [long] [grow]
// [drag] [popup] [russian]. The scale is the environment's (QT_SCALE_FACTOR), the screen the platform's.

#include "LongTexts.h"

#include "intake/SetupPanel.h"
#include "ui/DropView.h"
#include "ui/Mascots.h"
#include "ui/MotionPolicy.h"
#include "ui/PopUpButton.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QJsonArray>
#include <QJsonObject>
#include <QMimeData>
#include <QPainter>
#include <QTranslator>

#include <cstdio>

using namespace tuppi;
using namespace Qt::StringLiterals;

namespace {

/// Enough Arabic to see how lines and marks fall.
class Arabic : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char *, const char *sourceText, const char *, int) const override
    {
        static const QHash<QString, QString> texts{
            {u"New Transcription"_s, u"نسخ جديد"_s},
            {u"Add More…"_s, u"إضافة المزيد…"_s},
            {u"Model"_s, u"النموذج"_s},
            {u"Language"_s, u"اللغة"_s},
            {u"English"_s, u"الإنجليزية"_s},
            {u"Automatic (recommended)"_s, u"تلقائي (موصى به)"_s},
            {u"Cancel"_s, u"إلغاء"_s},
            {u"Start Transcription"_s, u"بدء النسخ"_s},
            {u"Start Transcription (%lu files)"_s, u"بدء النسخ (%lu ملفات)"_s},
            {u"Separate speakers"_s, u"فصل المتحدثين"_s},
            {u"Text only (faster)"_s, u"النص فقط (أسرع)"_s},
            {u"The whole file is treated as %@."_s, u"يُعامَل الملف كله على أنه %@."_s},
            {u"%ldh %ldm"_s, u"%ld س %ld د"_s},
            {u"Only the transcript: skips the summary, tasks and text polishing."_s,
             u"النص فقط: يتخطى الملخص والمهام وتحسين النص."_s},
            {u"Labels who is talking (Speaker 1, Speaker 2…). Best for interviews and meetings."_s,
             u"يوضح من يتحدث (المتحدث 1، المتحدث 2…). الأفضل للمقابلات والاجتماعات."_s},
        };
        return texts.value(QString::fromUtf8(sourceText));
    }
};

int number(const QStringList &arguments, const QString &name, int otherwise)
{
    for (const QString &argument : arguments) {
        if (argument.startsWith(name + u'='))
            return argument.section(u'=', 1).toInt();
    }
    return otherwise;
}

QStringList files(int count)
{
    QStringList list{
        u"/home/ada/Recordings/Interview with the harbour master, second part, morning session, unedited.m4a"_s,
        u"/home/ada/Recordings/Team meeting 14 March.mp3"_s,
        u"/home/ada/Recordings/مقابلة مع مدير الميناء (1).wav"_s};
    for (qsizetype file = list.size() + 1; file <= count; ++file)
        list.append(u"/home/ada/Recordings/Voice memo %1.m4a"_s.arg(file));
    return list.first(count);
}

QJsonArray customModels(int count)
{
    QJsonArray models;
    for (int model = 1; model <= count; ++model) {
        models.append(QJsonObject{{u"id"_s, model},
                                  {u"name"_s, u"Ukrainian Whisper %1"_s.arg(model)},
                                  {u"kind"_s, u"whisper"_s},
                                  {u"repo"_s, u"ada/whisper-large-v3-ukrainian-fine-tuned-%1"_s.arg(model)}});
    }
    return models;
}

void lightUp(SetupPanel &panel)
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(u"/a.mp3"_s)});
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(panel.findChild<DropView *>(), &enter);
}

void settle()
{
    for (int round = 0; round < 20; ++round)
        QCoreApplication::processEvents();
}

/// The panel and what stands over it, as a screen would show them.
QPixmap picture(SetupPanel &panel)
{
    QPixmap whole = panel.grab();
    QPainter painter(&whole);
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (window != &panel && window->isVisible() && window->parentWidget())
            painter.drawPixmap(window->pos() - panel.pos(), window->grab());
    }
    return whole;
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 2) {
        std::fputs("usage: panel_sheet FILE.png [files=N] [custom=N] [rtl] [long] [grow] [drag] [popup] [russian]\n",
                   stderr);
        return 2;
    }
    LongTexts longTexts;
    Arabic arabic;
    if (arguments.contains(u"long"_s))
        QCoreApplication::installTranslator(&longTexts);
    const bool rtl = arguments.contains(u"rtl"_s);
    if (rtl) {
        QCoreApplication::installTranslator(&arabic);
        QApplication::setLayoutDirection(Qt::RightToLeft);
    }

    MotionPolicy motion;
    motion.setReducedMotion(true);
    Mascots mascots(motion);
    SetupOpening opening;
    opening.models = allModels(customModels(number(arguments, u"custom"_s, 0)));
    opening.languages = Languages(QLocale(rtl ? u"ar"_s : u"en"_s));
    opening.choices = {u"auto"_s, u"en"_s, true, false};
    opening.interfaceLanguage = rtl ? u"ar"_s : u"en"_s;
    SetupPanel panel(opening, mascots, nullptr);
    const int count = number(arguments, u"files"_s, 3);
    if (!arguments.contains(u"grow"_s))
        panel.showTexts(TextsOfBatch(files(count), 61.0 * 60 * count));
    panel.open();
    settle();
    panel.showTexts(TextsOfBatch(files(count), 61.0 * 60 * count));
    if (arguments.contains(u"drag"_s))
        lightUp(panel);
    auto *languages = panel.findChild<PopUpButton *>();
    if (arguments.contains(u"popup"_s))
        languages->showPopup();
    if (arguments.contains(u"russian"_s))
        languages->setCurrentIndex(languages->findData(u"ru"_s));
    settle();
    return picture(panel).save(arguments.at(1)) ? 0 : 1;
}

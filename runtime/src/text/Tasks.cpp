#include "text/Tasks.h"

#include <QHash>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

constexpr size_t mostTasks = 20;
constexpr qsizetype fewestInTask = 3; // words
constexpr qsizetype mostInAnswer = 8; // words of an answer that belongs to the task before it

QRegularExpression pattern(const QString &text)
{
    return QRegularExpression(text, QRegularExpression::CaseInsensitiveOption |
                                        QRegularExpression::UseUnicodePropertiesOption);
}

qsizetype countWords(const QString &text)
{
    return text.split(u' ', Qt::SkipEmptyParts).size();
}

// A date or a time by which something may have to be done.
bool namesDate(const QString &text)
{
    static const QRegularExpression date = pattern(
        u"\\b(tomorrow|tonight|(next|this) (week|weekend|month|year|morning|afternoon|evening|monday|tuesday|wednesday|"
        "thursday|friday|saturday|sunday)|as soon as possible|(by|until|till|before|on) (monday|tuesday|wednesday|"
        "thursday|friday|saturday|sunday|today|noon|then|christmas|easter|(the )?(end|beginning|middle) of|"
        "january|february|march|april|may|june|july|august|september|october|november|december|"
        "the \\d+(st|nd|rd|th)|the (first|second|third|fourth|fifth|sixth|seventh|eighth|ninth|tenth)|"
        "\\d{1,2}(:\\d\\d| [ap]\\.m\\.| o'clock)))"_s);
    return date.match(text).hasMatch();
}

// What only sounds like a task: a duty that is over, denied or supposed, and what people say without meaning it.
QString withoutFalseDuties(QString text)
{
    static const QRegularExpression nothing = pattern(
        u"\\b(i (have to|must|should|need to) (say|admit|confess)|(we|i|you|they|he|she|it)('ll| will) (see|be|never|always)|"
        "let's (see|say|face it|hope|not)|(should|must|would|could|might|may) have\\b|would have to|used to have to|"
        "(don't|doesn't|didn't|do not|does not|did not|never|won't|wouldn't) (have|need) to|no need to|"
        "how should i (say|put) it|should be (fine|ok|okay|enough|alright|all right)|must be (the|a|an|true|nice|hard)|"
        "(yes|no|oh|more|me|him) please|please (sit|come in|take a seat|help yourself|go on|go ahead|hold))\\b"_s);
    return text.remove(nothing);
}

// What interviewers ask for is an answer, not a task.
bool isRequest(const QString &text)
{
    static const QRegularExpression request = pattern(
        u"\\b(can|could|will|would) (you|somebody|someone|anybody|anyone) (please )?(?!tell|say|explain|describe|hear|see|"
        "imagine|believe|remember|repeat|understand|give (me|us) an? (example|idea)|please|agree|like|think|be\\b|have\\b)\\w"_s);
    return request.match(text).hasMatch();
}

bool speaksOfDutyInEnglish(const QString &said)
{
    static const QRegularExpression duty =
        pattern(u"\\b(needs? to|have to|has to|have got to|have gotta|must|should|ought to|supposed to|please|"
                "remember to|don't forget|do not forget|make sure|let's|action item|responsible for|"
                "(is|are) due|deadline is)\\b"_s);
    // "The school will open" tells of the future; "I will send it" promises.
    static const QRegularExpression promise =
        pattern(u"\\b(i'll|we'll|you'll|i will|we will|you will|(i'm|i am|we're|we are|you're|you are) going to) "
                "(?!be\\b|have\\b|see\\b|know\\b|talk\\b|tell you|show you|explain|say\\b|like\\b|love\\b|think\\b|"
                "feel\\b|get to|not\\b|never\\b|probably\\b|need\\b|want\\b|die\\b)\\w"_s);
    // Somebody by name or as he or she; only with a date, else it tells of the future as well.
    static const QRegularExpression anothersPromise(
        u"\\b([Hh]e|[Ss]he|[Tt]hey|(?!It\\b|That\\b|This\\b|There\\b|What\\b|Which\\b|Nobody\\b|Life\\b)[A-Z]\\w+)('ll| will| is "
        "going to| are going to) (?!be\\b|have\\b|open\\b|happen\\b|start\\b|begin\\b|end\\b|rain\\b)\\w"_s);
    static const QRegularExpression past = pattern(u"\\b(had|was|were|did|came|went)\\b"_s);
    static const QRegularExpression deadline = pattern(
        u"\\bby (monday|tuesday|wednesday|thursday|friday|saturday|sunday|tomorrow|noon|(the )?end of)"_s);
    const QString text = withoutFalseDuties(said);
    const bool question = text.endsWith(u'?');
    if (isRequest(text))
        return true;
    if (question)
        return false;
    return duty.match(text).hasMatch() || promise.match(text).hasMatch() ||
           (namesDate(text) && anothersPromise.match(text).hasMatch()) ||
           (deadline.match(text).hasMatch() && !past.match(text).hasMatch());
}

// Words of duty and of asking; predictions are left out on purpose.
const QHash<QString, QRegularExpression> &dutyElsewhere()
{
    static const QHash<QString, QRegularExpression> patterns{
        {u"de"_s, pattern(u"\\b(muss|müssen|musst|müsst|soll|sollen|sollst|sollte|sollten|bitte|vergiss nicht|nicht vergessen|"
                          "kümmer\\w+ (mich|dich|sich|uns)|denkt? (bitte )?(daran|dran)|zuständig|"
                          "bis (montag|dienstag|mittwoch|donnerstag|freitag|samstag|sonntag|morgen|spätestens|ende))\\b"_s)},
        {u"fr"_s, pattern(u"\\b(il (me |te |nous |vous )?faut|faudra|faudrait|dois|doit|devons|devez|doivent|devrais|devrait|"
                          "devrions|devriez|n'oubli(e|ez|ons) pas|s'il (te|vous) pla[iî]t|veuillez|merci de|d'ici|"
                          "avant (lundi|mardi|mercredi|jeudi|vendredi|samedi|dimanche|demain|la fin))\\b"_s)},
        {u"es"_s, pattern(u"\\b(hay que|(tengo|tienes|tiene|tenemos|tenéis|tienen) que|debo|debes|debe|debemos|debéis|deben|"
                          "deberías?|deberíamos|deberían|por favor|no (te |se )?olvid\\w+|encárgate|se encarga|"
                          "antes del?|para el (lunes|martes|miércoles|jueves|viernes|sábado|domingo))\\b"_s)},
        {u"it"_s, pattern(u"\\b(bisogna|occorre|devo|devi|deve|dobbiamo|dovete|devono|dovrei|dovresti|dovrebbe|dovremmo|"
                          "per favore|non dimentic\\w+|ricordati|entro)\\b"_s)},
        {u"pt"_s, pattern(u"\\b(é preciso|preciso|precisas?|precisamos|precisam|(tenho|tens|tem|temos|têm) (de|que)|devo|"
                          "deves?|devemos|devem|deveria|por favor|não (te |se )?esque\\w+|"
                          "até (segunda|terça|quarta|quinta|sexta|sábado|domingo|amanhã|ao fim|o fim))\\b"_s)},
        {u"nl"_s, pattern(u"\\b(moet|moeten|alsjeblieft|alstublieft|vergeet niet|niet vergeten|uiterlijk|zorg\\w* (dat|ervoor)|"
                          "voor (maandag|dinsdag|woensdag|donderdag|vrijdag|zaterdag|zondag|morgen))\\b"_s)},
        {u"pl"_s, pattern(u"\\b(trzeba|należy|muszę|musisz|musi|musimy|musicie|muszą|powinien|powinna|powinniśmy|powinni|"
                          "proszę|nie zapomnij\\w*|do (poniedziałku|wtorku|środy|czwartku|piątku|soboty|niedzieli|jutra|"
                          "końca))\\b"_s)},
        {u"ru"_s, pattern(u"\\b(нужно|надо|необходимо|следует|должен|должна|должны|обязан\\w*|пожалуйста|не забудь\\w*|"
                          "(пришли|отправь|сделай|подготовь|позвони|напиши)(те)?|"
                          "(до|к) (понедельник[ау]|вторник[ау]|сред[еы]|четверг[ау]|пятниц[еы]|суббот[еы]|воскресенья|"
                          "воскресенью|завтра|конца|концу))\\b"_s)},
        {u"uk"_s, pattern(u"\\b(треба|потрібно|необхідно|слід|повинен|повинна|повинні|мушу|мусиш|мусить|мусимо|мусять|маю|"
                          "маємо|будь ласка|не забудь\\w*|(надішли|зроби|підготуй|зателефонуй|напиши)(ть)?|"
                          "до (понеділка|вівторка|середи|четверга|п['ʼ’]ятниці|суботи|неділі|завтра|кінця))\\b"_s)},
    };
    return patterns;
}

bool speaksOfDuty(const QString &text, const QString &language)
{
    if (countWords(text) < fewestInTask)
        return false;
    if (isEnglish(language))
        return speaksOfDutyInEnglish(text);
    const auto found = dutyElsewhere().find(mainLanguage(language));
    return found != dutyElsewhere().end() && !text.endsWith(u'?') && found->match(text).hasMatch();
}

struct Task
{
    QString text;
    bool dated = false;
};

QString said(const Sentence &sentence)
{
    return sentence.speaker.isEmpty() ? sentence.text : sentence.speaker + u": "_s + sentence.text;
}

} // namespace

bool tellsTasks(const QString &language)
{
    return isEnglish(language) || dutyElsewhere().contains(mainLanguage(language));
}

QStringList extractTasks(const std::vector<Sentence> &sentences, const QString &language)
{
    std::vector<Task> tasks;
    for (size_t i = 0; i < sentences.size(); ++i) {
        if (!speaksOfDuty(sentences[i].text, language))
            continue;
        Task task{said(sentences[i]), namesDate(sentences[i].text)};
        if (!task.dated && i + 1 < sentences.size()) {
            const Sentence &next = sentences[i + 1];
            const bool asked = sentences[i].text.endsWith(u'?');
            if (countWords(next.text) <= mostInAnswer && namesDate(next.text) &&
                (asked || !speaksOfDuty(next.text, language))) {
                task.text += u' ' + (next.speaker == sentences[i].speaker ? next.text : said(next));
                task.dated = true;
                ++i;
            }
        }
        const bool known = std::ranges::find(tasks, task.text, &Task::text) != tasks.end();
        if (!known)
            tasks.push_back(std::move(task));
    }
    // From the end, those without a date go first.
    for (size_t i = tasks.size(); i-- > 0 && tasks.size() > mostTasks;) {
        if (!tasks[i].dated)
            tasks.erase(tasks.begin() + std::ptrdiff_t(i));
    }
    tasks.resize(std::min(tasks.size(), mostTasks));
    QStringList texts;
    for (const Task &task : tasks)
        texts.append(task.text);
    return texts;
}

} // namespace engine

#include "commands/Command.h"

#include "core/Failure.h"
#include "correct/Correction.h"
#include "output/ViewerPage.h"
#include "store/Jobs.h"
#include "text/CleanFix.h"
#include "text/SummaryFix.h"
#include "text/Words.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine::commands {

namespace {

constexpr qsizetype longestName = 200;
constexpr qsizetype longestTitle = 500;

// Out of the range of any transcript where the number is too long for one.
qint64 numberOf(const QString &argument, const QString &what)
{
    static const QRegularExpression form(u"\\A-?[0-9]+\\z"_s);
    if (!form.match(argument).hasMatch())
        throw usageFailure(u"“"_s + argument + u"” is not the number of a "_s + what + u"."_s);
    bool fits = false;
    const qint64 number = argument.toLongLong(&fits);
    return fits ? number : -1;
}

// A name or a title as it is kept: one line without blanks at its ends.
QString nameFrom(const QString &given, const QString &what, qsizetype longest)
{
    const auto breaks = [](QChar c) {
        return c.category() == QChar::Other_Control || c == QChar::LineSeparator ||
               c == QChar::ParagraphSeparator;
    };
    const QString name = trimmedText(given);
    if (name.isEmpty())
        throw Failure(u"The "_s + what + u" is empty."_s);
    if (std::ranges::any_of(name, breaks))
        throw Failure(u"The "_s + what + u" must be one line without control characters."_s);
    if (name.size() > longest)
        throw Failure(u"The "_s + what + u" is too long: %1 characters are the most."_s.arg(longest));
    return name;
}

Line &lineAt(Transcript &transcript, qint64 number)
{
    const auto count = qint64(transcript.lines.size());
    if (number < 0 || number >= count)
        throw Failure(
            u"There is no line %1 in this transcript: its lines are numbered from 0 to %2."_s.arg(number).arg(
                count - 1));
    return transcript.lines[size_t(number)];
}

void answer(const Arguments &arguments, const QJsonObject &reply, const QString &sentence)
{
    if (arguments.has(u"--json"))
        print(QJsonDocument(reply).toJson(QJsonDocument::Compact) + '\n');
    else
        printLine(sentence);
}

[[noreturn]] void refuseUsage(const QString &command)
{
    const auto found = std::ranges::find(allCommands(), command, &Command::name);
    throw usageFailure(u"These arguments do not belong together. Usage: call "_s +
                       found->syntax.usage.toString());
}

int renameSpeaker(const Arguments &arguments)
{
    const QString old = arguments.value(u"--old");
    const QString name = nameFrom(arguments.value(u"--new"), u"speaker's name"_s, longestName);
    Database database(Paths::ofThisUser());
    int changed = 0;
    correct(database, arguments.words.first(), [&](Correction &correction) {
        bool known = false;
        const std::vector<Line> before = correction.transcript.lines;
        for (Line &line : correction.transcript.lines) {
            if (line.speaker != old || old.isEmpty())
                continue;
            known = true;
            changed += line.speaker == name ? 0 : 1;
            line.speaker = name;
        }
        if (!known)
            throw Failure(u"Nobody is called “"_s + old + u"” in this transcript."_s);
        if (std::optional<Summary> &summary = correction.transcript.summary) {
            summary->sentences = speakerRenamed(summary->sentences, before, old, name);
            summary->tasks = speakerRenamed(summary->tasks, before, old, name);
        }
    });
    answer(arguments, {{u"speaker"_s, name}, {u"changed"_s, changed}}, u"Renamed in %1 lines"_s.arg(changed));
    return 0;
}

int nameSpeaker(const Arguments &arguments)
{
    const qint64 number = numberOf(arguments.words.at(1), u"line"_s);
    const QString name = arguments.has(u"--none")
                             ? QString()
                             : nameFrom(arguments.value(u"--name"), u"speaker's name"_s, longestName);
    Database database(Paths::ofThisUser());
    correct(database, arguments.words.first(), [&](Correction &correction) {
        Line &line = lineAt(correction.transcript, number);
        std::optional<Summary> &summary = correction.transcript.summary;
        if (summary && summary->model.isEmpty() && line.speaker != name)
            summary->tasks = lineGiven(summary->tasks, correction.transcript.lines, size_t(number), name);
        line.speaker = name;
    });
    answer(arguments, {{u"speaker"_s, name.isEmpty() ? QJsonValue() : QJsonValue(name)}}, u"Speaker saved"_s);
    return 0;
}

// The place behind so many characters (code points), in UTF-16 units.
qsizetype placeBehind(const QString &text, qint64 characters)
{
    qsizetype place = 0;
    for (qint64 i = 0; i < characters && place < text.size(); ++i) {
        const bool pair =
            text[place].isHighSurrogate() && place + 1 < text.size() && text[place + 1].isLowSurrogate();
        place += pair ? 2 : 1;
    }
    return place;
}

qint64 charactersIn(const QString &text)
{
    return text.toUcs4().size();
}

int splitLine(const Arguments &arguments, qint64 number)
{
    const qint64 characters = numberOf(arguments.words.at(2), u"character"_s);
    Database database(Paths::ofThisUser());
    QJsonArray segments;
    correct(database, arguments.words.first(), [&](Correction &correction) {
        Line &line = lineAt(correction.transcript, number);
        // At an end too: a line that was emptied and then joined comes back so.
        if (characters < 0 || characters > charactersIn(line.text))
            throw Failure(u"A line can only be split inside its text."_s);
        const qsizetype place = placeBehind(line.text, characters);
        const auto [first, second] = cut(line, place);
        segments = {pageLine(first), pageLine(second)};
        line = first;
        std::vector<Line> &lines = correction.transcript.lines;
        lines.insert(lines.begin() + number + 1, second);
    });
    answer(arguments, {{u"segments"_s, segments}}, u"Split"_s);
    return 0;
}

int joinLines(const Arguments &arguments, qint64 number)
{
    Database database(Paths::ofThisUser());
    QJsonObject segment;
    correct(database, arguments.words.first(), [&](Correction &correction) {
        const Line lower = lineAt(correction.transcript, number);
        if (number == 0)
            throw Failure(u"There is no line above the first one."_s);
        Line &upper = lineAt(correction.transcript, number - 1);
        upper = joined(upper, lower);
        segment = pageLine(upper);
        std::vector<Line> &lines = correction.transcript.lines;
        lines.erase(lines.begin() + number);
    });
    answer(arguments, {{u"segment"_s, segment}}, u"Joined with the line above"_s);
    return 0;
}

} // namespace

int rename(const Arguments &arguments)
{
    const QString &id = arguments.words.first();
    const QString title = nameFrom(arguments.words.at(1), u"title"_s, longestTitle);
    Database database(Paths::ofThisUser());
    // Without a transcript there are no files that show the title.
    if (requireJob(database, id).status != Status::ready) {
        changeJob(database, id, [&](Job &job) {
            if (job.unfinished() || job.status == Status::ready)
                throw Failure(u"“"_s + job.title + u"” is being worked on. Rename it when it is done."_s);
            job.title = title;
        });
        return 0;
    }
    correct(database, id, [&](Correction &correction) { correction.job.title = title; });
    return 0;
}

int speaker(const Arguments &arguments)
{
    const auto count = [&](std::initializer_list<QStringView> options) {
        return std::ranges::count_if(options, [&](QStringView option) { return arguments.has(option); });
    };
    if (arguments.has(u"--rename") && arguments.words.size() == 1 && count({u"--old", u"--new"}) == 2 &&
        count({u"--name", u"--none"}) == 0)
        return renameSpeaker(arguments);
    if (arguments.words.size() == 2 && count({u"--name", u"--none"}) == 1 &&
        count({u"--rename", u"--old", u"--new"}) == 0)
        return nameSpeaker(arguments);
    refuseUsage(u"speaker"_s);
}

int edit(const Arguments &arguments)
{
    const qint64 number = numberOf(arguments.words.at(1), u"line"_s);
    const QString &text = arguments.words.at(2);
    if (text.contains(u'\n') || text.contains(u'\r'))
        throw Failure(u"The text of a line cannot hold line breaks. Split the line instead."_s);
    Database database(Paths::ofThisUser());
    bool cleanUpdated = false;
    correct(database, arguments.words.first(), [&](Correction &correction) {
        Line &line = lineAt(correction.transcript, number);
        if (line.text == text)
            return;
        correction.carriedOver = [lines = correction.transcript.lines, number, text](const QString &whole) {
            return withCorrectedLine(whole, lines, size_t(number), text);
        };
        cleanUpdated = correction.carriedOver(correction.transcript.clean) != correction.transcript.clean;
        if (std::optional<Summary> &summary = correction.transcript.summary) {
            const std::vector<Line> &lines = correction.transcript.lines;
            summary->sentences = lineCorrected(summary->sentences, lines, size_t(number), text);
            summary->tasks = lineCorrected(summary->tasks, lines, size_t(number), text);
        }
        line = withText(line, text);
    });
    answer(arguments, {{u"clean_updated"_s, cleanUpdated}},
           cleanUpdated ? u"Saved, also in the clean text"_s : u"Saved"_s);
    return 0;
}

int split(const Arguments &arguments)
{
    const bool join = arguments.has(u"--join");
    if (join == (arguments.words.size() == 3))
        refuseUsage(u"split"_s);
    const qint64 number = numberOf(arguments.words.at(1), u"line"_s);
    return join ? joinLines(arguments, number) : splitLine(arguments, number);
}

} // namespace engine::commands

#include "list/Describe.h"

#include "engine/Stages.h"
#include "settings/Fill.h"
#include "settings/L.h"
#include "settings/Val.h"

#include <cmath>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

/// The engine's own message for a recording that holds only silence.
const QString silenceMessage = u"Запис містить тишу"_s;

QString textOf(const QJsonObject &row, QLatin1StringView key)
{
    return row.value(key).toString();
}

/// The leading decimal number of a text, 0 when it starts with none.
double numericValue(const QString &text)
{
    const auto isDigit = [&](qsizetype at) { return at < text.size() && text.at(at) >= u'0' && text.at(at) <= u'9'; };
    qsizetype begin = 0;
    while (begin < text.size() && text.at(begin).isSpace())
        ++begin;
    qsizetype end = begin;
    if (end < text.size() && (text.at(end) == u'+' || text.at(end) == u'-'))
        ++end;
    while (isDigit(end))
        ++end;
    if (end < text.size() && text.at(end) == u'.') {
        ++end;
        while (isDigit(end))
            ++end;
    }
    return QStringView(text).sliced(begin, end - begin).toDouble();
}

double numberOf(const QJsonValue &value)
{
    return value.isString() ? numericValue(value.toString()) : value.toDouble();
}

/// The engine's progress text for this row, nothing when the latest job is another one.
std::optional<QString> progressText(const QJsonObject &row, const std::optional<QJsonObject> &latestJob)
{
    if (!latestJob)
        return std::nullopt;
    const QJsonValue id = Val(latestJob->value("id"_L1));
    const QJsonValue progress = latestJob->value("progress"_L1);
    if (id.isUndefined() || id.toVariant().toString() != row.value("id"_L1).toVariant().toString() || !progress.isString())
        return std::nullopt;
    return progress.toString();
}

double fractionOf(const std::optional<QString> &progress)
{
    if (!progress)
        return -1;
    if (progress->endsWith(u'%'))
        return numericValue(*progress) / 100;
    const QStringList pieces = progress->split(u'/');
    if (pieces.size() < 2)
        return -1;
    const double whole = numericValue(pieces.at(1));
    return whole > 0 ? numericValue(pieces.at(0)) / whole : -1;
}

QString stageText(const QString &status, const std::optional<QString> &progress)
{
    const QString suffix = progress ? u' ' + *progress : QString();
    if (status == "queued"_L1)
        return L(u"Starting…"_s);
    if (status == "transcribing"_L1)
        return L(u"Listening and writing down…"_s) + suffix;
    if (status == "analyzing"_L1)
        return L(u"Writing the summary…"_s) + suffix;
    return L(u"Polishing the text…"_s) + suffix;
}

Description describeWork(const QJsonObject &row, const std::optional<QJsonObject> &latestJob)
{
    const std::optional<QString> progress = progressText(row, latestJob);
    const QString stage = stageText(textOf(row, "status"_L1), progress);
    const double fraction = fractionOf(progress);
    if (!IsTrue(row.value("paused"_L1)))
        return {stage, fraction};
    return {L(u"Paused — "_s) + stage, fraction < 0 ? 0 : fraction};
}

QString failureText(const QJsonObject &row)
{
    const QJsonValue error = row.value("error"_L1);
    if (!error.isString())
        return L(u"Failed — "_s) + L(u"unknown error"_s);
    const QString text = error.toString();
    return L(u"Failed — "_s) + L(text == silenceMessage ? L(u"No speech found in this recording"_s) : text);
}

QString builtInModelName(const QJsonObject &row, const QString &choice)
{
    const QJsonValue engine = Val(row.value("engine"_L1));
    const bool parakeet = engine.toString().contains("parakeet"_L1);
    if (parakeet)
        return engine.toString().contains("whisper"_L1) ? u"Parakeet + Whisper"_s : u"Parakeet"_s;
    if (choice == "whisper-large"_L1)
        return u"Whisper Large"_s;
    return engine.isUndefined() ? QString() : u"Whisper Turbo"_s;
}

QString modelName(const QJsonObject &row, const QJsonArray &customModels)
{
    const QString choice = textOf(row, "engine_choice"_L1);
    if (!choice.startsWith("custom:"_L1))
        return builtInModelName(row, choice);
    QString name = L(u"custom model"_s);
    for (const QJsonValue &model : customModels) {
        if (u"custom:"_s + model["id"_L1].toVariant().toString() == choice)
            name = model["name"_L1].toString(name);
    }
    return name;
}

QString doneText(const QJsonObject &row, const QJsonArray &customModels)
{
    constexpr int dateLength = 16; // to the minute
    QString date = textOf(row, "recorded_at"_L1).replace(u'T', u' ');
    if (date.size() > dateLength)
        date.truncate(dateLength);
    const double minutes = std::max(1.0, std::round(numberOf(row.value("duration_seconds"_L1)) / 60));
    const QString name = modelName(row, customModels);
    const QString russian = textOf(row, "language"_L1) == "ru"_L1 ? L(u" · ⚠ Russian"_s) : QString();
    return Fill(L(u"Done · %@ · %.0f min%@%@"_s), {date, minutes, name.isEmpty() ? name : u" · "_s + name, russian});
}

} // namespace

Description Describe(const QJsonObject &row, const std::optional<QJsonObject> &latestJob, const QJsonArray &customModels)
{
    const QString status = textOf(row, "status"_L1);
    if (status == "waiting"_L1)
        return {L(u"Waiting in line…"_s), -2};
    if (status == "starting"_L1)
        return {L(u"Copying the file…"_s), -1};
    if (IsActiveStage(status))
        return describeWork(row, latestJob);
    if (status == "cancelled"_L1)
        return {L(u"Cancelled — press Start Again to continue where it stopped"_s), -2};
    if (status == "failed"_L1)
        return {failureText(row), -2};
    if (status == "ready"_L1)
        return {doneText(row, customModels), -2};
    return {status, -2};
}

QString SummaryLine(const SummaryInput &input)
{
    if (!input.transientStatus.isEmpty())
        return input.transientStatus;
    // Later too while files wait: it is what they wait for.
    if (input.engineBroken && (!input.loaded || input.waiting > 0))
        return L(u"Tuppi's engine could not be found — please run the installer again."_s);
    if (input.rowCount == 0)
        return input.loaded ? L(u"No transcriptions"_s) : L(u"Preparing…"_s);
    if (input.counts.pausedWork && input.counts.active < 2)
        return L(u"Paused"_s);
    if (input.counts.active == 0 && input.waiting == 0) {
        return input.counts.ready == 1 ? L(u"1 transcript"_s)
                                       : Fill(L(u"%lu transcripts"_s), {input.counts.ready});
    }
    return input.waiting > 0 ? Fill(L(u"Working on 1 file · %lu waiting"_s), {input.waiting})
                             : L(u"Working on 1 file"_s);
}

} // namespace tuppi

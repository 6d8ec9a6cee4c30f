#include "engine/EngineCommands.h"

#include <QLocale>
#include <QUrl>

namespace tuppi::command {

using namespace Qt::StringLiterals;

namespace {

/// Whole numbers without a point or an exponent, as far as they are exact.
QString numberText(double number)
{
    constexpr double exact = 9007199254740992; // 2 to the power of 53
    if (number > -exact && number < exact && number == double(qint64(number)))
        return QString::number(qint64(number));
    return QString::number(number, 'g', QLocale::FloatingPointShortest);
}

} // namespace

QStringList resume()
{
    return {u"resume"_s};
}

QStringList history()
{
    return {u"history"_s, u"--json"_s};
}

QStringList status()
{
    return {u"status"_s, u"--json"_s};
}

QStringList process(const QVariantMap &waitingEntry)
{
    const QString language = waitingEntry.value(u"language"_s).toString();
    QStringList arguments{u"process"_s,
                          waitingEntry.value(u"url"_s).toUrl().toLocalFile(),
                          u"--background"_s,
                          u"--engine"_s,
                          waitingEntry.value(u"engine"_s).toString(),
                          u"--language"_s,
                          language.isEmpty() ? u"auto"_s : language};
    if (waitingEntry.value(u"quick"_s).toBool())
        arguments << u"--no-clean"_s << u"--no-analyze"_s;
    arguments << (waitingEntry.value(u"speakers"_s).toBool() ? u"--speakers"_s : u"--no-speakers"_s);
    return arguments;
}

QStringList models()
{
    return {u"models"_s, u"--json"_s};
}

QStringList addModel(const QString &name, const QString &kind, const QString &repo)
{
    return {u"models"_s, u"add"_s, u"--name="_s + name, u"--kind="_s + kind, u"--repo="_s + repo, u"--json"_s};
}

QStringList removeModel(const QString &modelId)
{
    return {u"models"_s, u"remove"_s, u"--id="_s + modelId, u"--json"_s};
}

QStringList useTextModel(const QString &name)
{
    return {u"models"_s, u"text-model"_s, u"--name="_s + name, u"--json"_s};
}

QStringList settings()
{
    return {u"settings"_s, u"--json"_s};
}

QStringList setLibrary(const QString &path)
{
    return {u"settings"_s, u"--library="_s + path, u"--json"_s};
}

QStringList doctor()
{
    return {u"doctor"_s, u"--json"_s};
}

QStringList copyTranscript(const QString &id)
{
    return {u"copy"_s, u"transcript"_s, id};
}

QStringList rename(const QString &id, const QString &title)
{
    return {u"rename"_s, id, u"--"_s, title};
}

QStringList pause(const QString &id)
{
    return {u"pause"_s, id};
}

QStringList resumeJob(const QString &id)
{
    return {u"continue"_s, id};
}

QStringList cancel(const QString &id)
{
    return {u"cancel"_s, id};
}

QStringList retry(const QString &id)
{
    return {u"retry"_s, id};
}

QStringList hide(const QStringList &ids)
{
    return QStringList(u"hide"_s) + ids;
}

QStringList unhideAll()
{
    return {u"hide"_s, u"--all"_s, u"--undo"_s};
}

QStringList renameSpeaker(const QString &id, const QString &oldName, const QString &newName)
{
    return {u"speaker"_s, id, u"--rename"_s, u"--old="_s + oldName, u"--new="_s + newName, u"--json"_s};
}

QStringList setLineSpeaker(const QString &id, double line, const std::optional<QString> &name)
{
    return {u"speaker"_s, id, numberText(line), u"--json"_s, name ? u"--name="_s + *name : u"--none"_s};
}

QStringList editLine(const QString &id, double line, const QString &text)
{
    return {u"edit"_s, id, numberText(line), u"--json"_s, u"--"_s, text};
}

QStringList splitLine(const QString &id, double line, double position)
{
    return {u"split"_s, id, numberText(line), numberText(position), u"--json"_s};
}

QStringList joinWithLineAbove(const QString &id, double line)
{
    return {u"split"_s, id, numberText(line), u"--join"_s, u"--json"_s};
}

} // namespace tuppi::command

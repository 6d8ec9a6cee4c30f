#include "viewer/PageScripts.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace tuppi {

using namespace Qt::StringLiterals;

QString ScriptText(const QJsonValue &value)
{
    const QJsonDocument document =
        value.isArray() ? QJsonDocument(value.toArray()) : QJsonDocument(value.toObject());
    QString text = QString::fromUtf8(document.toJson(QJsonDocument::Compact));
    // To JSON two characters like any other, to older JavaScript the end of a line.
    text.replace(QChar(0x2028), u"\\u2028"_s).replace(QChar(0x2029), u"\\u2029"_s);
    return text;
}

bool IsRightToLeft(const QString &language)
{
    return language.startsWith("ar"_L1) || language.startsWith("he"_L1);
}

bool RunsFromTheRight(QStringView text)
{
    constexpr qsizetype enough = 10000;
    qsizetype more = 0;
    for (const QChar character : text.first(qMin(text.size(), enough))) {
        const QChar::Direction direction = character.direction();
        if (direction == QChar::DirR || direction == QChar::DirAL)
            ++more;
        else if (direction == QChar::DirL)
            --more;
    }
    return more > 0;
}

QString viewerI18nScript(const QHash<QString, QString> &texts, const QString &language)
{
    QJsonObject table;
    for (auto entry = texts.begin(); entry != texts.end(); ++entry)
        table.insert(entry.key(), entry.value());
    const QString direction = IsRightToLeft(language) ? u"true"_s : u"false"_s;
    return u"window.TUPPI_I18N="_s + ScriptText(table) + u";window.TUPPI_RTL="_s + direction + u';';
}

QString BeginWithSummaryScript()
{
    return u"window.TUPPI_TAB='summary';"_s;
}

QString ShowTabScript(bool summary)
{
    return summary ? u"window.showTab&&showTab('summary')"_s : u"window.showTab&&showTab('transcript')"_s;
}

QString PauseScript()
{
    return u"document.querySelectorAll('audio').forEach(function(a){a.pause()})"_s;
}

QString UnsavedScript(bool endsEdit)
{
    return u"({unsaved:window.tuppiUnsaved?window.tuppiUnsaved(%1):[],"
           "failed:window.tuppiFailed?window.tuppiFailed():[]})"_s.arg(endsEdit ? u"true"_s : u"false"_s);
}

QString FailedScript()
{
    return u"({failed:window.tuppiFailed?window.tuppiFailed():[]})"_s;
}

} // namespace tuppi

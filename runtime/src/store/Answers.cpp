#include "store/Answers.h"

#include <QCryptographicHash>

using namespace Qt::StringLiterals;

namespace engine {

QByteArray questionKey(const QString &model, const ModelQuestion &question)
{
    const QString whole = model + u'\n' + question.system + u'\n' + question.text;
    return QCryptographicHash::hash(whole.toUtf8(), QCryptographicHash::Sha256).toHex();
}

std::optional<QString> keptAnswer(Database &database, qint64 job, const QByteArray &key)
{
    QSqlQuery query = database.run(u"SELECT answer FROM answers WHERE job = ? AND question = ?"_s,
                                   {job, QString::fromLatin1(key)});
    return query.next() ? std::optional(query.value(0).toString()) : std::nullopt;
}

void keepAnswer(Database &database, qint64 job, const QByteArray &key, const QString &answer)
{
    database.run(u"REPLACE INTO answers (job, question, answer) VALUES (?, ?, ?)"_s,
                 {job, QString::fromLatin1(key), answer});
}

void dropAnswers(Database &database, qint64 job)
{
    database.run(u"DELETE FROM answers WHERE job = ?"_s, {job});
}

} // namespace engine

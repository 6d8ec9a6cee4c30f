#pragma once

#include "store/Database.h"
#include "text/ModelWriting.h"

#include <optional>

namespace engine {

// What text models have answered about a job that is not ready yet, so that work which was cut off goes on
// with the next part. Writing belongs inside the caller's transaction. All throw Failure.

// The same for the same model and question.
QByteArray questionKey(const QString &model, const ModelQuestion &question);

std::optional<QString> keptAnswer(Database &database, qint64 job, const QByteArray &key);
void keepAnswer(Database &database, qint64 job, const QByteArray &key, const QString &answer);
void dropAnswers(Database &database, qint64 job);

} // namespace engine

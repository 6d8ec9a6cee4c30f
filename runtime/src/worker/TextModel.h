#pragma once

#include "store/Database.h"
#include "text/ModelWriting.h"
#include "worker/JobControl.h"

#include <functional>

namespace engine {

// The text model that the user chose, asked about one job: by a program of its own, so that it can be left at
// any moment. Answers are kept until the job is ready.
class TextModel
{
public:
    // `awaited` is told now and then how much of an answer may be there, from 0 to less than 1: nobody knows, but it can be
    // judged by how long the last ones took.
    TextModel(Database &database, JobControl &control, std::function<void(double share)> awaited);

    bool chosen() const { return !m_name.isEmpty(); }
    const QString &name() const { return m_name; }

    // Nothing when it gave no answer; after two of these in a row it is not asked any more. Throws
    // JobDropped.
    std::optional<QString> ask(const ModelQuestion &question);

private:
    std::optional<QString> answerTo(const ModelQuestion &question);

    Database &m_database;
    JobControl &m_control;
    QString m_name;
    int m_failures = 0; // in a row
    std::function<void(double)> m_awaited;
    double m_usualSeconds = 30; // of an answer
};

} // namespace engine

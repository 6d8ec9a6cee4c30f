#include "commands/Command.h"

#include "correct/Correction.h"
#include "store/Jobs.h"
#include "store/Settings.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace engine::commands {

namespace {

QString lineFor(const QJsonObject &entry)
{
    QString line = entry[u"id"].toString() + u"  "_s + entry[u"status"].toString();
    if (entry[u"paused"].toBool())
        line += u" (paused)"_s;
    line += u"  "_s + entry[u"title"].toString();
    if (const QString error = entry[u"error"].toString(); !error.isEmpty())
        line += u"  – "_s + error;
    return line;
}

QJsonObject latestForStatus(const Job &job)
{
    QJsonObject latest = QJsonDocument::fromJson(historyEntry(job)).object();
    latest[u"progress"] = job.progress.isEmpty() ? QJsonValue() : QJsonValue(job.progress);
    return latest;
}

} // namespace

int history(const Arguments &arguments)
{
    Database database(Paths::ofThisUser());
    finishCorrections(database);
    if (!arguments.has(u"--json")) {
        forEachEntries(database, [](const QByteArray &entries) {
            const QJsonArray list = QJsonDocument::fromJson('[' + entries + ']').array();
            for (const QJsonValue &entry : list)
                printLine(lineFor(entry.toObject()));
        });
        return 0;
    }
    // Entries go out as the store keeps them: ten thousand of them cost little more than copying the bytes.
    QByteArray separator = "[";
    forEachEntries(database, [&separator](const QByteArray &entries) {
        print(separator);
        print(entries);
        separator = ",\n";
    });
    print(separator == "[" ? "[]\n" : "]\n");
    return 0;
}

int status(const Arguments &arguments)
{
    Database database(Paths::ofThisUser());
    finishCorrections(database);
    const std::optional<Job> job = latestJob(database);
    const QString library = libraryInUse(database).folder;
    if (!arguments.has(u"--json")) {
        if (job)
            printLine(job->title + u": "_s + job->status + u" "_s + job->progress);
        printLine(u"Transcripts folder: "_s + library);
        return 0;
    }
    const QJsonObject answer{{u"latest_job"_s, job ? QJsonValue(latestForStatus(*job)) : QJsonValue()},
                             {u"library"_s, library}};
    print(QJsonDocument(answer).toJson(QJsonDocument::Compact) + '\n');
    return 0;
}

} // namespace engine::commands

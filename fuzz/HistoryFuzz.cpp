#include "Fuzz.h"

#include "app/JobsState.h"
#include "app/StartRecord.h"
#include "engine/HistoryReader.h"
#include "list/ListContent.h"
#include "list/Rows.h"

#include <QJsonDocument>

using namespace tuppi;

/// A reply of the history query, up to the rows as they are shown.
void readInput(const QByteArray &bytes)
{
    // One byte at a time, and as a whole: what arrives in pieces is no other reply.
    HistoryReader reader(nullptr);
    for (qsizetype at = 0; at < bytes.size(); ++at)
        reader.take(QByteArrayView(bytes).sliced(at, 1));
    const QJsonDocument document = bytes.isValidUtf8() ? QJsonDocument::fromJson(bytes) : QJsonDocument();
    require((reader.finish(0).history != nullptr) == document.isArray());
    const HistoryReply reply = ReadHistory({0, bytes, {}}, nullptr);
    require((reply.history != nullptr) == document.isArray());
    if (!reply.history)
        return;
    require(bytes.isEmpty() || ReadHistory({0, bytes, {}}, reply.history).history == reply.history);
    JobsState jobs;
    jobs.history = reply.history;
    const RowList rows = BuildRows(jobs);
    require(rows.rows.size() <= reply.history->entries.size());
    require(rows.signature == BuildRows(jobs).signature);
    const ListContent content{rows.rows, {}, {}};
    for (qsizetype index = 0; index < content.size(); ++index) {
        require(content.lookAt(index) == content.lookAt(index));
        require(content.keyAt(index) == RowKey(content.rows.at(index)));
    }
    require(JobIds(*reply.history).size() <= reply.history->entries.size());
}

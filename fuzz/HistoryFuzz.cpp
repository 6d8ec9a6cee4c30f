#include "Fuzz.h"

#include "app/JobsState.h"
#include "app/StartRecord.h"
#include "list/ListContent.h"
#include "list/Rows.h"

using namespace tuppi;

/// A reply of the history query, up to the rows as they are shown.
void readInput(const QByteArray &bytes)
{
    const HistoryReply reply = ReadHistory({0, bytes, {}}, nullptr);
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
        require(!content.keyAt(index).isNull());
    }
    require(JobIds(*reply.history).size() <= reply.history->entries.size());
}

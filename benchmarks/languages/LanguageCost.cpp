// The work that a start and a poll have with the interface's texts, in Ukrainian. Arguments: how many starts, how many
// polls.

#include "app/JobsState.h"
#include "engine/EngineReplies.h"
#include "list/Describe.h"
#include "list/ListContent.h"
#include "list/Rows.h"
#include "settings/L.h"

#include "../spine/Samples.h"

#include <QCoreApplication>
#include <QTextStream>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

constexpr int jobs = 1000;
constexpr int rowsInSight = 12;

/// Reads the table and looks every one of its texts up, as windows do when they are built.
qsizetype start()
{
    LocalTable table;
    const QString language = LoadInterfaceTexts(table, InterfaceLanguageInUse(u"uk"_s, {}));
    QLocale::setDefault(InterfaceLocale(language, QLocale::c()));
    QCoreApplication::installTranslator(&table);
    qsizetype said = 0;
    for (const QString &text : table.texts().keys())
        said += L(text).size();
    QCoreApplication::removeTranslator(&table);
    return said;
}

/// Reads a history and words the line of summary and the rows in sight.
qsizetype poll(const QByteArray &reply)
{
    JobsState state;
    state.history = ReadHistory({0, reply, {}}, nullptr).history;
    state.loaded = true;
    const RowList list = BuildRows(state);
    SummaryInput summary;
    summary.loaded = true;
    summary.rowCount = list.rows.size();
    summary.counts = list.counts;
    const ListContent content{list.rows, std::nullopt, {}};
    qsizetype said = SummaryLine(summary).size();
    for (int row = 0; row < rowsInSight; ++row)
        said += content.lookAt(row).detail.size();
    return said;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    qsizetype said = 0;
    for (int i = 0; i < arguments.value(1).toInt(); ++i)
        said += start();
    LocalTable table;
    LoadInterfaceTexts(table, u"uk"_s);
    QCoreApplication::installTranslator(&table);
    const QByteArray reply = bench::historyReply(jobs);
    for (int i = 0; i < arguments.value(2).toInt(); ++i)
        said += poll(reply);
    QTextStream(stdout) << said << '\n';
    return table.isEmpty() ? 1 : 0;
}

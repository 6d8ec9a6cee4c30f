#include "actions/RowRules.h"

#include "engine/Stages.h"
#include "settings/Val.h"

namespace tuppi {

using namespace Qt::StringLiterals;

bool IsRowCommandAllowed(const QJsonObject &row, const QString &action)
{
    if (row.isEmpty() || row.contains("local"_L1))
        return false;
    const QString status = row.value("status"_L1).toString();
    const bool working = IsActiveStage(status);
    const bool paused = IsTrue(row.value("paused"_L1));
    if (action == "retryRow"_L1)
        return status == "failed"_L1 || status == "cancelled"_L1;
    if (action == "pauseRow"_L1)
        return working && !paused;
    if (action == "resumeRow"_L1)
        return working && paused;
    if (action == "cancelRow"_L1)
        return working;
    if (action == "removeRow"_L1 || action == "renameRow"_L1)
        return !working;
    return action == "showRowInFinder"_L1 || status == "ready"_L1;
}

} // namespace tuppi

#include "viewer/ResultPlan.h"

#include "export/CallFile.h"
#include "settings/Fill.h"
#include "settings/L.h"

#include <QFileInfo>

namespace tuppi {

using namespace Qt::StringLiterals;

QString ResultPlan::key() const
{
    return callDir + (isViewer() ? u"#viewer"_s : u"#text"_s);
}

QString ResultPlan::frame() const
{
    return isViewer() ? u"TranscriberViewer"_s : u"TranscriberText"_s;
}

std::optional<ResultPlan> PlanResult(const QJsonObject &row, bool summary)
{
    const QString callDir = row.value("call_dir"_L1).toString();
    if (callDir.isEmpty())
        return std::nullopt;
    ResultPlan plan{callDir, CallFile(callDir, u"viewer.html"_s), summary,
                    row.value("title"_L1).toString(L(u"Transcript"_s))};
    if (QFileInfo::exists(plan.page))
        return plan;
    if (QFileInfo::exists(CallFile(callDir, u"call.md"_s)))
        return AsText(plan);
    return std::nullopt;
}

ResultPlan AsText(const ResultPlan &plan)
{
    return {plan.callDir, {}, false, Fill(L(u"%@ — Summary and Text"_s), {plan.title})};
}

} // namespace tuppi

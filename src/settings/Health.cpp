#include "settings/Health.h"

#include "settings/Fill.h"
#include "settings/L.h"

#include <QJsonObject>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

ToneText lineOf(const QJsonObject &item)
{
    const bool ok = item.value("ok"_L1).toBool();
    const bool spare = !ok && item.value("optional"_L1).toBool();
    const QString mark = ok ? u"✓"_s : spare ? u"–"_s : u"✗"_s;
    const QString suffix = spare ? u"  "_s + L(u"(optional, not installed)"_s) : QString();
    const Tone tone = ok ? Tone::Good : spare ? Tone::Quiet : Tone::Attention;
    return {Fill(L(u"%@  %@%@"_s), {mark, item.value("check"_L1).toString(), suffix}), tone};
}

ToneText summaryOf(int needing)
{
    if (needing == 0)
        return {L(u"Everything is installed and ready"_s), Tone::Good};
    if (needing == 1)
        return {L(u"1 part needs attention"_s), Tone::Attention};
    return {Fill(L(u"%ld parts need attention"_s), {needing}), Tone::Attention};
}

} // namespace

ToneText HealthChecking()
{
    return {L(u"Checking…"_s), Tone::Quiet};
}

HealthReport ReportHealth(const std::optional<QJsonArray> &reply)
{
    if (!reply)
        return {{L(u"Tuppi's engine could not be found — please run the installer again."_s), Tone::Attention}, {}};
    HealthReport report;
    int needing = 0;
    for (const QJsonValue &item : *reply) {
        report.lines.append(lineOf(item.toObject()));
        needing += report.lines.constLast().tone == Tone::Attention;
    }
    report.summary = summaryOf(needing);
    return report;
}

} // namespace tuppi

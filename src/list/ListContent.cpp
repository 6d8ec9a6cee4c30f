#include "list/ListContent.h"

#include "list/Describe.h"
#include "list/Rows.h"
#include "settings/L.h"

namespace tuppi {

using namespace Qt::StringLiterals;

QString ListContent::keyAt(qsizetype index) const
{
    return rows.keyAt(index);
}

QString ListContent::titleAt(qsizetype index) const
{
    return rows.titleAt(index);
}

RowLook ListContent::lookAt(qsizetype index) const
{
    const QJsonObject row = rows.at(index);
    const Description description = Describe(row, latestJob, customModels);
    return RowLookFor(row, RowKey(row), description.text, description.progress, L);
}

int IndexOfKey(const ListContent &content, const QString &key)
{
    return RowIndex(content.rows, key);
}

int IndexOfTitle(const ListContent &content, const QString &prefix, int from)
{
    const qsizetype count = content.size();
    for (qsizetype step = 0; step < count; ++step) {
        const qsizetype index = (from + step) % count;
        if (content.titleAt(index).startsWith(prefix, Qt::CaseInsensitive))
            return int(index);
    }
    return -1;
}

} // namespace tuppi

#pragma once

#include "list/RowLook.h"
#include "list/Rows.h"

#include <QJsonArray>
#include <QJsonObject>

#include <optional>

namespace tuppi {

/// What the list shows, as one value that is cheap to hand over: its records are shared, and a row is made and
/// worded only when it comes into sight.
struct ListContent
{
    Rows rows;
    std::optional<QJsonObject> latestJob;
    QJsonArray customModels;

    qsizetype size() const { return rows.size(); }
    QString keyAt(qsizetype index) const;
    QString titleAt(qsizetype index) const;
    RowLook lookAt(qsizetype index) const;
};

/// Index of the first row with that key, -1 when there is none.
int IndexOfKey(const ListContent &content, const QString &key);

/// Index of the next row, counted from `from` and round the end, whose title begins with `prefix` (whatever
/// the case); -1 when there is none.
int IndexOfTitle(const ListContent &content, const QString &prefix, int from);

} // namespace tuppi

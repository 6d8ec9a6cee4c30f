#pragma once

#include <QJsonObject>
#include <QString>

#include <optional>

namespace tuppi {

/// The window in which a finished transcript is read.
struct ResultPlan
{
    QString callDir;
    QString page;          ///< full path of the viewer page; empty for a window of plain text
    bool summary = false;  ///< the page begins with its summary
    QString title;

    bool isViewer() const { return !page.isEmpty(); }
    QString key() const;    ///< of the window among the open ones
    QString frame() const;  ///< name under which the frames of its kind are remembered

    bool operator==(const ResultPlan &) const = default;
};

/// Nothing where the row has no call dir, or that holds neither a viewer page nor a summary. Looks at files.
std::optional<ResultPlan> PlanResult(const QJsonObject &row, bool summary);

/// The same transcript as plain text.
ResultPlan AsText(const ResultPlan &plan);

} // namespace tuppi

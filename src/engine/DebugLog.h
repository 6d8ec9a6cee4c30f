#pragma once

#include <QString>
#include <QVariantList>

namespace tuppi {

/// Path of the diagnostic log under the user's home.
QString DebugLogPath();

/// Appends one line (UTC date to the second, a blank, the message) to the diagnostic log. `format` is
/// filled with `arguments` as by Fill(). Synchronous; never reports a failure. Main thread only.
void DebugLog(const QString &format, const QVariantList &arguments = {});

} // namespace tuppi

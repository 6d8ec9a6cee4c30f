#pragma once

#include <QStringList>
#include <QVariantList>

namespace tuppi {

/// Path of the diagnostic log under the user's home.
QString DebugLogPath();

/// Appends one line (UTC date to the second, a blank, the message) to the diagnostic log. `format` is
/// filled with `arguments` as by Fill(). Synchronous; never reports a failure. On any thread: a call is one writing.
void DebugLog(const QString &format, const QVariantList &arguments = {});
/// The same for several messages, a line each.
void DebugLogLines(const QStringList &messages);

} // namespace tuppi

#pragma once

#include <QDeadlineTimer>
#include <QString>

#include <atomic>

namespace tuppi {

/// The length of a media file in seconds, 0 when it cannot be told: no such file, not a regular file, not
/// media, or not told before `deadline` or before `cancelled` became true.
///
/// Blocks, so not for the main thread. Only the bytes of that one file are read: what it refers to, on this
/// computer or elsewhere, is never opened.
double MediaLength(const QString &path, const QDeadlineTimer &deadline, const std::atomic<bool> &cancelled);

} // namespace tuppi

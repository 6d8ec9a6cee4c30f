#pragma once

#include <QDeadlineTimer>
#include <QString>

#include <atomic>

/// The one function of the module that holds FFmpeg's libraries; see MediaLength, which it answers for.
extern "C" Q_DECL_EXPORT double tuppiMediaLength(const QString &path, const QDeadlineTimer &deadline,
                                                 const std::atomic<bool> &cancelled);

#pragma once

#include <QByteArray>

namespace tuppi::bench {

/// A history reply with that many jobs, all fields filled, the first one under way. Another `variant` has
/// another title in one job.
QByteArray historyReply(int jobs, int variant = 0);

} // namespace tuppi::bench

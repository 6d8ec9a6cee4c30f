#pragma once

#include <QTimer>

#include <chrono>
#include <utility>

namespace tuppi {

/// Does that in a later turn of the event loop, unless the context dies before: for work that takes a good part of a frame,
/// beside other work that does. A timer of no time is a posted event, which comes in the same turn.
template <typename Work> void InNextTurn(QObject *context, Work work)
{
    using namespace std::chrono_literals;
    QTimer::singleShot(1ms, context, std::move(work));
}

} // namespace tuppi

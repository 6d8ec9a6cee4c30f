#pragma once

#include "engine/EngineReplies.h"
#include "list/Transitions.h"

#include <memory>

namespace tuppi {

class Notifier;

/// What the person has been told of. Main thread only.
struct NoticeState
{
    NoticeState();
    ~NoticeState();

    TransitionMemory memory;
    HistoryPointer seen;                 ///< the history last compared; the same one again holds nothing new
    std::unique_ptr<Notifier> notifier;  ///< made for the first notice
};

} // namespace tuppi

#pragma once

#include <utility>

#ifdef __SANITIZE_THREAD__
#include <sanitizer/tsan_interface.h>
#endif

namespace tuppi {

// Qt's event queue and the end of a QThread keep the order in which one thread gives and another takes. The system's
// Qt is not built with the thread sanitizer, which is told of that order here; every other build does nothing.

#ifdef __SANITIZE_THREAD__

/// What was written before is given to the thread that takes over the same address.
inline void GiveOver(void *address)
{
    __tsan_release(address);
}

inline void TakeOver(void *address)
{
    __tsan_acquire(address);
}

/// See HandOver. Every copy is given over by the thread that made it.
template<typename Call>
class HandedOver
{
public:
    explicit HandedOver(Call call) : m_call(std::move(call)) { GiveOver(this); }
    HandedOver(const HandedOver &other) : m_call(other.m_call) { GiveOver(this); }
    HandedOver(HandedOver &&other) noexcept : m_call(std::move(other.m_call)) { GiveOver(this); }
    HandedOver &operator=(const HandedOver &) = delete;
    ~HandedOver() { TakeOver(this); }

    void operator()()
    {
        TakeOver(this);
        m_call();
        GiveOver(this); // either thread may be the last that holds it, and destroys it
    }

private:
    Call m_call;
};

/// `call`, for the event queue of another thread.
template<typename Call>
HandedOver<Call> HandOver(Call call)
{
    return HandedOver<Call>(std::move(call));
}

#else

inline void GiveOver(void *) {}
inline void TakeOver(void *) {}

template<typename Call>
Call HandOver(Call call)
{
    return call;
}

#endif

} // namespace tuppi

#pragma once

#include <QByteArray>

#include <cstdint>
#include <cstdlib>

/// One input, read by the rules that meet such bytes in the application. Called with anything.
void readInput(const QByteArray &bytes);

/// What must hold for every input; a fuzzer and the replay both stop at the abort.
inline void require(bool holds)
{
    if (!holds)
        std::abort();
}

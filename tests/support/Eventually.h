#pragma once

#include <QTest>

namespace tuppi::test {

/// How long a condition may stay unmet before a test gives up, in milliseconds. Nothing is timed by it: on a busy
/// computer everything takes its time.
inline constexpr int patience = 60'000;

} // namespace tuppi::test

#define EVENTUALLY_COMPARE(actual, expected) QTRY_COMPARE_WITH_TIMEOUT(actual, expected, tuppi::test::patience)
#define EVENTUALLY_VERIFY(condition) QTRY_VERIFY_WITH_TIMEOUT(condition, tuppi::test::patience)

#pragma once

/// How long a test waits for what must happen, in milliseconds, before it fails. Nothing takes
/// nearly as long but where something is wrong: it is enough for a busy machine, a sanitizer and
/// valgrind, and less than the five minutes after which Qt Test ends a test function.
constexpr int patienceMs = 120000;

// As QTRY_VERIFY and QTRY_COMPARE, which go on for three times as long before they fail and look
// less often. For test functions, whose sources include QTest.

/// Runs the event loop until @p condition holds.
#define TRY_VERIFY(condition)                                                                      \
    do {                                                                                           \
        if (!QTest::qWaitFor([&] { return bool(condition); }, patienceMs))                         \
            QFAIL("it has not come true: " #condition);                                            \
    } while (false)

/// Runs the event loop until @p actual equals @p expected.
#define TRY_COMPARE(actual, expected)                                                              \
    do {                                                                                           \
        if (!QTest::qWaitFor([&] { return (actual) == (expected); }, patienceMs))                  \
            QCOMPARE(actual, expected);                                                            \
    } while (false)

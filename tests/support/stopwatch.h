// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QTest>

/// Runs from the start.
struct Stopwatch : QElapsedTimer {
    Stopwatch() { start(); }
};

/// QVERIFY(actual < limit), which tells what it was.
#define VERIFY_BELOW(actual, limit)                                                                \
    QVERIFY2((actual) < (limit), qPrintable(QString::number(actual)))

// SPDX-License-Identifier: MIT
#pragma once

#include "device/spark_thread.h"

#include <QString>
#include <QStringList>

/// What the command line says.
struct Options {
    SweepSettings sweep;
    /// The second by which an upgrade is timed, in milliseconds; tests make it shorter.
    int upgradeTickMs = 1000;
    QString updateServer; ///< scheme and host, without a trailing "/"
    /// The key that signs updates, base64, as the build sets it; empty: they need no signature.
    QByteArray updateKey;
};

/// The outcome of reading a command line.
struct OptionsResult {
    enum Outcome { Run, ShowText, Error };
    Outcome outcome = Run;
    Options options;
    QString text; ///< help, version or the error, ready to print
};

/// Reads the arguments, program name first. Options of the windowing system are left alone.
OptionsResult readOptions(const QStringList& arguments);

/// The version of the program, four numbers.
QString applicationVersion();

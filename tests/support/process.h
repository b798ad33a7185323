// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

/// What tests do to other programs besides ending them, as each system has it. Programs go by their
/// number; what cannot be done ends the test.

/// Whether there is such a program, ended ones that nobody has asked for their end left out.
bool isRunning(qint64 program);
/// It stands still from now on, and can still be ended.
void freeze(qint64 program);
/// It crashes where it stands, as with a fault of its own.
void crash(qint64 program);

/// The most memory that this program has had, and what it has now, in bytes.
qint64 mostMemory();
qint64 memory();
/// Threads that this program has.
int threads();
/// Files, sockets and whatever else of the system's this program holds.
int openHandles();
/// What this program has used of all processors, in seconds.
double processorSeconds();

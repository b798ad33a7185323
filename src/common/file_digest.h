// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <atomic>

/// The MD5 of a file as lower-case hex, empty when it cannot be read. Reads 1 MiB at a time; blocks
/// its thread for as long as the file takes, or until `stop` is set. `pieces` counts what it has
/// read.
QString fileMd5(const QString& path, const std::atomic<bool>* stop = nullptr,
                std::atomic<int>* pieces = nullptr);

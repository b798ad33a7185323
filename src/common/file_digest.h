// SPDX-License-Identifier: MIT
#pragma once

#include <QCryptographicHash>
#include <QString>

#include <atomic>

/// The digest of a file as lower-case hex, empty when it cannot be read. Reads 1 MiB at a time;
/// blocks its thread for as long as the file takes, or until `stop` is set. `pieces` counts what it
/// has read.
QString fileDigest(const QString& path, QCryptographicHash::Algorithm algorithm,
                   const std::atomic<bool>* stop = nullptr, std::atomic<int>* pieces = nullptr);

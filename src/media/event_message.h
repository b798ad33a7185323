// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// What a message of the stream feed tells. A message is whatever the box sends.

/// The running recording time, in milliseconds; 0 when it carries none, never less.
qint64 recordMsOf(const QString& message);

/// `ms` as "hh:mm:ss.zzz"; it wraps around at 24 hours.
QString recordTimeText(qint64 ms);

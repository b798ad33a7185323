// SPDX-License-Identifier: MIT
#pragma once

#include <QKeySequence>
#include <QString>

/// What an action does and by which key, as it stands on this system's keyboards.
inline QString withKey(const QString& action, const QKeySequence& key)
{
    return QStringLiteral("%1 (%2)").arg(action, key.toString(QKeySequence::NativeText));
}

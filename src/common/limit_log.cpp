// SPDX-License-Identifier: MIT
#include "common/limit_log.h"

#include "common/operation_log.h"

#include <QDebug>
#include <QSet>

void limitReached(const QString& who, const QString& what)
{
    // Addresses may be made up without end.
    constexpr int mostSaid = 10000;
    static QSet<QString> said;
    const QString event = who + QStringLiteral("  over the limit: ") + what;
    if (said.size() >= mostSaid || said.contains(event))
        return;
    said << event;
    qWarning().noquote() << logClip(event);
    writeLog(QStringLiteral("limits"),
             logLine(event, "src/common/limit_log.cpp", __LINE__, QStringLiteral("limitReached")));
}

// SPDX-License-Identifier: MIT
#pragma once

#include "upgrade/upgrade_record.h"

#include <QMap>

/// What a batch left behind when the program ended in its middle.
struct InterruptedBatch {
    int underWay = 0;                    ///< boxes whose upgrade was cut short
    QMap<QString, QVariantMap> settings; ///< by MAC address: those that boxes still miss
};

/// Marks in `session`, as its journal tells it, what was cut short, and what is not to be taken up.
InterruptedBatch markInterrupted(UpgradeSession& session, const QDateTime& now);

// SPDX-License-Identifier: MIT
#include "ui/devices/local_addresses.h"

#include "device/spark_thread.h"

#include <QTimer>

LocalAddresses::LocalAddresses(QLabel* label) : QObject(label), m_label(label) {}

void LocalAddresses::refresh()
{
    constexpr int pauseMs = 5000;
    const QString addresses = localAddresses().join(QLatin1Char('\n'));
    m_label->setText(addresses.isEmpty() ? QStringLiteral("–") : addresses);
    QTimer::singleShot(pauseMs, this, &LocalAddresses::refresh);
}

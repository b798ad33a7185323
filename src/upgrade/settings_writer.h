// SPDX-License-Identifier: MIT
#pragma once

#include "upgrade/box_link.h"

#include <QStringList>
#include <QVariantMap>

/// Writes settings to one box, then reads them again: a box may report success and still have
/// understood something else. Before each write the box is asked who it is: an address may pass to
/// another box, but not faster than a box starts, which takes longer than a write may.
class SettingsWriter
{
public:
    struct Outcome {
        bool lost = false;     ///< nobody answered, or another box: the rest was not written
        QStringList refused;   ///< parameters that the box did not take
        QStringList different; ///< taken, but read again as something else
        QStringList unread;    ///< taken, but not to be read again
    };
    using Done = std::function<void(const Outcome& outcome)>;

    explicit SettingsWriter(BoxLink& link) : m_link(link) {}

    /// `done` is called once, later. `values` has at least one entry.
    void start(const QString& ip, const QString& mac, const QVariantMap& values, Done done);
    /// Nothing more is sent, and `done` is not called.
    void stop();

private:
    void writeNext();
    void write(const QString& name);
    void checkNext();
    void finish();

    BoxLink& m_link;
    BoxListener m_listener;
    QString m_ip;
    QString m_mac;
    QVariantMap m_values;
    QStringList m_rest; ///< parameters still to be written, then still to be read
    int m_silences = 0; ///< in a row
    Outcome m_outcome;
    Done m_done;
};

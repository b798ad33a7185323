// SPDX-License-Identifier: MIT
#pragma once

#include "upgrade/box_link.h"
#include "upgrade/upgrade_clock.h"

#include <QHash>
#include <QStringList>
#include <QVariantMap>

/// Reads the settings of one box, one after the other, and asks again for what is missing only,
/// with growing pauses. Before and after every few it is asked who it is: its address may pass
/// to another box meanwhile, and back, as where two boxes claim the same one.
class SettingsReader
{
public:
    /// `whole`: every parameter has a value, or the box said twice, with a while between, that it
    /// has none of that name (some say so while they start), and at least one has a value.
    using Done = std::function<void(const QVariantMap& values, bool whole)>;

    SettingsReader(BoxLink& link, const UpgradeClock& clock) : m_link(link), m_clock(clock) {}

    /// Takes `limitTicks` at most, and the time of one read. `done` is called once, later. `mac`
    /// may be empty for a box that tells none. Begins after `pauseTicks`.
    void start(const QString& ip, const QString& mac, int limitTicks, Done done,
               int pauseTicks = 0);
    /// Somebody waits for it now: no pause any more, what a box says that it lacks is believed, and
    /// `limitTicks` from now at most.
    void hurry(int limitTicks);
    /// Nothing more is asked, and `done` is not called.
    void stop();
    bool isReading() const { return bool(m_done); }
    /// To be called often: pauses end and limits pass in it.
    void tick();

private:
    void goOn();
    void confirm();
    void keep();
    void forgetTold();
    QString due() const;
    bool isDue(const QString& name) const;
    bool isBelieved(const QString& name);
    void read(const QString& name);
    void pause();
    void waitForDenied();
    void take(const QString& name, const QString& answer);
    void finish(bool whole);

    BoxLink& m_link;
    const UpgradeClock& m_clock;
    BoxListener m_listener;
    QString m_ip;
    QString m_mac;
    QStringList m_missing;
    QVariantMap m_values;
    Done m_done;
    bool m_asking = false;
    bool m_sure = false; ///< it said who it is, and has answered since
    /// What it, or another box, has told since; invalid: it has none of that name.
    QList<QPair<QString, QVariant>> m_told;
    QHash<QString, qint64> m_denied; ///< when it said first that it has none of that name
    bool m_isHurried = false;
    int m_failures = 0; ///< in a row
    qint64 m_next = 0;  ///< not before
    qint64 m_limit = 0;
};

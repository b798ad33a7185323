// SPDX-License-Identifier: MIT
#pragma once

#include "upgrade/box_link.h"
#include "upgrade/upgrade_clock.h"

#include <QCoreApplication>
#include <QVariantMap>

struct UpgradeRow;
struct UpgradeSession;

/// The way of one upgrade to its box, on which what may never happen is refused: whoever asks for
/// it, by whatever mistake. It judges by what went through it, by what is on disk and by what was
/// read from the box, not by the steps of the upgrade. After the first refusal nothing is let
/// through any more, and no answer comes to what was refused.
class BoxGuard final : public BoxLink
{
    Q_DECLARE_TR_FUNCTIONS(BoxGuard)

public:
    /// `session`, `link` and `clock` outlive it; `row` is a row of `session`.
    BoxGuard(const UpgradeSession& session, int row, BoxLink& link, const UpgradeClock& clock);

    void read(const QString& ip, const QString& parameter, Answered answered) override;
    void write(const QString& ip, const QString& parameter, const QString& value,
               Answered answered) override;
    void upload(const QString& ip, const QString& file, Answered answered) override;
    void abandonUpload(const QString& ip) override;
    void order(const QString& ip, BoxOrder order, Answered answered) override;

    /// What the row says now is of this box: its MAC address, and what is to be written back.
    void expect();
    /// `row`, as it was, is safe on disk.
    void kept(const UpgradeRow& row);
    /// An earlier run of the program has kept the row, and ordered what it says.
    void adopted();

    /// Why something was refused; empty as long as nothing was.
    const QString& breach() const { return m_breach; }

    /// How long a box may stay at its change without being seen away, in the upgrade's seconds.
    static constexpr int AllowanceTicks = 600;

private:
    const UpgradeRow& row() const;
    QString mac() const;
    bool refuse(const QString& reason);
    bool isRefused(const QString& ip);
    bool isChanging() const;
    void hear(const QString& ip, const QString& parameter, const QString& answer);

    const UpgradeSession& m_session;
    const int m_index;
    BoxLink& m_link;
    const UpgradeClock& m_clock;
    BoxListener m_listener;

    QString m_breach;
    QString m_mac;       ///< empty before something is expected
    QVariantMap m_saved; ///< what may be written back
    QString m_sureOf;    ///< the address at which the box was the last to answer who it is
    qint64 m_sureAt = 0; ///< when
    bool m_keptSettings = false;
    bool m_keptOrder = false;
    bool m_ordered = false; ///< to change over, and nothing was sent since
    qint64 m_orderedAt = 0;
    QString m_orderedIp;
    bool m_missed = false;  ///< a question was not answered since, or it answered elsewhere
    bool m_changed = false; ///< it has told another version since
};

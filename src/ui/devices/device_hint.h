// SPDX-License-Identifier: MIT
#pragma once

#include "device/spark_thread.h"
#include "ui/hub/list_hint.h"

#include <QElapsedTimer>
#include <QTimer>

class TreeView;

/// What stands in the device list as long as no box does: which networks are searched and how
/// long already, what to check then, or that the filter leaves none.
class DeviceHint final : public ListHint
{
    Q_OBJECT

public:
    DeviceHint(TreeView* view, SweepSettings settings);

    /// The blocks of addresses that are searched, as "a.b.c.0/24"; empty without a network.
    static QStringList networks(const SweepSettings& settings, const QStringList& ownAddresses);
    /// What it says after so many seconds of searching `networks`.
    static QString advice(const QStringList& networks, qint64 seconds);

    void refresh() override;

protected:
    bool isListEmpty() const override;
    QString title() const override;
    QString words() const override;

private:
    bool isFiltered() const;

    TreeView* const m_view;
    const SweepSettings m_settings;
    QStringList m_networks;
    QTimer m_clock;
    QElapsedTimer m_searched;
};

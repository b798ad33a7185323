// SPDX-License-Identifier: MIT
#pragma once

#include "device/spark_thread.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

class QLabel;
class TreeView;

/// What stands in the device list as long as no box does: which networks are searched and how
/// long already, what to check then, or that the filter leaves none.
class DeviceHint : public QWidget
{
    Q_OBJECT

public:
    DeviceHint(TreeView* view, SweepSettings settings);

    /// The blocks of addresses that are searched, as "a.b.c.0/24"; empty without a network.
    static QStringList networks(const SweepSettings& settings, const QStringList& ownAddresses);
    /// What it says after so many seconds of searching `networks`.
    static QString advice(const QStringList& networks, qint64 seconds);

    /// Looks anew at what the list shows.
    void refresh();

protected:
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool hasVisibleRows() const;
    void place();

    TreeView* const m_view;
    const SweepSettings m_settings;
    QLabel* const m_title;
    QLabel* const m_detail;
    QTimer m_clock;
    QElapsedTimer m_searched;
};

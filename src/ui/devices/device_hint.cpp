// SPDX-License-Identifier: MIT
#include "ui/devices/device_hint.h"

#include "device/sweep_plan.h"
#include "device/tree_model.h"
#include "device/tree_view.h"

namespace
{

constexpr int periodMs = 1000;
/// Then boxes that are there have been found.
constexpr qint64 patienceSeconds = 10;
constexpr int mostNetworks = 4;

/// The block, or the range, that a search from this address covers.
QString networkOf(const QString& address)
{
    const QVector<SweepStep> runs = sweepRuns(address);
    if (runs.isEmpty())
        return QString();
    const SweepStep& first = runs.first();
    return runs.size() > 1
               ? QStringLiteral("%1.%2.0.0/16").arg(first.ip1).arg(first.ip2)
               : QStringLiteral("%1.%2.%3.0/24").arg(first.ip1).arg(first.ip2).arg(first.min);
}

} // namespace

DeviceHint::DeviceHint(TreeView* view, SweepSettings settings)
    : ListHint(view), m_view(view), m_settings(std::move(settings))
{
    setObjectName(QStringLiteral("device_hint"));
    m_clock.setInterval(periodMs);
    connect(&m_clock, &QTimer::timeout, this, &DeviceHint::refresh);
    refresh();
}

QStringList DeviceHint::networks(const SweepSettings& settings, const QStringList& ownAddresses)
{
    if (!settings.subnets.isEmpty())
        return settings.subnets;
    QStringList blocks;
    for (const QString& address : ownAddresses)
        blocks << networkOf(address);
    blocks.removeAll(QString());
    blocks.removeDuplicates();
    return blocks;
}

QString DeviceHint::advice(const QStringList& networks, qint64 seconds)
{
    QStringList lines = networks.mid(0, mostNetworks);
    if (networks.size() > mostNetworks)
        lines << QStringLiteral("…");
    if (seconds >= patienceSeconds) {
        lines << QString() << tr("已搜索%n秒，还没有找到设备。请检查：", nullptr, int(seconds))
              << tr("设备已通电，网线已接好。") << tr("这台电脑与设备在同一网段。")
              << tr("防火墙没有阻止ping和端口8081。");
    }
    return lines.join(QLatin1Char('\n'));
}

bool DeviceHint::isFiltered() const
{
    return m_view->treeModel()->rowCount() > 0;
}

bool DeviceHint::isListEmpty() const
{
    for (int row = 0; row < m_view->treeModel()->rowCount(); ++row) {
        if (!m_view->isRowHidden(row, {}))
            return false;
    }
    return true;
}

QString DeviceHint::title() const
{
    if (isFiltered())
        return tr("没有符合条件的设备");
    return m_networks.isEmpty() ? tr("没有网络连接") : tr("正在搜索设备…");
}

QString DeviceHint::words() const
{
    if (isFiltered())
        return tr("按Esc显示全部设备。");
    return m_networks.isEmpty() ? tr("这台电脑没有可以搜索的网络。请检查网线和网卡设置。")
                                : advice(m_networks, m_searched.elapsed() / 1000);
}

void DeviceHint::refresh()
{
    const bool isEmpty = isListEmpty();
    if (!isEmpty || isFiltered())
        m_searched.invalidate();
    else if (!m_searched.isValid())
        m_searched.start();
    if (isEmpty)
        m_networks = networks(m_settings, localAddresses());
    if (isEmpty && !m_clock.isActive())
        m_clock.start();
    else if (!isEmpty)
        m_clock.stop();
    ListHint::refresh();
}

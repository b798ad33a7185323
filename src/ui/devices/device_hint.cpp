// SPDX-License-Identifier: MIT
#include "ui/devices/device_hint.h"

#include "device/sweep_plan.h"
#include "device/tree_model.h"
#include "device/tree_view.h"

#include <QEvent>
#include <QLabel>
#include <QVBoxLayout>
#include <QVariant>

namespace
{

constexpr int margin = 16;
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

QLabel* makeLabel(QWidget* parent)
{
    auto* label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(Qt::AlignHCenter);
    label->setWordWrap(true);
    return label;
}

} // namespace

DeviceHint::DeviceHint(TreeView* view, SweepSettings settings)
    : QWidget(view->viewport())
    , m_view(view)
    , m_settings(std::move(settings))
    , m_title(makeLabel(this))
    , m_detail(makeLabel(this))
{
    setObjectName(QStringLiteral("device_hint"));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    m_title->setObjectName(QStringLiteral("device_hint_title"));
    m_detail->setObjectName(QStringLiteral("device_hint_detail"));
    m_detail->setProperty("dim", true);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->addWidget(m_title);
    layout->addWidget(m_detail);
    layout->addStretch(1);
    m_clock.setInterval(periodMs);
    connect(&m_clock, &QTimer::timeout, this, &DeviceHint::refresh);
    const TreeModel* model = view->treeModel();
    connect(model, &QAbstractItemModel::rowsInserted, this, &DeviceHint::refresh);
    connect(model, &QAbstractItemModel::rowsRemoved, this, &DeviceHint::refresh);
    connect(model, &QAbstractItemModel::modelReset, this, &DeviceHint::refresh);
    view->viewport()->installEventFilter(this);
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
        lines << QString() << tr("已搜索%n秒,还没有找到设备.请检查:", nullptr, int(seconds))
              << tr("设备已通电,网线已接好.") << tr("这台电脑与设备在同一网段.")
              << tr("防火墙没有阻止ping和端口8081.");
    }
    return lines.join(QLatin1Char('\n'));
}

bool DeviceHint::hasVisibleRows() const
{
    for (int row = 0; row < m_view->treeModel()->rowCount(); ++row) {
        if (!m_view->isRowHidden(row, {}))
            return true;
    }
    return false;
}

void DeviceHint::refresh()
{
    setVisible(!hasVisibleRows());
    if (isHidden()) {
        m_clock.stop();
        m_searched.invalidate();
        for (QLabel* label : {m_title, m_detail})
            label->clear(); // no words of another language
        return;
    }
    if (!m_clock.isActive())
        m_clock.start();
    if (m_view->treeModel()->rowCount() > 0)
        m_searched.invalidate();
    else if (!m_searched.isValid())
        m_searched.start();
    const QStringList blocks = networks(m_settings, localAddresses());
    if (m_view->treeModel()->rowCount() > 0) {
        m_title->setText(tr("没有符合条件的设备"));
        m_detail->setText(tr("按Esc显示全部设备."));
    } else if (blocks.isEmpty()) {
        m_title->setText(tr("没有网络连接"));
        m_detail->setText(tr("这台电脑没有可以搜索的网络.请检查网线和网卡设置."));
    } else {
        m_title->setText(tr("正在搜索设备…"));
        m_detail->setText(advice(blocks, m_searched.elapsed() / 1000));
    }
    place();
}

void DeviceHint::place()
{
    setGeometry(m_view->viewport()->rect());
    raise();
}

void DeviceHint::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        refresh();
    QWidget::changeEvent(event);
}

bool DeviceHint::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize)
        place();
    return QWidget::eventFilter(watched, event);
}

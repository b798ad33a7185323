// SPDX-License-Identifier: MIT
#include "ui/devices/device_absence.h"

#include "common/http_result.h"
#include "common/limits.h"
#include "common/spark_http.h"
#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_model.h"
#include "device/tree_view.h"
#include "ui/devices/own_networks.h"
#include "ui/hub/exchange.h"
#include "ui/hub/hub_state.h"

namespace
{

using Outcome = InterfaceFinding::Outcome;

/// For so long an answer to ping is one of now. A box stays online while the tool cannot ask, as it
/// can of nobody without a network.
constexpr int pingSeconds = 15;
/// Own addresses named in a line.
constexpr int mostSubnets = 2;

QString timeText(const QDateTime& time)
{
    const bool isToday = time.date() == QDate::currentDate();
    return time.toString(isToday ? QStringLiteral("HH:mm:ss") : QStringLiteral("yyyy-MM-dd HH:mm"));
}

QString outcomeText(const InterfaceFinding& finding)
{
    switch (finding.outcome) {
    case Outcome::Unknown:
        break;
    case Outcome::NoAnswer:
        return DeviceAbsence::tr("无应答");
    case Outcome::Refused:
        return DeviceAbsence::tr("拒绝连接");
    case Outcome::NoReply:
        return DeviceAbsence::tr("可以连接，但没有完整应答");
    case Outcome::HttpError:
        return DeviceAbsence::tr("应答错误：HTTP %1").arg(finding.httpStatus);
    case Outcome::NotUnderstood:
        return DeviceAbsence::tr("应答无法识别");
    case Outcome::Answers:
        return DeviceAbsence::tr("有应答");
    }
    return QString();
}

QString ownText(const OwnNetworks& own)
{
    QStringList named = own.details.mid(0, mostSubnets);
    if (own.details.size() > mostSubnets)
        named << QStringLiteral("…");
    const QString details = named.join(QStringLiteral(", "));
    switch (own.verdict) {
    case OwnNetworks::Verdict::Fit:
        break;
    case OwnNetworks::Verdict::None:
        return DeviceAbsence::tr("没有网络连接");
    case OwnNetworks::Verdict::Unplugged:
        return DeviceAbsence::tr("网线或无线未连接（%1）").arg(details);
    case OwnNetworks::Verdict::OtherSubnet:
        return DeviceAbsence::tr("网段与设备不同（%1）").arg(details);
    }
    return QString();
}

/// A read of a box as it should be, whatever was read. A list that is too long to be looked into
/// here is none of somebody who does not answer.
bool isReply(const QString& body)
{
    return body.size() > Limits::ValueBodyBytes ||
           !HttpResult::fromBody(body).parameterName.isEmpty();
}

} // namespace

DeviceAbsence::DeviceAbsence(const Hub& hub, TreeView& view, DeviceInfo& info)
    : QObject(nullptr), m_hub(hub), m_view(view), m_info(info), m_check(hub)
{
    for (QTimer* timer : {&m_rest, &m_again, &m_patience})
        timer->setSingleShot(true);
    m_rest.setInterval(RestMs);
    m_patience.setInterval(FeedPatienceMs);
    connect(&m_rest, &QTimer::timeout, this, [this] { ask(m_hovered); });
    connect(&m_again, &QTimer::timeout, this, [this] { ask(m_hub.state.deviceIp()); });
    connect(&m_patience, &QTimer::timeout, this, [this] {
        if (!m_lostFeeds.isEmpty())
            ask(m_feedIp);
        tell();
    });
    connect(&m_check, &InterfaceCheck::ended, this, &DeviceAbsence::handleFinding);
    connect(&hub.state, &HubState::koraSelected, this, &DeviceAbsence::select);
    connect(&hub.http, &Spark_Http::S_finished, this, &DeviceAbsence::hear);
    connect(&hub.devices, &DeviceRegistry::changed, this, &DeviceAbsence::handleChange);
    connect(&hub.devices, &DeviceRegistry::cameOnline, this, [this](const QString& ip) {
        // Its feeds come back after it.
        if (ip == m_feedIp)
            m_patience.start();
    });
    connect(&view, &TreeView::tipWanted, this, [this](QStringList* lines, const Item* item) {
        if (!item->isDevice())
            return;
        m_hovered = item->address();
        m_rest.start();
        const QVector<InfoNote> all = notes(*item);
        for (const InfoNote& note : all)
            *lines << tr("%1：%2").arg(note.caption, note.content);
    });
}

const Item* DeviceAbsence::findBox(const QString& ip) const
{
    const Item* box = m_hub.devices.model().find(ip);
    return box && box->isDevice() ? box : nullptr;
}

const Item* DeviceAbsence::selectedBox() const
{
    const Item* box = findBox(m_hub.state.deviceIp());
    return box && box->isKora() ? box : nullptr;
}

InterfaceFinding DeviceAbsence::findingOf(const Item& box) const
{
    const auto known = m_known.constFind(box.address());
    // Of a box that has gone or come since, or that nobody looked at for long, it tells nothing.
    if (known == m_known.constEnd() || known->wasOnline != box.isOnline() ||
        known->asked.hasExpired(LongPauseMs + PauseMs))
        return {};
    return known->finding;
}

QVector<InfoNote> DeviceAbsence::notes(const Item& box) const
{
    const InterfaceFinding finding = findingOf(box);
    if (box.isOnline() && !finding.isFault())
        return feedNotes(box);
    QVector<InfoNote> all;
    OwnNetworks own;
    if (!box.isOnline() || finding.outcome == Outcome::NoAnswer)
        own = OwnNetworks::judge(box.address(), ownAddresses());
    if (own.verdict != OwnNetworks::Verdict::Fit)
        all.append({tr("这台电脑"), ownText(own), true});
    if (!box.isOnline())
        all.append({tr("Ping"), tr("自%1起无应答").arg(timeText(box.lastSeen())), true});
    else if (box.lastSeen().secsTo(QDateTime::currentDateTime()) <= pingSeconds)
        all.append({tr("Ping"), outcomeText({Outcome::Answers, 0, 0})});
    if (finding.outcome != Outcome::Unknown)
        all.append({tr("端口%1").arg(finding.port), outcomeText(finding), finding.isFault()});
    return all;
}

QVector<InfoNote> DeviceAbsence::feedNotes(const Item& box) const
{
    QVector<InfoNote> all;
    if (box.address() != m_feedIp || m_patience.isActive())
        return all;
    for (auto feed = m_lostFeeds.begin(); feed != m_lostFeeds.end(); ++feed)
        all.append({tr("事件通道%1").arg(feed.key()), tr("自%1起中断").arg(timeText(*feed)), true});
    return all;
}

void DeviceAbsence::select(const Item& box)
{
    m_again.stop();
    // The feeds are led to this box now, even if it is the same.
    m_feedIp = box.address();
    m_lostFeeds.clear();
    m_patience.stop();
    handleChange();
}

void DeviceAbsence::noteFeed(quint16 port, bool isConnected)
{
    if (isConnected) {
        if (m_lostFeeds.remove(port) > 0)
            tell();
        return;
    }
    if (m_lostFeeds.contains(port))
        return;
    if (m_lostFeeds.isEmpty())
        m_patience.start();
    m_lostFeeds.insert(port, QDateTime::currentDateTime());
}

void DeviceAbsence::ask(const QString& ip)
{
    const Item* box = findBox(ip);
    // An upgrade takes the box away for a while, and knows best what to ask it.
    if (!box || box->isOwned())
        return;
    const bool isSelected = ip == m_hub.state.deviceIp();
    const auto known = m_known.constFind(ip);
    if (known != m_known.constEnd() && !known->asked.hasExpired(PauseMs)) {
        if (isSelected)
            m_again.start(int(PauseMs - known->asked.elapsed()) + 1);
        return;
    }
    if (m_check.ask(*box))
        m_known[ip].asked.start();
    else if (isSelected)
        m_again.start(PauseMs);
}

void DeviceAbsence::handleFinding(const QString& ip, const InterfaceFinding& finding)
{
    const Item* box = findBox(ip);
    if (!box)
        return;
    Known& known = m_known[ip];
    known.finding = finding;
    known.wasOnline = box->isOnline();
    tell();
    // Whoever looks at a box sees that it is back.
    if (box == selectedBox() && (finding.isFault() || !box->isOnline()))
        m_again.start(finding.isFault() ? PauseMs : LongPauseMs);
}

void DeviceAbsence::hear(const QVariantMap& map)
{
    const QString ip = map.value(QStringLiteral("deviceip")).toString();
    if (ip != m_hub.state.deviceIp() || HttpResult::typeOf(map) == InterfaceCheck::requestType())
        return;
    const Item* box = selectedBox();
    if (!box)
        return;
    if (!isReply(map.value(QStringLiteral("body")).toString())) {
        ask(ip);
        return;
    }
    const auto known = m_known.find(ip);
    if (known != m_known.end() && known->finding.isFault()) {
        known->finding.outcome = Outcome::Answers;
        tell();
    }
}

void DeviceAbsence::handleChange()
{
    tell();
    const Item* box = selectedBox();
    if (box && !box->isOnline() && !m_again.isActive())
        ask(box->address());
}

/// The steps that fail, the first of them in words that stand for themselves.
QString DeviceAbsence::troubleOf(const Item& box) const
{
    // An upgrade takes it away for a while, and tells of that itself.
    if (box.isOwned())
        return QString();
    QStringList parts;
    if (!box.isOnline())
        parts << tr("设备离线，自%1起无应答").arg(timeText(box.lastSeen()));
    const QVector<InfoNote> all =
        findingOf(box).isFault() || !box.isOnline() ? notes(box) : QVector<InfoNote>();
    for (const InfoNote& note : all) {
        if (note.isFault && note.caption != tr("Ping"))
            parts << tr("%1：%2").arg(note.caption, note.content);
    }
    return parts.join(QStringLiteral(" · "));
}

void DeviceAbsence::tell()
{
    const Item* box = selectedBox();
    m_info.setNotes(box ? notes(*box) : QVector<InfoNote>());
    emit troubleTold(box ? troubleOf(*box) : QString());
    m_view.refreshTip();
}

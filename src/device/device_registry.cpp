// SPDX-License-Identifier: MIT
#include "device/device_registry.h"

#include "common/box_protocol.h"
#include "common/spark_http.h"
#include "device/item.h"
#include "device/tree_model.h"

#include <QSet>
#include <QTimer>

namespace
{

constexpr int checkPauseMs = 5000;

/// The model name that a dashboard page shows, empty when it is none of ours.
QString modelOnPage(const QString& page)
{
    if (page.contains(QLatin1String("<td>ORBIT</td>")))
        return QStringLiteral("ORBIT·2");
    if (page.contains(QLatin1String("<td>RIVER</td>")))
        return QStringLiteral("RIVER·2");
    if (page.contains(QLatin1String("<td>LANTERN</td>")))
        return QStringLiteral("LANTERN");
    return QString();
}

} // namespace

DeviceRegistry::DeviceRegistry(TreeModel& model, Spark_Http& http, SweepSettings settings,
                               Wire wire)
    : m_model(model), m_http(http), m_settings(std::move(settings)), m_wire(std::move(wire))
{
    m_clock.start();
}

DeviceRegistry::~DeviceRegistry()
{
    stop();
}

void DeviceRegistry::stop()
{
    for (const QPointer<Spark_Thread>& thread : qAsConst(m_threads)) {
        if (!thread)
            continue;
        thread->stop();
        // Its own deferred deletion needs an event loop, which may have ended.
        delete thread;
    }
    m_threads.clear();
}

Spark_Thread* DeviceRegistry::newThread()
{
    m_threads.removeAll(nullptr);
    auto* thread = new Spark_Thread(m_settings);
    m_threads << thread;
    m_wire(thread);
    return thread;
}

void DeviceRegistry::startSearch()
{
    newThread()->startFindDevice();
}

void DeviceRegistry::checkStates()
{
    QStringList ips;
    const QList<Item*> boxes = devices();
    for (const Item* box : boxes)
        ips << box->address();
    if (!ips.isEmpty()) {
        Spark_Thread* check = newThread();
        check->setOrder(++m_checks);
        check->startRefreshDevice(ips);
    }
    askNames();
    QTimer::singleShot(checkPauseMs, this, &DeviceRegistry::checkStates);
}

/// Of some at a time, so that not all are asked in the same moment.
void DeviceRegistry::askNames()
{
    const QList<Item*> boxes = m_model.items(koraFamily());
    const int checks = qMax(1, m_settings.namePauseMs / checkPauseMs);
    int room = boxes.size() / checks + 1;
    const qint64 now = m_clock.elapsed();
    for (const Item* box : boxes) {
        if (!box->isDevice() || !box->isOnline() || box->isOwned())
            continue;
        qint64& next = m_nextNames[box->address()];
        if (next == 0)
            next = now + m_settings.namePauseMs;
        if (room == 0 || next > now)
            continue;
        --room;
        next = now + m_settings.namePauseMs;
        m_http.get(nameProbe(), BoxProtocol::readUrl(box->address(), BoxProtocol::DeviceName),
                   false);
    }
}

QList<Item*> DeviceRegistry::devices() const
{
    QList<Item*> boxes = m_model.items();
    boxes.erase(std::remove_if(boxes.begin(), boxes.end(),
                               [](const Item* item) { return item->isGroup(); }),
                boxes.end());
    return boxes;
}

void DeviceRegistry::probe(const QStringList& ips)
{
    for (const QString& line : ips) {
        // A tool of another system may end its lines with a carriage return.
        const QString ip = line.trimmed();
        if (!BoxProtocol::isIpv4Address(ip) || m_model.find(ip) ||
            !m_probes.isDue(ip, m_clock.elapsed()))
            continue;
        const auto stranger = Spark_Http::Peer::Stranger;
        m_http.get(nameProbe(), BoxProtocol::readUrl(ip, BoxProtocol::DeviceName), false, stranger);
        m_http.get(pageProbe(), BoxProtocol::dashboardUrl(ip), false, stranger);
    }
}

void DeviceRegistry::setReachable(const QStringList& ips, const Spark_Thread* check)
{
    const QStringList known = check ? check->asked() : QStringList();
    const QSet<QString> asked(known.begin(), known.end());
    const int order = check ? check->order() : ++m_checks;
    QSet<QString> alive;
    for (const QString& line : ips)
        alive << line.trimmed();
    QStringList returned;
    bool anyChange = false;
    const QList<Item*> boxes = devices();
    for (Item* box : boxes) {
        // A long check overlaps the next, and boxes are filed meanwhile.
        int& newest = m_newest[box->address()];
        if ((check && !asked.contains(box->address())) || newest >= order)
            continue;
        const bool online = alive.contains(box->address());
        if (online)
            box->noteSeen(QDateTime::currentDateTime());
        // Nobody may have asked it.
        if (!online && check && !check->isConclusive())
            continue;
        newest = order;
        if (box->isOnline() == online)
            continue;
        box->setOnline(online);
        anyChange = true;
        if (online)
            returned << box->address();
    }
    if (anyChange)
        emit changed();
    // Last, and by address: what follows may change the tree.
    for (const QString& ip : qAsConst(returned))
        emit cameOnline(ip);
}

void DeviceRegistry::handleWebPage(const QString& ip, const QString& page)
{
    addDevice(ip, modelOnPage(page));
}

void DeviceRegistry::handleDeviceName(const QString& ip, const QString& name)
{
    addDevice(ip, name.isEmpty() ? QString() : koraFamily());
    if (!name.isEmpty())
        noteName(ip, name);
}

void DeviceRegistry::noteName(const QString& ip, const QString& name)
{
    Item* box = m_model.find(ip);
    if (!box || !box->isDevice())
        return;
    const QString before = box->name();
    box->setName(name);
    if (box->name() != before)
        emit changed();
}

void DeviceRegistry::addDevice(const QString& ip, const QString& name)
{
    if (name.isEmpty() || !BoxProtocol::isIpv4Address(ip) || m_model.find(ip))
        return;
    Item* group = m_model.findGroup(name);
    if (!group) {
        group = Item::makeGroup(name).release();
        m_model.append(group, m_model.root(), true);
    }
    Item* box = Item::makeBox(ip).release();
    box->setPackageName(m_firmwareBaseName);
    box->noteSeen(QDateTime::currentDateTime());
    m_probes.forget(ip);
    m_newest[ip] = m_checks; // it has just answered: what began before that is out of date
    m_model.append(box, group, false);
    emit changed();
    emit deviceAdded(box);
}

void DeviceRegistry::setFirmwareBaseName(const QString& name)
{
    m_firmwareBaseName = name;
    const QList<Item*> boxes = m_model.items(koraFamily());
    for (Item* box : boxes)
        box->setPackageName(name);
    m_model.announceLayout();
}

void DeviceRegistry::forgetIdleDevices()
{
    // Whoever asks for a fresh look gets one.
    m_probes = {};
    const QList<Item*> boxes = devices();
    for (Item* box : boxes) {
        if (!box->isUpgrading() && !box->isOrdered())
            m_model.remove(box);
    }
    const QList<Item*> groups = m_model.items();
    for (Item* group : groups) {
        if (group->isGroup() && group->childCount() == 0)
            m_model.remove(group);
    }
    emit changed();
}

// SPDX-License-Identifier: MIT
#include "ui/devices/device_info.h"

#include "common/box_protocol.h"
#include "common/spark_http.h"
#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_model.h"
#include "device/tree_view.h"
#include "ui/devices/info_hint.h"
#include "ui/hub/exchange.h"
#include "ui/hub/hub_state.h"
#include "ui/hub/orders.h"

#include <iterator>

namespace
{

const QString requestType = QStringLiteral("getDeviceinfo");
/// A box answers ping some time before its interface does, so who it is may take more than one
/// question: at most so many, with so long between them.
constexpr int mostQuestions = 24;
constexpr int questionPauseMs = 5000;

/// In the order in which they are read and shown.
constexpr QLatin1String informationParameters[] = {
    BoxProtocol::DeviceName, BoxProtocol::FirmVersion, BoxProtocol::HardVersion,
    BoxProtocol::SdkVersion, BoxProtocol::DiskSpace,   BoxProtocol::MACAddress,
};

/// Of the first note, behind all of them.
constexpr int firstNote = int(std::size(informationParameters));

int placeOf(const QString& parameter)
{
    int place = 0;
    for (const QLatin1String name : informationParameters) {
        if (parameter == name)
            return place;
        ++place;
    }
    return -1;
}

QString caption(int place)
{
    switch (place) {
    case 0:
        return DeviceInfo::tr("设备名称");
    case 1:
        return DeviceInfo::tr("固件版本");
    case 2:
        return DeviceInfo::tr("硬件版本");
    case 3:
        return DeviceInfo::tr("NDI SDK版本");
    case 4:
        return DeviceInfo::tr("剩余磁盘空间");
    default:
        return DeviceInfo::tr("MAC地址");
    }
}

} // namespace

DeviceInfo::DeviceInfo(const Hub& hub, TreeView* infoView)
    : QObject(hub.window), m_hub(hub), m_view(infoView)
{
    new InfoHint(hub, infoView); // the list owns it
    hub.exchange.onResult(requestType, [this](const HttpResult& result) { handleReply(result); });
    connect(&hub.devices, &DeviceRegistry::deviceAdded, this, [this](const Item* item) {
        if (!item->isKora())
            return;
        expectAnswers(item->address());
        getDeviceinfo(item->address());
    });
    connect(&hub.devices, &DeviceRegistry::cameOnline, this, [this](const QString& ip) {
        // Another box may have this address now, or another firmware.
        const Item* item = m_hub.devices.model().find(ip);
        if (!item || !item->isKora())
            return;
        expectAnswers(ip);
        if (ip != m_hub.state.deviceIp()) // the selected one is read as a whole
            getDeviceinfo(ip);
    });
    m_again.setInterval(questionPauseMs);
    connect(&m_again, &QTimer::timeout, this, &DeviceInfo::askAgain);
    connect(&hub.state, &HubState::readingWanted, this, [this] { getDeviceinfo(QString()); });
    connect(&hub.orders, &Orders::identified, this, [this](const QString& ip, const QString& mac) {
        emit macReported(ip, mac);
        if (ip != m_hub.state.deviceIp()) // the selected one is read as a whole
            getDeviceinfo(ip);
    });
}

void DeviceInfo::read(const QString& ip, const QString& parameter)
{
    m_hub.http.get(requestType, BoxProtocol::readUrl(ip, parameter), false);
}

void DeviceInfo::expectAnswers(const QString& ip)
{
    m_unknown[ip] = {};
    if (!m_again.isActive())
        m_again.start();
}

void DeviceInfo::askAgain()
{
    for (auto it = m_unknown.begin(); it != m_unknown.end();) {
        const Item* box = m_hub.devices.model().find(it.key());
        if (!box || !box->isOnline() || it->questions >= mostQuestions) {
            it = m_unknown.erase(it);
            continue;
        }
        if (it->hasFailed) {
            it->hasFailed = false;
            ++it->questions;
            for (const QString& parameter : qAsConst(it->unanswered))
                read(it.key(), parameter);
        }
        ++it;
    }
    if (m_unknown.isEmpty())
        m_again.stop();
}

void DeviceInfo::getDeviceinfo(const QString& ip)
{
    const QString selected = m_hub.state.deviceIp();
    if (!ip.isEmpty() && ip != selected) {
        read(ip, BoxProtocol::FirmVersion);
        read(ip, BoxProtocol::MACAddress);
        return;
    }
    m_view->treeModel()->clear();
    showNotes();
    for (const QLatin1String parameter : informationParameters)
        read(selected, parameter);
}

void DeviceInfo::handleReply(const HttpResult& result)
{
    const bool isLate = noteAnswer(result);
    if (placeOf(result.parameterName) < 0)
        return;
    const bool shown = result.deviceIp == m_hub.state.deviceIp();
    if (result.isRefusal()) {
        if (shown)
            showRow(result.parameterName, QStringLiteral("–"));
        return;
    }
    const QString value = result.value.toString();
    updateDevice(result, value);
    if (!shown)
        return;
    showRow(result.parameterName,
            result.parameterName == BoxProtocol::DiskSpace ? value + QStringLiteral(" MB") : value);
    // What else was read of it meanwhile found nobody there either.
    if (isLate)
        emit m_hub.state.readingWanted();
}

bool DeviceInfo::noteAnswer(const HttpResult& result)
{
    const auto unknown = m_unknown.find(result.deviceIp);
    if (unknown == m_unknown.end())
        return false;
    unknown->hasFailed |= placeOf(result.parameterName) < 0;
    unknown->unanswered.removeAll(result.parameterName);
    if (!unknown->unanswered.isEmpty())
        return false;
    const bool isLate = unknown->questions > 1;
    m_unknown.erase(unknown);
    return isLate;
}

void DeviceInfo::updateDevice(const HttpResult& result, const QString& value)
{
    Item* device = m_hub.devices.model().find(result.deviceIp);
    if (!device)
        return;
    if (result.parameterName == BoxProtocol::DeviceName) {
        m_hub.devices.noteName(result.deviceIp, value);
    } else if (result.parameterName == BoxProtocol::FirmVersion) {
        device->setFirmwareVersion(value);
        emit deviceChanged();
    } else if (result.parameterName == BoxProtocol::MACAddress &&
               BoxProtocol::isMacAddress(value)) {
        const bool isOther = !device->macAddress().isEmpty() && device->macAddress() != value;
        device->setMacAddress(value);
        if (isOther) {
            // A name that another box had here would be worse than none.
            m_hub.devices.noteName(result.deviceIp, QString());
            read(result.deviceIp, BoxProtocol::DeviceName);
        }
        emit macReported(result.deviceIp, value);
    }
}

void DeviceInfo::showRow(const QString& parameter, const QString& content)
{
    TreeModel* model = m_view->treeModel();
    const int place = placeOf(parameter);
    int row = 0;
    // Replies arrive in any order, and twice when the box was selected twice: a row has its place.
    for (; row < model->root()->childCount(); ++row) {
        Item* shown = model->root()->child(row);
        const int shownPlace = shown->place();
        if (shownPlace == place) {
            shown->setContent(content);
            m_view->refresh();
            return;
        }
        if (shownPlace > place)
            break;
    }
    Item* item = Item::makeInformation(caption(place), content, m_hub.state.deviceIp()).release();
    item->setPlace(place);
    model->insertTopRow(row, item);
    m_view->refresh();
}

void DeviceInfo::clear()
{
    m_notes.clear();
    m_view->treeModel()->clear();
    m_view->refresh();
}

void DeviceInfo::setNotes(const QVector<InfoNote>& notes)
{
    if (notes == m_notes)
        return;
    const bool isMore = notes.size() > m_notes.size();
    m_notes = notes;
    showNotes();
    // They stand at the end, which a low list does not show.
    if (isMore)
        m_view->scrollToBottom();
}

void DeviceInfo::showNotes()
{
    TreeModel* model = m_view->treeModel();
    while (model->root()->childCount() > 0 &&
           model->root()->child(model->root()->childCount() - 1)->place() >= firstNote)
        model->remove(model->root()->child(model->root()->childCount() - 1));
    for (const InfoNote& note : qAsConst(m_notes)) {
        Item* item =
            Item::makeInformation(note.caption, note.content, m_hub.state.deviceIp()).release();
        item->setPlace(firstNote);
        item->setFault(note.isFault);
        model->insertTopRow(model->root()->childCount(), item);
    }
    m_view->refresh();
}

void DeviceInfo::retranslate()
{
    const QList<Item*> rows = m_view->treeModel()->items();
    for (Item* row : rows) {
        if (row->place() < firstNote)
            row->setTitle(caption(row->place()));
    }
    m_view->refresh();
}

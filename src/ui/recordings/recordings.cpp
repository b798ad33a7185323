// SPDX-License-Identifier: MIT
#include "ui/recordings/recordings.h"

#include "common/box_protocol.h"
#include "common/spark_http.h"
#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_model.h"
#include "media/ffmpeg_widget.h"
#include "ui/hub/exchange.h"
#include "ui/hub/hub_state.h"
#include "ui/hub/orders.h"
#include "ui/recordings/file_type.h"
#include "ui/recordings/list_widget.h"
#include "ui/recordings/storage_hint.h"
#include "widgets/message_box.h"

#include <QAbstractButton>
#include <QDebug>
#include <QLabel>
#include <QPointer>
#include <QUrl>

#include <algorithm>

namespace
{

const QString requestType = QStringLiteral("getDeviceRecordList");

/// What identifies a recording while the list may be read again.
struct RecordingKey {
    QString ip;
    QString mac;
    QString name;

    explicit RecordingKey(const Item& item)
        : ip(item.address()), mac(item.macAddress()), name(item.fileName())
    {
    }
    /// Another box may have come to the address meanwhile, with a recording of the same name.
    bool matches(const Item& item) const
    {
        return item.address() == ip && item.macAddress() == mac && item.fileName() == name;
    }
};

QString mediaUrl(const Item& recording)
{
    return BoxProtocol::mediaUrl(recording.address(), recording.title());
}

/// What the operator calls a box: its name on the network, as far as it has been read.
QString nameOf(const Item& box)
{
    const QString name = box.parameter(BoxProtocol::NDIName).toString();
    return name.isEmpty() ? box.title() : name;
}

} // namespace

Recordings::Recordings(const Hub& hub, ListWidget& list, const Player& player)
    : QObject(nullptr), m_hub(hub), m_list(list), m_hint(*new StorageHint(&list)), m_player(player)
{
    m_tellFailedDeletes.setSingleShot(true);
    m_tellFailedDeletes.setInterval(300);
    connect(&m_tellFailedDeletes, &QTimer::timeout, this, &Recordings::tellFailedDeletes);
    hub.exchange.onResult(requestType, [this](const HttpResult& result) { handleReply(result); });
    hub.exchange.onAction(Action::PlayRecording, [this](Item* item) { playOrStop(item); });
    connect(&hub.state, &HubState::koraSelected, this,
            [this](const Item& box) { showBox(box.address()); });
    connect(&hub.state, &HubState::readingWanted, this, &Recordings::getDeviceRecordList);
}

Recordings::~Recordings() = default;

void Recordings::getDeviceRecordList()
{
    m_hub.http.get(requestType,
                   BoxProtocol::readUrl(m_hub.state.deviceIp(), BoxProtocol::RecordList), false);
}

void Recordings::showBox(const QString& ip)
{
    if (ip == m_listedIp)
        return;
    m_listedIp = ip;
    m_hint.setReason(StorageHint::Reason::Reading);
    m_list.clearEntries();
}

void Recordings::noteMac(const QString& ip, const QString& mac)
{
    const auto& entries = m_list.entries();
    const bool isOthers =
        ip == m_listedIp &&
        std::any_of(entries.cbegin(), entries.cend(), [&mac](const std::unique_ptr<Item>& entry) {
            return !entry->macAddress().isEmpty() &&
                   !BoxProtocol::isSameMac(entry->macAddress(), mac);
        });
    if (!isOthers) {
        // Told before it was known who told it.
        for (const auto& entry : m_list.entries()) {
            if (ip == m_listedIp && entry->macAddress().isEmpty())
                entry->setMacAddress(mac);
        }
        return;
    }
    m_list.clearEntries();
    if (ip == m_hub.state.deviceIp())
        getDeviceRecordList();
}

void Recordings::handleReply(const HttpResult& result)
{
    if (result.deviceIp != m_hub.state.deviceIp())
        return;
    if (result.value.type() != QVariant::List) {
        m_hint.setReason(StorageHint::Reason::NotRead);
        return;
    }
    m_listedIp = result.deviceIp;
    m_hint.setReason(StorageHint::Reason::NoRecordings);
    m_list.clearEntries();
    const QVariantList names = result.value.toList();
    const Item* box = m_hub.devices.model().find(result.deviceIp);
    for (const QVariant& value : names) {
        const QString name = value.type() == QVariant::String ? value.toString() : QString();
        if (fileType(name) == FileType::Video) {
            auto recording = Item::makeRecording(name, result.deviceIp);
            // Whose it is: another box may have the address by the time that it is deleted.
            recording->setMacAddress(box ? box->macAddress() : QString());
            m_list.addEntry(std::move(recording));
        }
    }
    // The one that plays stays marked, so that it is not deleted while it is watched.
    if (QUrl(m_playing).host() == result.deviceIp)
        markPlaying(m_playing);
}

void Recordings::playSelected(bool on)
{
    if (!on) {
        m_player.video.close();
        return;
    }
    for (const QListWidgetItem* row : m_list.selectedRows()) {
        if (const Item* recording = m_list.entryOf(row)) {
            play(*recording);
            m_list.viewport()->update();
            return;
        }
    }
    m_player.play.setChecked(false);
    messageBox::tell(tr("请您在存储区域中选择要播放的内容!"), m_hub.window);
}

void Recordings::playOrStop(const Item* recording)
{
    if (!recording)
        return;
    if (recording->isPlaying())
        m_player.video.close();
    else
        play(*recording);
}

void Recordings::playNeighbour(int step)
{
    const auto& entries = m_list.entries();
    const int count = static_cast<int>(entries.size());
    for (int n = 0; n < count; ++n) {
        if (!entries[static_cast<size_t>(n)]->isPlaying())
            continue;
        const int wanted = n + step;
        if (wanted >= 0 && wanted < count)
            play(*entries[static_cast<size_t>(wanted)]);
        else
            messageBox::tell(step < 0 ? tr("已经是最后一个了") : tr("已经第一个了"), m_hub.window);
        return;
    }
    messageBox::tell(tr("请您在存储区域中选择要播放的内容!"), m_hub.window);
}

void Recordings::play(const Item& recording)
{
    // Taken now: closing may bring the news that removes the record.
    playUrl(mediaUrl(recording));
}

void Recordings::playUrl(const QString& url)
{
    const Item* box = m_hub.devices.model().find(QUrl(url).host());
    const QString name = box ? nameOf(*box) : QString();
    m_player.video.close();
    m_player.video.setSourceName(name);
    m_player.video.open(url, MediaOptions::Origin::Box);
}

void Recordings::playNamed(const QString& ip, const QString& name)
{
    for (const auto& entry : m_list.entries()) {
        if (entry->address() == ip && entry->title().contains(name)) {
            play(*entry);
            return;
        }
    }
    playUrl(BoxProtocol::mediaUrl(ip, name));
}

void Recordings::showStatus(int status, const QString& url)
{
    enum Status { Failed = 0, Playing = 1 };
    m_playing = status == Playing ? url : QString();
    m_player.play.setChecked(status == Playing);
    m_player.address.setText(m_playing);
    markPlaying(m_playing);
    if (status == Failed)
        messageBox::tell(BoxProtocol::fill(tr("播放地址%1异常!"), {url}), m_hub.window);
}

void Recordings::markPlaying(const QString& url)
{
    // The address carries the name percent-encoded; the list has it as it is.
    const QString decoded = QUrl::fromPercentEncoding(url.toUtf8());
    for (const auto& entry : m_list.entries()) {
        const QString title = entry->title();
        entry->setPlaying(!url.isEmpty() && (url.contains(title) || decoded.contains(title)));
    }
    m_list.viewport()->update();
}

void Recordings::remove(const QList<QListWidgetItem*>& rows)
{
    std::vector<RecordingKey> keys;
    for (const QListWidgetItem* row : rows) {
        if (const Item* recording = m_list.entryOf(row))
            keys.emplace_back(*recording);
    }
    const QPointer<Recordings> self(this);
    if (rows.isEmpty() || !isFree(m_listedIp) || !self)
        return;
    const int answer = messageBox::ask(tr("确认要删除这些录制文件吗?"), m_hub.window);
    if (!self || answer != messageBox::Confirmed)
        return;
    // An upgrade may have begun while the question was open.
    if (!keys.empty() && !isFree(keys.front().ip))
        return;
    const QSignalBlocker blocker(m_list);
    for (const RecordingKey& key : keys) {
        const auto& entries = m_list.entries();
        const auto found = std::find_if(entries.begin(), entries.end(),
                                        [&key](const auto& entry) { return key.matches(*entry); });
        if (found == entries.end())
            noteNotDeleted(key.name);
        else if (!(*found)->isPlaying())
            startDelete(m_list.takeEntry(found->get()));
    }
    m_list.viewport()->update();
}

/// False, after a message, while an upgrade has the box at `ip`.
bool Recordings::isFree(const QString& ip) const
{
    const Item* box = m_hub.devices.model().find(ip);
    return !box || m_hub.isFree(*box);
}

/// The record waits for the box's answer after its row has gone.
void Recordings::startDelete(std::unique_ptr<Item> recording)
{
    Item* item = recording.get();
    m_deleting.push_back(std::move(recording));
    // Until the record goes.
    const auto hold = std::make_shared<OrderHold>(m_hub.devices.model().find(item->address()));
    connect(item, &Item::deleteEnded, this,
            [this, item, hold](bool succeeded) { noteDeleted(item, succeeded); });
    m_hub.orders.confirm(BoxId::of(*item), item, [this, item](bool may) {
        if (may)
            item->record_del();
        else
            noteDeleted(item, false);
    });
}

void Recordings::noteDeleted(Item* recording, bool succeeded)
{
    for (auto place = m_deleting.begin(); place != m_deleting.end(); ++place) {
        if (place->get() != recording)
            continue;
        // It is the sender of the signal that brought us here.
        place->release()->deleteLater();
        m_deleting.erase(place);
        break;
    }
    if (!succeeded)
        noteNotDeleted(recording->fileName());
}

void Recordings::noteNotDeleted(const QString& name)
{
    m_failedDeletes << BoxProtocol::fill(tr("文件[%1]删除错误,请重试"), {name});
    m_tellFailedDeletes.start();
}

/// One message for all that failed together; the list shows again what is still there.
void Recordings::tellFailedDeletes()
{
    const QString text = m_failedDeletes.join(QLatin1Char('\n'));
    m_failedDeletes.clear();
    getDeviceRecordList();
    messageBox::tell(text, m_hub.window);
}

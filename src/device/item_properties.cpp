// SPDX-License-Identifier: MIT
// What is known of an item, by the names of its properties.
#include "device/item.h"

#include <QEvent>

namespace
{

constexpr char isGroupName[] = "isdir";
constexpr char addressName[] = "deviceip";
constexpr char titleName[] = "title";
constexpr char contentName[] = "content";
constexpr char levelName[] = "level";

constexpr char isDeviceName[] = "isDevice";
constexpr char onlineName[] = "online";
constexpr char macAddressName[] = "MACAddress";
constexpr char firmwareVersionName[] = "FirmVersion";
constexpr char packageNameName[] = "otaFile";
constexpr char recordingInProgressName[] = "recodefilename";
constexpr char configurationToRestoreName[] = "restoreconfig";
constexpr char selectOrderName[] = "selectorder";
constexpr char correlatedName[] = "correlation";

constexpr char upgradingName[] = "upgrading";
constexpr char timedOutName[] = "upgradtimeout";
constexpr char succeededName[] = "upgradsuccessful";
constexpr char uploadedName[] = "upgrade_ota_file";
constexpr char activatedName[] = "upgrade_ota";
constexpr char secondsLeftName[] = "rtime";
constexpr char tipsName[] = "upgradtip";

constexpr char fileNameName[] = "filename";
constexpr char filePathName[] = "filepath";
constexpr char playingName[] = "ispaly";
constexpr char dropPositionName[] = "position";

constexpr int mostTips = 200;

} // namespace

void Item::setDefaults()
{
    setGroup(false);
    setOnline(true);
    setSecondsLeft(UpgradeAllowance);
    setUpgrading(false);
    setTimedOut(false);
    setSucceeded(false);
}

std::unique_ptr<Item> Item::makeGroup(const QString& name)
{
    auto group = std::make_unique<Item>();
    group->setTitle(name);
    group->setContent(name);
    group->setGroup(true);
    return group;
}

std::unique_ptr<Item> Item::makeBox(const QString& ip)
{
    auto box = std::make_unique<Item>();
    box->setTitle(ip);
    box->setContent(ip);
    box->setAddress(ip);
    box->setProperty(isDeviceName, true);
    return box;
}

std::unique_ptr<Item> Item::makeInformation(const QString& caption, const QString& content,
                                            const QString& ip)
{
    auto row = std::make_unique<Item>();
    row->setTitle(caption);
    row->setContent(content);
    row->setAddress(ip);
    return row;
}

std::unique_ptr<Item> Item::makeRecording(const QString& fileName, const QString& ip)
{
    auto recording = std::make_unique<Item>();
    recording->setTitle(fileName);
    recording->setProperty(fileNameName, fileName);
    recording->setProperty(filePathName, fileName);
    recording->setAddress(ip);
    recording->setPlaying(false);
    return recording;
}

bool Item::event(QEvent* event)
{
    if (event->type() == QEvent::DynamicPropertyChange) {
        const QByteArray name = static_cast<QDynamicPropertyChangeEvent*>(event)->propertyName();
        if (name == addressName)
            m_address = property(addressName).toString();
        else if (name == titleName)
            m_title = property(titleName).toString();
        else if (name == macAddressName)
            m_macAddress = property(macAddressName).toString();
    }
    return QObject::event(event);
}

bool Item::isGroup() const
{
    return property(isGroupName).toBool();
}

void Item::setGroup(bool group)
{
    setProperty(isGroupName, group);
}

void Item::setAddress(const QString& ip)
{
    setProperty(addressName, ip);
}

void Item::setTitle(const QString& text)
{
    setProperty(titleName, text);
}

QString Item::content() const
{
    return property(contentName).toString();
}

void Item::setContent(const QString& text)
{
    setProperty(contentName, text);
}

int Item::level() const
{
    return property(levelName).toInt();
}

void Item::setLevel(int level)
{
    setProperty(levelName, level);
}

bool Item::isDevice() const
{
    return property(isDeviceName).toBool();
}

bool Item::isOnline() const
{
    return property(onlineName).toBool();
}

void Item::setOnline(bool online)
{
    setProperty(onlineName, online);
}

void Item::setName(const QString& name)
{
    constexpr int longest = 200;
    m_name = name.left(longest).simplified();
}

void Item::setMacAddress(const QString& mac)
{
    setProperty(macAddressName, mac);
}

QString Item::firmwareVersion() const
{
    return property(firmwareVersionName).toString();
}

void Item::setFirmwareVersion(const QString& version)
{
    setProperty(firmwareVersionName, version);
}

QString Item::packageName() const
{
    return property(packageNameName).toString();
}

void Item::setPackageName(const QString& baseName)
{
    setProperty(packageNameName, baseName);
}

QVariant Item::parameter(const QString& name) const
{
    return property(name.toLatin1().constData());
}

void Item::setParameter(const QString& name, const QVariant& value)
{
    setProperty(name.toLatin1().constData(), value);
}

QString Item::recordingInProgress() const
{
    return property(recordingInProgressName).toString();
}

void Item::setRecordingInProgress(const QString& fileName)
{
    setProperty(recordingInProgressName, fileName);
}

void Item::setConfigurationToRestore(const QVariantMap& values)
{
    setProperty(configurationToRestoreName, values);
}

int Item::selectOrder() const
{
    return property(selectOrderName).toInt();
}

bool Item::isCorrelated() const
{
    return property(correlatedName).toBool();
}

bool Item::isUpgrading() const
{
    return property(upgradingName).toBool();
}

void Item::setUpgrading(bool upgrading)
{
    setProperty(upgradingName, upgrading);
}

bool Item::hasTimedOut() const
{
    return property(timedOutName).toBool();
}

void Item::setTimedOut(bool timedOut)
{
    setProperty(timedOutName, timedOut);
}

bool Item::hasSucceeded() const
{
    return property(succeededName).toBool();
}

void Item::setSucceeded(bool succeeded)
{
    setProperty(succeededName, succeeded);
}

bool Item::isUploaded() const
{
    return property(uploadedName).toBool();
}

void Item::setUploaded(bool uploaded)
{
    setProperty(uploadedName, uploaded);
}

void Item::setActivated(bool activated)
{
    setProperty(activatedName, activated);
}

int Item::secondsLeft() const
{
    return property(secondsLeftName).toInt();
}

void Item::setSecondsLeft(int seconds)
{
    setProperty(secondsLeftName, seconds);
}

QStringList Item::tips() const
{
    return property(tipsName).toStringList();
}

void Item::addTip(const QString& text)
{
    QStringList lines = tips() << text;
    if (lines.size() > mostTips)
        lines.removeFirst();
    setProperty(tipsName, lines);
}

QString Item::fileName() const
{
    return property(fileNameName).toString();
}

QString Item::filePath() const
{
    return property(filePathName).toString();
}

bool Item::isPlaying() const
{
    return property(playingName).toBool();
}

void Item::setPlaying(bool playing)
{
    setProperty(playingName, playing);
}

int Item::dropPosition() const
{
    return property(dropPositionName).toInt();
}

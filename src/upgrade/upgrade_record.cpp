// SPDX-License-Identifier: MIT
#include "upgrade/upgrade_record.h"

#include "common/box_protocol.h"
#include "common/csv.h"
#include "upgrade/upgrade_judgement.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QMetaEnum>

#include <algorithm>

namespace
{

using Stage = UpgradeRow::Stage;
using Settings = UpgradeRow::Settings;
using Verdict = UpgradeRow::Verdict;

QString key(const char* name)
{
    return QLatin1String(name);
}

QString settingsText(const UpgradeRow& row)
{
    switch (row.settings) {
    case Settings::NotKept:
        return QCoreApplication::translate("UpgradeReport", "未保留");
    case Settings::NotSaved:
        return QCoreApplication::translate("UpgradeReport", "未能完整读取，不恢复");
    case Settings::Waiting:
        return row.settled ? QCoreApplication::translate("UpgradeReport", "设备未回应，待恢复")
                           : QCoreApplication::translate("UpgradeReport", "待恢复");
    case Settings::Restored:
        return QCoreApplication::translate("UpgradeReport", "已恢复");
    case Settings::Unverified:
        return QCoreApplication::translate("UpgradeReport", "已写回，未核对");
    case Settings::SomeFailed:
        return QCoreApplication::translate("UpgradeReport", "%n项失败", nullptr,
                                           row.failedSettings.size());
    case Settings::Dropped:
        return QCoreApplication::translate("UpgradeReport", "已放弃恢复");
    case Settings::Unchanged:
        return QCoreApplication::translate("UpgradeReport", "未改动，无需恢复");
    case Settings::HandedOver:
        return QCoreApplication::translate("UpgradeReport", "由之后的升级恢复");
    case Settings::Ambiguous:
        return QCoreApplication::translate("UpgradeReport", "MAC地址重复，未恢复");
    }
    return QString();
}

QString noteText(const UpgradeRow& row)
{
    QStringList parts;
    if (!row.stopped.isEmpty())
        parts << QCoreApplication::translate("UpgradeReport", "内部检查已停止此升级：%1")
                     .arg(row.stopped);
    if (!row.failedSettings.isEmpty())
        parts << row.failedSettings.join(QStringLiteral(", "));
    if (row.settled && row.verdict() == Verdict::NotProved)
        parts << UpgradeJudgement::doubt(row);
    if (!row.aftermath.isEmpty())
        parts << row.aftermath;
    // Nothing puts it back any more.
    if (row.dhcpForced &&
        (row.settings == Settings::Dropped || row.settings == Settings::Ambiguous))
        parts << QCoreApplication::translate("UpgradeReport", "已切换为DHCP");
    if (!row.absent.isEmpty())
        parts << QCoreApplication::translate("UpgradeReport", "设备称没有这些设置：%1")
                     .arg(row.absent.join(QStringLiteral(", ")));
    // "Success", as a box was told it in its activation, is no evidence and would pass for it.
    if (!row.note.isEmpty() && row.stage != Stage::Activated)
        parts << row.note;
    return parts.join(QStringLiteral("; "));
}

QString seconds(const UpgradeRow& row, const QDateTime& now)
{
    const qint64 ms = row.durationMs > 0 ? row.durationMs : row.started.msecsTo(now);
    return QString::number(double(qMax<qint64>(0, ms)) / 1000.0, 'f', 1);
}

/// The format of journals as written here: words. Journals without a format hold numbers.
constexpr int wordFormat = 2;
constexpr int numberFormat = 1;

template <class Enum> QString word(Enum value)
{
    return QLatin1String(QMetaEnum::fromType<Enum>().valueToKey(int(value)));
}

/// Reads a word, or a number as journals held it before. False when it means nothing here.
template <class Enum> bool readEnum(const QJsonValue& json, int format, Enum* value)
{
    const QMetaEnum words = QMetaEnum::fromType<Enum>();
    const QByteArray name = format == numberFormat ? QByteArray(words.valueToKey(json.toInt(-1)))
                                                   : json.toString().toLatin1();
    bool known = false;
    const int number = name.isEmpty() ? 0 : words.keyToValue(name.constData(), &known);
    if (known)
        *value = Enum(number);
    return known;
}

/// Empty when `row` could be filled.
QString readRow(const QJsonObject& json, int format, UpgradeRow* row)
{
    const QString mac = json.value(key("mac")).toString();
    row->mac = BoxProtocol::isMacAddress(mac) ? mac : QString();
    row->addressBefore = json.value(key("addressBefore")).toString();
    row->address = json.value(key("address")).toString();
    row->versionBefore = json.value(key("versionBefore")).toString();
    row->versionAfter = json.value(key("versionAfter")).toString();
    if (!readEnum(json.value(key("stage")), format, &row->stage))
        return QStringLiteral("unknown stage");
    row->settled = json.value(key("settled")).toBool();
    if (!readEnum(json.value(key("settings")), format, &row->settings))
        return QStringLiteral("unknown state of settings");
    row->failedSettings = json.value(key("failedSettings")).toVariant().toStringList();
    row->saved = json.value(key("saved")).toObject().toVariantMap();
    row->dhcpForced = json.value(key("dhcpForced")).toBool();
    row->lastTry = json.value(key("lastTry")).toBool();
    row->ambiguous = json.value(key("ambiguous")).toBool();
    // Journals without the word come from when another version was enough.
    row->wasAway = json.value(key("wasAway")).toBool(!row->versionAfter.isEmpty());
    row->expected = json.value(key("expected")).toString();
    row->aftermath = json.value(key("aftermath")).toString();
    row->started = QDateTime::fromString(json.value(key("started")).toString(), Qt::ISODateWithMs);
    // A number that is none of milliseconds would not fit, either.
    const double durationMs = json.value(key("durationMs")).toDouble();
    constexpr double most = 1e15;
    row->durationMs = durationMs > 0 && durationMs < most ? qint64(durationMs) : 0;
    row->absent = json.value(key("absent")).toVariant().toStringList();
    row->stopped = json.value(key("stopped")).toString();
    row->note = json.value(key("note")).toString();
    return QString();
}

QJsonObject rowToJson(const UpgradeRow& row)
{
    return {{key("mac"), row.mac},
            {key("addressBefore"), row.addressBefore},
            {key("address"), row.address},
            {key("versionBefore"), row.versionBefore},
            {key("versionAfter"), row.versionAfter},
            {key("stage"), word(row.stage)},
            {key("settled"), row.settled},
            {key("settings"), word(row.settings)},
            {key("failedSettings"), QJsonArray::fromStringList(row.failedSettings)},
            {key("saved"), QJsonObject::fromVariantMap(row.saved)},
            {key("dhcpForced"), row.dhcpForced},
            {key("lastTry"), row.lastTry},
            {key("ambiguous"), row.ambiguous},
            {key("wasAway"), row.wasAway},
            {key("expected"), row.expected},
            {key("aftermath"), row.aftermath},
            {key("started"), row.started.toString(Qt::ISODateWithMs)},
            {key("durationMs"), double(row.durationMs)},
            {key("absent"), QJsonArray::fromStringList(row.absent)},
            {key("stopped"), row.stopped},
            {key("note"), row.note}};
}

} // namespace

bool UpgradeRow::isProved() const
{
    return UpgradeJudgement::isProof(*this);
}

Verdict UpgradeRow::verdict() const
{
    if (isProved())
        return Verdict::Proved;
    switch (stage) {
    case Stage::Preparing:
    case Stage::Uploading:
        return Verdict::UnderWay;
    case Stage::Activated:
        return settled ? Verdict::NotProved : Verdict::UnderWay;
    case Stage::UploadFailed:
        return Verdict::Failed;
    case Stage::Interrupted:
        return Verdict::Interrupted;
    }
    return Verdict::Failed;
}

bool UpgradeSession::isSettled() const
{
    return std::all_of(rows.begin(), rows.end(), [](const UpgradeRow& row) { return row.settled; });
}

bool UpgradeSession::hasWaitingSettings() const
{
    return std::any_of(rows.begin(), rows.end(),
                       [](const UpgradeRow& row) { return row.settings == Settings::Waiting; });
}

QString UpgradeSession::baseName() const
{
    return QStringLiteral("upgrade_") + started.toString(QStringLiteral("yyyyMMdd_HHmmss_zzz"));
}

QJsonObject UpgradeSession::toJson() const
{
    QJsonArray array;
    for (const UpgradeRow& row : rows)
        array << rowToJson(row);
    return {{key("format"), wordFormat}, {key("started"), started.toString(Qt::ISODateWithMs)},
            {key("package"), package},   {key("md5"), md5},
            {key("ended"), ended},       {key("interrupted"), interrupted},
            {key("rows"), array}};
}

bool UpgradeSession::fromJson(const QJsonObject& json, UpgradeSession* session, QString* problem)
{
    const auto refuse = [problem](const QString& reason) {
        if (problem)
            *problem = reason;
        return false;
    };
    const QJsonValue format = json.value(key("format"));
    if (!format.isUndefined() && format.toInt() != wordFormat)
        return refuse(QStringLiteral("unknown format"));
    session->started =
        QDateTime::fromString(json.value(key("started")).toString(), Qt::ISODateWithMs);
    session->package = json.value(key("package")).toString();
    session->md5 = json.value(key("md5")).toString();
    session->ended = json.value(key("ended")).toBool();
    session->interrupted = json.value(key("interrupted")).toBool();
    const QJsonArray array = json.value(key("rows")).toArray();
    for (const QJsonValue& value : array) {
        UpgradeRow row;
        const QString reason =
            readRow(value.toObject(), format.isUndefined() ? numberFormat : wordFormat, &row);
        if (!reason.isEmpty())
            return refuse(reason);
        session->rows << row;
    }
    if (!session->started.isValid() || session->rows.isEmpty())
        return refuse(QStringLiteral("no batch"));
    return true;
}

QStringList UpgradeText::headers()
{
    return {QCoreApplication::translate("UpgradeReport", "批次"),
            QCoreApplication::translate("UpgradeReport", "设备"),
            QCoreApplication::translate("UpgradeReport", "MAC地址"),
            QCoreApplication::translate("UpgradeReport", "升级前版本"),
            QCoreApplication::translate("UpgradeReport", "升级后版本"),
            QCoreApplication::translate("UpgradeReport", "结果"),
            QCoreApplication::translate("UpgradeReport", "设置恢复"),
            QCoreApplication::translate("UpgradeReport", "用时（秒）"),
            QCoreApplication::translate("UpgradeReport", "说明"),
            QCoreApplication::translate("UpgradeReport", "固件包"),
            QCoreApplication::translate("UpgradeReport", "固件MD5")};
}

QString UpgradeText::verdict(Verdict verdict)
{
    switch (verdict) {
    case Verdict::UnderWay:
        return QCoreApplication::translate("UpgradeReport", "进行中");
    case Verdict::Proved:
        return QCoreApplication::translate("UpgradeReport", "已证实");
    case Verdict::NotProved:
        return QCoreApplication::translate("UpgradeReport", "未证实");
    case Verdict::Failed:
        return QCoreApplication::translate("UpgradeReport", "失败");
    case Verdict::Interrupted:
        return QCoreApplication::translate("UpgradeReport", "已中断");
    }
    return QString();
}

QStringList UpgradeText::cells(const UpgradeSession& session, const UpgradeRow& row,
                               const QDateTime& now)
{
    const QString address = row.address == row.addressBefore
                                ? row.addressBefore
                                : row.addressBefore + QStringLiteral(" → ") + row.address;
    return {session.started.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")),
            address,
            row.mac,
            row.versionBefore,
            row.versionAfter,
            verdict(row.verdict()),
            settingsText(row),
            seconds(row, now),
            noteText(row),
            session.package,
            session.md5};
}

QByteArray UpgradeText::csv(const UpgradeSession& session, const QDateTime& now)
{
    QByteArray text = Csv::Beginning;
    if (session.interrupted)
        text += Csv::line({QCoreApplication::translate("UpgradeReport", "此批次升级曾被中断")});
    text += Csv::line(headers());
    for (const UpgradeRow& row : session.rows)
        text += Csv::line(cells(session, row, now));
    return text;
}

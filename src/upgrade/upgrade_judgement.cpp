// SPDX-License-Identifier: MIT
#include "upgrade/upgrade_judgement.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QVersionNumber>

namespace
{

enum class Change { None, Older, Other, ToPackage };

Change changeOf(const UpgradeRow& row, const QString& version)
{
    if (row.versionBefore.isEmpty() || version.isEmpty() || version == row.versionBefore)
        return Change::None;
    const auto before = QVersionNumber::fromString(UpgradeJudgement::versionIn(row.versionBefore));
    const auto after = QVersionNumber::fromString(UpgradeJudgement::versionIn(version));
    if (!before.isNull() && !after.isNull() && after < before)
        return Change::Older;
    const auto package = QVersionNumber::fromString(row.expected);
    if (package.isNull() || after.isNull())
        return Change::Other;
    return after == package ? Change::ToPackage : Change::Other;
}

} // namespace

QString UpgradeJudgement::versionIn(const QString& text)
{
    static const QRegularExpression numbers(QStringLiteral("\\d{1,6}(\\.\\d{1,6})+"));
    QString longest;
    auto match = numbers.globalMatch(text);
    while (match.hasNext()) {
        const QString found = match.next().captured();
        if (found.count(QLatin1Char('.')) > longest.count(QLatin1Char('.')) || longest.isEmpty())
            longest = found;
    }
    return longest;
}

bool UpgradeJudgement::hasChangedOver(const UpgradeRow& row, const QString& version, bool wasAway)
{
    const Change change = changeOf(row, version);
    return change == Change::ToPackage || (change != Change::None && wasAway);
}

bool UpgradeJudgement::isProof(const UpgradeRow& row)
{
    if (row.mac.isEmpty() || row.ambiguous)
        return false;
    switch (changeOf(row, row.versionAfter)) {
    case Change::ToPackage:
        return true;
    case Change::Other:
        // Of a package that tells its version nothing else is proof.
        return row.wasAway && versionIn(row.expected).isEmpty();
    case Change::None:
    case Change::Older:
        break;
    }
    return false;
}

QString UpgradeJudgement::doubt(const UpgradeRow& row)
{
    if (row.versionAfter.isEmpty())
        return QCoreApplication::translate("UpgradeReport", "升级后未再回应");
    if (row.ambiguous)
        return QCoreApplication::translate("UpgradeReport",
                                           "网络中有两台设备的MAC地址相同，无法证实");
    if (row.mac.isEmpty())
        return QCoreApplication::translate("UpgradeReport", "MAC地址未知，无法证实");
    if (row.versionBefore.isEmpty())
        return QCoreApplication::translate("UpgradeReport", "升级前版本未知，无法证实");
    if (row.versionAfter == row.versionBefore)
        return QCoreApplication::translate("UpgradeReport", "版本没有变化");
    return changeOf(row, row.versionAfter) == Change::Older
               ? QCoreApplication::translate("UpgradeReport", "版本退回到更旧的版本")
               : QCoreApplication::translate("UpgradeReport", "版本与固件包不符");
}

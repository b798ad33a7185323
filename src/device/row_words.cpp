// SPDX-License-Identifier: MIT
#include "device/row_words.h"

#include "device/item.h"
#include "device/tree_model.h"

namespace
{

/// A box may have given itself a name of thousands of characters.
constexpr int mostSaid = 256;

QString joined(QStringList parts)
{
    parts.removeAll(QString());
    return parts.join(QStringLiteral(", "));
}

} // namespace

QString RowWords::name(const Item& item)
{
    if (item.isGroup())
        return joined({item.title(), TreeModel::groupCount(item)});
    if (!item.isDevice())
        return item.content().isEmpty()
                   ? item.title()
                   : QStringLiteral("%1: %2").arg(item.title(), item.content().left(mostSaid));
    const Action there = item.isOnline() ? Action::Online : Action::Offline;
    return joined(
        {item.displayText(), item.name().left(mostSaid), TreeModel::zoneTip(item, there)});
}

QString RowWords::description(const Item& item)
{
    if (!item.isDevice())
        return {};
    QStringList marks;
    if (item.hasSucceeded())
        marks << tr("升级成功");
    else if (item.hasTimedOut())
        marks << tr("升级未成功");
    else if (item.isUpgrading())
        marks << tr("升级中");
    marks << item.activity();
    if (item.hasNewerFirmware())
        marks << TreeModel::zoneTip(item, Action::NewFirmware);
    return joined(marks);
}

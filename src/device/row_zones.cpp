// SPDX-License-Identifier: MIT
#include "device/row_zones.h"

#include "device/item.h"

namespace
{

constexpr int levelStep = 21;
constexpr int firstIndent = 10;
constexpr int rightIconInset = 26;
constexpr int rightIconStep = 24;
constexpr int selectOrderX = 6;
constexpr int groupTextGap = 5;
constexpr int boxTextGap = 10;
constexpr int textEndGap = 5;
/// Reached in every pane, with a scroll bar or without: the values do not move when one comes.
constexpr int widestCaption = 120;

QRect iconAt(const QRect& row, int x)
{
    return {x, row.top() + (row.height() - RowZones::IconSize) / 2, RowZones::IconSize,
            RowZones::IconSize};
}

Action leadingAction(const Item& item, bool expanded)
{
    if (item.isGroup())
        return expanded ? Action::GroupExpanded : Action::GroupCollapsed;
    if (item.isDevice())
        return item.isOnline() ? Action::Online : Action::Offline;
    return Action::LeadingIcon;
}

} // namespace

RowZones::RowZones(const QRect& row, const Item& item, bool expanded)
    : m_leading{leadingAction(item, expanded),
                iconAt(row, row.left() + (item.level() - 1) * levelStep + firstIndent)}
    , m_textEnd(row.left() + row.width())
{
    if (item.selectOrder() > 0)
        m_selectOrder = iconAt(row, row.left() + selectOrderX);
    if (item.isKora())
        placeRightIcons(row, item);
    placeText(row, item);
}

void RowZones::placeRightIcons(const QRect& row, const Item& item)
{
    int x = row.left() + row.width() - rightIconInset;
    const auto place = [&] {
        const QRect rect = iconAt(row, x);
        m_textEnd = x - textEndGap;
        x -= rightIconStep;
        return rect;
    };
    m_rightIcons.append({Action::RestartDevice, place()});
    m_rightIcons.append({Action::RestartSoftware, place()});
    if (item.hasNewerFirmware())
        m_rightIcons.append({Action::NewFirmware, place()});
    if (item.isCorrelated())
        m_correlation = place();
}

void RowZones::placeText(const QRect& row, const Item& item)
{
    const int gap = item.isGroup() ? groupTextGap : boxTextGap;
    const int start = m_leading.rect.left() + IconSize + gap;
    m_title = QRect(start, row.top(), qMax(0, m_textEnd - start), row.height());
    if (m_leading.action != Action::LeadingIcon)
        return;
    const int caption = qMin(widestCaption, m_title.width() * 2 / 5);
    m_content = m_title.adjusted(caption, 0, -textEndGap, 0);
    m_title.setWidth(caption);
}

Action RowZones::at(const QPoint& pos) const
{
    // A finger's width around an icon belongs to it: 16 pixels are hard to hit.
    constexpr int margin = 4;
    const QMargins around(margin, 8, margin, 8);
    if (m_leading.rect.marginsAdded(around).contains(pos))
        return m_leading.action;
    for (const Zone& zone : m_rightIcons) {
        if (zone.rect.marginsAdded(around).contains(pos))
            return zone.action;
    }
    return m_content.contains(pos) ? Action::Content : Action::Title;
}

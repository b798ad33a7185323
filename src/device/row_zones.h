// SPDX-License-Identifier: MIT
#pragma once

#include "device/action.h"

#include <QPoint>
#include <QRect>
#include <QVector>

class Item;

/// Where everything stands in one row: shared by painting, tooltips and clicks, so that they can
/// never disagree. All rectangles are in the coordinates of the row's rectangle.
class RowZones
{
public:
    struct Zone {
        Action action;
        QRect rect;
    };

    /// `row` is the row's rectangle, `expanded` whether a group shows its boxes.
    RowZones(const QRect& row, const Item& item, bool expanded);

    /// The zone at `pos`; a place without an icon belongs to the title.
    Action at(const QPoint& pos) const;

    const Zone& leading() const { return m_leading; }
    const QRect& title() const { return m_title; }
    /// The value of an information row; empty for others.
    const QRect& content() const { return m_content; }
    /// Icons at the right edge that react to clicks, from right to left.
    const QVector<Zone>& rightIcons() const { return m_rightIcons; }
    /// Marks of the view's marking modes; empty when the item has none.
    const QRect& selectOrder() const { return m_selectOrder; }
    const QRect& correlation() const { return m_correlation; }

    static constexpr int RowHeight = 32; ///< comfortable to hit
    static constexpr int IconSize = 16;

private:
    void placeRightIcons(const QRect& row, const Item& item);
    void placeText(const QRect& row, const Item& item);

    Zone m_leading;
    QRect m_title;
    QRect m_content;
    QVector<Zone> m_rightIcons;
    QRect m_selectOrder;
    QRect m_correlation;
    int m_textEnd = 0;
};

// SPDX-License-Identifier: MIT
#include "device/tree_delegate.h"

#include "device/item.h"
#include "device/tree_model.h"

#include <QMouseEvent>
#include <QPainter>
#include <QTreeView>

namespace
{

// Eight digits are alpha first.
const char* const frameColour = "#303030";
const char* const selectedColour = "#32ffffff";
const char* const hoverColour = "#656565";
const char* const markColour = "#4fb4c6";
const char* const keysColour = "#74cbd9";
const char* const goodColour = "#3200ff00";
const char* const badColour = "#32ff0000";
const char* const textColour = "#e8eaed";
const char* const dimTextColour = "#a9b0b8";

constexpr int markWidth = 4;
constexpr int besideGap = 12;
constexpr int narrowestBeside = 24; // less than that says nothing
/// Characters of a text; somebody may have made it of thousands, in letters of many fonts.
constexpr int mostShown = 512;

QColor colour(const char* name)
{
    return QColor(QLatin1String(name));
}

/// Returns the width of what it has drawn.
int drawLine(QPainter& painter, const QRect& rect, const char* name, const QString& text,
             Qt::Alignment side = Qt::AlignLeft)
{
    // One line, whatever a box sends: line ends would push the text out of the row.
    const QString line = painter.fontMetrics().elidedText(text.simplified().left(mostShown),
                                                          Qt::ElideRight, rect.width());
    painter.setPen(colour(name));
    painter.drawText(rect, int(side | Qt::AlignVCenter) | Qt::TextSingleLine, line);
    return painter.fontMetrics().horizontalAdvance(line);
}

QString iconName(Action action)
{
    switch (action) {
    case Action::GroupExpanded:
        return QStringLiteral("arrow_expanded");
    case Action::GroupCollapsed:
        return QStringLiteral("arrow_collapsed");
    case Action::Online:
        return QStringLiteral("online");
    case Action::Offline:
        return QStringLiteral("offline");
    case Action::RestartDevice:
        return QStringLiteral("restart");
    case Action::RestartSoftware:
        return QStringLiteral("reboot");
    case Action::NewFirmware:
        return QStringLiteral("needup");
    default:
        return QStringLiteral("info");
    }
}

} // namespace

TreeDelegate::TreeDelegate(QTreeView* view) : QStyledItemDelegate(view), m_view(view) {}

void TreeDelegate::fit(const Item& box)
{
    const int width = QFontMetrics(m_view->font()).horizontalAdvance(box.displayText());
    if (width <= m_widestAddress)
        return;
    m_widestAddress = width;
    m_view->viewport()->update();
}

RowZones TreeDelegate::zones(const QModelIndex& index) const
{
    return {m_view->visualRect(index), *TreeModel::itemAt(index), m_view->isExpanded(index)};
}

QSize TreeDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    return {QStyledItemDelegate::sizeHint(option, index).width(), RowZones::RowHeight};
}

void TreeDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const
{
    const Item& item = *TreeModel::itemAt(index);
    const QRect row = option.rect;
    const bool selected = option.state & QStyle::State_Selected;
    // A group is never highlighted, nor need the row be that the keys have come to.
    const bool hasKeys = option.state & QStyle::State_HasFocus;
    const bool hovered = option.state & QStyle::State_MouseOver || (hasKeys && item.isGroup());

    painter->save();
    painter->setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter->setClipRect(row);

    painter->setPen(colour(selected ? selectedColour : frameColour));
    if (selected)
        painter->setBrush(colour(selectedColour));
    else if (hovered)
        painter->setBrush(colour(hoverColour));
    painter->drawRect(row);

    paintUpgrade(*painter, row, item);
    if (&item == m_marked && item.isDevice())
        painter->fillRect(QRect(row.topLeft(), QSize(markWidth, row.height())), colour(markColour));
    const RowZones zones(row, item, m_view->isExpanded(index));
    paintIcons(*painter, zones, item, selected || hovered);
    painter->setFont(option.font);
    paintText(*painter, zones, item, selected || hovered);
    if (hasKeys) {
        painter->setPen(colour(keysColour));
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(QRectF(row).adjusted(0.5, 0.5, -0.5, -0.5));
    }
    painter->restore();
}

void TreeDelegate::paintUpgrade(QPainter& painter, const QRect& row, const Item& item) const
{
    const bool good = item.hasSucceeded();
    if (good || item.hasTimedOut()) {
        painter.fillRect(row, colour(good ? goodColour : badColour));
    } else if (item.isUpgrading()) {
        const int done = Item::UpgradeAllowance - item.secondsLeft();
        QRect bar = row;
        bar.setWidth(row.width() * done / Item::UpgradeAllowance);
        painter.fillRect(bar, colour(goodColour));
    }
}

void TreeDelegate::paintIcons(QPainter& painter, const RowZones& zones, const Item& item,
                              bool active) const
{
    paintIcon(painter, zones.leading().rect,
              item.isFault() ? QStringLiteral("warning") : iconName(zones.leading().action));
    for (const RowZones::Zone& zone : zones.rightIcons()) {
        // Restart icons on every row at once would be noise; they show on the row in use.
        if (active || zone.action == Action::NewFirmware)
            paintIcon(painter, zone.rect, iconName(zone.action));
    }
    if (!zones.selectOrder().isEmpty())
        paintIcon(painter, zones.selectOrder(), QStringLiteral("selectorder"));
    if (!zones.correlation().isEmpty())
        paintIcon(painter, zones.correlation(), QStringLiteral("correlation"));
}

void TreeDelegate::paintIcon(QPainter& painter, const QRect& rect, const QString& name) const
{
    QIcon& icon = m_icons[name];
    if (icon.isNull())
        icon = QIcon(QStringLiteral(":/spark/img/") + name + QStringLiteral(".svg"));
    icon.paint(&painter, rect);
}

void TreeDelegate::paintText(QPainter& painter, const RowZones& zones, const Item& item,
                             bool active) const
{
    if (zones.content().isEmpty()) {
        const int width = drawLine(painter, zones.title(), textColour, item.displayText());
        paintBeside(painter, zones, item, width, active);
        return;
    }
    drawLine(painter, zones.title(), dimTextColour, item.title());
    drawLine(painter, zones.content(), textColour, item.content());
}

/// At a box's right end what goes on with it; returns the room that this takes.
int TreeDelegate::paintActivity(QPainter& painter, const QRect& rect, const Item& item)
{
    if (item.activity().isEmpty())
        return 0;
    return drawLine(painter, rect, textColour, item.activity(), Qt::AlignRight) + besideGap;
}

/// A box's own name behind its address; at a group's right end how many of its boxes are there.
void TreeDelegate::paintBeside(QPainter& painter, const RowZones& zones, const Item& item,
                               int titleWidth, bool active) const
{
    const int begin = item.isDevice() ? qMax(titleWidth, m_widestAddress) : titleWidth;
    const QRect rest = zones.title().adjusted(begin + besideGap, 0, 0, 0);
    // Dim on a lit row would be hard to read.
    const char* const shade = active ? textColour : dimTextColour;
    if (rest.width() < narrowestBeside)
        return;
    if (item.isDevice())
        drawLine(painter, rest.adjusted(0, 0, -paintActivity(painter, rest, item), 0), shade,
                 item.name());
    else if (item.isGroup())
        drawLine(painter, rest.adjusted(0, 0, -besideGap, 0), shade, TreeModel::groupCount(item),
                 Qt::AlignRight);
}

bool TreeDelegate::editorEvent(QEvent* event, QAbstractItemModel*, const QStyleOptionViewItem&,
                               const QModelIndex& index)
{
    if (event->type() != QEvent::MouseButtonRelease)
        return false;
    const auto* mouse = static_cast<QMouseEvent*>(event);
    if (mouse->button() != Qt::LeftButton)
        return false;
    const Action zone = zones(index).at(mouse->pos());
    emit S_ActionClicked(isOwnAction(zone) ? zone : Action::Select, TreeModel::itemAt(index));
    return false;
}

// SPDX-License-Identifier: MIT
#include "ui/recordings/list_delegate.h"

#include "device/item.h"
#include "ui/recordings/file_type.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

namespace
{

// Eight digits are alpha first.
const char* const rowColour = "#303030";
const char* const selectedColour = "#32ffffff";
const char* const hoverColour = "#656565";
const char* const markerColour = "#ffffff";
const char* const textColour = "#e8eaed";

constexpr int cornerRadius = 6;
constexpr int zoneSize = 20;
constexpr int margin = 4;
constexpr int nameWidth = 116; ///< what a row is wider than its icon

QColor colour(const char* name)
{
    return QColor(QLatin1String(name));
}

/// Whether a name may go on in the next line before its character at `place`: behind a word, and
/// where a date or a number begins.
bool maySplit(const QString& name, int place)
{
    const QChar before = name.at(place - 1);
    const QChar after = name.at(place);
    return !before.isLetterOrNumber() || after.isSpace() || (before.isLetter() && after.isDigit());
}

/// How many of the `fitting` first characters of a name its first line gets: a whole number of
/// words, if the rest then fits as well.
template <class Fits> int breakOf(const QString& name, int fitting, Fits fits)
{
    if (fitting >= name.size())
        return fitting;
    for (int place = fitting; place > 0; --place) {
        if (!fits(name.mid(place)))
            break;
        if (maySplit(name, place))
            return place;
    }
    return fitting;
}

} // namespace

ListDelegate::ListDelegate(QObject* parent) : QStyledItemDelegate(parent)
{
    m_clickTimer.setSingleShot(true);
    m_clickTimer.setInterval(QApplication::doubleClickInterval());
    connect(&m_clickTimer, &QTimer::timeout, this, &ListDelegate::sendSingleClick);
}

Item* ListDelegate::entryAt(const QModelIndex& index)
{
    return qobject_cast<Item*>(index.data(EntryRole).value<QObject*>());
}

QRect ListDelegate::downloadZone(const QRect& row)
{
    return {row.left() + margin, row.top() + margin, zoneSize, zoneSize};
}

QRect ListDelegate::deleteZone(const QRect& row)
{
    return {row.right() - margin - zoneSize + 1, row.top() + margin, zoneSize, zoneSize};
}

QSize ListDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const
{
    // The icon stands in the middle, with two lines of text below it and as much room above.
    return {option.decorationSize.width() + nameWidth,
            option.decorationSize.height() + 4 * option.fontMetrics.height() + 2 * margin};
}

void ListDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const
{
    const Item* entry = entryAt(index);
    const QRect row = option.rect;
    const bool hovered = option.state & QStyle::State_MouseOver;
    painter->save();
    painter->setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter->setFont(QApplication::font());
    QPainterPath shape;
    shape.addRoundedRect(row, cornerRadius, cornerRadius);
    painter->setClipPath(shape);
    painter->fillRect(row, colour(rowColour));
    if (hovered)
        painter->fillRect(row, colour(hoverColour));
    if (option.state & QStyle::State_Selected)
        painter->fillRect(row, colour(selectedColour));

    const QString path = entry ? entry->filePath() : QString();
    const bool playing = entry && entry->isPlaying();
    const QSize icon = option.decorationSize;
    const QRect iconRect(row.left() + (row.width() - icon.width()) / 2,
                         row.top() + (row.height() - icon.height()) / 2, icon.width(),
                         icon.height());
    paintIcon(*painter, iconRect, fileTypeIcon(fileType(path), playing));

    painter->setPen(colour(textColour));
    paintName(*painter,
              {row.left() + margin, iconRect.bottom() + 1, row.width() - 2 * margin,
               row.bottom() - iconRect.bottom()},
              index.data(Qt::DisplayRole).toString());

    if (hovered && entry) {
        paintIcon(*painter, downloadZone(row), QStringLiteral(":/spark/img/download.svg"));
        paintIcon(*painter, deleteZone(row), QStringLiteral(":/spark/img/delete.svg"));
    }
    // Whoever walks the grid with the keyboard must see where they are.
    if (option.state & QStyle::State_HasFocus)
        paintFrame(*painter, row, 1);
    if (entry)
        paintDropMarker(*painter, row, entry->dropPosition());
    painter->restore();
}

void ListDelegate::paintFrame(QPainter& painter, const QRect& row, int penWidth)
{
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(colour(markerColour), penWidth));
    painter.drawRoundedRect(QRectF(row).adjusted(1, 1, -1, -1), cornerRadius, cornerRadius);
}

void ListDelegate::paintIcon(QPainter& painter, const QRect& rect, const QString& path) const
{
    QIcon& icon = m_icons[path];
    if (icon.isNull())
        icon = QIcon(path);
    icon.paint(&painter, rect);
}

/// A recording's name tells the time to the second: two lines show it whole.
void ListDelegate::paintName(QPainter& painter, const QRect& rect, const QString& name)
{
    const QFontMetrics metrics = painter.fontMetrics();
    // Somebody may have made it of thousands of characters that have no width.
    constexpr int mostShown = 256;
    QString text = name.simplified();
    if (text.size() > mostShown)
        text = text.left(mostShown / 2) + QChar(0x2026) + text.right(mostShown / 2);
    int fitting = 0;
    for (int more = mostShown; more > 0; more /= 2) {
        const int longer = fitting + more;
        if (longer <= text.size() && metrics.horizontalAdvance(text, longer) <= rect.width())
            fitting = longer;
    }
    fitting = breakOf(text, fitting, [&](const QString& rest) {
        return metrics.horizontalAdvance(rest) <= rect.width();
    });
    QRect line(rect.left(), rect.top(), rect.width(), metrics.height());
    painter.drawText(line, Qt::AlignCenter | Qt::TextSingleLine, text.left(fitting).trimmed());
    line.moveTop(line.top() + metrics.height());
    painter.drawText(
        line, Qt::AlignCenter | Qt::TextSingleLine,
        metrics.elidedText(text.mid(fitting).trimmed(), Qt::ElideMiddle, rect.width()));
}

/// 1: a frame around the row; 2 and 3: a bar above and below it.
void ListDelegate::paintDropMarker(QPainter& painter, const QRect& row, int position)
{
    if (position == 1)
        paintFrame(painter, row, 2);
    else if (position == 2)
        painter.fillRect(row.left(), row.top(), row.width(), 3, colour(markerColour));
    else if (position == 3)
        painter.fillRect(row.left(), row.bottom() - 2, row.width(), 3, colour(markerColour));
}

bool ListDelegate::editorEvent(QEvent* event, QAbstractItemModel*,
                               const QStyleOptionViewItem& option, const QModelIndex& index)
{
    const bool released = event->type() == QEvent::MouseButtonRelease;
    if (!released && event->type() != QEvent::MouseButtonDblClick)
        return false;
    const auto* mouse = static_cast<QMouseEvent*>(event);
    if (mouse->button() != Qt::LeftButton)
        return false;
    if (!released) {
        // The release that follows belongs to this double click.
        m_clicks = 2;
        emit S_ActionClicked(Action::PlayRecording, index);
    } else if (downloadZone(option.rect).contains(mouse->pos())) {
        emit S_ActionClicked(Action::Download, index);
    } else if (deleteZone(option.rect).contains(mouse->pos())) {
        emit S_ActionClicked(Action::Delete, index);
    } else {
        countClick(index);
    }
    return false;
}

void ListDelegate::countClick(const QModelIndex& index)
{
    if (m_clicked != index)
        m_clicks = 0;
    m_clicked = index;
    ++m_clicks;
    m_clickTimer.start();
}

void ListDelegate::sendSingleClick()
{
    const bool single = m_clicks == 1;
    m_clicks = 0;
    if (single && m_clicked.isValid())
        emit S_ActionClicked(Action::Select, m_clicked);
}

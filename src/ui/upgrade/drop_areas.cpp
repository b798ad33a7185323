// SPDX-License-Identifier: MIT
#include "ui/upgrade/drop_areas.h"

#include "device/tree_view.h"

#include <QDropEvent>
#include <QMimeData>
#include <QStyle>
#include <QUrl>

DropAreas::DropAreas(QVector<QWidget*> areas, TreeView* deviceView, QObject* parent)
    : QObject(parent), m_areas(std::move(areas)), m_deviceView(deviceView)
{
    for (QWidget* area : m_areas) {
        area->setAcceptDrops(true);
        area->setProperty("dragOver", false); // the frame's room is there from the start
    }
}

bool DropAreas::contains(const QObject* watched) const
{
    for (const QWidget* area : m_areas) {
        if (area == watched)
            return true;
    }
    return false;
}

bool DropAreas::filter(QObject* watched, QEvent* event)
{
    auto* area = static_cast<QWidget*>(watched);
    switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove: {
        // A move event is a drop event too, and only an accepted one keeps the cursor right.
        auto* drag = static_cast<QDropEvent*>(event);
        if (!drag->mimeData()->hasUrls())
            return false;
        drag->setDropAction(Qt::CopyAction);
        drag->accept();
        setHighlight(area, true);
        hover(area, drag->pos());
        return true;
    }
    case QEvent::DragLeave:
        setHighlight(area, false);
        m_deviceView->dragEnds();
        return false;
    case QEvent::Drop: {
        auto* drop = static_cast<QDropEvent*>(event);
        setHighlight(area, false);
        m_deviceView->dragEnds();
        if (!drop->mimeData()->hasUrls())
            return false;
        drop->setDropAction(Qt::CopyAction);
        drop->accept();
        QStringList files;
        const QList<QUrl> urls = drop->mimeData()->urls();
        for (const QUrl& url : urls) {
            if (url.isLocalFile())
                files << url.toLocalFile();
        }
        emit filesDropped(files);
        return true;
    }
    default:
        return false;
    }
}

void DropAreas::hover(const QWidget* area, const QPoint& pos)
{
    if (area->isAncestorOf(m_deviceView))
        m_deviceView->dragHovers(m_deviceView->viewport()->mapFrom(area, pos));
}

void DropAreas::setHighlight(QWidget* area, bool on)
{
    if (area->property("dragOver").toBool() == on)
        return;
    area->setProperty("dragOver", on);
    // A style sheet looks at a property only when told to.
    area->style()->unpolish(area);
    area->style()->polish(area);
}

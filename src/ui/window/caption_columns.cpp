// SPDX-License-Identifier: MIT
#include "ui/window/caption_columns.h"

#include <QEvent>
#include <QGridLayout>
#include <QLabel>

namespace
{

int captionWidth(const QGridLayout& grid)
{
    int width = 0;
    for (int row = 0; row < grid.rowCount(); ++row) {
        QLayoutItem* item = grid.itemAtPosition(row, 0);
        // What spans all columns is no caption.
        if (item && qobject_cast<QLabel*>(item->widget()))
            width = qMax(width, item->sizeHint().width());
    }
    return width;
}

} // namespace

CaptionColumns::CaptionColumns(QVector<QGridLayout*> grids, QObject* parent)
    : QObject(parent), m_grids(std::move(grids))
{
    for (const QGridLayout* grid : m_grids)
        grid->parentWidget()->installEventFilter(this);
    align();
}

bool CaptionColumns::eventFilter(QObject* watched, QEvent* event)
{
    // Another language, or another mark beside a caption.
    if (event->type() == QEvent::LayoutRequest)
        align();
    return QObject::eventFilter(watched, event);
}

void CaptionColumns::align()
{
    int width = 0;
    for (const QGridLayout* grid : m_grids)
        width = qMax(width, captionWidth(*grid));
    for (QGridLayout* grid : m_grids) {
        if (grid->columnMinimumWidth(0) != width)
            grid->setColumnMinimumWidth(0, width);
    }
}

// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QVector>

class QWidget;
class TreeView;

/// The areas of the window on which files may be dropped: the highlight while a file is over one,
/// and the list of what was dropped.
class DropAreas : public QObject
{
    Q_OBJECT

public:
    DropAreas(QVector<QWidget*> areas, TreeView* deviceView, QObject* parent);

    const QVector<QWidget*>& areas() const { return m_areas; }
    bool contains(const QObject* watched) const;
    /// For the event filter: true when `event` needs no further handling.
    bool filter(QObject* watched, QEvent* event);

signals:
    /// Local files were dropped.
    void filesDropped(const QStringList& files);

private:
    void setHighlight(QWidget* area, bool on);
    void hover(const QWidget* area, const QPoint& pos);

    const QVector<QWidget*> m_areas;
    TreeView* m_deviceView;
};

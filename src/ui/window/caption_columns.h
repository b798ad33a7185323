// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QVector>

class QGridLayout;

/// Keeps the first columns of several grids, the captions, as wide as the widest of them: areas
/// that stand above each other have their fields in one line, in every language.
class CaptionColumns : public QObject
{
    Q_OBJECT

public:
    CaptionColumns(QVector<QGridLayout*> grids, QObject* parent);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void align();

    const QVector<QGridLayout*> m_grids;
};

// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>
#include <QObject>

/// The computer's own addresses in the device area, kept current.
class LocalAddresses : public QObject
{
    Q_OBJECT

public:
    explicit LocalAddresses(QLabel* label);

    /// Shows them, and again every five seconds.
    void refresh();

private:
    QLabel* m_label;
};

// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>

class Orders;
class QWidget;
class messageBox;

/// Lets the window close only when no box is in the midst of a list of commands: cut short, half of
/// it would stay in the box without a word.
class Closing : public QObject
{
    Q_OBJECT

public:
    /// Both outlive this object.
    Closing(const Orders& orders, QWidget& window);

    /// False while a list is being sent, which takes seconds: the window then closes by itself,
    /// once it has ended and its outcome has been read.
    bool mayClose();

private:
    void tryAgain();

    const Orders& m_orders;
    QWidget& m_window;
    QTimer m_again; ///< runs while the window is to close
    QPointer<messageBox> m_notice;
};

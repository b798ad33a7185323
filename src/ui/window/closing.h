// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <functional>

class QWidget;
class messageBox;

/// Lets the window close only when no command to a box is under way or about to be sent: cut short,
/// half of a list would stay in the box without a word.
class Closing : public QObject
{
    Q_OBJECT

public:
    /// `window` outlives this object, and so does what `isUnderWay` looks at.
    Closing(std::function<bool()> isUnderWay, QWidget& window);

    /// False while a list is being sent, which takes seconds: the window then closes by itself,
    /// once it has ended and its outcome has been read.
    bool mayClose();

private:
    void tryAgain();

    const std::function<bool()> m_isUnderWay;
    QWidget& m_window;
    QTimer m_again; ///< runs while the window is to close
    QPointer<messageBox> m_notice;
};

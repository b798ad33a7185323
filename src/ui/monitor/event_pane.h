// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QStringList>
#include <QTimer>

class EventSocket;
class QPlainTextEdit;

/// Shows a feed's messages in its pane, the newest at the end. Keeps a bounded number of lines, and
/// adds what arrives in one go a few times a second: a box may send thousands.
class EventPane : public QObject
{
    Q_OBJECT

public:
    static constexpr int LineLimit = 5000;
    /// The longest message shown whole, in characters.
    static constexpr int LengthLimit = 4000;

    EventPane(EventSocket& socket, QPlainTextEdit* pane);

private:
    void clear();
    void add(const QString& line);
    void flush();

    QPlainTextEdit* m_pane;
    QStringList m_waiting;
    QTimer m_flush;
};

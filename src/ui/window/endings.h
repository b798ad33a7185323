// SPDX-License-Identifier: MIT
#pragma once

#include <QDeadlineTimer>
#include <QObject>
#include <QTimer>

#include <functional>

class QSessionManager;
class QWidget;

/// All ends of the program that nobody is asked about: a signal, the end of the session, a display
/// that has gone. In each, and when the window was closed, first what the next start has to know
/// goes to the disk, then child processes end and the log is written; the process has ended within
/// two seconds, whatever hangs.
class Endings : public QObject
{
    Q_OBJECT

public:
    struct Ways {
        /// Commands to a box are under way: they are given a moment.
        std::function<bool()> isUnderWay;
        /// The operator had better not end his session now; and a message that says so.
        std::function<bool()> shouldStay;
        std::function<void()> tellToStay;
        /// Writes what the next start has to know, in so many milliseconds at most.
        std::function<void(int ms)> keep;
    };

    /// `window` outlives this object, and so does what `ways` look at.
    Endings(Ways ways, QWidget& window);
    ~Endings() override;

    /// From now on the ends of the process are this object's; for the program's one window.
    void watch();
    /// Nobody is to be asked any more whether the window may close.
    bool mustEnd() const { return m_isEnding || !m_session.hasExpired(); }

private:
    void end();
    void endWhenQuiet();
    void endSession(QSessionManager& session);
    void finish();
    static void processExits();

    const Ways m_ways;
    QWidget& m_window;
    QTimer m_again; ///< runs while commands are under way
    QDeadlineTimer m_patience;
    QDeadlineTimer m_session; ///< so long the end of the session may take, if it comes
    bool m_isEnding = false;
    bool m_isFinished = false;
};

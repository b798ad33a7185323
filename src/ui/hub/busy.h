// SPDX-License-Identifier: MIT
#pragma once

#include <QPointer>
#include <QVector>
#include <QWidget>

/// A run of blocking commands that an area of the window is in the middle of: its widgets are
/// disabled and its indicator moves. A second run cannot begin meanwhile.
class Busy
{
public:
    /// `indicator` shows while a run goes on; `widgets` are disabled meanwhile.
    Busy(QWidget* indicator, QVector<QWidget*> widgets);

    bool isRunning() const { return m_running; }

    /// Begins a run and ends it when it goes out of scope. False when one goes on already.
    class Run
    {
    public:
        explicit Run(Busy& busy);
        ~Run();
        Run(const Run&) = delete;
        Run& operator=(const Run&) = delete;
        explicit operator bool() const { return m_busy != nullptr; }
        /// Ends the run early, e.g. before the message about its outcome.
        void end();

    private:
        Busy* m_busy;
    };

private:
    void setRunning(bool running);

    QWidget* m_indicator;
    const QVector<QWidget*> m_widgets;
    QPointer<QWidget> m_focus;
    bool m_running = false;
};

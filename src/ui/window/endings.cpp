// SPDX-License-Identifier: MIT
#include "ui/window/endings.h"

#include "common/command_runner.h"
#include "common/operation_log.h"
#include "common/platform.h"
#include "ui/window/start_up.h"

#include <QApplication>
#include <QSessionManager>
#include <QThread>
#include <QWidget>

#include <cstdlib>
#include <mutex>
#include <utility>

namespace
{

// Together less than two seconds, with StartUp::limitEnd.
constexpr int commandsMs = 800;
constexpr int keepMs = 300;
constexpr int logMs = 150;
/// From a signal to the end of a process whose window's thread hangs.
constexpr int signalMs = 1900;
constexpr int lookMs = 20;
/// Between the word that the session ends and its end; it may still be called off.
constexpr int sessionMs = 15000;

std::mutex mutex;
Endings* watching = nullptr; // guarded by mutex

} // namespace

Endings::Endings(Ways ways, QWidget& window)
    : QObject(nullptr), m_ways(std::move(ways)), m_window(window)
{
    m_again.setInterval(lookMs);
    connect(&m_again, &QTimer::timeout, this, &Endings::endWhenQuiet);
}

Endings::~Endings()
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (watching == this)
        watching = nullptr;
}

void Endings::watch()
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        watching = this;
    }
    Platform::watchEndSignals([] {
        StartUp::limitEnd(EXIT_FAILURE, signalMs);
        const std::lock_guard<std::mutex> lock(mutex);
        if (watching)
            QMetaObject::invokeMethod(watching, &Endings::end, Qt::QueuedConnection);
    });
    // Qt would close the window, which asks questions that nobody is there to answer.
    QGuiApplication::setFallbackSessionManagementEnabled(false);
    connect(qApp, &QGuiApplication::commitDataRequest, this, &Endings::endSession,
            Qt::DirectConnection);
    connect(qApp, &QCoreApplication::aboutToQuit, this, &Endings::finish);
    // The window system's library ends the process when the display has gone. What is made once, on
    // first use, is made now: later it would be gone before.
    m_ways.keep(0);
    CommandRunner::endAll();
    flushLog(0);
    std::atexit(&Endings::processExits);
}

void Endings::end()
{
    m_isEnding = true;
    m_patience.setRemainingTime(commandsMs);
    m_again.start();
    endWhenQuiet();
}

/// Half of a list of commands would stay in the box without a word.
void Endings::endWhenQuiet()
{
    if (m_ways.isUnderWay() && !m_patience.hasExpired())
        return;
    m_again.stop();
    // Whoever waits for an answer sees that none comes, which is not a no.
    m_window.hide();
    QCoreApplication::exit(0);
}

void Endings::endSession(QSessionManager& session)
{
    if (m_ways.shouldStay() && session.allowsInteraction()) {
        session.release();
        session.cancel();
        m_ways.tellToStay();
        return;
    }
    m_session.setRemainingTime(sessionMs);
    m_ways.keep(keepMs);
    flushLog(logMs);
}

void Endings::finish()
{
    if (std::exchange(m_isFinished, true))
        return;
    m_ways.keep(keepMs);
    CommandRunner::endAll();
    flushLog(logMs);
}

/// Everything stands as it stood when the display went: nothing of the window may be touched.
void Endings::processExits()
{
    Endings* const self = watching;
    if (!self)
        return;
    StartUp::limitEnd(EXIT_FAILURE);
    if (QThread::currentThread() == self->thread())
        self->finish();
    std::_Exit(EXIT_FAILURE);
}

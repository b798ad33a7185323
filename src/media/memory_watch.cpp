// SPDX-License-Identifier: MIT
#include "media/memory_watch.h"

#include "common/limits.h"
#include "common/platform.h"
#include "crash/crash_handler.h"

extern "C" {
#include <libavutil/mem.h>
}

#include <QCoreApplication>

#include <chrono>

namespace
{

/// Memory is filled with some hundred MB in so many milliseconds.
constexpr int paceMs = 20;

} // namespace

MemoryWatch::MemoryWatch(qint64 limit) : m_limit(limit), m_thread(&MemoryWatch::look, this) {}

MemoryWatch::~MemoryWatch()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isEnding = true;
    }
    m_wake.notify_all();
    m_thread.join();
    if (m_isOver)
        av_max_alloc(Limits::MediaBlockBytes);
}

void MemoryWatch::look()
{
    CrashHandler::coverThread();
    const qint64 process = QCoreApplication::applicationPid();
    const qint64 before = Platform::residentBytes(process);
    std::unique_lock<std::mutex> lock(m_mutex);
    while (
        !m_wake.wait_for(lock, std::chrono::milliseconds(paceMs), [this] { return m_isEnding; })) {
        m_isOver = m_isOver || Platform::residentBytes(process) - before > m_limit;
        // Again and again: whoever had a limit of his own restores the usual one.
        if (m_isOver)
            av_max_alloc(Limits::MediaSessionBytes);
    }
}

// SPDX-License-Identifier: MIT
#include "ui/monitor/event_pane.h"

#include "media/event_sockets.h"

#include <QPlainTextEdit>

namespace
{

constexpr int flushMs = 100;

} // namespace

EventPane::EventPane(EventSocket& socket, QPlainTextEdit* pane) : QObject(pane), m_pane(pane)
{
    pane->setMaximumBlockCount(LineLimit);
    m_flush.setSingleShot(true);
    m_flush.setInterval(flushMs);
    connect(&m_flush, &QTimer::timeout, this, &EventPane::flush);
    connect(&socket, &EventSocket::connected, this, &EventPane::clear);
    connect(&socket, &EventSocket::message, this, &EventPane::add);
    connect(&socket, &EventSocket::reconnecting, this,
            [this](const QString& url) { add(tr("尝试重新连接 ") + url); });
}

void EventPane::clear()
{
    m_waiting.clear();
    m_pane->clear();
}

void EventPane::add(const QString& line)
{
    if (m_waiting.size() >= LineLimit)
        m_waiting.removeFirst();
    m_waiting << (line.size() > LengthLimit ? line.left(LengthLimit) + QChar(0x2026) : line);
    if (!m_flush.isActive())
        m_flush.start();
}

void EventPane::flush()
{
    m_pane->appendPlainText(m_waiting.join(QLatin1Char('\n')));
    m_waiting.clear();
}

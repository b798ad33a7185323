// SPDX-License-Identifier: MIT
#include "simulator/srt_listener.h"

#include "simulator/test_picture.h"

namespace sim
{
namespace
{
constexpr int listenAgainMs = 200;
} // namespace

SrtListener::SrtListener(QObject* parent) : QObject(parent), m_again(this)
{
    m_again.setSingleShot(true);
    m_again.setInterval(listenAgainMs);
    connect(&m_again, &QTimer::timeout, this, &SrtListener::listen);
}

void SrtListener::start(const QString& source, const QString& address, quint16 port)
{
    stop();
    m_arguments = QStringList{QStringLiteral("-nostdin"),
                              QStringLiteral("-analyzeduration"),
                              QStringLiteral("500000"),
                              QStringLiteral("-i"),
                              source,
                              QStringLiteral("-c"),
                              QStringLiteral("copy"),
                              QStringLiteral("-f"),
                              QStringLiteral("mpegts"),
                              QStringLiteral("srt://%1:%2?mode=listener").arg(address).arg(port)};
    listen();
}

void SrtListener::stop()
{
    m_again.stop();
    if (m_ffmpeg) {
        m_ffmpeg->disconnect(this);
        m_ffmpeg.reset();
    }
}

void SrtListener::listen()
{
    m_ffmpeg = std::make_unique<ChildProcess>();
    connect(m_ffmpeg.get(), &QProcess::stateChanged, this, [this](QProcess::ProcessState state) {
        if (state == QProcess::NotRunning)
            m_again.start();
    });
    startFfmpeg(m_ffmpeg.get(), m_arguments);
}

} // namespace sim

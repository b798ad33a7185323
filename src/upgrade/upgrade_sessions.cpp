// SPDX-License-Identifier: MIT
#include "upgrade/upgrade_sessions.h"

namespace
{

constexpr int savePauseMs = 200;

} // namespace

UpgradeSessions::UpgradeSessions() : QObject(nullptr)
{
    m_save.setInterval(savePauseMs);
    m_save.setSingleShot(true);
    connect(&m_save, &QTimer::timeout, this, [this] {
        save();
        emit changed();
    });
    connect(&m_journal, &UpgradeJournal::loaded, this, &UpgradeSessions::adopt);
}

UpgradeSessions::~UpgradeSessions()
{
    save();
}

UpgradeSession& UpgradeSessions::add(const QString& package, const QString& md5)
{
    auto session = std::make_unique<UpgradeSession>();
    session->started = QDateTime::currentDateTime();
    session->package = package;
    session->md5 = md5;
    m_sessions.push_back(std::move(session));
    return *m_sessions.back();
}

void UpgradeSessions::load()
{
    m_journal.load();
}

void UpgradeSessions::adopt(const QVector<UpgradeSession>& found)
{
    QVector<UpgradeSession*> sessions;
    for (const UpgradeSession& session : found) {
        // They come before what this run has begun meanwhile.
        m_sessions.insert(m_sessions.begin(), std::make_unique<UpgradeSession>(session));
        sessions << m_sessions.front().get();
    }
    emit adopted(sessions);
}

void UpgradeSessions::touch(UpgradeSession& session)
{
    if (!m_touched.contains(&session))
        m_touched << &session;
    if (!m_save.isActive())
        m_save.start();
}

void UpgradeSessions::save()
{
    for (const UpgradeSession* session : qAsConst(m_touched))
        m_journal.save(*session, !session->isSettled() || session->hasWaitingSettings());
    m_touched.clear();
}

QVector<const UpgradeSession*> UpgradeSessions::all() const
{
    QVector<const UpgradeSession*> all;
    for (const auto& session : m_sessions)
        all << session.get();
    return all;
}

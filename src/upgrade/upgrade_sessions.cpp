// SPDX-License-Identifier: MIT
#include "upgrade/upgrade_sessions.h"

#include <algorithm>

namespace
{

constexpr int savePauseMs = 200;
constexpr int retryPauseMs = 10000;

bool isOpen(const UpgradeSession& session)
{
    return !session.isSettled() || session.hasWaitingSettings();
}

} // namespace

UpgradeSessions::UpgradeSessions(UpgradeStore& store, const UpgradeClock& clock)
    : m_store(store), m_clock(clock)
{
}

UpgradeSessions::~UpgradeSessions()
{
    saveAll();
}

void UpgradeSessions::saveAll()
{
    for (const auto& entry : m_entries) {
        if (entry->isTouched && entry->isListed)
            m_store.save(entry->session, isOpen(entry->session), [](bool) {});
    }
}

UpgradeSessions::Entry& UpgradeSessions::add(UpgradeSession session, bool listed)
{
    auto entry = std::make_unique<Entry>();
    entry->session = std::move(session);
    entry->isListed = listed;
    m_entries.push_back(std::move(entry));
    return *m_entries.back();
}

UpgradeSession& UpgradeSessions::add(const QString& package, const QString& md5)
{
    UpgradeSession session;
    session.started = m_clock.date();
    // The time names its files: two of the same moment, or of a clock that was set back, are two.
    const auto isTaken = [this, &session] {
        return std::any_of(m_entries.begin(), m_entries.end(), [&session](const auto& entry) {
            return entry->session.baseName() == session.baseName();
        });
    };
    while (isTaken())
        session.started = session.started.addMSecs(1);
    session.package = package;
    session.md5 = md5;
    return add(session, true).session;
}

UpgradeSession& UpgradeSessions::addUnlisted()
{
    UpgradeSession session;
    session.started = m_clock.date();
    return add(session, false).session;
}

QVector<UpgradeSession*> UpgradeSessions::adopt(const QVector<UpgradeSession>& found)
{
    QVector<UpgradeSession*> sessions;
    for (const UpgradeSession& session : found)
        sessions << &add(session, true).session;
    std::rotate(m_entries.begin(), m_entries.end() - found.size(), m_entries.end());
    return sessions;
}

UpgradeSessions::Entry& UpgradeSessions::entryOf(const UpgradeSession& session)
{
    return **std::find_if(m_entries.begin(), m_entries.end(),
                          [&session](const auto& entry) { return &entry->session == &session; });
}

void UpgradeSessions::touch(const UpgradeSession& session)
{
    Entry& entry = entryOf(session);
    if (!entry.isTouched)
        entry.touchedAt = m_clock.ms();
    entry.isTouched = true;
}

void UpgradeSessions::keep(const UpgradeSession& session, Then then)
{
    touch(session);
    Entry& entry = entryOf(session);
    entry.waiting.push_back(std::move(then));
    if (entry.isListed)
        request(entry);
}

void UpgradeSessions::whenKept(const UpgradeSession& session, std::function<void()> then)
{
    touch(session);
    entryOf(session).waiting.push_back([this, &session, then = std::move(then)](bool kept) {
        if (kept)
            then();
        else
            whenKept(session, then);
    });
}

bool UpgradeSessions::tick()
{
    bool any = false;
    // By index: whoever is told may begin another batch.
    for (size_t n = 0; n < m_entries.size(); ++n) {
        Entry& entry = *m_entries[n];
        if (!entry.isListed) {
            entry.saving = std::move(entry.waiting);
            saved(entry, true);
        } else if (entry.isTouched && !isRequested(entry) &&
                   m_clock.ms() - entry.touchedAt >= savePauseMs) {
            request(entry);
            any = true;
        }
    }
    return any;
}

bool UpgradeSessions::isRequested(const Entry& entry) const
{
    return std::find(m_requested.begin(), m_requested.end(), &entry) != m_requested.end();
}

/// What has changed in the others goes to disk before it: a batch may have begun because of what
/// the operator said of the one before, and nobody may find the one without the other.
void UpgradeSessions::request(Entry& entry)
{
    m_requested.erase(std::remove(m_requested.begin(), m_requested.end(), &entry),
                      m_requested.end());
    for (const auto& other : m_entries) {
        if (other.get() != &entry && other->isListed && other->isTouched && !isRequested(*other))
            m_requested.push_back(other.get());
    }
    m_requested.push_back(&entry);
    saveNext();
}

void UpgradeSessions::saveNext()
{
    if (m_isSaving || m_requested.empty())
        return;
    Entry& next = *m_requested.front();
    m_requested.erase(m_requested.begin());
    save(next);
}

void UpgradeSessions::save(Entry& entry)
{
    entry.isTouched = false;
    m_isSaving = true;
    entry.saving = std::move(entry.waiting);
    entry.waiting.clear();
    m_store.save(entry.session, isOpen(entry.session),
                 [this, &entry, alive = std::weak_ptr<int>(m_alive)](bool kept) {
                     if (alive.expired())
                         return;
                     m_isSaving = false;
                     if (!kept && !entry.isTouched) {
                         entry.isTouched = true;
                         entry.touchedAt = m_clock.ms() + retryPauseMs;
                     }
                     saved(entry, kept);
                     saveNext();
                 });
}

void UpgradeSessions::saved(Entry& entry, bool kept)
{
    const std::vector<Then> told = std::move(entry.saving);
    entry.saving.clear();
    for (const Then& then : told)
        then(kept);
}

QVector<const UpgradeSession*> UpgradeSessions::all() const
{
    QVector<const UpgradeSession*> all;
    for (const auto& entry : m_entries) {
        if (entry->isListed)
            all << &entry->session;
    }
    return all;
}

// SPDX-License-Identifier: MIT
#include "ping_round.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{

/// After a sleep of the computer or of ours, what was missed is made up for no longer than this.
constexpr double mostBehindMs = 30;
constexpr double backoff = 1.5;

} // namespace

PingRound::PingRound(std::size_t targets, int retries, double timeoutMs, double intervalMs)
    : m_retries(retries)
    , m_timeoutMs(timeoutMs)
    , m_intervalMs(intervalMs)
    , m_targets(targets)
    , m_open(targets)
{
    for (std::size_t n = 0; n < targets; ++n) {
        m_targets[n].timeoutMs = timeoutMs;
        m_waiting.push_back(n);
    }
}

void PingRound::dropAnswered()
{
    while (!m_waiting.empty() && m_targets[m_waiting.front()].state != State::Open)
        m_waiting.pop_front();
}

std::optional<std::size_t> PingRound::next(double now)
{
    dropAnswered();
    if (m_waiting.empty() || (m_nextAt && *m_nextAt > now))
        return std::nullopt;
    m_nextAt = std::max(m_nextAt.value_or(now), now - mostBehindMs) + m_intervalMs;
    const std::size_t number = m_waiting.front();
    m_waiting.pop_front();
    Target& target = m_targets[number];
    ++target.asked;
    m_deadlines.push({now + target.timeoutMs, number});
    target.timeoutMs *= backoff;
    return number;
}

bool PingRound::answer(std::size_t target)
{
    if (m_targets[target].state != State::Open)
        return false;
    m_targets[target].state = State::Alive;
    ++m_alive;
    --m_open;
    return true;
}

std::vector<std::size_t> PingRound::silent(double now)
{
    std::vector<std::size_t> given;
    while (!m_deadlines.empty() && m_deadlines.top().at <= now) {
        const std::size_t number = m_deadlines.top().target;
        m_deadlines.pop();
        Target& target = m_targets[number];
        if (target.state != State::Open)
            continue;
        if (target.asked <= m_retries) {
            m_waiting.push_back(number);
            continue;
        }
        target.state = State::Silent;
        --m_open;
        given.push_back(number);
    }
    return given;
}

double PingRound::longestPatience() const
{
    return m_timeoutMs * std::pow(backoff, m_retries);
}

double PingRound::pause(double now) const
{
    double at = std::numeric_limits<double>::max();
    if (!m_waiting.empty())
        at = m_nextAt.value_or(now);
    if (!m_deadlines.empty())
        at = std::min(at, m_deadlines.top().at);
    return at > now ? at - now : 0;
}

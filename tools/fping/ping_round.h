// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <queue>
#include <vector>

/// Who is to be asked when, in one round over many targets: the timing of a sweep, without a clock
/// and a network of its own. Times are in milliseconds of any steady clock that never runs back.
///
/// A target is waiting, then asked (once, and again `retries` times), and ends alive or silent,
/// once. As many targets as there are may be asked at the same time.
class PingRound
{
public:
    PingRound(std::size_t targets, int retries, double timeoutMs, double intervalMs);

    /// Whom to ask now, who counts as asked with that; nobody when nobody is due yet.
    std::optional<std::size_t> next(double now);
    /// `target` has answered. Whether that is news: neither a second answer nor one after the end.
    bool answer(std::size_t target);
    /// Those whose time has passed for the last time, each once.
    std::vector<std::size_t> silent(double now);

    /// How long an answer to what was asked last may take at most, whoever was asked.
    double longestPatience() const;
    /// How long nothing happens unless somebody answers; 0 when something is due.
    double pause(double now) const;
    bool isOver() const { return m_open == 0; }
    bool hasEverybodyAnswered() const { return m_alive == m_targets.size(); }

private:
    enum class State { Open, Alive, Silent };
    struct Target {
        State state = State::Open;
        int asked = 0;
        double timeoutMs = 0;
    };
    struct Deadline {
        double at;
        std::size_t target;
        bool operator<(const Deadline& other) const { return at > other.at; }
    };

    void dropAnswered();

    const int m_retries;
    const double m_timeoutMs;
    const double m_intervalMs;
    std::vector<Target> m_targets;
    std::deque<std::size_t> m_waiting;
    std::priority_queue<Deadline> m_deadlines;
    std::optional<double> m_nextAt;
    std::size_t m_open;
    std::size_t m_alive = 0;
};

// SPDX-License-Identifier: MIT
//
// A ping sweep for Windows, where nobody maintains one: the options and the output of fping, as far
// as Tarn Hub uses them. It asks through the system's own echo requests, which need no
// administrator's right, and prints each address as soon as it answers.

#include "fping_options.h"
#include "ping_round.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include <winsock2.h>
// They need the one before.
#include <iphlpapi.h>

#include <fcntl.h>
#include <icmpapi.h>
#include <io.h>

namespace
{

enum ExitCode { AllAnswer = 0, SomeSilent = 1, SomeUnknown = 2, WrongUsage = 3, NoSystem = 4 };

constexpr std::size_t dataBytes = 56;
/// The answer, what was sent, and what the system puts behind it.
constexpr std::size_t replyBytes = sizeof(ICMP_ECHO_REPLY) + dataBytes + 64;
/// The system's own patience is longer than ours, so that only ours counts.
constexpr double extraPatienceMs = 500;
constexpr double mostPatienceMs = 600000;
constexpr double longestPauseMs = 1000;

double now()
{
    using Milliseconds = std::chrono::duration<double, std::milli>;
    return Milliseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// One run over all targets, on one thread: answers come in while it sleeps.
class Sweep
{
public:
    explicit Sweep(const FpingOptions& options)
        : m_options(options)
        , m_round(options.targets.size(), options.retries, options.timeoutMs, options.intervalMs)
        , m_system(IcmpCreateFile())
        , m_patienceMs(DWORD(std::min(m_round.longestPatience() + extraPatienceMs, mostPatienceMs)))
    {
    }

    ExitCode run()
    {
        if (m_system == INVALID_HANDLE_VALUE)
            return NoSystem;
        while (!m_round.isOver()) {
            while (const auto target = m_round.next(now()))
                ask(*target);
            for (const std::size_t target : m_round.silent(now()))
                tellSilent(target);
            if (!m_round.isOver())
                SleepEx(DWORD(std::ceil(std::min(m_round.pause(now()), longestPauseMs))), TRUE);
        }
        if (m_cannotAsk)
            return NoSystem;
        if (!m_options.unknown.empty())
            return SomeUnknown;
        return m_round.hasEverybodyAnswered() ? AllAnswer : SomeSilent;
    }

private:
    /// Owned by the system until it has called `hear`, which it does for each one once.
    struct Question {
        Sweep* sweep;
        std::size_t target;
        std::array<char, dataBytes> data;
        alignas(8) std::array<char, replyBytes> reply;
    };

    void ask(std::size_t target)
    {
        auto question = std::make_unique<Question>();
        question->sweep = this;
        question->target = target;
        question->data.fill(0);
        const DWORD sent = IcmpSendEcho2(
            m_system, nullptr, reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&Sweep::hear)),
            question.get(), htonl(m_options.targets[target].address), question->data.data(),
            WORD(question->data.size()), nullptr, question->reply.data(),
            DWORD(question->reply.size()), m_patienceMs);
        const DWORD error = GetLastError();
        if (sent != 0 || error == ERROR_IO_PENDING)
            static_cast<void>(question.release());
        else
            tellError(target, error);
    }

    static void NTAPI hear(void* context, void*, ULONG)
    {
        const std::unique_ptr<Question> question(static_cast<Question*>(context));
        const DWORD answers =
            IcmpParseReplies(question->reply.data(), DWORD(question->reply.size()));
        const auto* reply = reinterpret_cast<const ICMP_ECHO_REPLY*>(question->reply.data());
        if (answers > 0 && reply->Status == IP_SUCCESS)
            question->sweep->take(question->target);
    }

    void take(std::size_t target)
    {
        if (m_round.answer(target))
            print(m_options.targets[target].text + (m_options.onlyAlive ? "\n" : " is alive\n"));
    }

    void tellSilent(std::size_t target) const
    {
        if (!m_options.onlyAlive)
            print(m_options.targets[target].text + " is unreachable\n");
    }

    /// Some addresses have no way to them; of a system that refuses everything nobody learns who is
    /// there.
    void tellError(std::size_t target, DWORD error)
    {
        std::fprintf(stderr, "%s: error while sending ping: %lu\n",
                     m_options.targets[target].text.c_str(), error);
        m_cannotAsk |= error == ERROR_ACCESS_DENIED || error == ERROR_NOT_ENOUGH_MEMORY ||
                       error == ERROR_INVALID_HANDLE;
    }

    /// Each line at once. Without a reader there is nothing left to do.
    static void print(const std::string& line)
    {
        if (std::fwrite(line.data(), 1, line.size(), stdout) != line.size() ||
            std::fflush(stdout) != 0)
            std::_Exit(NoSystem);
    }

    const FpingOptions& m_options;
    PingRound m_round;
    const HANDLE m_system;
    const DWORD m_patienceMs;
    bool m_cannotAsk = false;
};

} // namespace

int main(int argc, char* argv[])
{
    const FpingOptions options = readFpingOptions({argv + (argc > 0 ? 1 : 0), argv + argc});
    _setmode(_fileno(stdout), _O_BINARY);
    if (options.outcome == FpingOptions::Outcome::Version) {
        std::puts("fping: Tarn Hub's own, " TARN_VERSION);
        return AllAnswer;
    }
    if (options.outcome == FpingOptions::Outcome::Wrong) {
        std::fprintf(stderr,
                     "fping: %s\nUsage: fping [-a] [-r retries] [-t ms] [-i ms] address...\n"
                     "       fping [-a] [-r retries] [-t ms] [-i ms] -g a.b.c.d/n | first last\n",
                     options.problem.c_str());
        return WrongUsage;
    }
    for (const std::string& name : options.unknown)
        std::fprintf(stderr, "%s: no IPv4 address\n", name.c_str());
    const ExitCode code = Sweep(options).run();
    // Not by returning: the system may still hold questions that nobody waits for any more.
    std::fflush(stdout);
    std::_Exit(code);
}

// SPDX-License-Identifier: MIT
#include "simulator/sockets.h"

#include <QElapsedTimer>

#include <algorithm>
#include <cerrno>

#ifndef _WIN32
#include <fcntl.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#endif

namespace sim::sockets
{
namespace
{

void set(socket_t socket, int level, int option, int value)
{
    setsockopt(socket, level, option, reinterpret_cast<const char*>(&value), sizeof value);
}

#ifdef _WIN32

constexpr int lookMs = 20;

bool canTryLater()
{
    return WSAGetLastError() == WSAEWOULDBLOCK;
}

/// What lies next to be read; 0 for the end of it, below that for nothing yet or for an error.
int peek(socket_t socket)
{
    char any = 0;
    return recv(socket, &any, 1, MSG_PEEK);
}

/// The system tells nobody of an end that lies behind what was not read yet.
bool hasGone(socket_t socket)
{
    const int got = peek(socket);
    return got == 0 || (got < 0 && !canTryLater());
}

/// A shutdown by another thread; who has no more to say can still be written to.
bool isShutDown(socket_t socket)
{
    return peek(socket) < 0 && !canTryLater();
}

/// In pieces: a shutdown by another thread wakes nobody who waits already, and is no event.
bool pollOne(socket_t socket, short event, int ms)
{
    QElapsedTimer clock;
    clock.start();
    for (;;) {
        const int left = std::max(0, ms - int(clock.elapsed()));
        WSAPOLLFD watched{socket, event, 0};
        if (WSAPoll(&watched, 1, std::min(left, lookMs)) != 0 || isShutDown(socket))
            return true;
        if (left == 0)
            return false;
    }
}

#else

bool canTryLater()
{
    return errno == EAGAIN || errno == EINTR;
}

int pollOne(pollfd* watched, int ms)
{
    QElapsedTimer clock;
    clock.start();
    for (;;) {
        const int left = ms < 0 ? -1 : std::max(0, ms - int(clock.elapsed()));
        const int events = ::poll(watched, 1, left);
        if (events >= 0 || errno != EINTR)
            return events;
    }
}

#endif

ssize_t doneOf(ssize_t done)
{
    return done < 0 && canTryLater() ? 0 : done;
}

} // namespace

void prepare(socket_t socket)
{
    set(socket, IPPROTO_TCP, TCP_NODELAY, 1);
#ifdef _WIN32
    u_long on = 1;
    ioctlsocket(socket, long(FIONBIO), &on);
    SetHandleInformation(reinterpret_cast<HANDLE>(socket), HANDLE_FLAG_INHERIT, 0);
#else
    fcntl(socket, F_SETFD, FD_CLOEXEC);
    fcntl(socket, F_SETFL, fcntl(socket, F_GETFL) | O_NONBLOCK);
#endif
}

bool isReady(socket_t socket, Wish wish, int ms)
{
#ifdef _WIN32
    return pollOne(socket, wish == Wish::Read ? POLLRDNORM : POLLWRNORM, ms);
#else
    pollfd watched{socket, short(wish == Wish::Read ? POLLIN : POLLOUT), 0};
    return pollOne(&watched, ms) > 0;
#endif
}

bool staysOpen(socket_t socket, int ms)
{
#ifdef _WIN32
    QElapsedTimer clock;
    clock.start();
    while (!hasGone(socket)) {
        // Asked once: time passes between two looks, and a sleep of less than nothing is endless.
        const qint64 left = ms < 0 ? lookMs : ms - clock.elapsed();
        if (left <= 0)
            return true;
        Sleep(DWORD(std::min<qint64>(lookMs, left)));
    }
    return false;
#else
    pollfd watched{socket, POLLRDHUP, 0};
    return pollOne(&watched, ms) == 0;
#endif
}

ssize_t send(socket_t socket, const char* data, size_t size)
{
#ifdef _WIN32
    return doneOf(::send(socket, data, int(std::min<size_t>(size, 1 << 20)), 0));
#else
    return doneOf(::send(socket, data, size, MSG_NOSIGNAL));
#endif
}

ssize_t receive(socket_t socket, char* data, size_t size)
{
    return doneOf(::recv(socket, data, size, 0));
}

void shutDown(socket_t socket)
{
#ifdef _WIN32
    ::shutdown(socket, SD_BOTH);
#else
    ::shutdown(socket, SHUT_RDWR);
#endif
}

bool endListening(socket_t socket)
{
#ifdef _WIN32
    closesocket(socket);
    return true;
#else
    shutDown(socket);
    return false;
#endif
}

void close(socket_t socket, bool withReset)
{
    if (withReset) {
        const linger now{1, 0};
        setsockopt(socket, SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&now), sizeof now);
    } else {
        // First a shutdown: a child process started meanwhile may hold a copy of the socket.
        shutDown(socket);
    }
#ifdef _WIN32
    closesocket(socket);
#else
    ::close(socket);
#endif
}

void claimAddress(socket_t socket)
{
#ifdef _WIN32
    set(socket, SOL_SOCKET, SO_EXCLUSIVEADDRUSE, 1);
#else
    set(socket, SOL_SOCKET, SO_REUSEADDR, 1);
#endif
}

} // namespace sim::sockets

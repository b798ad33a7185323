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

int pollOne(WSAPOLLFD* watched, int ms)
{
    return WSAPoll(watched, 1, ms);
}

/// The system tells nobody of an end that lies behind what was not read yet.
bool hasGone(socket_t socket)
{
    char any = 0;
    const int got = recv(socket, &any, 1, MSG_PEEK);
    return got == 0 || (got < 0 && !canTryLater());
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
    WSAPOLLFD watched{socket, short(wish == Wish::Read ? POLLRDNORM : POLLWRNORM), 0};
#else
    pollfd watched{socket, short(wish == Wish::Read ? POLLIN : POLLOUT), 0};
#endif
    return pollOne(&watched, ms) > 0;
}

bool staysOpen(socket_t socket, int ms)
{
#ifdef _WIN32
    QElapsedTimer clock;
    clock.start();
    while (ms < 0 || clock.elapsed() < ms) {
        if (hasGone(socket))
            return false;
        Sleep(DWORD(ms < 0 ? lookMs : std::min<qint64>(lookMs, ms - clock.elapsed() + 1)));
    }
    return true;
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

// SPDX-License-Identifier: MIT
#include "simulator/http_connection.h"

#include <QElapsedTimer>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

namespace sim
{
namespace
{

constexpr int ioTimeoutMs = 10000; // a client that neither reads nor writes for so long is gone
thread_local HttpConnection* currentConnection = nullptr;

} // namespace

HttpConnection::HttpConnection(socket_t socket) : m_socket(socket)
{
    const int yes = 1;
    setsockopt(m_socket, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    fcntl(m_socket, F_SETFD, FD_CLOEXEC);
}

HttpConnection::~HttpConnection()
{
    close();
}

HttpConnection* HttpConnection::current()
{
    return currentConnection;
}

void HttpConnection::setCurrent(HttpConnection* connection)
{
    currentConnection = connection;
}

bool HttpConnection::wait(int ms)
{
    QElapsedTimer clock;
    clock.start();
    for (;;) {
        const int left = ms < 0 ? -1 : std::max(0, ms - int(clock.elapsed()));
        pollfd watched{m_socket, POLLRDHUP, 0};
        const int events = ::poll(&watched, 1, left);
        if (events == 0)
            return true;
        if (events > 0 || errno != EINTR)
            return false;
    }
}

void HttpConnection::cut()
{
    m_isCut = true;
}

void HttpConnection::finish()
{
    m_isFinished = true;
}

void HttpConnection::close()
{
    if (m_socket == INVALID_SOCKET)
        return;
    if (m_isCut) {
        const linger now{1, 0}; // a reset, as when a box loses its power
        setsockopt(m_socket, SOL_SOCKET, SO_LINGER, &now, sizeof now);
    } else {
        // First a shutdown: a child process started meanwhile may hold a copy of the socket.
        ::shutdown(m_socket, SHUT_RDWR);
    }
    ::close(m_socket);
    m_socket = INVALID_SOCKET;
    if (m_afterwards)
        m_afterwards();
}

void HttpConnection::setAfterwards(std::function<void()> afterwards)
{
    m_afterwards = std::move(afterwards);
}

bool HttpConnection::ready(short events) const
{
    pollfd watched{m_socket, events, 0};
    int found = 0;
    do {
        found = ::poll(&watched, 1, ioTimeoutMs);
    } while (found < 0 && errno == EINTR);
    return found > 0;
}

bool HttpConnection::is_readable() const
{
    return m_begin < m_end || ready(POLLIN);
}

bool HttpConnection::is_writable() const
{
    return !m_isCut && !m_isFinished && ready(POLLOUT);
}

ssize_t HttpConnection::read(char* data, size_t size)
{
    if (m_begin == m_end) {
        if (m_isCut || m_isFinished || !ready(POLLIN))
            return -1;
        const ssize_t got = ::recv(m_socket, m_buffer.data(), m_buffer.size(), 0);
        if (got <= 0)
            return got;
        m_begin = 0;
        m_end = size_t(got);
    }
    const size_t taken = std::min(size, m_end - m_begin);
    std::memcpy(data, m_buffer.data() + m_begin, taken);
    m_begin += taken;
    return ssize_t(taken);
}

ssize_t HttpConnection::write(const char* data, size_t size)
{
    size_t sent = 0;
    while (sent < size) {
        if (!is_writable())
            return -1;
        const ssize_t done =
            ::send(m_socket, data + sent, size - sent, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (done < 0 && errno != EAGAIN && errno != EINTR)
            return -1;
        sent += size_t(std::max<ssize_t>(0, done));
    }
    return ssize_t(sent);
}

void HttpConnection::get_remote_ip_and_port(std::string& ip, int& port) const
{
    ip.clear(); // nobody asks who the client is
    port = 0;
}

void HttpConnection::get_local_ip_and_port(std::string& ip, int& port) const
{
    ip.clear();
    port = 0;
}

socket_t HttpConnection::socket() const
{
    return m_socket;
}

} // namespace sim

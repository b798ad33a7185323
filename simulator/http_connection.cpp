// SPDX-License-Identifier: MIT
#include "simulator/http_connection.h"

#include "simulator/sockets.h"

#include <algorithm>
#include <cstring>

namespace sim
{
namespace
{

constexpr int ioTimeoutMs = 10000; // a client that neither reads nor writes for so long is gone
thread_local HttpConnection* currentConnection = nullptr;

} // namespace

HttpConnection::HttpConnection(socket_t socket) : m_socket(socket)
{
    sockets::prepare(m_socket);
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
    return sockets::staysOpen(m_socket, ms);
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
    sockets::close(m_socket, m_isCut); // a reset, as when a box loses its power
    m_socket = INVALID_SOCKET;
    if (m_afterwards)
        m_afterwards();
}

void HttpConnection::setAfterwards(std::function<void()> afterwards)
{
    m_afterwards = std::move(afterwards);
}

bool HttpConnection::is_readable() const
{
    return m_begin < m_end || sockets::isReady(m_socket, sockets::Wish::Read, ioTimeoutMs);
}

bool HttpConnection::is_writable() const
{
    return !m_isCut && !m_isFinished &&
           sockets::isReady(m_socket, sockets::Wish::Write, ioTimeoutMs);
}

ssize_t HttpConnection::read(char* data, size_t size)
{
    if (m_begin == m_end) {
        if (m_isCut || m_isFinished || !is_readable())
            return -1;
        const ssize_t got = sockets::receive(m_socket, m_buffer.data(), m_buffer.size());
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
        const ssize_t done = sockets::send(m_socket, data + sent, size - sent);
        if (done < 0)
            return -1;
        sent += size_t(done);
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

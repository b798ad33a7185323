// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/http_server.h"

#include <httplib.h>

#include <array>

namespace sim
{

/// One connection of a client: the bytes under the web library's protocol, with an end that can
/// come at any time. Used by the one worker thread that serves it.
class HttpConnection final : public httplib::Stream, public HttpWire
{
public:
    /// Takes over the socket.
    explicit HttpConnection(socket_t socket);
    ~HttpConnection() override;

    /// The connection that the calling worker serves; null outside of a request.
    static HttpConnection* current();
    static void setCurrent(HttpConnection* connection);

    bool wait(int ms) override;
    /// From now on nothing goes out any more, and the client finds the connection broken.
    void cut();
    /// From now on nothing goes out any more; what went before arrives.
    void finish();
    /// Closes it and runs `afterwards`.
    void close();
    void setAfterwards(std::function<void()> afterwards);

    bool is_readable() const override;
    bool is_writable() const override;
    ssize_t read(char* data, size_t size) override;
    ssize_t write(const char* data, size_t size) override;
    void get_remote_ip_and_port(std::string& ip, int& port) const override;
    void get_local_ip_and_port(std::string& ip, int& port) const override;
    socket_t socket() const override;

private:
    socket_t m_socket;
    bool m_isCut = false;
    bool m_isFinished = false;
    std::function<void()> m_afterwards;
    std::array<char, 16 * 1024> m_buffer;
    size_t m_begin = 0;
    size_t m_end = 0;
};

} // namespace sim

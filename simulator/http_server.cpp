// SPDX-License-Identifier: MIT
#include "simulator/http_server.h"

#include "simulator/http_connection.h"
#include "simulator/pace.h"
#include "simulator/sockets.h"

#include <QCryptographicHash>
#include <QFile>
#include <QThread>
#include <QThreadPool>

#include <httplib.h>

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <set>
#include <thread>

namespace sim
{
namespace
{

constexpr int maxWorkers = 2000;        // more requests at once than this wait for their turn
constexpr qint64 maxBody = 1000 * 1000; // of anything but an upload
constexpr size_t pieceSize = 64 * 1024; // of a download
constexpr int listenBacklog = 512;      // the library's own 5 loses connections in a burst

QThreadPool& workers()
{
    static QThreadPool pool;
    static const bool prepared = [] {
        pool.setMaxThreadCount(maxWorkers);
        pool.setExpiryTimeout(5000);
        return true;
    }();
    Q_UNUSED(prepared)
    return pool;
}

/// One server's view of the shared workers.
class SharedWorkers final : public httplib::TaskQueue
{
public:
    void enqueue(std::function<void()> task) override
    {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_waiting.push_back(std::move(task));
            ++m_unfinished;
        }
        workers().start([this] { runOne(); });
    }

    void shutdown() override
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_idle.wait(lock, [this] { return m_unfinished == 0; });
    }

private:
    void runOne()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        const std::function<void()> task = std::move(m_waiting.front());
        m_waiting.pop_front();
        lock.unlock();
        task();
        lock.lock();
        --m_unfinished;
        m_idle.notify_all(); // under the lock: without it, this might be gone already
    }

    std::mutex m_mutex;
    std::condition_variable m_idle;
    std::deque<std::function<void()>> m_waiting; // guarded by m_mutex
    int m_unfinished = 0;                        // guarded by m_mutex
};

/// The library's server, with the connections kept in hand so that they can be closed at once.
class ListeningServer final : public httplib::Server
{
public:
    bool open(const std::string& address, int port)
    {
        // Not the library's default of a shared port: two boxes on one address are a mistake.
        set_socket_options(&sockets::claimAddress);
        new_task_queue = [] { return new SharedWorkers; };
        if (!bind_to_port(address, port))
            return false;
        ::listen(svr_sock_, listenBacklog);
        m_listener = std::thread([this] { listen_after_bind(); });
        return true;
    }

    void close()
    {
        if (!m_listener.joinable())
            return;
        const socket_t listening = svr_sock_.exchange(INVALID_SOCKET);
        const bool isClosed = sockets::endListening(listening);
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_closing = true;
            for (const socket_t socket : m_connections)
                sockets::shutDown(socket);
        }
        m_listener.join();
        if (!isClosed)
            sockets::close(listening, false);
    }

private:
    bool process_and_close_socket(socket_t socket) override
    {
        HttpConnection connection(socket);
        if (!hold(socket))
            return false;
        HttpConnection::setCurrent(&connection);
        bool closed = false;
        const bool done = process_request(connection, true, closed, nullptr);
        HttpConnection::setCurrent(nullptr);
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_connections.erase(socket);
        // Under the lock: once the number is free again it may belong to another connection.
        connection.close();
        return done;
    }

    bool hold(socket_t socket)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_closing)
            m_connections.insert(socket);
        return !m_closing;
    }

    std::thread m_listener;
    std::mutex m_mutex;
    bool m_closing = false;           // guarded by m_mutex
    std::set<socket_t> m_connections; // guarded by m_mutex
};

HttpRequest requestOf(const httplib::Request& raw)
{
    HttpRequest request;
    request.method = QByteArray::fromStdString(raw.method);
    request.path = QByteArray::fromStdString(raw.path);
    const QByteArray target = QByteArray::fromStdString(raw.target);
    const int question = target.indexOf('?');
    request.query = question < 0 ? QByteArray() : target.mid(question + 1);
    request.wire = HttpConnection::current();
    return request;
}

/// Sends what `read(offset, size)` gives of a body of `size` bytes, with ranges, pace and the
/// premature end that the reply asks for.
void sendSized(const HttpReply& reply, qint64 size, httplib::Response* out,
               std::function<QByteArray(qint64, qint64)> read)
{
    const qint64 end = size * reply.percent / 100;
    auto pace = std::make_shared<Pace>(reply.bytesPerSecond);
    out->set_content_provider(
        static_cast<size_t>(size), reply.type.toStdString(),
        [read = std::move(read), end, pace, stalls = reply.stalls](size_t offset, size_t length,
                                                                   httplib::DataSink& sink) {
            const qint64 wanted = std::min<qint64>(
                end - qint64(offset), qint64(pace->pieceSize(std::min(length, pieceSize))));
            if (wanted <= 0 && stalls)
                HttpConnection::current()->wait(-1);
            const QByteArray piece = wanted > 0 ? read(qint64(offset), wanted) : QByteArray();
            return !piece.isEmpty() && sink.write(piece.constData(), size_t(piece.size())) &&
                   pace->after(piece.size());
        });
}

void sendFile(const HttpReply& reply, const httplib::Request& in, httplib::Response* out)
{
    auto file = std::make_shared<QFile>(reply.file);
    if (!file->open(QIODevice::ReadOnly)) {
        out->status = 404;
        return;
    }
    const qint64 size = file->size();
    const bool satisfiable =
        std::all_of(in.ranges.begin(), in.ranges.end(), [size](const httplib::Range& range) {
            return range.first < 0 ? range.second > 0 : range.first < size;
        });
    if (!satisfiable) {
        out->status = 416;
        out->set_header("Content-Range", "bytes */" + std::to_string(size));
        return;
    }
    if (reply.ranges)
        out->set_header("Accept-Ranges", "bytes");
    if (size == 0) {
        out->set_content("", reply.type.toStdString());
        return;
    }
    sendSized(reply, size, out, [file](qint64 offset, qint64 length) {
        return file->seek(offset) ? file->read(length) : QByteArray();
    });
}

/// Until it ends, or the client has had enough.
void sendRaw(const HttpReply& reply, HttpConnection* connection)
{
    Pace pace(reply.bytesPerSecond);
    const auto send = [&](const QByteArray& piece) {
        qint64 at = 0;
        while (at < piece.size()) {
            const size_t size = pace.pieceSize(size_t(piece.size() - at));
            if (connection->write(piece.constData() + at, size) < 0 || !pace.after(qint64(size)))
                return false;
            at += qint64(size);
        }
        return connection->wait(0);
    };
    QByteArray piece;
    while (reply.raw(&piece) && send(piece)) {
    }
    connection->finish();
}

void sendReply(const HttpReply& reply, const httplib::Request& in, httplib::Response* out)
{
    HttpConnection* const connection = HttpConnection::current();
    connection->setAfterwards(reply.afterwards);
    // The library would cut the ranges of a request out of whatever is sent, out of an error page
    // too.
    if (!reply.ranges || reply.file.isEmpty())
        const_cast<httplib::Request&>(in).ranges.clear();
    if (reply.cut) {
        connection->cut();
        return;
    }
    if (reply.raw) {
        sendRaw(reply, connection);
        return;
    }
    if (reply.status != 200)
        out->status = reply.status;
    for (const auto& header : reply.headers)
        out->set_header(header.first.toStdString(), header.second.toStdString());
    if (!reply.location.isEmpty()) {
        out->set_redirect(reply.location.toStdString());
    } else if (reply.source) {
        out->set_content_provider(reply.type.toStdString(),
                                  [source = reply.source](size_t, httplib::DataSink& sink) {
                                      QByteArray piece;
                                      return source(&piece) && HttpConnection::current()->wait(0) &&
                                             sink.write(piece.constData(), size_t(piece.size()));
                                  });
    } else if (!reply.file.isEmpty()) {
        sendFile(reply, in, out);
    } else if (reply.percent < 100 || reply.bytesPerSecond > 0) {
        sendSized(reply, reply.body.size(), out, [body = reply.body](qint64 offset, qint64 length) {
            return body.mid(int(offset), int(length));
        });
    } else {
        out->set_content(reply.body.constData(), size_t(reply.body.size()),
                         reply.type.toStdString());
    }
}

/// Reads an ordinary body; false when it is too long or breaks off.
bool readBody(const httplib::ContentReader& read, HttpRequest* request)
{
    return read([request](const char* data, size_t size) {
        request->body.append(data, int(size));
        return request->body.size() <= maxBody;
    });
}

/// Reads an upload without keeping it: only its digest and length remain.
bool readUpload(const httplib::Request& in, const httplib::ContentReader& read,
                const UploadLimits& limits, HttpRequest* request)
{
    QCryptographicHash md5(QCryptographicHash::Md5);
    const qint64 declared = qint64(in.get_header_value<uint64_t>("Content-Length"));
    const qint64 last = limits.percent < 100 ? declared * limits.percent / 100 : -1;
    Pace pace(limits.bytesPerSecond);
    bool isFile = false;
    const bool whole = read(
        [&](const httplib::MultipartFormData& part) {
            isFile = !part.filename.empty();
            if (isFile) {
                request->fileField = QString::fromStdString(part.name);
                request->fileName = QString::fromStdString(part.filename);
            }
            return true;
        },
        [&](const char* data, size_t size) {
            if (isFile) {
                md5.addData(data, int(size));
                request->fileSize += qint64(size);
            }
            return (last < 0 || request->fileSize < last) && pace.after(qint64(size));
        });
    request->fileMd5 = md5.result().toHex();
    return whole;
}

} // namespace

class HttpServer::Private
{
public:
    Private(QString serverAddress, quint16 serverPort, HttpHandlers serverHandlers)
        : address(std::move(serverAddress)), port(serverPort), handlers(std::move(serverHandlers))
    {
    }

    void route()
    {
        // Before routing, because the library's routes are regular expressions, which would take
        // an endless path from a stranger.
        server->set_pre_routing_handler([this](const httplib::Request& in, httplib::Response& out) {
            if (in.method != "GET" && in.method != "HEAD")
                return httplib::Server::HandlerResponse::Unhandled;
            sendReply(handlers.handle(requestOf(in)), in, &out);
            return httplib::Server::HandlerResponse::Handled;
        });
        for (const QString& path : handlers.postPaths) {
            server->Post(path.toStdString(),
                         [this](const httplib::Request& in, httplib::Response& out,
                                const httplib::ContentReader& read) { post(in, out, read); });
        }
    }

    void post(const httplib::Request& in, httplib::Response& out,
              const httplib::ContentReader& read)
    {
        HttpRequest request = requestOf(in);
        UploadLimits limits;
        if (in.is_multipart_form_data()) {
            limits = handlers.beforeUpload ? handlers.beforeUpload() : limits;
            if (!readUpload(in, read, limits, &request)) {
                HttpConnection::current()->cut();
                return;
            }
        } else if (!readBody(read, &request)) {
            out.status = 413;
            return;
        }
        sendReply(handlers.handle(request), in, &out);
    }

    QString address;
    quint16 port;
    HttpHandlers handlers;
    std::unique_ptr<ListeningServer> server;
};

HttpServer::HttpServer(QString address, quint16 port, HttpHandlers handlers)
    : d(std::make_unique<Private>(std::move(address), port, std::move(handlers)))
{
}

HttpServer::~HttpServer()
{
    stop();
}

bool HttpServer::start()
{
    stop();
    d->server = std::make_unique<ListeningServer>();
    d->route();
    if (!d->server->open(d->address.toStdString(), d->port)) {
        d->server.reset();
        return false;
    }
    return true;
}

void HttpServer::stop()
{
    if (d->server) {
        d->server->close();
        d->server.reset();
    }
}

} // namespace sim

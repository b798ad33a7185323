// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>
#include <memory>

namespace sim
{

/// The wire under one request, for a handler that waits on purpose.
class HttpWire
{
public:
    virtual ~HttpWire() = default;
    /// Waits `ms` milliseconds (below 0: without end). False, and at once, when the client hangs
    /// up or the server stops.
    virtual bool wait(int ms) = 0;
};

/// A request, its body read to the end.
struct HttpRequest {
    QByteArray method;
    QByteArray path;    ///< percent-decoded
    QByteArray query;   ///< as received
    QByteArray body;    ///< as received; at most 1 MB; empty for a multipart upload
    QString fileField;  ///< of a multipart upload: the name of its file part
    QString fileName;   ///< of a multipart upload: the name the sender gives the file
    QByteArray fileMd5; ///< of a multipart upload: lower-case hex
    qint64 fileSize = 0;
    HttpWire* wire = nullptr;
};

/// A reply. The first that is set of `cut`, `raw`, `source`, `file`, `body` is what is sent.
struct HttpReply {
    int status = 200;
    QByteArray type = "application/json";
    QByteArray body;
    QString file; ///< a file to send
    /// Gives the next piece of an endless reply; false ends it, an empty piece is no end. May
    /// block for some tenths of a second.
    std::function<bool(QByteArray* piece)> source;
    /// The same for bytes that go out as they are, in place of everything HTTP says of a reply.
    std::function<bool(QByteArray* piece)> raw;
    QByteArray location;                            ///< for a redirection
    QVector<QPair<QByteArray, QByteArray>> headers; ///< more lines for the head
    bool cut = false;                               ///< close without a word
    bool ranges = true;                             ///< send of `file` the ranges asked for
    int percent = 100;         ///< how much of body or file is sent before the connection is closed
    bool stalls = false;       ///< it is not closed then, but nothing more comes
    qint64 bytesPerSecond = 0; ///< 0: as fast as it goes
    std::function<void()> afterwards; ///< called when the connection has been closed
};

/// How an upload is hindered while it comes in.
struct UploadLimits {
    int percent = 100;         ///< below 100: the connection is closed after this much
    qint64 bytesPerSecond = 0; ///< 0: no limit
};

/// What a server calls, from several worker threads at once.
struct HttpHandlers {
    std::function<HttpReply(const HttpRequest&)> handle;
    std::function<UploadLimits()> beforeUpload; ///< may be empty
    QStringList postPaths;                      ///< the paths that take POST
};

/// A web server on one address and port. All servers of the process share one set of worker
/// threads, which grows as far as requests really overlap. One request per connection.
class HttpServer
{
public:
    HttpServer(QString address, quint16 port, HttpHandlers handlers);
    ~HttpServer(); ///< stops
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    /// False when the port cannot be opened.
    bool start();
    /// Closes the port and every connection and waits for the handlers, which takes milliseconds:
    /// their waits end at once.
    void stop();

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace sim

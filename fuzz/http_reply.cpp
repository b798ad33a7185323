// SPDX-License-Identifier: MIT
// Replies to GETs, in pieces as they come.
#include "common/http_reply_parser.h"
#include "common/limits.h"
#include "fuzz/fuzz.h"

namespace
{

using State = HttpReplyParser::State;

constexpr int longestBody = 4096;

HttpReplyParser parsed(const QByteArray& reply, int piece)
{
    HttpReplyParser parser(longestBody);
    inPieces(reply, piece, [&parser](const QByteArray& data) { parser.feed(data); });
    return parser;
}

void require(const HttpReplyParser& parser)
{
    REQUIRE(parser.body().size() <= longestBody);
    REQUIRE(parser.state() != State::Done || (parser.status() >= 200 && parser.status() <= 599));
    REQUIRE(!parser.keepsAlive() || parser.state() == State::Done);
}

/// How it was cut on its way makes no difference.
void requireSame(HttpReplyParser one, HttpReplyParser other)
{
    for (int end = 0; end < 2; ++end) {
        require(one);
        REQUIRE(one.state() == other.state());
        const bool isDone = one.state() == State::Done;
        REQUIRE(!isDone || (one.status() == other.status() && one.body() == other.body()));
        REQUIRE(one.keepsAlive() == other.keepsAlive());
        one.close();
        other.close();
        REQUIRE(one.state() != State::Reading);
    }
}

/// A reply as servers write it is understood, whatever its body.
void requireUnderstood(const QByteArray& body, int piece)
{
    QByteArray chunked("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n");
    inPieces(body, qMax(1, piece), [&chunked, piece](const QByteArray& data) {
        chunked +=
            QByteArray::number(data.size(), 16) + (piece % 2 ? ";x=1\r\n" : "\r\n") + data + "\r\n";
    });
    const QByteArray length = QByteArray::number(body.size());
    const QByteArray replies[] = {
        chunked + "0\r\n\r\n", "HTTP/1.1 200 OK\r\nContent-Length: " + length + "\r\n\r\n" + body,
        "HTTP/1.0 200 OK\r\n\r\n" + body};
    for (const QByteArray& reply : replies) {
        HttpReplyParser parser = parsed(reply, 1 + piece / 2);
        parser.close();
        // What stands between the pieces of a body counts as head.
        const bool fits =
            body.size() <= longestBody && reply.size() - body.size() <= Limits::HttpHeadBytes;
        REQUIRE((parser.state() == State::Done) == fits);
        REQUIRE(!fits || parser.body() == body);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Input input(data, size);
    const int piece = input.number();
    const QByteArray reply = input.rest();
    requireSame(parsed(reply, reply.size()), parsed(reply, piece));
    requireUnderstood(reply, piece);
    return 0;
}

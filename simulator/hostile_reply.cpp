// SPDX-License-Identifier: MIT
#include "simulator/hostile_reply.h"

#include <algorithm>
#include <memory>
#include <mutex>

namespace sim
{
namespace
{

constexpr qint64 pieceBytes = 16 * 1024;

QByteArray headOf(const HttpReply& reply)
{
    return "HTTP/1.1 200 OK\r\nContent-Type: " + reply.type + "\r\n";
}

/// `all`, a piece at a time.
std::function<bool(QByteArray*)> piecesOf(const QByteArray& all)
{
    auto at = std::make_shared<qint64>(0);
    return [all, at](QByteArray* piece) {
        *piece = all.mid(int(*at), int(pieceBytes));
        *at += piece->size();
        return !piece->isEmpty();
    };
}

/// `first`, and then `line` over and over: `count` times, without end for 0.
std::function<bool(QByteArray*)> repeated(const QByteArray& first, const QByteArray& line,
                                          qint64 count, const QByteArray& last)
{
    const qint64 atOnce = std::max<qint64>(1, pieceBytes / line.size());
    auto sent = std::make_shared<qint64>(-1);
    return [=](QByteArray* piece) {
        if (*sent < 0) {
            *piece = first;
            *sent = 0;
            return true;
        }
        const qint64 more = count == 0 ? atOnce : std::min(atOnce, count - *sent);
        *piece = more > 0 ? line.repeated(int(more)) : QByteArray();
        if (more > 0 && count > 0 && *sent + more == count)
            *piece += last;
        *sent += more;
        return more > 0;
    };
}

/// Nothing, well packed. Made once for a size: it takes its time.
QByteArray packedZeros(qint64 bytes)
{
    constexpr int lengthField = 4; // which Qt puts before the packed bytes
    static std::mutex mutex;
    static qint64 size = -1;
    static QByteArray packed;
    const std::lock_guard<std::mutex> lock(mutex);
    if (size != bytes) {
        packed = qCompress(QByteArray(int(bytes), '0')).mid(lengthField);
        size = bytes;
    }
    return packed;
}

} // namespace

void makeHostile(FaultList* faults, const QStringList& tags, HttpReply* reply)
{
    if (const auto head = faults->strike(FaultKind::HugeHead, tags)) {
        reply->raw = repeated(headOf(*reply), "Set-Cookie: a=b; path=/; max-age=99999999\r\n",
                              head->amountOrDefault(), "\r\n" + reply->body);
    }
    if (const auto endless = faults->strike(FaultKind::Endless, tags)) {
        reply->raw = repeated(headOf(*reply) + "\r\n" + reply->body.left(reply->body.size() / 2),
                              QByteArray(1000, 'x'), 0, {});
        reply->bytesPerSecond = endless->amountOrDefault();
    }
    if (const auto packed = faults->strike(FaultKind::Packed, tags)) {
        const QByteArray body = packedZeros(packed->amountOrDefault());
        reply->raw = piecesOf(headOf(*reply) + "Content-Encoding: deflate\r\nContent-Length: " +
                              QByteArray::number(body.size()) + "\r\n\r\n" + body);
    }
    if (const auto chatter = faults->strike(FaultKind::Chatter, tags)) {
        reply->raw =
            repeated(headOf(*reply) + "\r\n", reply->body + "\r\n", chatter->amountOrDefault(), {});
    }
}

} // namespace sim

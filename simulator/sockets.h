// SPDX-License-Identifier: MIT
#pragma once

#include <httplib.h>

/// What the systems call differently about a connected socket.
namespace sim::sockets
{

enum class Wish { Read, Write };

/// Never waits in `receive` and `send` from now on, sends at once, and stays out of child
/// processes.
void prepare(socket_t socket);
/// Whether what is wished for can be done, or would fail, within `ms`.
bool isReady(socket_t socket, Wish wish, int ms);
/// Waits `ms`, below 0 for ever; false as soon as the other side has gone.
bool staysOpen(socket_t socket, int ms);
/// Bytes done; 0 when nothing can be done just now, or at the end; below 0 when the connection is
/// broken. No signal comes of it.
ssize_t send(socket_t socket, const char* data, size_t size);
ssize_t receive(socket_t socket, char* data, size_t size);
/// No more of anything; whoever waits for the socket wakes up.
void shutDown(socket_t socket);
/// No more connections; whoever waits for one wakes up. Whether the socket is closed with that.
bool endListening(socket_t socket);
/// With a reset, as when a computer loses its power, or in order.
void close(socket_t socket, bool withReset);
/// Two listeners at one address are a mistake; one that was there a moment ago is none.
void claimAddress(socket_t socket);

} // namespace sim::sockets

// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <cstddef>

/// The most that anybody on the network gets of this program, whoever he says he is. What is over a
/// limit is given up, not cut, unless it says so; docs/security.md tells why each is what it is.
namespace Limits
{

/// Bytes of a reply before its body: status, headers, and the sizes between pieces of a body.
constexpr int HttpHeadBytes = 16 * 1024;
/// Bytes of a body from somebody who is not known to be a box.
constexpr qint64 StrangerBodyBytes = 64 * 1024;
/// Bytes of a body with one value of a box.
constexpr qint64 ValueBodyBytes = 64 * 1024;
/// Bytes of a body with a list of a box: its recordings, or the sources it sees.
constexpr qint64 ListBodyBytes = 1024 * 1024;

/// Characters of one value of a box; an answer with a longer one is none.
constexpr int ValueChars = 4096;
/// Names, and lists and objects, in a reply or message of a box; one with more is none: to sort
/// them takes the window longer than their bytes tell.
constexpr int JsonParts = 1000;
/// Entries of a list of a box, more than it can hold. Of a longer list the first ones are taken.
constexpr int ListEntries = 5000;

/// Milliseconds without a byte before a request counts as failed.
constexpr int HttpSilenceMs = 2000;
/// Milliseconds for a whole request, from when it is sent to its last byte.
constexpr int HttpTotalMs = 10000;
/// The same of a stranger.
constexpr int HttpStrangerMs = 3000;
/// The same, from the question, while the window takes no input until the answer is there.
constexpr int HttpBlockingMs = 3000;
/// Milliseconds for which a connection that nobody uses is kept.
constexpr int HttpIdleMs = 1000;
/// Connections to boxes, and to strangers, at a time.
constexpr int BoxConnections = 96;
constexpr int StrangerConnections = 72;
/// Of a hundred of these, the most that those hold together who last let us wait, until they have
/// answered in time so often.
constexpr int LatePercent = 60;
constexpr int AnswersInTime = 3;
/// Connections besides, for what somebody waits for.
constexpr int FirstConnections = 8;

/// Bytes of a message of an event feed, and of a piece of one.
constexpr int FeedMessageBytes = 64 * 1024;
/// Bytes of a feed that wait to be read: a whole message and its head always find room. With less,
/// nothing tells on Windows that the rest has come.
constexpr int FeedUnreadBytes = 2 * FeedMessageBytes;
/// Messages of a feed that the window is handed at a time, their characters together unless it is
/// one, and milliseconds between two times.
constexpr int FeedMessagesAtOnce = 16;
constexpr int FeedCharsAtOnce = 16 * 1024;
constexpr int FeedPaceMs = 20;
/// Milliseconds for a feed to be agreed on; how often the answer is looked for meanwhile, and bytes
/// of it each time.
constexpr int FeedHandshakeMs = 5000;
constexpr int FeedHandshakeLooks = 64;
constexpr int FeedHandshakeLookBytes = 4096;
/// Bytes that the other end of a feed has not taken yet: the answers to its pings.
constexpr int FeedUnsentBytes = 64 * 1024;
/// Milliseconds between two questions whether the other end of a feed is still there; without an
/// answer by the next one it counts as lost.
constexpr int FeedPingMs = 2000;

/// Characters of a descriptor of the update server, and of the address in it.
constexpr int DescriptorChars = 64 * 1024;
constexpr int DescriptorUrlChars = 2000;

/// Bytes of the reply to a command.
constexpr int CommandReplyBytes = 64 * 1024;
/// Characters of one record in a log; of a longer one the beginning is kept, and its length.
constexpr int LogRecordChars = 2048;
/// Bytes that one log, and all of them together, may take at once, and how many of them are given
/// back in a minute. What comes on top is left out, and said.
constexpr qint64 LogBurstBytes = 1024 * 1024;
constexpr qint64 LogBytesPerMinute = 64 * 1024;
constexpr qint64 AllLogsBurstBytes = 16 * 1024 * 1024;
constexpr qint64 AllLogsBytesPerMinute = 1024 * 1024;
/// Bytes of records that wait for a disk which is slower than they come.
constexpr qint64 LogWaitingBytes = 8 * 1024 * 1024;
/// Bytes from which a log goes on in a new file.
constexpr qint64 LogFileBytes = 32 * 1024 * 1024;
/// Days for which logs are kept, and bytes of all of them together.
constexpr int LogDays = 30;
constexpr qint64 LogFolderBytes = 1024 * 1024 * 1024;
/// Bytes, or parts in a hundred of a small disk, that the log leaves free.
constexpr qint64 LogReserveBytes = 200 * 1024 * 1024;
constexpr int LogReservePercent = 2;
/// Bytes of a disk that the download of a recording leaves free, unless what is left to come takes
/// less than half of what there is.
constexpr qint64 DownloadReserveBytes = 256 * 1024 * 1024;
/// Addresses of strangers whose first answers are logged, once each.
constexpr int StrangersLogged = 8192;

/// Pixels of a picture; larger ones than the largest in use (8192x4608) would only eat memory.
constexpr qint64 PicturePixels = 8192 * 4608;
/// Bytes of any one piece of memory of the player. What claims more is not decoded, however small
/// the file that claims it: such a picture in red, green, blue and nothing while playing, its
/// brightness at 16 bits while looking into a source, and what an RTSP server tells of itself.
constexpr std::size_t MediaBlockBytes = 160 * 1024 * 1024;
constexpr std::size_t MediaProbeBytes = 80 * 1024 * 1024;
constexpr std::size_t MediaSessionBytes = 256 * 1024;
/// Bytes by which this process may grow while the player reads what a source says of itself, and
/// while it plays: all those pieces together, the pictures that a film refers back to among them.
constexpr qint64 MediaHeaderBytes = 256 * 1024 * 1024;
constexpr qint64 MediaStoreBytes = qint64(1536) * 1024 * 1024;
/// Samples in a piece of sound.
constexpr int SoundSamples = 262144;
/// Streams of a source: each one that is claimed costs a decoder.
constexpr int MediaStreams = 64;
/// Bytes and packets of a live source that wait to be decoded.
constexpr qint64 MediaQueueBytes = 16 * 1024 * 1024;
constexpr std::size_t MediaQueuePackets = 4096;
/// How often a media server's headers are looked for, each time for 4 KB at most.
constexpr int MediaHeadLooks = 1000;
/// Bytes of a playlist, and of all that are read until a source plays.
constexpr qint64 PlaylistBytes = 128 * 1024;
constexpr qint64 PlaylistsBytes = 1024 * 1024;
/// Dialogs of a page's scripts in one visit, and other hosts that the operator is asked about.
constexpr int PageDialogs = 8;
constexpr int PageHostQuestions = 5;
/// Characters that a page's scripts may write to a console in a second, and what each message
/// counts besides: nobody reads them, but the window's thread takes each.
constexpr qint64 PageConsoleChars = 4 * 1024 * 1024;
constexpr int PageConsoleMessage = 1000;
/// Bytes of pages that are kept, in memory, to be shown again.
constexpr int PageCacheBytes = 32 * 1024 * 1024;
/// Bytes of memory by which this process may grow while a page is shown, and that the page's own
/// process may keep.
constexpr qint64 PageStoreBytes = 256 * 1024 * 1024;
/// Bytes more of this process for each pixel that a page is shown on: a dozen pictures of it.
constexpr qint64 PageBytesPerPixel = 12 * 4;
constexpr qint64 PageProcessBytes = 1024 * 1024 * 1024;
/// Lines a minute that FFmpeg may write about a source.
constexpr int MediaLogLines = 300;

} // namespace Limits

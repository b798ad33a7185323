// SPDX-License-Identifier: MIT
#include "common/limits.h"
#include "media/event_message.h"
#include "media/event_sockets.h"
#include "tests/support/plugged_box.h"
#include "tests/support/stopwatch.h"
#include "tests/support/table.h"

#include <QCryptographicHash>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>

#include <memory>

namespace
{

/// What agrees to the feed that is asked for; nothing when none is.
QByteArray greeting(const QByteArray& request)
{
    const QByteArray name = "Sec-WebSocket-Key: ";
    const int at = request.indexOf(name);
    if (at < 0)
        return {};
    const QByteArray key = request.mid(at + name.size()).split('\r').first();
    const QByteArray sum = QCryptographicHash::hash(key + "258EAFA5-E914-47DA-95CA-C5AB0DC85B11",
                                                    QCryptographicHash::Sha1);
    return "HTTP/1.1 101 Switching Protocols\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
           "Sec-WebSocket-Accept: " +
           sum.toBase64() + "\r\n\r\n";
}

} // namespace

class tst_EventSockets : public QObject
{
    Q_OBJECT

private slots:
    void recordTime_data()
    {
        columns<QString, QString>("message", "time");
        row("usual", R"({"record_ms": 3723004})", "01:02:03.004");
        row("as text", R"({"record_ms": "1000"})", "00:00:01.000");
        row("over a day", R"({"record_ms": 90000000})", "01:00:00.000");
        row("enormous", R"({"record_ms": 9e300})", "\\d\\d:\\d\\d:\\d\\d.\\d\\d\\d"); // any time
        row("before it began", R"({"record_ms": -5})", "00:00:00.000");
        row("none", R"({"x": 1})", "00:00:00.000");
        row("a list", R"({"record_ms": [5]})", "00:00:00.000");
        row("no JSON", "hello", "00:00:00.000");
    }
    void recordTime()
    {
        const auto [message, time] = cells<QString, QString>();
        const QString shown = recordTimeText(recordMsOf(message));
        const QRegularExpression whole(QRegularExpression::anchoredPattern(time));
        QVERIFY2(whole.match(shown).hasMatch(), qPrintable(shown));
    }

    void messagesArriveAndTheClockRuns()
    {
        const auto one = pluggedBox(TEST_BLOCK ".1");
        EventSockets sockets;
        QSignalSpy clock(&sockets, &EventSockets::recordTime);
        QSignalSpy stream(&sockets.stream(), &EventSocket::message);
        QSignalSpy media(&sockets.media(), &EventSocket::message);
        sockets.connectTo(TEST_BLOCK ".1");
        QTRY_COMPARE(one->streamListeners(), 1);
        QTRY_COMPARE(one->mediaListeners(), 1);
        stream.clear();
        media.clear();
        one->sendStreamEvent(R"({"record_ms": 3723004})");
        one->sendMediaEvent("<b>verbatim</b>");
        const auto texts = [](const QSignalSpy& spy) {
            QStringList list;
            for (const auto& arguments : spy)
                list << arguments.first().toString();
            return list;
        };
        QTRY_VERIFY(texts(clock).contains("01:02:03.004"));
        QTRY_VERIFY(texts(media).contains("<b>verbatim</b>"));
    }

    void lostConnectionComesBack()
    {
        const auto one = pluggedBox(TEST_BLOCK ".1");
        EventSockets sockets;
        QSignalSpy clock(&sockets, &EventSockets::recordTime);
        QSignalSpy lost(&sockets.stream(), &EventSocket::reconnecting);
        sockets.connectTo(TEST_BLOCK ".1");
        QTRY_COMPARE(one->streamListeners(), 1);
        one->dropEventClients();
        QTRY_VERIFY(!lost.isEmpty());
        QCOMPARE(lost.first().first().toString(), QString("ws://" TEST_BLOCK ".1:8001"));
        QCOMPARE(clock.last().first().toString(), QString("00:00:00.000"));
        QTRY_COMPARE(one->streamListeners(), 1);
        QTRY_COMPARE(one->mediaListeners(), 1);
    }

    void refusingBoxIsAskedAtAPace_data()
    {
        columns<QString>("address");
        row("nobody there", TEST_BLOCK ".9");
        row("no way there, which is said at once", "127.255.255.255");
    }
    void refusingBoxIsAskedAtAPace()
    {
        QFETCH(QString, address);
        EventSockets sockets;
        QSignalSpy tries(&sockets.media(), &EventSocket::reconnecting);
        sockets.connectTo(address);
        QTest::qWait(2000);
        const int limit = 2000 / EventSocket::AttemptPaceMs + 2;
        QVERIFY2(tries.size() >= 3 && tries.size() <= limit,
                 qPrintable(QString::number(tries.size())));
        // It is found once it is there.
        const auto late = pluggedBox(TEST_BLOCK ".9");
        if (address != late->address())
            sockets.connectTo(late->address());
        QTRY_COMPARE(late->mediaListeners(), 1);
    }

    void limitsOfAFeed_data()
    {
        columns<QString, bool>("fault", "arrives");
        const QString message = "huge-message %1";
        row("longest message", message.arg(Limits::FeedMessageBytes), true);
        row("longer message", message.arg(Limits::FeedMessageBytes + 1), false);
        row("huge message", message.arg(20 * 1000 * 1000), false);
        row("handshake without end", "endless-handshake", false);
        row("refused handshake", "refused-handshake", false);
    }
    /// What is too much ends the connection, and the feed is found again once the box behaves.
    void limitsOfAFeed()
    {
        const auto [fault, arrives] = cells<QString, bool>();
        const auto one = pluggedBox(TEST_BLOCK ".1");
        QVERIFY(one->addFault(fault));
        EventSockets sockets;
        QSignalSpy lost(&sockets.media(), &EventSocket::reconnecting);
        QSignalSpy got(&sockets.media(), &EventSocket::message);
        sockets.connectTo(TEST_BLOCK ".1");
        if (arrives)
            QTRY_VERIFY(!got.isEmpty());
        else
            QTRY_VERIFY_WITH_TIMEOUT(lost.size() >= 2, 3 * Limits::FeedHandshakeMs);
        QCOMPARE(got.isEmpty(), !arrives);
        one->clearFaults();
        QTRY_VERIFY_WITH_TIMEOUT(!got.isEmpty(), 2 * Limits::FeedHandshakeMs);
    }

    /// Everything that is sent in a flood need not be seen, but the window must be free meanwhile.
    void floodIsThinnedOut()
    {
        const auto one = pluggedBox(TEST_BLOCK ".1");
        QVERIFY(one->addFault("flood 50000"));
        EventSockets sockets;
        QSignalSpy got(&sockets.media(), &EventSocket::message);
        sockets.connectTo(TEST_BLOCK ".1");
        QTRY_VERIFY(!got.isEmpty());
        got.clear();
        QTest::qWait(1000);
        VERIFY_BELOW(got.size(), 1100 / Limits::FeedPaceMs * Limits::FeedMessagesAtOnce);
    }

    /// To read one of these takes the window some milliseconds.
    void largeMessagesComeOneByOne()
    {
        const auto one = pluggedBox(TEST_BLOCK ".1");
        EventSockets sockets;
        sockets.connectTo(TEST_BLOCK ".1");
        QTRY_COMPARE(one->streamListeners(), 1);
        const QString large = "{\"record_ms\": 1, \"x\": \"" + QString(60000, 'x') + "\"}";
        QSignalSpy clock(&sockets, &EventSockets::recordClock);
        QElapsedTimer time;
        time.start();
        for (int n = 0; n < 100; ++n)
            one->sendStreamEvent(large);
        one->sendStreamEvent("{\"record_ms\": 2}");
        QTRY_VERIFY(clock.contains(QVariantList{qint64(2)}));
        VERIFY_BELOW(clock.size(), 5 + time.elapsed() / Limits::FeedPaceMs);
    }

    /// The handshake is bounded in bytes, not in time alone, and so is what a box does not take.
    void boxesThatOnlyTakeMemory_data()
    {
        columns<QByteArray, bool>("piece", "joins");
        row("handshake without end", QByteArray("X: 1\r\n").repeated(1000), false);
        row("handshake in one line", QByteArray(10000, 'x'), false);
        row("pings, no answer taken", QByteArray("\x89\x7d") + QByteArray(125, 'x'), true);
    }
    void boxesThatOnlyTakeMemory()
    {
        const auto [piece, joins] = cells<QByteArray, bool>();
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress(TEST_BLOCK ".7"), 8002));
        QVector<qint64> sent;
        connect(&server, &QTcpServer::newConnection, this, [&, piece = piece, joins = joins] {
            QTcpSocket* client = server.nextPendingConnection();
            const int n = sent.size();
            sent << 0;
            connect(client, &QTcpSocket::readyRead, client, [&, client] {
                if (client->property("greeted").toBool())
                    return;
                client->setProperty("greeted", true);
                const QByteArray hello = greeting(client->readAll());
                client->setReadBufferSize(1); // and nothing more is taken
                client->write(joins ? hello : hello.chopped(2));
                client->write(piece);
            });
            connect(client, &QTcpSocket::bytesWritten, client, [&, client, n](qint64 bytes) {
                sent[n] += bytes;
                if (client->bytesToWrite() < 100000)
                    client->write(piece.repeated(100000 / piece.size()));
            });
        });
        EventSockets sockets;
        QSignalSpy lost(&sockets.media(), &EventSocket::reconnecting);
        sockets.connectTo(TEST_BLOCK ".7");
        QTRY_VERIFY_WITH_TIMEOUT(!lost.isEmpty(), Limits::FeedHandshakeMs + 2000);
        // More than the kernel takes on its way is never read.
        VERIFY_BELOW(sent.first(), 12 * 1000 * 1000);
    }

    /// The power of a box fails: it answers nothing any more, and says no farewell.
    void silentEndIsNoticed()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress(TEST_BLOCK ".7"), 8002));
        int connections = 0;
        connect(&server, &QTcpServer::newConnection, this, [&] {
            ++connections;
            QTcpSocket* client = server.nextPendingConnection();
            connect(client, &QTcpSocket::readyRead, client,
                    [client] { client->write(greeting(client->readAll())); });
        });
        EventSockets sockets;
        QSignalSpy joined(&sockets.media(), &EventSocket::connected);
        sockets.connectTo(TEST_BLOCK ".7");
        QTRY_COMPARE(joined.size(), 1);
        QTRY_VERIFY_WITH_TIMEOUT(joined.size() >= 2, 3 * Limits::FeedPingMs + 2000);
        QVERIFY(connections >= 2);
    }

    void anotherBoxTakesOver()
    {
        const auto one = pluggedBox(TEST_BLOCK ".1");
        const auto two = pluggedBox(TEST_BLOCK ".2");
        EventSockets sockets;
        QSignalSpy lost(&sockets.stream(), &EventSocket::reconnecting);
        for (int n = 0; n < 10; ++n)
            sockets.connectTo(n % 2 ? TEST_BLOCK ".2" : TEST_BLOCK ".1");
        QTRY_COMPARE(two->streamListeners(), 1);
        QTRY_COMPARE(two->mediaListeners(), 1);
        QTRY_COMPARE(one->streamListeners(), 0);
        QTest::qWait(600);
        QCOMPARE(two->streamListeners(), 1);
        QVERIFY2(lost.size() <= 1, qPrintable(QString::number(lost.size())));
    }
};

QTEST_GUILESS_MAIN(tst_EventSockets)
#include "tst_event_sockets.moc"

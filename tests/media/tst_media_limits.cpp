// SPDX-License-Identifier: MIT
#include "common/limits.h"
#include "tests/support/clips.h"
#include "tests/support/player.h"
#include "tests/support/process.h"
#include "tests/support/scripted_server.h"
#include "tests/support/stopwatch.h"
#include "tests/support/table.h"

#include <QUdpSocket>

#include <cstdio>

using MediaOptions::Origin;

namespace
{

const char* const playlistType = "application/vnd.apple.mpegurl";

/// Says `head` and then the same over and over, as fast as it is taken, for a few hundred MB.
class EndlessServer : public QTcpServer
{
public:
    EndlessServer(const QByteArray& head, const QByteArray& again)
    {
        if (!listen(QHostAddress(TEST_BLOCK ".3")))
            qFatal("cannot listen");
        connect(this, &QTcpServer::newConnection, this, [=] {
            QTcpSocket* client = nextPendingConnection();
            connect(client, &QTcpSocket::readyRead, client, [=] {
                if (!client->readAll().isEmpty())
                    client->write(head);
            });
            connect(client, &QTcpSocket::bytesWritten, client, [=] {
                for (; client->bytesToWrite() < 1000000 && m_said < 800000000; m_said += 100000)
                    client->write(again.repeated(100000 / again.size()));
            });
        });
    }

private:
    qint64 m_said = 0;
};

QByteArray sized(const QByteArray& head, const QByteArray& body)
{
    return head + "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
}

QByteArray playlistOf(const QByteArray& what)
{
    return sized("HTTP/1.1 200 OK\r\nContent-Type: " + QByteArray(playlistType) + "\r\n",
                 "#EXTM3U\n#EXT-X-TARGETDURATION:4\n#EXTINF:4,\n" + what + "\n#EXT-X-ENDLIST\n");
}

/// Serves a stream over RTSP, in the connection itself, and a film over HTTP, also as a playlist.
class GoodServer : public ScriptedServer
{
public:
    explicit GoodServer(const QByteArray& film) : ScriptedServer(TEST_BLOCK ".4"), m_film(film)
    {
        if (!m_packets.bind(QHostAddress(TEST_BLOCK ".4"), 0))
            qFatal("cannot bind");
        connect(&m_packets, &QUdpSocket::readyRead, this, [this] {
            QByteArray packet(1500, '\0');
            while (m_packets.hasPendingDatagrams()) {
                const auto size = int(m_packets.readDatagram(packet.data(), packet.size()));
                if (m_plays)
                    send(QByteArray("$\0", 2) + char(size >> 8) + char(size & 255) +
                         packet.left(size));
            }
        });
        const QString camera = "-v quiet -nostdin -re " + Small +
                               " -t 60 -c:v libx264 -g 5 -tune zerolatency -x264opts "
                               "repeat-headers=1 -f rtp rtp://" TEST_BLOCK ".4:%1?pkt_size=1300";
        m_camera.start("ffmpeg", camera.arg(m_packets.localPort()).split(' '));
    }
    ~GoodServer() override
    {
        m_camera.kill();
        m_camera.waitForFinished();
    }

protected:
    QByteArray replyTo(const QByteArray& request) override
    {
        if (request.startsWith("GET /list"))
            return playlistOf("live.ts");
        if (request.startsWith("GET"))
            return sized("HTTP/1.1 200 OK\r\n", m_film);
        m_plays = m_plays || request.startsWith("PLAY");
        const int number = request.indexOf("CSeq:");
        return sized("RTSP/1.0 200 OK\r\nSession: 1\r\nContent-Type: application/sdp\r\n"
                     "Transport: RTP/AVP/TCP;unicast;interleaved=0-1\r\n" +
                         request.mid(number, request.indexOf('\n', number) + 1 - number),
                     request.startsWith("DESCRIBE")
                         ? "v=0\r\no=- 0 0 IN IP4 0.0.0.0\r\ns=x\r\nt=0 0\r\n"
                           "m=video 0 RTP/AVP 96\r\na=rtpmap:96 H264/90000\r\n"
                           "a=fmtp:96 packetization-mode=1\r\na=control:streamid=0\r\n"
                         : "");
    }

private:
    const QByteArray m_film;
    QUdpSocket m_packets;
    QProcess m_camera;
    bool m_plays = false;
};

/// A picture of 15,000 x 15,000 points, as it says in 70 bytes.
QByteArray hugePicture()
{
    return QByteArray::fromBase64("iVBORw0KGgoAAAANSUhEUgAAOpgAADqYEAYAAACOhBXmAAAADUlEQVR4nGNgGAXE"
                                  "AgABLAABB4rGLgAAAABJRU5ErkJggg==");
}

/// A film with one picture in each of sixty tracks, which claim a million more: every one of them
/// is within the limits.
QByteArray manyTracks(const QString& path)
{
    QString command = "-v quiet -f lavfi -i color=s=16x16:d=0.04 -c:v mjpeg -use_editlist 0";
    QProcess::execute("ffmpeg",
                      (command + QString(" -map 0").repeated(60) + ' ' + path).split(' '));
    QByteArray film = readFile(path);
    const QByteArray claim("\0\x18\0\0", 4);
    for (const auto& [box, place] : {std::pair("stsz", 12), std::pair("stsc", 16)}) {
        for (int at = 0; (at = film.indexOf(box, at + 1)) > 0;)
            film.replace(at + place, 4, claim);
    }
    return film;
}

/// Black, at the largest size, each picture with all those before it at hand.
QByteArray largeFilm(const QString& path)
{
    QProcess::execute("ffmpeg",
                      QString("-v quiet -f lavfi -i color=black:s=8192x4608:r=10 -frames:v "
                              "16 -c:v libx264 -preset ultrafast -x264-params "
                              "ref=16:bframes=0:keyint=100 -pix_fmt yuv420p10 " +
                              path)
                          .split(' '));
    return readFile(path);
}

/// What a process of its own tells: how it went, and the most memory that the source has cost it.
int playAlone(const QString& url)
{
    constexpr qint64 megabyte = 1 << 20;
    const qint64 before = mostMemory() / megabyte;
    Player player(url);
    for (const auto until = QDeadlineTimer(20000);
         !until.hasExpired() && !player.statuses.contains(FFmpegThread::OpenFailed);)
        QTest::qWait(20);
    std::printf("%d %lld", player.statuses.value(player.statuses.size() - 1, -1),
                mostMemory() / megabyte - before);
    return 0;
}

} // namespace

/// What a source gets of this computer.
class tst_MediaLimits : public QObject
{
    Q_OBJECT

private slots:
    void nobodyIsSentElsewhere_data()
    {
        columns<QString, QByteArray>("path", "reply");
        const QByteArray there = m_trap.url("http", "a.ts").toUtf8();
        const QByteArray rtsp = m_trap.url("rtsp").toUtf8();
        const QByteArray film = "file://" + m_clips.live().toUtf8();
        row("http redirect", "http x.mp4",
            sized("HTTP/1.1 302 x\r\nLocation: " + there + "\r\n", ""));
        row("rtsp redirect", "rtsp 1",
            sized("RTSP/1.0 302 x\r\nCSeq: 1\r\nLocation: " + rtsp + "\r\n", ""));
        row("rtsp by http", "rtsp 1?http",
            sized("HTTP/1.1 302 x\r\nLocation: " + there + "\r\n", ""));
        row("playlist", "http x.m3u8", playlistOf(there));
        row("key of a playlist", "http x.m3u8",
            playlistOf("#EXT-X-KEY:METHOD=AES-128,URI=\"" + there + "\"\n#EXTINF:1,\na.ts"));
        row("file in a playlist", "http x.m3u8", playlistOf(film));
        row("file in a bare playlist", "tcp x.m3u8",
            playlistOf(film).mid(playlistOf(film).indexOf('#')));
        row("other list", "http x.ffconcat",
            httpReply("text/plain", "ffconcat version 1.0\nfile " + there + "\n"));
        row("description", "http x.sdp",
            httpReply("application/sdp", "v=0\r\ns=x\r\nc=IN IP4 " TEST_BLOCK ".2\r\nt=0 0\r\n"
                                         "m=video 9300 RTP/AVP 96\r\na=rtpmap:96 H264/90000\r\n"));
    }
    void nobodyIsSentElsewhere()
    {
        const auto [path, reply] = cells<QString, QByteArray>();
        const ScriptedServer server(TEST_BLOCK ".1", reply,
                                    path.startsWith("tcp") ? ScriptedServer::Unasked
                                                           : ScriptedServer::Closes);
        const QString url = server.url(path.section(' ', 0, 0), path.section(' ', 1));
        for (const Origin origin : {Origin::Operator, Origin::Box}) {
            Player player(url, origin);
            QTRY_COMPARE_WITH_TIMEOUT(player.statuses, QList<int>{FFmpegThread::OpenFailed}, 12000);
        }
        QVERIFY(server.taken() > 0);
        QCOMPARE(m_trap.taken(), 0);
    }

    void originDecides_data()
    {
        columns<QString, bool, bool>("url", "operators", "boxes");
        const QString film = m_clips.live();
        const QByteArray list = playlistOf("live.ts");
        row("file", film, true, false);
        row("file's address", "file:" + film, true, false);
        row("playlist here", writeFile(m_clips.path("list.m3u8"), list.mid(list.indexOf('#'))),
            false, false);
        for (const QString prefix : {"concat:", "subfile,,start,0,end,0,,:", "async:file:",
                                     "crypto:file:", "ftp://" TEST_BLOCK ".1"})
            row(qPrintable(prefix), prefix + film, false, false);
        row("stream", m_good.url("http", "live.ts"), true, true);
        row("playlist of its own server", m_good.url("http", "list.m3u8"), true, false);
        row("rtsp", m_good.url("rtsp"), true, true);
    }
    void originDecides()
    {
        const auto [url, operators, boxes] = cells<QString, bool, bool>();
        for (const Origin origin : {Origin::Operator, Origin::Box}) {
            const bool plays = origin == Origin::Operator ? operators : boxes;
            Player player(url, origin);
            QTRY_COMPARE_WITH_TIMEOUT(
                player.statuses,
                QList<int>{plays ? FFmpegThread::Playing : FFmpegThread::OpenFailed}, 9000);
            if (plays)
                QTRY_VERIFY(player.pictures > 0);
        }
    }

    void fewBytesCostLittle_data()
    {
        columns<QByteArray, QByteArray, int>("head", "again", "most");
        const QByteArray head =
            "HTTP/1.1 200 OK\r\nContent-Type: " + QByteArray(playlistType) + "\r\n";
        const auto endless = [](const char* name, const QByteArray& begin, const QByteArray& on) {
            row(name, begin, on, 120);
        };
        const auto film = [](const char* name, const QByteArray& content, int most) {
            row(name, QByteArray(), content, most);
        };
        film("huge picture", hugePicture(), 120);
        film("many tracks", manyTracks(m_clips.path("many.mp4")), 450);
        film("many large pictures", largeFilm(m_clips.path("large.mp4")), 1900);
        endless("playlist", head + "\r\n#EXTM3U\n#EXT-X-TARGETDURATION:1\n", "#EXTINF:1,\na.ts\n");
        endless("list of playlists", head + "\r\n#EXTM3U\n", "#EXT-X-STREAM-INF:BANDWIDTH=1\na\n");
        endless("headers", head, "Icy-Name: " + QByteArray(3500, 'x') + "\r\n");
        endless("description",
                "RTSP/1.0 200 OK\r\nCSeq: 1\r\nContent-Type: application/sdp\r\n"
                "Content-Length: 60000000\r\n\r\n",
                "m=video 0 RTP/AVP 96\r\n");
    }
    void fewBytesCostLittle()
    {
        const auto [head, again, most] = cells<QByteArray, QByteArray, int>();
        const EndlessServer server(head, again);
        QString url = QString("%1://" TEST_BLOCK ".3:%2/x.m3u8")
                          .arg(head.startsWith("RTSP") ? "rtsp" : "http")
                          .arg(server.serverPort());
        if (head.isEmpty())
            url = writeFile(m_clips.path("film"), again);
        QProcess child;
        const QString errors = m_clips.path("errors");
        child.setStandardErrorFile(errors);
        child.start(QCoreApplication::applicationFilePath(), {"--play", url});
        QTRY_COMPARE_WITH_TIMEOUT(child.state(), QProcess::NotRunning, 30000);
        QCOMPARE(child.exitStatus(), QProcess::NormalExit);
        const QList<QByteArray> told = child.readAll().split(' ');
        QVERIFY2(told.value(0) == "0", readFile(errors).right(4000).constData());
        qInfo("%d MB", told.value(1).toInt());
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
        VERIFY_BELOW(told.value(1).toInt(), most);
#endif
    }

    void noProxyIsAsked_data()
    {
        columns<QString>("scheme");
        for (const char* scheme : {"http", "https", "rtmp", "rtmps", "rtsp"})
            row(scheme, QString(scheme));
    }
    void noProxyIsAsked()
    {
        QFETCH(QString, scheme);
        const ScriptedServer server(TEST_BLOCK ".1", "x", ScriptedServer::Closes);
        qputenv("http_proxy", m_trap.url("http").toUtf8());
        Player player(server.url(scheme, "live/1"));
        QTRY_VERIFY_WITH_TIMEOUT(!player.statuses.isEmpty(), 12000);
        player.thread.stop();
        player.thread.wait();
        qunsetenv("http_proxy");
        QVERIFY(server.taken() > 0);
        QCOMPARE(m_trap.taken(), 0);
    }

private:
    Clips m_clips;
    const ScriptedServer m_trap{TEST_BLOCK ".2"};
    GoodServer m_good{readFile(m_clips.live())};
};

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    if (argc == 3 && !qstrcmp(argv[1], "--play"))
        return playAlone(QString::fromUtf8(argv[2]));
    tst_MediaLimits test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_media_limits.moc"

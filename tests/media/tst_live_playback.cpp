// SPDX-License-Identifier: MIT
#include "tests/support/clips.h"
#include "tests/support/player.h"
#include "tests/support/scripted_server.h"
#include "tests/support/stopwatch.h"
#include "tests/support/table.h"

#include <QRandomGenerator>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <thread>
#include <utility>

namespace
{

/// A server of one file that can be asked for a part of it, and that breaks its next reply off
/// after `most` bytes unless that is negative.
class FileServer : public ScriptedServer
{
public:
    FileServer(const QString& address, const QByteArray& file)
        : ScriptedServer(address, "x", Closes), m_file(file)
    {
    }
    int most = -1;

protected:
    QByteArray replyTo(const QByteArray& request) override
    {
        const int range = request.indexOf("Range: bytes=");
        const int begin = range < 0 ? 0 : request.mid(range + 13).split('-').first().toInt();
        const QByteArray head =
            "HTTP/1.1 206 Partial Content\r\nContent-Type: video/mp4\r\nAccept-Ranges: bytes\r\n"
            "Connection: close\r\nContent-Range: bytes " +
            QByteArray::number(begin) + "-" + QByteArray::number(m_file.size() - 1) + "/" +
            QByteArray::number(m_file.size()) +
            "\r\nContent-Length: " + QByteArray::number(m_file.size() - begin) + "\r\n\r\n";
        return head + m_file.mid(begin, std::exchange(most, -1));
    }

private:
    const QByteArray m_file;
};

/// A server of a playlist whose pieces last two seconds and are numbered from `first` on.
class PieceServer : public ScriptedServer
{
public:
    PieceServer(const QString& address, const QByteArray& piece)
        : ScriptedServer(address, "x", Closes), m_piece(piece)
    {
        m_since.start();
    }
    void countFrom(int first)
    {
        m_first = first;
        m_since.start();
    }

protected:
    QByteArray replyTo(const QByteArray& request) override
    {
        if (!request.contains(".m3u8"))
            return httpReply("video/mp2t", m_piece);
        const int from = m_first + int(m_since.elapsed() / 2000);
        QByteArray list =
            "#EXTM3U\n#EXT-X-TARGETDURATION:2\n#EXT-X-MEDIA-SEQUENCE:" + QByteArray::number(from) +
            "\n";
        for (int n = from; n < from + 3; ++n)
            list += "#EXTINF:2.0,\n" + QByteArray::number(n) + ".ts\n";
        return httpReply("application/vnd.apple.mpegurl", list);
    }

private:
    const QByteArray m_piece;
    int m_first = 100;
    QElapsedTimer m_since;
};

/// A film of 25 pictures a second, each of them as bright as its number says.
QString countingFilm(const Clips& clips, const QString& name, const QString& encoder)
{
    return clips.make(name, "-f lavfi -i color=black:size=64x64:rate=25:duration=8,format=yuv420p,"
                            "geq=lum=16+N:cb=128:cr=128[out0];sine=duration=8[out1] "
                            "-c:a aac -c:v libx264 -qp 8 -g 10 " +
                                encoder);
}

/// Where its pictures begin, in a transport stream.
QVector<int> picturesOf(const QByteArray& film)
{
    constexpr int packet = 188;
    constexpr int videoPid = 0x100;
    QVector<int> begins;
    for (int at = 0; at + packet <= film.size(); at += packet) {
        const int head = uchar(film.at(at + 1)) * 256 + uchar(film.at(at + 2));
        if ((head & 0x4000) != 0 && (head & 0x1fff) == videoPid)
            begins << at;
    }
    return begins;
}

/// The number of a picture of that film.
int numberOf(const QImage& image)
{
    return image.isNull() ? -1 : qRound(qGray(image.pixel(32, 32)) * 219.0 / 255.0);
}

} // namespace

/// A source on the network: shown as it is now, and again when it was gone.
class tst_LivePlayback : public QObject
{
    Q_OBJECT

private slots:
    void showsWhatIsNow_data()
    {
        // FFmpeg hands on a picture of such a stream when the one after the next begins. "behind":
        // pictures, with those.
        // "burst": pictures that come at once, before those that come in time; "pause": in
        // milliseconds, after which all that has been kept back comes at once.
        columns<QString, int, int, int>("encoder", "burst", "pause", "behind");
        row("steady", "-tune zerolatency", 1, 0, 5);
        row("burst", "-tune zerolatency", 70, 0, 5);
        row("burst without key pictures", "-tune zerolatency -g 500", 70, 0, 5);
        row("pause", "-tune zerolatency", 1, 1500, 5);
        row("pictures held back", "-bf 2", 50, 0, 7);
    }
    void showsWhatIsNow()
    {
        const auto [encoder, burst, pause, behind] = cells<QString, int, int, int>();
        const QByteArray film = readFile(countingFilm(
            m_clips, QString("count-%1.ts").arg(qHash(encoder)), encoder + " -muxdelay 0"));
        const QVector<int> begins = picturesOf(film);
        const auto end = [&](int pictures) { return begins.value(pictures, film.size()); };
        ScriptedServer server(TEST_BLOCK ".1", httpReply("video/mp2t", film.left(end(burst))));
        Player player(server.url("http"));
        QTRY_VERIFY_WITH_TIMEOUT(server.asked() == 1, 3000);
        QElapsedTimer clock;
        clock.start();
        int sent = burst;
        QVector<int> lags;
        while (sent < 190) {
            QTest::qWait(10);
            const int due = burst + int(clock.elapsed() / 40);
            if (due > 100 && clock.elapsed() < pause)
                continue;
            if (due > sent)
                server.send(film.mid(end(sent), end(due) - end(sent)));
            sent = due;
            // What has come a moment ago may still be on its way.
            if (sent > 160)
                lags << sent - numberOf(player.last);
        }
        std::sort(lags.begin(), lags.end());
        qInfo() << "pictures behind, median and most:" << lags.at(lags.size() / 2) << lags.last()
                << player.thread.figures().lagMs << "ms";
        QVERIFY2(lags.at(lags.size() / 2) <= behind, qPrintable(QString::number(lags.last())));
        VERIFY_BELOW(player.thread.figures().lagMs, 200);
        QVERIFY(player.thread.figures().lagMs >= 0);
        QCOMPARE(player.thread.tries(), 0);
    }

    /// Who tunes in between two key pictures has to wait for the next one, not to fail.
    void joinsAmidPictures()
    {
        const QByteArray film = readFile(
            countingFilm(m_clips, "sparse.ts", "-tune zerolatency -g 100 -sc_threshold 0"));
        const QVector<int> begins = picturesOf(film);
        // The programme's tables, then what follows the first pictures.
        const QByteArray joined = film.left(begins.at(0)) + film.mid(begins.at(5));
        const ScriptedServer server(TEST_BLOCK ".7", httpReply("video/mp2t", joined));
        Player player(server.url("http"));
        QTRY_VERIFY_WITH_TIMEOUT(player.pictures > 0, 9000);
        QCOMPARE(player.statuses, QList<int>{FFmpegThread::Playing});
        QVERIFY2(numberOf(player.last) >= 99, qPrintable(QString::number(numberOf(player.last))));
    }

    /// An encoder without a sound input announces its sound all the same.
    void promisedSoundIsNotWaitedFor()
    {
        QByteArray film = readFile(countingFilm(m_clips, "silent.ts", "-tune zerolatency"));
        constexpr int packet = 188;
        for (int at = film.size() - packet; at >= 0; at -= packet) {
            if ((uchar(film.at(at + 1)) & 0x1f) == 1 && uchar(film.at(at + 2)) == 1)
                film.remove(at, packet);
        }
        const QVector<int> begins = picturesOf(film);
        ScriptedServer server(TEST_BLOCK ".10", httpReply("video/mp2t", film.left(begins.at(1))));
        Player player(server.url("http"));
        QTRY_VERIFY_WITH_TIMEOUT(server.asked() == 1, 3000);
        int sent = 1;
        QTimer sender;
        connect(&sender, &QTimer::timeout, &sender, [&] {
            server.send(film.mid(begins.at(sent), begins.at(sent + 1) - begins.at(sent)));
            sent = qMin(sent + 1, begins.size() - 2);
        });
        sender.start(40);
        QTRY_VERIFY_WITH_TIMEOUT(player.pictures > 0, 4500);
    }

    void comesBack()
    {
        const QByteArray film = readFile(m_clips.live());
        auto server = std::make_unique<ScriptedServer>(
            TEST_BLOCK ".2", httpReply("video/mp2t", film), ScriptedServer::Closes);
        const QString url = server->url("http");
        const quint16 port = server->serverPort();
        Player player(url);
        // It ends: it is asked again.
        QTRY_VERIFY_WITH_TIMEOUT(player.thread.figures().reconnections >= 1 && player.pictures > 1,
                                 9000);
        // It refuses; Windows asks again for two seconds each time.
        server.reset();
        QTRY_VERIFY_WITH_TIMEOUT(player.thread.tries() >= 3, 15000);
        QVERIFY(player.thread.silentMs() > 0);
        const int before = player.pictures;
        // It says nothing.
        server = std::make_unique<ScriptedServer>(TEST_BLOCK ".2", QByteArray(),
                                                  ScriptedServer::StaysOpen, port);
        QTRY_VERIFY_WITH_TIMEOUT(server->asked() >= 1, 5000);
        const int tries = player.thread.tries();
        QTRY_VERIFY_WITH_TIMEOUT(player.thread.tries() > tries, 6000);
        // It is back.
        server->setReply(httpReply("video/mp2t", film));
        Stopwatch clock;
        QTRY_VERIFY_WITH_TIMEOUT(player.pictures > before, 9000);
        VERIFY_BELOW(clock.elapsed(), 5000);
        QCOMPARE(player.thread.tries(), 0);
        QCOMPARE(player.statuses, QList<int>{FFmpegThread::Playing});
    }

    /// A stream that its server does not have yet may come; a recording that is gone does not.
    void refusedStreamMayComeLater()
    {
        ScriptedServer server(TEST_BLOCK ".9",
                              "HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n",
                              ScriptedServer::Closes);
        Player recording(server.url("http"), MediaOptions::Origin::Box);
        QTRY_VERIFY_WITH_TIMEOUT(recording.thread.isFinished(), 3000);
        Player stream(server.url("http"));
        QTRY_VERIFY_WITH_TIMEOUT(stream.thread.tries() > 2, 5000);
        server.setReply(httpReply("video/mp2t", readFile(m_clips.live())));
        QTRY_VERIFY_WITH_TIMEOUT(stream.pictures > 0, 5000);
        QCOMPARE(stream.statuses, (QList<int>{FFmpegThread::OpenFailed, FFmpegThread::Playing}));
        QTRY_COMPARE(recording.statuses, QList<int>{FFmpegThread::OpenFailed});
    }

    /// Its box deletes it while it is watched.
    void recordingThatGoesIsNotAskedForForEver()
    {
        ScriptedServer server(TEST_BLOCK ".4", httpReply("video/mp2t", readFile(m_clips.live())),
                              ScriptedServer::Closes);
        Player player(server.url("http"), MediaOptions::Origin::Box);
        QTRY_VERIFY_WITH_TIMEOUT(player.pictures > 1, 5000);
        server.setReply("HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n");
        QTRY_VERIFY_WITH_TIMEOUT(player.thread.isFinished(), 20000);
        QTRY_COMPARE(player.statuses,
                     (QList<int>{FFmpegThread::Playing, FFmpegThread::OpenFailed}));
        const int asked = server.asked();
        QTest::qWait(2000);
        QCOMPARE(server.asked(), asked);
    }

    void stalledStreamIsOpenedAgain()
    {
        const QByteArray film = readFile(m_clips.live());
        ScriptedServer server(TEST_BLOCK ".3", httpReply("video/mp2t", film));
        Player player(server.url("http"));
        QTRY_VERIFY_WITH_TIMEOUT(player.pictures > 1, 5000);
        QTRY_VERIFY_WITH_TIMEOUT(server.asked() >= 2, 9000);
        QTRY_COMPARE(player.thread.figures().reconnections, 1);
        QCOMPARE(player.statuses, QList<int>{FFmpegThread::Playing});
    }

    /// What a box does that is told to send another codec.
    void otherCodecIsOpenedAnew()
    {
        const QByteArray film = readFile(m_clips.live());
        const QByteArray other =
            readFile(m_clips.make("other.ts", Small + " -t 4 -c:v libx265 -tune zerolatency "
                                                      "-x265-params log-level=none:keyint=25"));
        ScriptedServer server(TEST_BLOCK ".7", httpReply("video/mp2t", film));
        Player player(server.url("http"));
        QTRY_VERIFY_WITH_TIMEOUT(player.pictures > 1, 5000);
        server.setReply(httpReply("video/mp2t", other));
        QTimer sender;
        const int piece = other.size() / 188 / 20 * 188;
        int sent = 0;
        connect(&sender, &QTimer::timeout, &sender, [&] {
            server.send(other.mid(sent, piece));
            sent = sent + piece < other.size() ? sent + piece : 0;
        });
        sender.start(200);
        QTRY_VERIFY_WITH_TIMEOUT(player.thread.figures().codec.startsWith("hevc"), 10000);
        QTRY_COMPARE(player.thread.tries(), 0);
        QCOMPARE(player.statuses, QList<int>{FFmpegThread::Playing});
    }

    /// FFmpeg would wait for the number that it has come to, for as long as the source had played.
    void playlistThatCountsAnewIsOpenedAgain()
    {
        PieceServer server(TEST_BLOCK ".8",
                           readFile(m_clips.make("piece.ts", Small + " -t 2 -c:v libx264")));
        Player player(server.url("http", "a.m3u8"));
        QTRY_VERIFY_WITH_TIMEOUT(player.pictures > 1, 5000);
        server.countFrom(1);
        QTRY_COMPARE_WITH_TIMEOUT(player.thread.figures().reconnections, 1, 30000);
        const int before = player.pictures;
        QTRY_VERIFY_WITH_TIMEOUT(player.pictures > before + 10, 5000);
        QCOMPARE(player.statuses, QList<int>{FFmpegThread::Playing});
    }

    void recordingGoesOnWhereItWas()
    {
        const QByteArray film = readFile(countingFilm(m_clips, "count.mp4", "-movflags faststart"));
        FileServer server(TEST_BLOCK ".4", film);
        server.most = film.size() / 2;
        Player player(server.url("http", "a.mp4"));
        QList<int> numbers;
        connect(&player.thread, &FFmpegThread::receiveImage, &player.context,
                [&] { numbers << numberOf(player.last); });
        QTRY_VERIFY_WITH_TIMEOUT(player.thread.tries() > 0, 8000);
        QTRY_VERIFY_WITH_TIMEOUT(player.thread.isAtEnd(), 12000);
        QCOMPARE(player.thread.figures().reconnections, 1);
        QVERIFY2(std::is_sorted(numbers.cbegin(), numbers.cend()), "pictures came twice");
        QVERIFY2(numbers.size() + player.thread.droppedPictures() >= 198,
                 qPrintable(QString::number(numbers.size())));
        // Not in a hurry.
        QVERIFY2(player.clock.elapsed() > 7500,
                 qPrintable(QString::number(player.clock.elapsed())));
        QCOMPARE(player.statuses, QList<int>{FFmpegThread::Playing});
    }

    /// Opened, closed, stopped and looked at in all states, by two threads.
    void racesEndWell()
    {
        const QByteArray film = readFile(m_clips.live());
        const ScriptedServer live(TEST_BLOCK ".5", httpReply("video/mp2t", film));
        const ScriptedServer silent(TEST_BLOCK ".6");
        const QStringList sources{m_clips.two(), live.url("http"), silent.url("http"),
                                  "http://" TEST_BLOCK ".5:9/x"};
        const int rounds = qMax(60, qEnvironmentVariableIntValue("TARN_RACES"));
        QRandomGenerator random(7);
        for (int n = 0; n < rounds; ++n) {
            Player player(sources.at(n % sources.size()));
            std::atomic<bool> ends{false};
            std::atomic<bool> isSane{true};
            std::thread other([&] {
                for (int size = 10; !ends; size = size % 300 + 1) {
                    player.thread.setArea({{size, size}, 1});
                    const ShownPicture shown = player.thread.shown();
                    if ((!shown.isNull() && shown.toImage().isNull()) ||
                        player.thread.silentMs() < 0 || player.thread.tries() < 0)
                        isSane = false;
                    std::this_thread::sleep_for(std::chrono::milliseconds(1));
                }
            });
            QTest::qWait(int(random.bounded(n % 10 == 0 ? 600 : 60)));
            if (n % 3 == 0)
                player.thread.requestStop();
            else
                player.thread.stop();
            const int told = player.statuses.size();
            ends = true;
            other.join();
            QVERIFY(isSane);
            QVERIFY(player.thread.wait(3000));
            // Signals that were under way may follow; none of them is new.
            QTest::qWait(1);
            QVERIFY(player.statuses.size() <= told + 1);
        }
        QTRY_COMPARE(live.connections() + silent.connections(), 0);
    }

private:
    Clips m_clips;
};

QTEST_GUILESS_MAIN(tst_LivePlayback)
#include "tst_live_playback.moc"

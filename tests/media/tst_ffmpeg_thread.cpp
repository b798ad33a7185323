// SPDX-License-Identifier: MIT
#include "media/pacing.h"
#include "tests/support/clips.h"
#include "tests/support/player.h"
#include "tests/support/process.h"
#include "tests/support/scripted_server.h"
#include "tests/support/stopwatch.h"
#include "tests/support/table.h"

#include <memory>

/// Opening, waiting, ending: the life of a session.
class tst_FFmpegThread : public QObject
{
    Q_OBJECT

private slots:
    void playsToTheEndAndStaysThere()
    {
        const QString file = m_clips.two();
        Player player(file);
        QTRY_COMPARE_WITH_TIMEOUT(player.pictures, 50, 8000);
        QVERIFY2(player.clock.elapsed() > 1900,
                 qPrintable(QString::number(player.clock.elapsed())));
        QCOMPARE(player.statuses, QList<int>{FFmpegThread::Playing});
        QTRY_VERIFY(player.thread.isAtEnd());
        QCOMPARE(player.thread.droppedPictures(), 0);
        QCOMPARE(player.last.size(), QSize(320, 180));
        QCOMPARE(player.last.format(), QImage::Format_RGB32);
        QVERIFY(difference(player.last, Clips::picture(file, 49), 8) < 50);

        // It waits there without burning the processor.
        const double before = processorSeconds();
        QTest::qWait(1500);
        const double used = (processorSeconds() - before) / 1.5;
        VERIFY_BELOW(used, 0.1);
        QVERIFY(player.thread.isRunning());
        Stopwatch clock;
        player.thread.stop();
        QCOMPARE(player.statuses.last(), int(FFmpegThread::Stopped));
        QVERIFY(player.thread.wait(500));
        QVERIFY(clock.elapsed() < 200);
    }

    /// What the decoder has held back for reordering comes neither late nor all at once.
    void endsAtItsPace()
    {
        const QString file = m_clips.two();
        QVector<qint64> last;
        bool isEven = false;
        // A busy computer may spoil a round.
        for (int round = 0; round < 3 && !isEven; ++round) {
            last.clear();
            Player player(file);
            QObject::connect(&player.thread, &FFmpegThread::receiveImage, &player.context,
                             [&] { last << player.clock.elapsed(); });
            QTRY_VERIFY_WITH_TIMEOUT(player.thread.isAtEnd(), 8000);
            QTest::qWait(20);
            last = last.mid(last.size() - 6);
            isEven = last.size() == 6 && last.at(5) - last.at(4) < 100 &&
                     last.at(5) - last.at(3) > 30 && last.at(5) - last.at(0) > 120;
        }
        qInfo() << "the last pictures, in ms:" << last;
        QVERIFY(isEven);
    }

    void cannotBePlayed_data()
    {
        columns<QString, bool>("url", "mayComeLater");
        const auto never = [](const char* name, const QString& url) { row(name, url, false); };
        never("no file", m_clips.path("nowhere.mp4"));
        never("no film", writeFile(m_clips.path("text.mp4"), "no film at all\n"));
        never("nothing", writeFile(m_clips.path("empty.mp4"), {}));
        never("only sound", m_clips.make("sound.m4a", "-f lavfi -i sine -t 1 -c:a aac"));
        row("refusing server", "http://" TEST_BLOCK ".1:9/x", true);
        never("no such protocol", "nosuch://" TEST_BLOCK ".1/x");
        row("no address", "rtsp://", true);
        never("empty", "");
        // A film whose sound nobody can decode: the name of the codec overwritten in the file.
        QByteArray film = readFile(
            m_clips.make("sound.mkv", Small + " -f lavfi -i sine -t 1 -c:v libx264 -c:a aac"));
        film.replace("A_AAC", "A_XYZ");
        never("unknown sound", writeFile(m_clips.path("unknown.mkv"), film));
    }
    void cannotBePlayed()
    {
        const auto [url, mayComeLater] = cells<QString, bool>();
        Player player(url);
        QTRY_COMPARE_WITH_TIMEOUT(player.statuses, QList<int>{FFmpegThread::OpenFailed}, 5000);
        if (mayComeLater)
            // Windows asks three times before it believes that a port is closed.
            QTRY_VERIFY_WITH_TIMEOUT(player.thread.tries() > 2, 9000);
        else
            QTRY_VERIFY(player.thread.isFinished());
        QCOMPARE(player.statuses.size(), 1);
        QCOMPARE(player.pictures, 0);
    }

    void unusualSources_data()
    {
        // "pictures": within three seconds, at least
        columns<QString, int>("file", "pictures");
        row("no time stamps", m_clips.make("raw.h264", Small + " -t 1 -c:v libx264"), 20);
        row("late time stamps",
            m_clips.make("late.ts", Small + " -t 1 -c:v libx264 -output_ts_offset 5000"), 20);
        row("negative time stamps",
            m_clips.make("negative.mp4", "-ss 0.7 -i " + m_clips.two() + " -c copy"), 20);
        const QByteArray film = readFile(m_clips.make("one.ts", Small + " -t 1 -c:v libx264"));
        row("stamps begin again", writeFile(m_clips.path("twice.ts"), film + film), 40);
        row("cover and sound",
            m_clips.make("cover.m4a",
                         "-f lavfi -i sine -f lavfi -i testsrc2=size=64x64 -t 1 "
                         "-frames:v 1 -c:a aac -c:v mjpeg -disposition:v attached_pic"),
            1);
        row("one picture", m_clips.make("one.png", Small + " -frames:v 1"), 1);
        row("odd size",
            m_clips.make("odd.mkv", "-f lavfi -i testsrc2=size=67x35:rate=25 -t 1 -c:v ffv1"), 20);
        QByteArray damaged = film;
        for (int n = 3000; n < damaged.size(); n += 997)
            damaged[n] = char(n);
        row("damaged", writeFile(m_clips.path("damaged.ts"), damaged), 1);
        row("cut off", writeFile(m_clips.path("cut.ts"), film.left(film.size() / 2)), 5);
    }
    void unusualSources()
    {
        const auto [file, pictures] = cells<QString, int>();
        Player player(file);
        QTRY_VERIFY2_WITH_TIMEOUT(player.pictures >= pictures,
                                  qPrintable(QString::number(player.pictures)), 3000);
        QCOMPARE(player.statuses, QList<int>{FFmpegThread::Playing});
        QVERIFY(!player.last.isNull());
    }

    void silentServerIsGivenUp_data()
    {
        columns<QString>("scheme");
        row("rtsp", "rtsp");
        row("http", "http");
        row("rtmp", "rtmp");
    }
    void silentServerIsGivenUp()
    {
        QFETCH(QString, scheme);
        const ScriptedServer server(TEST_BLOCK ".2");
        Player player(server.url(scheme));
        QTRY_COMPARE_WITH_TIMEOUT(player.statuses, QList<int>{FFmpegThread::OpenFailed}, 6000);
        QVERIFY2(qAbs(player.clock.elapsed() - 3000) < 700,
                 qPrintable(QString::number(player.clock.elapsed())));
        // Not for good.
        QTRY_COMPARE_WITH_TIMEOUT(player.thread.tries(), 2, 6000);
        player.thread.stop();
        QTRY_COMPARE(server.connections(), 0);
    }

    void stopEndsEveryWait_data()
    {
        columns<QString, bool>("scheme", "afterPictures");
        row("opening rtsp", "rtsp", false);
        row("opening http", "http", false);
        row("reading http", "http", true);
        row("waiting for a datagram", "udp", false);
    }
    void stopEndsEveryWait()
    {
        const auto [scheme, afterPictures] = cells<QString, bool>();
        const QByteArray film = readFile(m_clips.live());
        const ScriptedServer server(TEST_BLOCK ".3",
                                    afterPictures ? httpReply("video/mp2t", film) : QByteArray());
        Player player(server.url(scheme, ""));
        if (afterPictures)
            QTRY_VERIFY_WITH_TIMEOUT(player.thread.silentMs() > 300 && player.pictures > 1, 9000);
        else
            QTest::qWait(400);
        Stopwatch clock;
        player.thread.stop();
        QCOMPARE(player.statuses.last(), int(FFmpegThread::Stopped));
        QVERIFY(player.thread.wait(2000));
        VERIFY_BELOW(clock.elapsed(), 300);
        QTest::qWait(20);
        // What was stopped has not failed.
        QVERIFY(!player.statuses.contains(FFmpegThread::OpenFailed));
    }

    void networkStreamsPlay_data()
    {
        columns<QString, QString, QString>("format", "target", "source");
        row("srt", "mpegts", "srt://" TEST_BLOCK ".7:9710?mode=listener",
            "srt://" TEST_BLOCK ".7:9710");
        row("udp", "mpegts", "udp://" TEST_BLOCK ".7:9711", "udp://" TEST_BLOCK ".7:9711");
        row("tcp", "mpegts", "tcp://" TEST_BLOCK ".7:9712?listen=1", "tcp://" TEST_BLOCK ".7:9712");
        row("rtmp", "flv", "rtmp://" TEST_BLOCK ".7:9713/live/1", "");
        row("http", "mpegts", "http://" TEST_BLOCK ".7:9714/live.ts", "");
    }
    void networkStreamsPlay()
    {
        const auto [format, target, source] = cells<QString, QString, QString>();
        QStringList arguments = QString("-v error -nostdin -re " + Small +
                                        " -t 30 -c:v libx264 -g 10 -tune zerolatency -f " + format)
                                    .split(' ');
        // Some servers have to be told to be one.
        if (source.isEmpty())
            arguments << "-listen"
                      << "1";
        QProcess server;
        server.setStandardErrorFile(QProcess::nullDevice());
        server.start("ffmpeg", arguments << target);
        QVERIFY(server.waitForStarted());
        QTest::qWait(1000);
        Player player(source.isEmpty() ? target : source);
        QTRY_VERIFY_WITH_TIMEOUT(player.pictures > 20, 12000);
        // It may have come before the server.
        player.statuses.removeOne(FFmpegThread::OpenFailed);
        QCOMPARE(player.statuses, QList<int>{FFmpegThread::Playing});
        player.thread.stop();
        QVERIFY(player.thread.wait(500));
        server.kill();
        server.waitForFinished();
    }

    void growingFileGoesOn()
    {
        const QByteArray film = readFile(m_clips.live());
        const QString path = writeFile(m_clips.path("growing.ts"), film);
        Player player(path);
        QTRY_VERIFY_WITH_TIMEOUT(player.thread.isAtEnd(), 9000);
        const int before = player.pictures;
        QCOMPARE(before + player.thread.droppedPictures(), 100);
        QFile file(path);
        QVERIFY(file.open(QIODevice::Append));
        file.write(film);
        file.close();
        Stopwatch clock;
        QTRY_VERIFY_WITH_TIMEOUT(player.pictures > before, 2000);
        VERIFY_BELOW(clock.elapsed(), 200);
        QVERIFY(!player.thread.isAtEnd());
        QTRY_COMPARE_WITH_TIMEOUT(player.pictures + player.thread.droppedPictures(), 200, 6000);
    }

    void roundsLeaveNothingBehind()
    {
        const QString file = m_clips.two();
        const ScriptedServer silent(TEST_BLOCK ".6");
        const auto rounds = [&](int count) {
            for (int n = 0; n < count; ++n) {
                auto player = std::make_unique<Player>(n % 4 == 3 ? silent.url("http") : file);
                // In all states: barely started, opening, playing.
                if (n % 4 == 0)
                    QTRY_VERIFY(player->pictures > 0);
                else
                    QTest::qWait(n % 4 * 3);
                player->thread.stop();
            }
        };
        rounds(40);
        QTRY_COMPARE(silent.connections(), 0);
        QTest::qWait(100);
        const int threadsBefore = threads();
        const int files = openHandles();
        const qint64 before = memory();
        rounds(200);
        QTRY_COMPARE(silent.connections(), 0);
        // A library's own thread may have ended meanwhile, and the system lists one that was joined
        // for a moment longer.
        QTRY_VERIFY2(threads() <= threadsBefore, qPrintable(QString::number(threads())));
        QTRY_VERIFY2(openHandles() <= files, qPrintable(QString::number(openHandles())));
        const qint64 grown = (memory() - before) / 1024;
        qInfo("200 rounds: %lld kB more", static_cast<long long>(grown));
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
        // The allocator keeps a few megabytes more or less; one picture per round would be 46.
        VERIFY_BELOW(grown, 6000);
#endif
    }

    void pacing()
    {
        constexpr qint64 second = 1000000;
        Pacing file;
        file.start(10 * second);
        QCOMPARE(file.waitAfter(-second, 10 * second), 0); // its first stamp is the start
        QCOMPARE(file.waitAfter(0, 10 * second), second);  // early
        QCOMPARE(file.waitAfter(second, 13 * second), 0);  // late
        QCOMPARE(file.waitAfter(31 * second, 13 * second), 29 * second); // a slide show
        QCOMPARE(file.waitAfter(0, 42 * second), 0); // it begins again where it was
        QCOMPARE(file.waitAfter(second, 42 * second), second);
        for (const qint64 stamp :
             {std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max()})
            QCOMPARE(file.waitAfter(stamp, 42 * second), 0);
    }

private:
    Clips m_clips;
};

QTEST_GUILESS_MAIN(tst_FFmpegThread)
#include "tst_ffmpeg_thread.moc"

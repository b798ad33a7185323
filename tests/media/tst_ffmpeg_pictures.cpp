// SPDX-License-Identifier: MIT
#include "media/frame_pool.h"
#include "tests/support/clips.h"
#include "tests/support/player.h"
#include "tests/support/stopwatch.h"
#include "tests/support/table.h"

/// The pictures that a session hands out.
class tst_FFmpegPictures : public QObject
{
    Q_OBJECT

private slots:
    void looksAsItShould_data()
    {
        // "seen": what FFmpeg's own tool has to do to show it; it turns pictures by itself.
        columns<QString, QString, QString, QString>("size", "encoding", "type", "seen");
        const QString h264 = "-c:v libx264 -qp 4 ";
        const auto tagged = [&](const QString& format, const QString& space, const QString& range) {
            return QStringLiteral("-vf scale=out_color_matrix=%2:out_range=%3,format=%1 "
                                  "-colorspace %4 -color_range %3 ")
                       .arg(format, space, range, space == "bt601" ? "smpte170m" : space) +
                   h264;
        };
        const QString small = "320x180";
        row("BT.601 limited", small, tagged("yuv420p", "bt601", "tv"), "mkv", "null");
        row("BT.601 full", small, tagged("yuv420p", "bt601", "pc"), "mkv", "null");
        row("BT.709 limited", small, tagged("yuv420p", "bt709", "tv"), "mkv", "null");
        row("BT.709 full", small, tagged("yuv420p", "bt709", "pc"), "mkv", "null");
        row("4:2:2, ten bits", small, tagged("yuv422p10le", "bt709", "tv"), "mkv", "null");
        row("4:4:4 full", small, tagged("yuv444p", "bt709", "pc"), "mkv", "null");
        row("says nothing", small, h264 + "-pix_fmt yuv420p", "mkv", "null");
        row("HD says nothing", "1280x720", h264 + "-pix_fmt yuv420p", "mkv",
            "scale=in_color_matrix=bt709");
        row("HD of its own colours", "1280x720", tagged("yuv420p", "bt601", "tv"), "mkv", "null");
        row("RGB", small, "-c:v ffv1 -pix_fmt bgr0", "mkv", "null");
        row("alpha", small, "-vf format=yuva420p,colorchannelmixer=aa=0.3 -c:v ffv1", "mkv",
            "null");
        row("rows end inside a vector", "854x480", h264 + "-pix_fmt yuv420p", "mkv", "null");
        row("odd size", "341x193", "-c:v ffv1 -pix_fmt yuv420p", "mkv",
            "scale=flags=fast_bilinear,format=bgra");
        row("interlaced", small, "-c:v mpeg2video -q:v 1 -flags +ildct+ilme", "ts", "null");
        row("MPEG-4", small, "-c:v mpeg4 -q:v 1", "mp4", "null");
        row("MJPEG", small, "-c:v mjpeg -q:v 1 -pix_fmt yuvj420p", "avi", "null");
        row("wide pixels", "720x576", "-vf setsar=64/45 -c:v mpeg2video -q:v 1", "ts",
            "scale=1024:576:flags=fast_bilinear");
        row("narrow pixels", "720x480", "-vf setsar=8/9 -c:v mpeg2video -q:v 1", "ts",
            "scale=720:540:flags=fast_bilinear");
        row("absurd pixels", small, "-vf setsar=1/1000 -pix_fmt yuv420p " + h264, "mkv", "null");
        for (const char* angle : {"90", "180", "270"})
            row(angle, small,
                h264 + "-pix_fmt yuv420p -bsf:v h264_metadata=display_orientation=insert:rotate=" +
                    angle,
                "mkv", "null");
        row("mirrored", small,
            h264 + "-pix_fmt yuv420p -bsf:v h264_metadata=display_orientation=insert:"
                   "flip=horizontal:rotate=0",
            "mkv", "null");
    }
    void looksAsItShould()
    {
        const auto [size, encoding, type, seen] = cells<QString, QString, QString, QString>();
        const QString file = m_clips.make(
            QString("looks-%1.%2").arg(qHash(size + encoding)).arg(type),
            "-f lavfi -i smptehdbars=size=" + size + ":rate=25 -frames:v 3 " + encoding);
        const QByteArray theirs = Clips::picture(file, 0, seen);
        Player player(file);
        QTRY_VERIFY(player.pictures > 0);
        const int bytes = player.last.width() * player.last.height() * 4;
        QCOMPARE(theirs.size(), bytes);
        // Edges may differ a little more: the reference blends colours between pixels.
        VERIFY_BELOW(difference(player.last, theirs, 4), bytes / 40);
        VERIFY_BELOW(difference(player.last, theirs, 4, player.last.width() - 8),
                     player.last.height() * 8 * 4 / 10);
        QCOMPARE(qAlpha(*reinterpret_cast<const QRgb*>(player.last.constScanLine(0))), 255);
    }

    void leavesOutWhatNoScreenShows()
    {
        const QString film = m_clips.make(
            "large.avi", "-f lavfi -i testsrc2=size=1280x720:rate=25 -frames:v 3 -c:v mjpeg");
        for (const auto& [screen, shown] :
             {std::pair(QSize(1281, 720), QSize(1280, 720)), {{640, 360}, {640, 360}}}) {
            FFmpegThread thread;
            QSize size;
            QObject context;
            connect(&thread, &FFmpegThread::receiveImage, &context,
                    [&size = size](const QImage& image) { size = image.size(); });
            thread.setUrl(film);
            thread.setScreen(screen);
            thread.play();
            QTRY_COMPARE(size, shown);
        }
    }

    /// The scaler writes whole vectors: rows and pictures end anywhere in one.
    void fitsAnyArea_data()
    {
        columns<QString>("angle");
        for (const char* angle : {"0", "90", "180"})
            row(angle, angle);
    }
    void fitsAnyArea()
    {
        const auto [angle] = cells<QString>();
        const QString grey = m_clips.make("grey.mov", "-f lavfi -i color=gray:size=64x96:rate=25 "
                                                      "-frames:v 3 -c:v libx264");
        // FFmpeg's tool writes the angle only of pictures that it copies.
        Player player(m_clips.make("grey-" + angle + ".mov",
                                   "-i " + grey + " -c copy -metadata:s:v rotate=" + angle));
        QTRY_VERIFY(player.thread.isAtEnd());
        const QSize whole = angle == "90" ? QSize(96, 64) : QSize(64, 96);
        QTRY_COMPARE(player.last.size(), whole);
        for (int edge : {1, 2, 3, 5, 2, 7, 9, 2, 33, 77}) {
            const ShownArea area{{edge, edge + 30}, 1};
            player.thread.setArea(area);
            QTRY_COMPARE(player.last.size(), area.sizeOf(whole));
            for (int y = 0; y < player.last.height(); ++y)
                for (int x = 0; x < player.last.width(); ++x)
                    VERIFY_BELOW(qAbs(qGray(player.last.pixel(x, y)) - 128), 4);
        }
    }

    void followsAChangeOfSize()
    {
        const QString two =
            m_clips.make("wide.ts", "-f lavfi -i testsrc2=size=480x200:rate=25 -t 1 "
                                    "-pix_fmt yuv422p -c:v libx264");
        const QString one = m_clips.make("first.ts", Small + " -t 1 -c:v libx264");
        Player player(writeFile(m_clips.path("both.ts"), readFile(one) + readFile(two)));
        QTRY_COMPARE(player.last.size(), QSize(320, 180));
        QTRY_COMPARE(player.last.size(), QSize(480, 200));
        QTRY_VERIFY(player.thread.isAtEnd());
        const QByteArray theirs = Clips::picture(two, 24);
        QCOMPARE(theirs.size(), 480 * 200 * 4);
        // The last pictures may still be on their way from the thread.
        QTRY_VERIFY(difference(player.last, theirs, 8) < 480 * 200 * 4 / 40);
    }

    /// Each picture has one grey all over, and another one than its neighbours.
    void picturesAreNeverTorn()
    {
        const QString file =
            m_clips.make("greys.mkv", "-f lavfi -i color=size=640x360:rate=200,format=gray,"
                                      "geq=lum=mod(N*37\\,200)+20 -t 2 -c:v ffv1");
        QObject context;
        FFmpegThread thread;
        int checked = 0;
        bool torn = false;
        QVector<QImage> held;
        const auto isOneGrey = [](const QImage& image) {
            const QRgb first = image.pixel(0, 0);
            for (int y = 0; y < image.height(); ++y)
                for (int x = 0; x < image.width(); x += 7)
                    if (image.pixel(x, y) != first)
                        return false;
            return true;
        };
        connect(&thread, &FFmpegThread::receiveImage, &context, [&](const QImage& image) {
            held << image;
            if (held.size() < 3)
                return;
            // While the thread goes on; the oldest is about to be used again.
            for (const QImage& each : qAsConst(held))
                torn = torn || !isOneGrey(each);
            held.removeFirst();
            ++checked;
        });
        thread.setUrl(file);
        thread.play();
        QTRY_VERIFY_WITH_TIMEOUT(thread.isAtEnd(), 20000);
        QVERIFY(!torn);
        QVERIFY2(checked > 20, qPrintable(QString::number(checked)));
        // Images outlive the thread that made them.
        thread.stop();
        QVERIFY(thread.wait(500));
        QVERIFY(isOneGrey(held.last()));
    }

    void slowReceiverHoldsFewPictures()
    {
        const QString file = m_clips.two();
        QImage last;
        int atOnce = 0;
        QObject context;
        FFmpegThread thread;
        connect(&thread, &FFmpegThread::receiveImage, &context, [&](const QImage& image) {
            ++atOnce;
            last = image;
        });
        thread.setUrl(file);
        thread.play();
        // Nobody serves events until the film is over.
        QThread::msleep(2600);
        QCoreApplication::sendPostedEvents();
        QVERIFY2(atOnce > 0 && atOnce <= FramePool::Limit, qPrintable(QString::number(atOnce)));
        QVERIFY(thread.droppedPictures() > 30);
        // The newest one wins in the end.
        QTRY_VERIFY(thread.isAtEnd());
        const QByteArray newest = Clips::picture(file, 49);
        const QByteArray before = Clips::picture(file, 48);
        QTRY_VERIFY(difference(last, newest, 8) * 2 < difference(last, before, 8));
    }

private:
    Clips m_clips;
};

QTEST_GUILESS_MAIN(tst_FFmpegPictures)
#include "tst_ffmpeg_pictures.moc"

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
    void coloursAreThoseOfTheSource_data()
    {
        columns<QString>("encoding");
        const QString h264 = "-c:v libx264 -qp 4 -pix_fmt ";
        const auto tagged = [&](const QString& format, const QString& space, const QString& range) {
            return QStringLiteral(
                       "-vf scale=out_color_matrix=%2:out_range=%3,format=%1 -colorspace %4 "
                       "-color_range %3 -c:v libx264 -qp 4")
                .arg(format, space, range, space == "bt601" ? "smpte170m" : space);
        };
        row("BT.601 limited", tagged("yuv420p", "bt601", "tv"));
        row("BT.601 full", tagged("yuv420p", "bt601", "pc"));
        row("BT.709 limited", tagged("yuv420p", "bt709", "tv"));
        row("BT.709 full", tagged("yuv420p", "bt709", "pc"));
        row("4:2:2, ten bits", tagged("yuv422p10le", "bt709", "tv"));
        row("4:4:4 full", tagged("yuv444p", "bt709", "pc"));
        row("says nothing", h264 + "yuv420p");
        row("RGB", "-c:v ffv1 -pix_fmt bgr0");
    }
    void coloursAreThoseOfTheSource()
    {
        QFETCH(QString, encoding);
        const QString file =
            m_clips.make(QString("colours-%1.mkv").arg(qHash(encoding)),
                         "-f lavfi -i smptehdbars=size=320x180:rate=25 -frames:v 3 " + encoding);
        const QByteArray theirs = Clips::picture(file, 0);
        QCOMPARE(theirs.size(), 320 * 180 * 4);
        Player player(file);
        QTRY_VERIFY(player.pictures > 0);
        // Edges may differ a little more: the reference blends colours between pixels.
        VERIFY_BELOW(difference(player.last, theirs, 4), 320 * 180 * 4 / 40);
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
        const QByteArray theirs = Clips::picture(file, 49);
        QTRY_VERIFY(difference(last, theirs, 8) < 50);
    }

private:
    Clips m_clips;
};

QTEST_GUILESS_MAIN(tst_FFmpegPictures)
#include "tst_ffmpeg_pictures.moc"

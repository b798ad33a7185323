// SPDX-License-Identifier: MIT
#include "tests/support/box_client.h"
#include "tests/support/plugged_box.h"

#include <QTest>
#include <QWebSocket>

using namespace sim;

namespace
{

const char* const home = TEST_BLOCK ".1";

/// A client of an event feed: what it has been told.
class Listener
{
public:
    explicit Listener(quint16 port, bool asks = true)
    {
        QObject::connect(&m_socket, &QWebSocket::connected, &m_socket, [this, asks] {
            if (asks)
                m_socket.sendTextMessage("hx_meta=on");
        });
        QObject::connect(&m_socket, &QWebSocket::textMessageReceived, &m_socket,
                         [this](const QString& text) { texts << text; });
        m_socket.open(QUrl(QString("ws://%1:%2").arg(home).arg(port)));
    }

    bool isConnected() const { return m_socket.state() == QAbstractSocket::ConnectedState; }
    int recordMs() const
    {
        const QByteArray last = texts.isEmpty() ? QByteArray() : texts.last().toUtf8();
        return QJsonDocument::fromJson(last).object().value("record_ms").toInt();
    }

    QStringList texts;

private:
    QWebSocket m_socket;
};

/// What ffprobe says about a file: "h264 aac 2.0"; a stream of MPEG-TS has its codecs twice.
QString probe(const QString& url)
{
    QProcess process;
    process.start("ffprobe", {"-v", "error", "-analyzeduration", "1000000", "-show_entries",
                              "stream=codec_name:format=duration", "-of", "csv=p=0", url});
    process.waitForFinished(20000);
    return QString::fromLatin1(process.readAllStandardOutput()).simplified() +
           QString::fromLatin1(process.readAllStandardError());
}

} // namespace

/// What moves on a box: recordings, the live picture and the event feeds.
class tst_BoxMedia : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_box = pluggedBox(home); }
    void cleanup() { m_box.reset(); }

    void recordsARealFilm()
    {
        for (const QString& name : {QString("a.mp4"), QString("b.mov")}) {
            const QStringList before = m_box->recordings();
            QCOMPARE(command(home, "record_on&file_name=" + name).status(), "success");
            QCOMPARE(m_box->activity().recordingFile, name);
            QCOMPARE(m_box->recordings(), before);
            QCOMPARE(command(home, "record_off").status(), "success");
            QCOMPARE(m_box->recordings(), QStringList{name} + before);
            const QString seen = probe(apiUrl(home, "/media/" + name));
            QVERIFY2(seen.startsWith("h264 aac "), qPrintable(seen));
            QVERIFY2(seen.section(' ', 2).toDouble() > 0.3, qPrintable(seen));
        }
    }

    void recordingIsCountedOnTheFeed()
    {
        Listener listener(8001);
        QTRY_COMPARE(m_box->streamListeners(), 1);
        QCOMPARE(command(home, "record_on&file_name=a.mp4").status(), "success");
        QTRY_VERIFY(listener.recordMs() > 0);
        const int first = listener.recordMs();
        QTRY_VERIFY(listener.recordMs() >= first + 300);
        QVERIFY(listener.recordMs() < 10000);
        QCOMPARE(command(home, "record_off").status(), "success");
        QTRY_VERIFY(listener.texts.last().contains("\"event\":\"stream\""));
    }

    void recordsOneThingAtATime()
    {
        QCOMPARE(command(home, "record_on&file_name=a.mp4").status(), "success");
        QCOMPARE(command(home, "record_on&file_name=b.mp4").status(), "failed");
        QCOMPARE(command(home, "record_off").status(), "success");
        QCOMPARE(command(home, "record_on&file_name=a.mp4").status(), "failed"); // the name is used
        QCOMPARE(m_box->recordings(), QStringList{"a.mp4"});
    }

    void powerFailureLosesTheRecording()
    {
        QCOMPARE(command(home, "record_on&file_name=a.mp4").status(), "success");
        m_box->unplug();
        QVERIFY(m_box->plugIn());
        QCOMPARE(m_box->activity().recordingFile, "");
        QCOMPARE(command(home, "record_off").status(), "failed");
        QVERIFY(m_box->recordings().isEmpty());
        QCOMPARE(command(home, "record_on&file_name=a.mp4").status(), "success");
    }

    void livePictureCanBeWatched()
    {
        const CurlResult started = command(home, "stream_on&stream_url='rtmp://h/app?k%3Dv'");
        QCOMPARE(started.status(), "success");
        QCOMPARE(m_box->activity().streamTarget, "rtmp://h/app?k=v");
        const QString url = started.json().value("pull_url").toString();
        QVERIFY(url.startsWith("http://" TEST_BLOCK ".1:"));
        QCOMPARE(probe(url), "h264 aac h264 aac N/A");
        QCOMPARE(probe(url), "h264 aac h264 aac N/A"); // for a second viewer just as well
        const CurlResult srt =
            command(home, "stream_on&srt_mode=listener&srt_port=9000&stream_id='cam1'");
        QCOMPARE(srt.json().value("pull_url").toString(), "srt://" TEST_BLOCK ".1:9000");
        for (int caller = 0; caller < 2; ++caller)
            QTRY_COMPARE_WITH_TIMEOUT(probe("srt://" TEST_BLOCK ".1:9000"), "h264 aac h264 aac N/A",
                                      20000);
        QCOMPARE(command(home, "stream_off").status(), "success");
        QTRY_VERIFY(isRefused(home, 8090));
    }

    void onlyWhoAsksIsTold()
    {
        Listener media(8002);
        Listener mute(8002, false);
        Listener stream(8001);
        QTRY_COMPARE(m_box->mediaListeners(), 1);
        QTRY_COMPARE(m_box->streamListeners(), 1);
        QTRY_VERIFY(mute.isConnected());
        m_box->sendMediaEvent("<b>media</b>");
        m_box->sendStreamEvent("not even JSON");
        QTRY_VERIFY(media.texts.contains("<b>media</b>"));
        QTRY_VERIFY(stream.texts.contains("not even JSON"));
        QVERIFY(!media.texts.contains("not even JSON"));
        QTRY_VERIFY(
            media.texts.join("").contains("audio_db")); // and what the box has to say itself
        QVERIFY(mute.texts.isEmpty());
    }

private:
    std::unique_ptr<VirtualBox> m_box;
};

QTEST_GUILESS_MAIN(tst_BoxMedia)
#include "tst_box_media.moc"

// SPDX-License-Identifier: MIT
#include "media/event_sockets.h"
#include "tests/support/plugged_box.h"
#include "tests/support/table.h"

#include <QRegularExpression>
#include <QSignalSpy>

#include <memory>

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
        row("none", R"({"x": 1})", "00:00:00.000");
        row("a list", R"({"record_ms": [5]})", "00:00:00.000");
        row("no JSON", "hello", "00:00:00.000");
    }
    void recordTime()
    {
        const auto [message, time] = cells<QString, QString>();
        const QString shown = recordTimeOf(message);
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

    void refusingBoxIsAskedAtAPace()
    {
        EventSockets sockets;
        QSignalSpy tries(&sockets.media(), &EventSocket::reconnecting);
        sockets.connectTo(TEST_BLOCK ".9");
        QTest::qWait(2000);
        const int limit = 2000 / EventSocket::AttemptPaceMs + 2;
        QVERIFY2(tries.size() >= 3 && tries.size() <= limit,
                 qPrintable(QString::number(tries.size())));
        // It is found once it is there.
        const auto late = pluggedBox(TEST_BLOCK ".9");
        QTRY_COMPARE(late->mediaListeners(), 1);
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

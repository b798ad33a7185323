// SPDX-License-Identifier: MIT
#include "tests/support/stopwatch.h"
#include "tests/support/window_fixture.h"

#include "ui/monitor/event_pane.h"

#include <QLabel>
#include <QPlainTextEdit>

/// The event panes of the monitor.
class tst_Events : public QObject, WindowFixture
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_box = addBox(7);
        openWith({7});
    }

    void panesFollowTheSelectedBox()
    {
        auto* stream = child<QPlainTextEdit>("plainTextEdit_Stream");
        auto* media = child<QPlainTextEdit>("plainTextEdit_Media");
        clickRow(7);
        QTRY_COMPARE(m_box->mediaListeners(), 1);
        click("switch_monitor");
        QTRY_VERIFY(stream->isVisible());
        // Often, because the box's own messages without a time set the clock back to zero.
        QTimer recording;
        connect(&recording, &QTimer::timeout, this,
                [&] { m_box->sendStreamEvent(R"({"record_ms": 61500, "name": "<i>x</i>"})"); });
        recording.start(10);
        m_box->sendMediaEvent(QString(20000, 'm'));
        QTRY_VERIFY(stream->toPlainText().contains("<i>x</i>"));
        QTRY_COMPARE(child<QLabel>("recodeTime")->text(), QString("00:01:01.500"));
        recording.stop();
        // A message is shown whole up to a bound.
        QTRY_VERIFY(media->toPlainText().contains(QString(EventPane::LengthLimit, 'm')));
        QVERIFY(media->toPlainText().size() < 2 * EventPane::LengthLimit);
        QVERIFY(stream->isReadOnly());

        m_box->unplug();
        QTRY_VERIFY(stream->toPlainText().contains("尝试重新连接 ws://" TEST_BLOCK ".7:8001"));
        QCOMPARE(child<QLabel>("recodeTime")->text(), QString("00:00:00.000"));
        QVERIFY(m_box->plugIn());
        // Connected again: the pane begins afresh.
        QTRY_VERIFY(!stream->toPlainText().contains("尝试重新连接"));
    }

    void floodKeepsTheWindowQuick()
    {
        auto* media = child<QPlainTextEdit>("plainTextEdit_Media");
        QTRY_COMPARE(m_box->mediaListeners(), 1);
        QVERIFY(m_box->addFault("flood 2000"));
        QElapsedTimer gap;
        qint64 longest = 0;
        QTimer ticker;
        connect(&ticker, &QTimer::timeout, this, [&] { longest = qMax(longest, gap.restart()); });
        gap.start();
        ticker.start(1);
        QTRY_COMPARE_WITH_TIMEOUT(media->blockCount(), int(EventPane::LineLimit), 15000);
        QTest::qWait(1000);
        QCOMPARE(media->blockCount(), int(EventPane::LineLimit));
        m_box->clearFaults();
        // Generous for a loaded test machine; the figure is in the output.
        qInfo("longest gap during a flood: %lld ms", longest);
        VERIFY_BELOW(longest, 500);
    }

private:
    sim::VirtualBox* m_box = nullptr;
};

QTEST_MAIN(tst_Events)
#include "tst_events.moc"

// SPDX-License-Identifier: MIT
#include "tests/support/table.h"
#include "tests/support/window_fixture.h"
#include "ui/devices/device_absence.h"
#include "ui/devices/own_networks.h"

#include <QLabel>
#include <QToolTip>

/// What is said of a box that does not answer, and that nothing is when it does.
class tst_DeviceAbsence : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_fixture = std::make_unique<WindowFixture>(); }
    void cleanup() { m_fixture.reset(); }

    void ownAddressesExplain_data()
    {
        columns<QStringList, int, QString>("own", "verdict", "details");
        using Verdict = OwnNetworks::Verdict;
        const QString lo = "lo 127.0.0.1 8 loop";
        const auto line = [](const char* name, const QStringList& own, Verdict verdict,
                             const char* details) { row(name, own, int(verdict), details); };
        line("neighbour", {lo, "a 10.1.2.200 24 on"}, Verdict::Fit, "");
        line("no card", {}, Verdict::None, "");
        line("loopback only", {lo}, Verdict::None, "");
        line("other cards are out", {lo, "a 10.9.9.9 24 off"}, Verdict::None, "");
        line("cable out", {lo, "a 10.1.2.200 24 off", "b 10.9.9.9 24 on"}, Verdict::Unplugged, "a");
        line("one of two out", {"a 10.1.2.200 24 off", "b 10.1.2.201 24 on"}, Verdict::Fit, "");
        line("longer prefix", {lo, "a 10.1.2.200 25 on"}, Verdict::OtherSubnet, "10.1.2.200/25");
        line("shorter prefix", {lo, "a 10.200.2.2 8 on"}, Verdict::Fit, "");
        line("others", {"a 169.254.1.1 16 on", "b 10.1.3.1 24 on"}, Verdict::OtherSubnet,
             "169.254.1.1/16 10.1.3.1/24");
    }
    void ownAddressesExplain()
    {
        QFETCH(QStringList, own);
        QVector<OwnAddress> addresses;
        for (const QString& text : qAsConst(own)) {
            const QStringList words = text.split(' ');
            addresses.append({words[0], QHostAddress(words[1]), words[2].toInt(), words[3] != "off",
                              words[3] == "loop"});
        }
        const OwnNetworks judged = OwnNetworks::judge("10.1.2.7", addresses);
        QTEST(int(judged.verdict), "verdict");
        QTEST(judged.details.join(' '), "details");
        // The virtual boxes are neighbours of whatever runs them.
        QCOMPARE(int(OwnNetworks::judge(m_fixture->ip(7), ownAddresses()).verdict),
                 int(OwnNetworks::Verdict::Fit));
    }

    /// It answers ping, so it is online; what else it does shows while it is selected.
    void selectedBoxTellsItsFault_data()
    {
        columns<QString, QString>("fault", "port");
        row("closed", "refuse", "拒绝连接");
        row("silent", "silent on read", "可以连接，但没有完整应答");
        row("broken off", "hang-up 50 on read", "可以连接，但没有完整应答");
        row("error", "http-error 503 on read", "应答错误：HTTP 503");
        row("no JSON", "garbage on read", "应答无法识别");
    }
    void selectedBoxTellsItsFault()
    {
        QFETCH(QString, fault);
        QFETCH(QString, port);
        sim::VirtualBox* box = m_fixture->addBox(7);
        m_fixture->openKnowing({7});
        m_fixture->clickRow(7);
        QTRY_COMPARE(m_fixture->information().size(), 6);
        QCOMPARE(notes(), QStringList());
        QVERIFY(box->addFault(fault));
        m_fixture->clickRow(7);
        const QStringList expected = {"Ping=有应答", "端口8081=" + port};
        QTRY_COMPARE_WITH_TIMEOUT(notes(), expected, 20000);
        QVERIFY(m_fixture->item(7)->isOnline());
        // Nobody clicks: it is looked at while it is selected.
        box->clearFaults();
        QTRY_COMPARE_WITH_TIMEOUT(notes(), QStringList(), 12000);
    }

    void awayBoxTellsSinceWhen()
    {
        sim::VirtualBox* box = m_fixture->addBox(7);
        sim::VirtualBox* deaf = m_fixture->addBox(8);
        m_fixture->addBox(9);
        m_fixture->openKnowing({7, 8, 9});
        m_fixture->clickRow(7);
        QTRY_COMPARE(m_fixture->information().size(), 6);
        QVERIFY(deaf->addFault("no-ping"));
        box->unplug();
        QTRY_VERIFY_WITH_TIMEOUT(!m_fixture->item(7)->isOnline(), 15000);
        const QString away =
            "自" + m_fixture->item(7)->lastSeen().toString("HH:mm:ss") + "起无应答";
        QTRY_COMPARE_WITH_TIMEOUT(notes(), (QStringList{"Ping=" + away, "端口8081=拒绝连接"}),
                                  12000);
        QVERIFY(tipOf(7).contains("Ping：" + away));
        // The panels say it, too, and what they show looks as old as it is.
        auto* state = m_fixture->child<QLabel>("config_state");
        QVERIFY2(state->text().startsWith("设备离线，" + away + " · 端口8081：拒绝连接"),
                 qPrintable(state->text()));
        QVERIFY(m_fixture->child<QWidget>("eParam_NDIName")->property("idle").toBool());
        // One that only leaves pings without an answer, seen by whom the mouse rests on.
        QTRY_VERIFY_WITH_TIMEOUT(!m_fixture->item(8)->isOnline(), 15000);
        tipOf(8);
        QTRY_VERIFY2(QToolTip::text().contains("端口8081：有应答"), qPrintable(QToolTip::text()));
        QVERIFY(!tipOf(9).contains("Ping"));
        // A selected row of another box says nothing of this one.
        m_fixture->clickRow(9);
        QTRY_COMPARE(m_fixture->information().size(), 6);
        QCOMPARE(notes(), QStringList());
        m_fixture->clickRow(7);
        QTRY_COMPARE(notes().value(0), "Ping=" + away);

        QVERIFY(box->plugIn());
        QTRY_VERIFY_WITH_TIMEOUT(m_fixture->item(7)->isOnline(), 15000);
        QTRY_COMPARE_WITH_TIMEOUT(m_fixture->information().size(), 6, 12000);
        QTRY_COMPARE(state->text(), QString());
        QVERIFY(!m_fixture->child<QWidget>("eParam_NDIName")->property("idle").toBool());
        QCOMPARE(notes(), QStringList());
        QVERIFY(!tipOf(7).contains("Ping"));
    }

    void askedIsOnlyWhoIsLookedAt()
    {
        sim::VirtualBox* box = m_fixture->addBox(7);
        sim::VirtualBox* upgraded = m_fixture->addBox(8);
        m_fixture->openKnowing({7, 8});
        for (sim::VirtualBox* deaf : {box, upgraded}) {
            QVERIFY(deaf->addFault("no-ping"));
            deaf->clearRequests();
        }
        m_fixture->item(8)->setOwned(true);
        QTRY_VERIFY_WITH_TIMEOUT(!m_fixture->item(7)->isOnline(), 15000);
        QTest::qWait(1000);
        QCOMPARE(box->requests().size(), 0);
        QElapsedTimer clock;
        clock.start();
        for (int n = 0; n < 12; ++n) {
            tipOf(7);
            QTest::qWait(200);
            tipOf(8);
            QTest::qWait(400);
            tipOf(7);
            QTest::qWait(400);
        }
        const int asked = box->requests().size();
        const int most = int(clock.elapsed() / DeviceAbsence::PauseMs) + 1;
        QVERIFY2(asked >= 2 && asked <= most, qPrintable(QString::number(asked)));
        QCOMPARE(upgraded->requests().size(), 0);
    }

    void lostFeedIsNamed()
    {
        sim::VirtualBox* box = m_fixture->addBox(7);
        m_fixture->openKnowing({7});
        m_fixture->clickRow(7);
        QTRY_COMPARE(m_fixture->information().size(), 6);
        QTRY_COMPARE(box->streamListeners() + box->mediaListeners(), 2);
        QVERIFY(box->addFault("refused-handshake"));
        box->dropEventClients();
        QTRY_COMPARE_WITH_TIMEOUT(notes().size(), 2, 10000);
        QVERIFY2(notes().first().startsWith("事件通道8001=自"), qPrintable(notes().first()));
        box->clearFaults();
        QTRY_COMPARE(notes(), QStringList());
    }

private:
    /// What stands below the rows of the box itself.
    QStringList notes() const
    {
        QStringList rows = m_fixture->information();
        rows.erase(std::remove_if(rows.begin(), rows.end(),
                                  [](const QString& row) {
                                      return !row.startsWith("Ping") && !row.startsWith("端口") &&
                                             !row.startsWith("事件") && !row.startsWith("这台");
                                  }),
                   rows.end());
        return rows;
    }
    QString tipOf(int host) const
    {
        TreeView* view = m_fixture->deviceView();
        const QRect row = view->visualRect(view->treeModel()->indexOf(m_fixture->item(host)));
        for (const QPoint& spot : {QPoint(40, row.center().y()), QPoint(120, row.center().y())}) {
            QTest::mouseMove(view->viewport(), spot);
            QMouseEvent move(QEvent::MouseMove, spot, view->viewport()->mapToGlobal(spot),
                             Qt::NoButton, Qt::NoButton, Qt::NoModifier);
            QApplication::sendEvent(view->viewport(), &move);
        }
        return QToolTip::text();
    }

    std::unique_ptr<WindowFixture> m_fixture;
};

QTEST_MAIN(tst_DeviceAbsence)
#include "tst_device_absence.moc"

// SPDX-License-Identifier: MIT
#include "tests/support/box_client.h"
#include "tests/support/table.h"
#include "tests/ui/recordings/recordings_fixture.h"

#include <QCheckBox>
#include <QRadioButton>

/// Recording: what the operator is shown is what the box does.
class tst_Record : public QObject, RecordingsFixture
{
    Q_OBJECT

private slots:
    void initTestCase() { openBoxes(); }
    void init() { forgetRecordings(); }
    void cleanup() { stopPlaying(); }
    void recordsUnderItsOwnName();
    void boxDecidesWhatRecordShows_data();
    void boxDecidesWhatRecordShows();
    void silenceIsToldOfItsBox();
    void clockTellsWhatTheBoxDoes();
    void twiceRefusedIsBelievedWithoutAClock_data();
    void twiceRefusedIsBelievedWithoutAClock();
    void lateAnswerPlaysNothing();
    void upgradeLeavesNothingElseToDo();

private:
    QCheckBox* recode() const { return child<QCheckBox>("recode"); }
    QString clock() const { return child<QLabel>("recodeTime")->text(); }
    void record(bool on);
    QStringList told(const QString& action) const
    {
        return WindowFixture::told(*m_box).filter(QRegularExpression("^" + action));
    }
};

/// Clicks, and waits for the box's answer.
void tst_Record::record(bool on)
{
    QCOMPARE(recode()->isChecked(), !on);
    click("recode");
    QTRY_VERIFY_WITH_TIMEOUT(recode()->isEnabled() && recode()->isChecked() == on, 9000);
}

void tst_Record::recordsUnderItsOwnName()
{
    selectBox({});
    QTest::mouseClick(child<QRadioButton>("recodemov"), Qt::LeftButton);
    click("recode");
    QVERIFY(!recode()->isEnabled());
    QTRY_VERIFY(recode()->isEnabled() && recode()->isChecked());
    const QString name = item(7)->property("recodefilename").toString();
    QVERIFY(QRegularExpression("^Tarn_Hub_Recode\\d{14}\\.mov$").match(name).hasMatch());
    QCOMPARE(told("record_on"), QStringList("record_on&file_name=" + name));

    // Another box does not record; coming back, this one still does.
    clickRow(8);
    QTRY_VERIFY(!recode()->isChecked());
    clickRow(7);
    QTRY_VERIFY(recode()->isChecked());
    QTRY_VERIFY(clock() > "00:00:01");

    DialogAnswerer answers;
    click("recode");
    QTRY_COMPARE_WITH_TIMEOUT(answers.texts(), QStringList("录制完成,是否现在查看 [" + name + "]"),
                              10000);
    QVERIFY(!recode()->isChecked());
    QTRY_COMPARE_WITH_TIMEOUT(playing(), QStringList(name), 10000);
    QCOMPARE(address(), "http://" + ip(7) + ":8081/media/" + name);
    QTest::mouseClick(child<QRadioButton>("recodemp4"), Qt::LeftButton);
}

void tst_Record::boxDecidesWhatRecordShows_data()
{
    columns<QString, bool, QString>("fault", "recording", "text"); // "recording": before the click
    row("start refused", "fail on record_on", false, "开启录制失败，请重试。");
    row("stop refused", "fail on record_off", true, "停止录制失败,请重试.");
}

void tst_Record::boxDecidesWhatRecordShows()
{
    const auto [fault, recording, text] = cells<QString, bool, QString>();
    selectBox({});
    DialogAnswerer answers(Qt::Key_Escape);
    if (recording)
        record(true);
    QVERIFY(m_box->addFault(fault));
    click("recode");
    QVERIFY(!recode()->isEnabled());
    QTRY_COMPARE(answers.texts(), QStringList(text));
    m_box->clearFaults();
    // Whatever came of it: the operator can record, and stop.
    clickRow(8);
    QTRY_VERIFY(!recode()->isChecked());
    clickRow(7);
    QCOMPARE(recode()->isChecked(), recording);
    if (!recording)
        record(true);
    record(false);
    QTRY_COMPARE(answers.texts().size(), 2);
}

/// One box does not answer a stop; the other one, to which the operator goes on, has lost its
/// power.
void tst_Record::silenceIsToldOfItsBox()
{
    selectBox({});
    DialogAnswerer answers(Qt::Key_Escape);
    record(true);
    QVERIFY(m_box->addFault("silent on record_off"));
    click("recode");
    clickRow(8);
    QTRY_VERIFY(!recode()->isChecked());
    m_other->unplug();
    click("recode");
    QTRY_COMPARE_WITH_TIMEOUT(answers.texts().size(), 2, 12000);
    QVERIFY(answers.texts().contains("开启录制失败，请重试。"));
    QVERIFY(answers.texts().contains(ip(7) + ": 停止录制失败,请重试."));
    QVERIFY(!recode()->isChecked());
    QVERIFY(m_other->plugIn());
    m_box->clearFaults();
    clickRow(7);
    QVERIFY(recode()->isChecked());
    const QString name = item(7)->property("recodefilename").toString();
    click("recode");
    clickRow(8);
    QTRY_COMPARE_WITH_TIMEOUT(answers.texts().size(), 3, 9000);
    QCOMPARE(answers.texts().last(), ip(7) + ": 录制完成,是否现在查看 [" + name + "]");
}

void tst_Record::clockTellsWhatTheBoxDoes()
{
    selectBox({});
    DialogAnswerer answers(Qt::Key_Escape);
    // Started and stopped by somebody else.
    QCOMPARE(command(ip(7), "record_on&file_name=elsewhere.mp4").status(), QString("success"));
    QTRY_VERIFY(recode()->isChecked());
    QCOMPARE(command(ip(7), "record_off").status(), QString("success"));
    QTRY_VERIFY(!recode()->isChecked());
    // Started by somebody else, stopped here: there is no name to ask about.
    QCOMPARE(command(ip(7), "record_on&file_name=elsewhere2.mp4").status(), QString("success"));
    QTRY_VERIFY(recode()->isChecked());
    record(false);

    // It loses its power in the middle, and comes back.
    record(true);
    QTRY_VERIFY(clock() > "00:00:00.000");
    m_box->unplug();
    QTRY_VERIFY(!recode()->isChecked());
    QCOMPARE(answers.texts(), QStringList());
    // Known to be away, and to be back: that has the list read again.
    window().R_refreshDeviceIP({ip(8)});
    QVERIFY(!item(7)->isOnline());
    QVERIFY(m_box->plugIn());
    readAfter(7, [this] { window().R_refreshDeviceIP({ip(7), ip(8)}); });
    QTRY_COMPARE(item(7)->property("recodefilename").toString(), QString());
    record(true);
    // Its clock is not shown as another's.
    QTRY_VERIFY(clock() > "00:00:00.000");
    clickRow(8);
    QCOMPARE(clock(), QString("00:00:00.000"));
    clickRow(7);
    record(false);
    QTRY_COMPARE(answers.texts().size(), 1);

    // Its feed falls silent: then what it has answered counts.
    QVERIFY(m_box->addFault("flood 0"));
    record(true);
    QTest::qWait(4000);
    QVERIFY(recode()->isChecked());
    m_box->clearFaults();
    record(false);
    QTRY_COMPARE(answers.texts().size(), 2);
}

void tst_Record::twiceRefusedIsBelievedWithoutAClock_data()
{
    columns<bool>("records"); // the box, and nobody here knows
    row("start refused, for it records", true);
    row("stop refused, for it does not", false);
}

/// The feed of the box says nothing.
void tst_Record::twiceRefusedIsBelievedWithoutAClock()
{
    QFETCH(bool, records);
    clickRow(8);
    QVERIFY(m_other->addFault("flood 0"));
    DialogAnswerer answers(Qt::Key_Escape);
    const auto other = [](const char* order) { return command(ip(8), order).status(); };
    if (records)
        QCOMPARE(other("record_on&file_name=elsewhere.mp4"), QString("success"));
    else
        record(true);
    if (!records)
        QCOMPARE(other("record_off"), QString("success"));
    for (int times = 1; times <= 2; ++times) {
        QCOMPARE(recode()->isChecked(), !records);
        click("recode");
        QTRY_COMPARE(answers.texts().size(), times);
        QVERIFY(recode()->isEnabled());
    }
    // What the operator does next is what the box can do.
    QCOMPARE(recode()->isChecked(), records);
    record(!records);
    record(records);
    m_other->clearFaults();
    if (records)
        record(false);
}

void tst_Record::lateAnswerPlaysNothing()
{
    selectBox({});
    record(true);
    DialogAnswerer answers;
    answers.expect<messageBox>([this](messageBox& question) {
        emit deviceView()->S_ActionClicked(Action::Select, item(8));
        QTest::keyClick(&question, Qt::Key_Return);
    });
    record(false);
    QTRY_VERIFY(answers.isDone());
    // Nor when the box is selected again and its recordings are listed.
    clickRow(7);
    QTRY_COMPARE(titles().size(), 1);
    QCOMPARE(address(), QString());
}

void tst_Record::upgradeLeavesNothingElseToDo()
{
    selectBox({"a.mp4"});
    item(7)->setOwned(true);
    DialogAnswerer answers;
    click("recode");
    QTRY_COMPARE(answers.texts().size(), 1);
    clickEntry(0);
    QTest::keyClick(list(), Qt::Key_Delete);
    QTRY_COMPARE(answers.texts().size(), 2);
    item(7)->setOwned(false);
    QVERIFY(!recode()->isChecked());
    QCOMPARE(told("record"), QStringList());
    QCOMPARE(titles(), QStringList("a.mp4"));
}

QTEST_MAIN(tst_Record)
#include "tst_record.moc"

// SPDX-License-Identifier: MIT
#include "tests/support/box_client.h"
#include "tests/support/files.h"
#include "tests/support/table.h"
#include "tests/support/window_fixture.h"

#include "ui/recordings/download_list.h"
#include "ui/recordings/list_widget.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QLabel>
#include <QMenu>
#include <QProgressBar>
#include <QRadioButton>
#include <QRegularExpression>
#include <QToolButton>

/// The storage list, recording, playing, deleting and downloading.
class tst_Recordings : public QObject, WindowFixture
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void onlyVideosAreListed();
    void otherBoxClearsTheList();
    void hostileNamesAreShownPlain();
    void recordsUnderItsOwnName();
    void boxDecidesWhatRecordShows_data();
    void boxDecidesWhatRecordShows();
    void clockTellsWhatTheBoxDoes();
    void lateAnswerPlaysNothing();
    void upgradeLeavesNothingElseToDo();
    void nothingSelectedPlaysNothing();
    void stepsToTheNeighbours();
    void failureIsSaid();
    void playingOneIsNotDeleted();
    void refusedDeletionComesBack();
    void downloadsIntoTheChosenFolder();
    void downloadsWaitForTheirTurn();
    void rowsThatGoDuringAQuestion();

private:
    ListWidget* list() const { return child<ListWidget>("storageWidget"); }
    QStringList titles() const;
    QStringList playing() const;
    QString address() const { return child<QLabel>("decodeaddress")->text(); }
    void clickEntry(int row, Qt::KeyboardModifiers modifiers = {});
    void playEntry(int row);
    void record(bool on);
    void downloadAll(DialogAnswerer& answers, const QString& folder);
    void selectBox(int host, const QStringList& recordings);
    QStringList told(const QString& action) const
    {
        return WindowFixture::told(*m_box).filter(QRegularExpression("^" + action));
    }

    sim::VirtualBox* m_box = nullptr;
    sim::VirtualBox* m_other = nullptr;
};

void tst_Recordings::initTestCase()
{
    m_box = addBox(7);
    m_other = addBox(8);
    openKnowing({7, 8});
}

void tst_Recordings::init()
{
    m_box->clearFaults();
    const QStringList left = m_box->recordings();
    for (const QString& name : left)
        m_box->removeRecording(name);
}

void tst_Recordings::cleanup()
{
    if (child<QToolButton>("video_play")->isChecked())
        click("video_play");
    QTRY_COMPARE(address(), QString());
}

QStringList tst_Recordings::titles() const
{
    QStringList rows;
    for (int n = 0; n < list()->count(); ++n)
        rows << list()->item(n)->text();
    return rows;
}

QStringList tst_Recordings::playing() const
{
    QStringList names;
    for (const auto& entry : list()->entries()) {
        if (entry->property("ispaly").toBool())
            names << entry->title();
    }
    return names;
}

void tst_Recordings::clickEntry(int row, Qt::KeyboardModifiers modifiers)
{
    list()->scrollToItem(list()->item(row));
    QTest::mouseClick(list()->viewport(), Qt::LeftButton, modifiers,
                      list()->visualItemRect(list()->item(row)).center());
}

void tst_Recordings::playEntry(int row)
{
    clickEntry(row);
    QTest::mouseDClick(list()->viewport(), Qt::LeftButton, {},
                       list()->visualItemRect(list()->item(row)).center());
    QTRY_VERIFY_WITH_TIMEOUT(list()->entries()[row]->property("ispaly").toBool(), 20000);
}

/// Clicks, and waits for the box's answer.
void tst_Recordings::record(bool on)
{
    auto* recode = child<QCheckBox>("recode");
    QCOMPARE(recode->isChecked(), !on);
    click("recode");
    QTRY_VERIFY_WITH_TIMEOUT(recode->isEnabled() && recode->isChecked() == on, 9000);
}

/// `recordings` from top to bottom.
void tst_Recordings::selectBox(int host, const QStringList& recordings)
{
    sim::VirtualBox* box = host == 7 ? m_box : m_other;
    // The newest is listed first.
    for (int n = recordings.size() - 1; n >= 0; --n)
        box->addRecording(recordings.at(n));
    clickRow(host);
    QTRY_COMPARE(titles(), recordings);
    box->clearRequests();
}

void tst_Recordings::onlyVideosAreListed()
{
    for (const char* name : {"c.mov", "b.jpg", "mov", "a.MP4"})
        m_box->addRecording(name, "x");
    clickRow(7);
    QTRY_COMPARE(titles(), QStringList({"a.MP4", "c.mov"}));
    const Item& first = *list()->entries().front();
    QCOMPARE(first.property("filepath").toString(), QString("a.MP4"));
    QCOMPARE(first.address(), ip(7));
    QVERIFY(!first.property("ispaly").toBool() && !first.isGroup());
    QCOMPARE(list()->item(0)->toolTip(), QString("a.MP4"));
}

void tst_Recordings::otherBoxClearsTheList()
{
    selectBox(7, {"a.mp4"});
    QVERIFY(m_other->addFault("silent on eParam_RecordList"));
    clickRow(8);
    // Whatever the box does: the other's recordings are not taken for its own.
    QTRY_COMPARE(titles(), QStringList());
    m_other->clearFaults();
}

void tst_Recordings::hostileNamesAreShownPlain()
{
    const QString name = "<b>x</b>\n" + QString(300, 'w') + ".mp4";
    m_box->addRecording(name, "x");
    clickRow(7);
    QTRY_COMPARE(titles(), QStringList(name));
    QVERIFY(list()->item(0)->toolTip().startsWith("&lt;b&gt;x"));
    QVERIFY(m_box->addFault("array on eParam_RecordList"));
    QVERIFY(m_box->addFault("garbage on eParam_RecordList"));
    select(7);
    QCOMPARE(titles(), QStringList(name));
}

void tst_Recordings::recordsUnderItsOwnName()
{
    selectBox(7, {});
    QTest::mouseClick(child<QRadioButton>("recodemov"), Qt::LeftButton);
    click("recode");
    auto* recode = child<QCheckBox>("recode");
    QVERIFY(!recode->isEnabled());
    QTRY_VERIFY(recode->isEnabled() && recode->isChecked());
    const QString name = item(7)->property("recodefilename").toString();
    QVERIFY(QRegularExpression("^Tarn_Hub_Recode\\d{14}\\.mov$").match(name).hasMatch());
    QCOMPARE(told("record_on"), QStringList("record_on&file_name=" + name));

    // Another box does not record; coming back, this one still does.
    clickRow(8);
    QTRY_VERIFY(!recode->isChecked());
    clickRow(7);
    QTRY_VERIFY(recode->isChecked());
    QTRY_VERIFY(child<QLabel>("recodeTime")->text() > "00:00:01");

    DialogAnswerer answers;
    click("recode");
    QTRY_COMPARE_WITH_TIMEOUT(answers.texts(), QStringList("录制完成,是否现在查看 [" + name + "]"),
                              10000);
    QVERIFY(!recode->isChecked());
    QTRY_COMPARE_WITH_TIMEOUT(playing(), QStringList(name), 10000);
    QCOMPARE(address(), "http://" + ip(7) + ":8081/media/" + name);
    QTest::mouseClick(child<QRadioButton>("recodemp4"), Qt::LeftButton);
}

void tst_Recordings::boxDecidesWhatRecordShows_data()
{
    // "recording": before the click; "away": the operator goes on to another box meanwhile
    columns<QString, bool, bool, QString>("fault", "recording", "away", "text");
    const QString notStarted("开启录制失败,请重试.");
    const QString notStopped("停止录制失败,请重试.");
    row("start refused", "fail on record_on", false, false, notStarted);
    row("stop refused", "fail on record_off", true, false, notStopped);
    row("stop unanswered", "silent on record_off", true, true, ip(7) + ": " + notStopped);
}

void tst_Recordings::boxDecidesWhatRecordShows()
{
    QFETCH(QString, fault);
    QFETCH(bool, recording);
    QFETCH(bool, away);
    QFETCH(QString, text);
    selectBox(7, {});
    DialogAnswerer answers(Qt::Key_Escape);
    if (recording)
        record(true);
    QVERIFY(m_box->addFault(fault));
    click("recode");
    QVERIFY(!child<QCheckBox>("recode")->isEnabled());
    if (away)
        clickRow(8);
    QTRY_COMPARE_WITH_TIMEOUT(answers.texts(), QStringList(text), 9000);
    m_box->clearFaults();
    // Whatever came of it: the operator can record, and stop.
    clickRow(8);
    QTRY_VERIFY(!child<QCheckBox>("recode")->isChecked());
    clickRow(7);
    QCOMPARE(child<QCheckBox>("recode")->isChecked(), recording);
    if (!recording)
        record(true);
    record(false);
    QTRY_COMPARE(answers.texts().size(), 2);
}

void tst_Recordings::clockTellsWhatTheBoxDoes()
{
    auto* recode = child<QCheckBox>("recode");
    selectBox(7, {});
    // Started and stopped by somebody else.
    QCOMPARE(command(ip(7), "record_on&file_name=elsewhere.mp4").status(), QString("success"));
    QTRY_VERIFY(recode->isChecked());
    QCOMPARE(command(ip(7), "record_off").status(), QString("success"));
    QTRY_VERIFY(!recode->isChecked());
    // Started by somebody else, stopped here: there is no name to ask about.
    QCOMPARE(command(ip(7), "record_on&file_name=elsewhere2.mp4").status(), QString("success"));
    QTRY_VERIFY(recode->isChecked());
    DialogAnswerer answers(Qt::Key_Escape);
    record(false);

    // It loses its power in the middle, and comes back.
    record(true);
    QTRY_VERIFY(child<QLabel>("recodeTime")->text() > "00:00:00.000");
    m_box->unplug();
    QTRY_VERIFY(!recode->isChecked());
    QCOMPARE(answers.texts(), QStringList());
    // A start that nobody answers is told of.
    click("recode");
    QTRY_COMPARE_WITH_TIMEOUT(answers.texts(), QStringList("开启录制失败,请重试."), 9000);
    QVERIFY(!recode->isChecked());
    // Known to be away, and to be back: that has the list read again.
    QTRY_VERIFY_WITH_TIMEOUT(!item(7)->isOnline(), 15000);
    QVERIFY(m_box->plugIn());
    readAfter(7, [this] { QTRY_VERIFY_WITH_TIMEOUT(item(7)->isOnline(), 15000); });
    QTRY_COMPARE(item(7)->property("recodefilename").toString(), QString());
    record(true);
    // Its clock is not shown as another's.
    QTRY_VERIFY(child<QLabel>("recodeTime")->text() > "00:00:00.000");
    clickRow(8);
    QCOMPARE(child<QLabel>("recodeTime")->text(), QString("00:00:00.000"));
    clickRow(7);
    record(false);
    QTRY_COMPARE(answers.texts().size(), 2);
}

void tst_Recordings::lateAnswerPlaysNothing()
{
    selectBox(7, {});
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

void tst_Recordings::upgradeLeavesNothingElseToDo()
{
    selectBox(7, {"a.mp4"});
    item(7)->setOwned(true);
    DialogAnswerer answers;
    click("recode");
    QTRY_COMPARE(answers.texts().size(), 1);
    clickEntry(0);
    QTest::keyClick(list(), Qt::Key_Delete);
    QTRY_COMPARE(answers.texts().size(), 2);
    item(7)->setOwned(false);
    QVERIFY(!child<QCheckBox>("recode")->isChecked());
    QCOMPARE(told("record"), QStringList());
    QCOMPARE(titles(), QStringList("a.mp4"));
}

void tst_Recordings::nothingSelectedPlaysNothing()
{
    selectBox(7, {"a.mp4"});
    list()->clearSelection();
    DialogAnswerer answers;
    click("video_play");
    QTRY_COMPARE(answers.texts(), QStringList("请您在存储区域中选择要播放的内容!"));
    QVERIFY(!child<QToolButton>("video_play")->isChecked());
}

void tst_Recordings::stepsToTheNeighbours()
{
    selectBox(7, {"a b.mp4", "b.mp4"});
    playEntry(0);
    QVERIFY(child<QToolButton>("video_play")->isChecked());
    QCOMPARE(address(), "http://" + ip(7) + ":8081/media/a%20b.mp4");
    // One name ends in the other: the address holds both.
    QCOMPARE(playing(), QStringList({"a b.mp4", "b.mp4"}));
    DialogAnswerer answers;
    click("video_after");
    QTRY_COMPARE(answers.texts(), QStringList("已经是最后一个了"));
    click("video_front");
    QTRY_COMPARE_WITH_TIMEOUT(playing(), QStringList("b.mp4"), 20000);
    click("video_front");
    QTRY_COMPARE(answers.texts().size(), 2);
    QCOMPARE(answers.texts().last(), QString("已经第一个了"));
    // The list is read again: what plays stays marked.
    select(7);
    QCOMPARE(playing(), QStringList("b.mp4"));
    // A second double click on it stops.
    list()->setCurrentRow(1);
    QTest::keyClick(list(), Qt::Key_Return);
    QTRY_COMPARE(playing(), QStringList());
    QVERIFY(!child<QToolButton>("video_play")->isChecked());
}

void tst_Recordings::failureIsSaid()
{
    selectBox(7, {"a.mp4"});
    QVERIFY(m_box->addFault("http-error 404 on media"));
    DialogAnswerer answers;
    clickEntry(0);
    click("video_play");
    const QString url = "http://" + ip(7) + ":8081/media/a.mp4";
    QTRY_COMPARE_WITH_TIMEOUT(answers.texts(), QStringList("播放地址" + url + "异常!"), 10000);
    QVERIFY(!child<QToolButton>("video_play")->isChecked());
    QCOMPARE(address(), QString());
}

void tst_Recordings::playingOneIsNotDeleted()
{
    selectBox(7, {"a.mp4", "b.mp4", "c.mp4"});
    playEntry(1);
    DialogAnswerer answers(Qt::Key_Escape);
    list()->selectAll();
    QTest::keyClick(list(), Qt::Key_Delete);
    QTRY_COMPARE(answers.texts(), QStringList("确认要删除这些录制文件吗?"));
    QCOMPARE(titles().size(), 3);
    answers.setKey(Qt::Key_Return);
    QTest::keyClick(list(), Qt::Key_Delete);
    QTRY_COMPARE(titles(), QStringList("b.mp4"));
    QTRY_COMPARE(m_box->recordings(), QStringList("b.mp4"));
    QCOMPARE(playing(), QStringList("b.mp4"));
}

void tst_Recordings::refusedDeletionComesBack()
{
    selectBox(7, {"a.mp4"});
    QVERIFY(m_box->addFault("fail on record_del"));
    DialogAnswerer answers;
    clickEntry(0);
    QTest::keyClick(list(), Qt::Key_Delete);
    QTRY_COMPARE(answers.texts().size(), 2);
    QCOMPARE(answers.texts().last(), QString("文件[a.mp4]删除错误,请重试"));
    QTRY_COMPARE(titles(), QStringList("a.mp4"));
}

/// The operator opens the menu, picks the first action and a folder.
void tst_Recordings::downloadAll(DialogAnswerer& answers, const QString& folder)
{
    answers.expect<QMenu>([](QMenu& menu) {
        QCOMPARE(menu.actions().first()->text(), QString("下载"));
        QCOMPARE(menu.actions().last()->text(), QString("删除"));
        QTest::keyClick(&menu, Qt::Key_Down);
        QTest::keyClick(&menu, Qt::Key_Return);
    });
    answers.expect<QFileDialog>([folder](QFileDialog& dialog) {
        QCOMPARE(dialog.windowTitle(), QString("请您选择保存的位置"));
        QCOMPARE(dialog.labelText(QFileDialog::Accept), QString("选择目录"));
        choosePath(dialog, folder);
    });
    list()->selectAll();
    emit list()->customContextMenuRequested(QPoint(20, 20));
}

void tst_Recordings::downloadsWaitForTheirTurn()
{
    const QTemporaryDir folder;
    const QStringList names{"1.mp4", "2.mp4", "3.mp4", "4.mp4", "5.mp4", "6.mp4"};
    for (const QString& name : names)
        m_box->addRecording(name, QByteArray(400000, 's'));
    QVERIFY(m_box->addFault("throttle 20000 on media"));
    clickRow(7);
    QTRY_COMPARE(titles().size(), names.size());
    DialogAnswerer answers(Qt::Key_Escape);
    downloadAll(answers, folder.path());
    QTRY_COMPARE(filesIn(folder.path()).size(), 4);
    const auto rows = [this] { return child<QWidget>("downloads")->findChildren<DownloadRow*>(); };
    QTRY_COMPARE(rows().size(), names.size());
    const auto format = [rows](int row) {
        return rows().at(row)->findChild<QProgressBar*>()->format();
    };
    QCOMPARE(format(5), QString("等待下载"));
    const auto cancelLast = [rows] {
        rows().last()->findChild<QToolButton*>("cancelDownload")->click();
    };
    cancelLast();
    QTRY_COMPARE(rows().size(), names.size() - 1);
    QCOMPARE(filesIn(folder.path()).size(), 4);

    // Nobody closes hours of download away without knowing it.
    for (const auto key : {Qt::Key_Escape, Qt::Key_Return}) {
        answers.setKey(key);
        QCloseEvent closing;
        QApplication::sendEvent(&window(), &closing);
        QCOMPARE(closing.isAccepted(), key == Qt::Key_Return);
    }
    QCOMPARE(answers.texts().size(), 2);
    QVERIFY(answers.texts().first().startsWith("还有5个录制文件没有下载完."));

    // The program ends. What it has got is there again, and goes on when the operator wants it to.
    for (const QString& file : filesIn(folder.path()))
        QTRY_VERIFY(QFileInfo(folder.path() + '/' + file).size() > 0);
    close();
    QCOMPARE(filesIn(folder.path()).size(), 4);
    m_box->clearFaults();
    openKnowing({7, 8});
    clickRow(7);
    QTRY_COMPARE(rows().size(), 4);
    cancelLast();
    QTRY_COMPARE(rows().size(), 3);
    QCOMPARE(filesIn(folder.path()).size(), 3);
    m_box->clearRequests();
    for (int n = 0; n < 3; ++n) {
        QCOMPARE(format(n), QString("未下载完"));
        rows().at(n)->findChild<QToolButton*>("resumeDownload")->click();
    }
    QTRY_COMPARE(rows().size(), 0);
    QTRY_VERIFY(answers.texts().last().startsWith("下载完成"));
    for (const QString& file : filesIn(folder.path()))
        QCOMPARE(readFile(folder.path() + '/' + file), QByteArray(400000, 's'));
    QCloseEvent closing;
    QApplication::sendEvent(&window(), &closing);
    QVERIFY(closing.isAccepted());
}

void tst_Recordings::downloadsIntoTheChosenFolder()
{
    const QTemporaryDir folder;
    m_box->addRecording("slow.mp4", QByteArray(400000, 's'));
    m_box->addRecording("gone.mp4", "x");
    clickRow(7);
    QTRY_COMPARE(titles(), QStringList({"gone.mp4", "slow.mp4"}));
    m_box->removeRecording("gone.mp4");
    QVERIFY(m_box->addFault("throttle 150000 on media"));
    DialogAnswerer answers(Qt::Key_Escape);
    downloadAll(answers, folder.path());
    auto* downloads = child<QWidget>("downloads");
    QTRY_VERIFY(downloads->isVisible());
    // What is under way does not depend on the list or the selection.
    clickRow(8);

    QTRY_COMPARE(answers.texts(), QStringList("文件[gone.mp4]下载失败: 设备上没有此文件"));
    QVERIFY(downloads->isVisible());
    QTRY_COMPARE_WITH_TIMEOUT(answers.texts().size(), 2, 10000);
    QCOMPARE(answers.texts().last(), QString("下载完成,是否前往文件所在文件夹?"));
    QVERIFY(!downloads->isVisible());
    QCOMPARE(filesIn(folder.path()), QStringList("slow.mp4"));
    QCOMPARE(QFileInfo(folder.path() + "/slow.mp4").size(), qint64(400000));
}

void tst_Recordings::rowsThatGoDuringAQuestion()
{
    selectBox(7, {"a.mp4", "b.mp4"});
    clickEntry(0);
    DialogAnswerer answers;
    answers.expect<messageBox>([this](messageBox& question) {
        // The list is read again, in another order, while the question is open.
        m_box->addRecording("z.mp4", "x");
        readAfter(7, [this] { emit deviceView()->S_ActionClicked(Action::Select, item(7)); });
        QTest::keyClick(&question, Qt::Key_Return);
    });
    QTest::keyClick(list(), Qt::Key_Delete);
    QTRY_COMPARE(titles(), QStringList({"z.mp4", "b.mp4"}));
    QTRY_COMPARE(m_box->recordings(), QStringList({"z.mp4", "b.mp4"}));
}

QTEST_MAIN(tst_Recordings)
#include "tst_recordings.moc"

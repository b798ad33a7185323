// SPDX-License-Identifier: MIT
#include "common/safe_name.h"
#include "media/ffmpeg_widget.h"
#include "tests/support/files.h"
#include "tests/support/held_file.h"
#include "tests/support/stopwatch.h"
#include "tests/ui/recordings/recordings_fixture.h"
#include "ui/recordings/download_list.h"

#include <QCloseEvent>
#include <QMenu>
#include <QProgressBar>
#include <QSignalSpy>
#include <QTemporaryDir>

/// The storage list: playing, deleting and downloading.
class tst_Recordings : public QObject, RecordingsFixture
{
    Q_OBJECT

private slots:
    void initTestCase() { openBoxes(); }
    void init() { forgetRecordings(); }
    void cleanup() { stopPlaying(); }
    void onlyVideosAreListed();
    void namesAreShownInTime();
    void otherBoxClearsTheList();
    void hostileNamesAreShownPlain();
    void nothingSelectedPlaysNothing();
    void stepsToTheNeighbours();
    void failureIsSaid();
    void playingOneIsNotDeleted();
    void stillIsNamedAfterItsBox();
    void refusedDeletionComesBack();
    void downloadsIntoTheChosenFolder();
    void everyChosenFolderGetsTheFile();
    void diskThatHangsHoldsNothingUp();
    void downloadsWaitForTheirTurn();
    void rowsThatGoDuringAQuestion();

private:
    void playEntry(int row);
    void downloadAll(DialogAnswerer& answers, const QString& folder);
};

void tst_Recordings::playEntry(int row)
{
    clickEntry(row);
    QTest::mouseDClick(list()->viewport(), Qt::LeftButton, {},
                       list()->visualItemRect(list()->item(row)).center());
    QTRY_VERIFY_WITH_TIMEOUT(list()->entries()[row]->property("ispaly").toBool(), 20000);
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

/// Of characters that take no room a line could hold any number.
void tst_Recordings::namesAreShownInTime()
{
    for (int n = 0; n < 20; ++n)
        m_box->addRecording(QString::number(n) + QString(3900, QChar(0x200b)) + ".mp4", "x");
    clickRow(7);
    QTRY_COMPARE(list()->count(), 20);
    Stopwatch clock;
    list()->grab();
    VERIFY_BELOW(clock.elapsed(), 500);
}

void tst_Recordings::otherBoxClearsTheList()
{
    selectBox({"a.mp4"});
    QVERIFY(m_other->addFault("silent on eParam_RecordList"));
    clickRow(8);
    // Whatever the box does: the other's recordings are not taken for its own.
    QTRY_COMPARE(titles(), QStringList());
    // An empty list says why it is empty.
    const auto* hint = child<QWidget>("storage_hint")->findChild<QLabel*>("words");
    QVERIFY(hint->isVisible());
    QCOMPARE(hint->text(), QString("正在读取录制文件…"));
    QTRY_COMPARE(hint->text(), QString("无法读取录制文件。"));
    m_other->clearFaults();
    clickRow(8);
    QTRY_COMPARE(hint->text(), QString("此设备上没有录制文件。"));

    // Nor those of the box that had this address before.
    clickRow(7);
    QTRY_COMPARE(titles(), QStringList("a.mp4"));
    QVERIFY(!hint->isVisible());
    const QString mac = m_box->parameter("eParam_MACAddress");
    m_box->setParameter("eParam_MACAddress", "02:00:00:00:00:01");
    m_box->removeRecording("a.mp4");
    m_box->addRecording("b.mp4", "x");
    QVERIFY(m_box->addFault("silent on eParam_RecordList"));
    clickRow(7);
    QTRY_COMPARE(titles(), QStringList());
    m_box->clearFaults();
    clickRow(7);
    QTRY_COMPARE(titles(), QStringList("b.mp4"));

    // What was to be deleted was the other's.
    QTRY_COMPARE(list()->entries().front()->macAddress(), QString("02:00:00:00:00:01"));
    list()->selectAll();
    DialogAnswerer answers;
    answers.expect<messageBox>([&](messageBox& asked) {
        m_box->setParameter("eParam_MACAddress", mac);
        const auto* before = list()->entries().front().get();
        select(7);
        QTRY_VERIFY(!list()->entries().empty() && list()->entries().front().get() != before &&
                    list()->entries().front()->macAddress() == mac);
        asked.done(messageBox::Confirmed);
    });
    QTest::keyClick(list(), Qt::Key_Delete);
    QTRY_COMPARE(answers.texts(), QStringList("文件[b.mp4]删除错误,请重试"));
    QCOMPARE(m_box->recordings(), QStringList("b.mp4"));
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

void tst_Recordings::nothingSelectedPlaysNothing()
{
    selectBox({"a.mp4"});
    list()->clearSelection();
    DialogAnswerer answers;
    click("video_play");
    QTRY_COMPARE(answers.texts(), QStringList("请您在存储区域中选择要播放的内容!"));
    QVERIFY(!child<QToolButton>("video_play")->isChecked());
}

void tst_Recordings::stepsToTheNeighbours()
{
    selectBox({"a b.mp4", "b.mp4"});
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
    selectBox({"a.mp4"});
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
    selectBox({"a.mp4", "b.mp4", "c.mp4"});
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

void tst_Recordings::stillIsNamedAfterItsBox()
{
    const QTemporaryDir home;
    const QByteArray before = qgetenv("HOME");
    qputenv("HOME", home.path().toLocal8Bit());
    selectBox({"a.mp4"});
    const QString name = m_box->parameter("eParam_NDIName");
    QTRY_COMPARE(item(7)->property("eParam_NDIName").toString(), name);
    playEntry(0);
    auto* video = child<FFmpegWidget>("video_widget");
    QTRY_VERIFY(!video->picture().isNull());
    QSignalSpy saved(video, &FFmpegWidget::stillSaved);
    window().activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window()));
    QTest::keyClick(list(), Qt::Key_F9);
    QTRY_COMPARE(saved.size(), 1);
    const QFileInfo file(saved.first().first().toString());
    QVERIFY2(file.fileName().startsWith(safeFileName(name) + " 2"), qPrintable(file.fileName()));
    QVERIFY(file.path().startsWith(home.path()));
    qputenv("HOME", before);
}

void tst_Recordings::refusedDeletionComesBack()
{
    selectBox({"a.mp4"});
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

void tst_Recordings::everyChosenFolderGetsTheFile()
{
    const QTemporaryDir first;
    const QTemporaryDir second;
    m_box->addRecording("slow.mp4", QByteArray(600000, 's'));
    QVERIFY(m_box->addFault("throttle 120000 on media"));
    clickRow(7);
    QTRY_COMPARE(titles(), QStringList("slow.mp4"));
    DialogAnswerer answers(Qt::Key_Escape);
    // The first one twice: that is one download.
    for (const QTemporaryDir* folder : {&first, &second, &first}) {
        downloadAll(answers, folder->path());
        QTRY_COMPARE(filesIn(folder->path()), QStringList("slow.mp4.part"));
    }
    const auto speed = [this] { // thousands of bytes a second, as the row says it
        static const QRegularExpression said("([\\d.]+) kB/s$");
        const auto* bar = child<QWidget>("downloads")->findChild<QProgressBar*>();
        return said.match(bar ? bar->format() : QString()).captured(1).toDouble();
    };
    QTRY_VERIFY(speed() > 60 && speed() < 180);
    for (const QTemporaryDir* folder : {&first, &second})
        QTRY_COMPARE_WITH_TIMEOUT(filesIn(folder->path()), QStringList("slow.mp4"), 20000);
    QTRY_VERIFY(!child<QWidget>("downloads")->isVisible());
}

/// That of earlier downloads' records.
void tst_Recordings::diskThatHangsHoldsNothingUp()
{
    NEED_HELD_FILES();
    close();
    QVERIFY(QDir(dataFolder()).mkpath("download"));
    const HeldFile record(dataFolder() + "download/x.json");
    QVERIFY(record.isHeld());
    const Stopwatch clock;
    openKnowing({7, 8});
    close();
    openKnowing({7, 8});
    VERIFY_BELOW(clock.elapsed(), 30000);
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
    QVERIFY(answers.texts().first().startsWith("还有5个录制文件没有下载完。"));

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
    QTRY_COMPARE(filesIn(folder.path()).size(), 3);
    m_box->clearRequests();
    for (int n = 0; n < 3; ++n) {
        QCOMPARE(format(n), QString("未下载完"));
        rows().at(n)->findChild<QToolButton*>("resumeDownload")->click();
    }
    QTRY_COMPARE(rows().size(), 0);
    // A system without a way to show the folder names it in another message.
    QTRY_VERIFY(!answers.texts().filter("下载完成").isEmpty());
    for (const QString& file : filesIn(folder.path()))
        QCOMPARE(readFile(folder.path() + '/' + file), QByteArray(400000, 's'));
    QCloseEvent closing;
    QApplication::sendEvent(&window(), &closing);
    QVERIFY(closing.isAccepted());
}

void tst_Recordings::downloadsIntoTheChosenFolder()
{
    const QTemporaryDir folder;
    m_box->addRecording("slow.mp4", QByteArray(500000, 's'));
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

    QTRY_COMPARE(answers.texts(), QStringList("文件[gone.mp4]下载失败：设备上没有此文件"));
    QVERIFY(downloads->isVisible());
    QTRY_COMPARE_WITH_TIMEOUT(answers.texts().size(), 2, 20000);
    QCOMPARE(answers.texts().last(), QString("下载完成,是否前往文件所在文件夹?"));
    QVERIFY(!downloads->isVisible());
    QCOMPARE(filesIn(folder.path()), QStringList("slow.mp4"));
    QCOMPARE(QFileInfo(folder.path() + "/slow.mp4").size(), qint64(500000));
}

void tst_Recordings::rowsThatGoDuringAQuestion()
{
    selectBox({"a.mp4", "b.mp4"});
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

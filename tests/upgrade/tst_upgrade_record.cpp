// SPDX-License-Identifier: MIT
#include "common/csv.h"
#include "tests/support/files.h"
#include "tests/support/table.h"
#include "upgrade/interrupted_batch.h"
#include "upgrade/upgrade_journal.h"
#include "upgrade/upgrade_judgement.h"

#include <QJsonDocument>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <memory>

using Stage = UpgradeRow::Stage;
using Settings = UpgradeRow::Settings;
using Verdict = UpgradeRow::Verdict;
Q_DECLARE_METATYPE(UpgradeRow)
Q_DECLARE_METATYPE(UpgradeSession)
Q_DECLARE_METATYPE(Verdict)

namespace
{

const QString boxMac = "02:4B:4F:00:00:01";

UpgradeRow rowAt(Stage stage, const QString& versionAfter = {})
{
    UpgradeRow row;
    row.mac = boxMac;
    row.addressBefore = row.address = "10.0.0.5";
    row.versionBefore = "1.2.0.517";
    row.versionAfter = versionAfter;
    row.wasAway = !versionAfter.isEmpty();
    row.stage = stage;
    row.started = QDateTime(QDate(2026, 3, 2), QTime(9, 5, 3, 70));
    return row;
}

UpgradeSession sessionOf(const UpgradeRow& row)
{
    UpgradeSession session;
    session.started = row.started;
    session.package = "KORA_1.2.0.623.dat";
    session.md5 = "0123456789abcdef0123456789abcdef";
    session.rows << row;
    return session;
}

/// The cells of the only box in its report.
QStringList cellsOf(const UpgradeRow& row)
{
    return UpgradeText::cells(sessionOf(row), row, row.started.addMSecs(1500));
}

/// A journal as the program wrote it when stages and settings were numbers.
const QByteArray numbers = R"({"interrupted":false,"md5":"abc","package":"fw.dat","rows":[
 {"address":"127.0.0.2","addressBefore":"127.0.0.1","dhcpForced":true,"durationMs":0,
  "failedSettings":["eParam_NDIName"],"mac":"02:4B:4F:00:00:01","note":"n",
  "saved":{"eParam_DHCP":"0"},"settings":2,"settled":false,"stage":1,
  "started":"2024-05-01T11:59:55.000","versionAfter":"","versionBefore":"1.0"},
 {"address":"127.0.0.3","mac":"","settings":6,"settled":true,"stage":4}],
 "started":"2024-05-01T11:59:50.000"})";

} // namespace

/// What is written down of a batch, and read again; and the rules that need no box: what versions
/// mean, what an interrupted batch left.
class tst_UpgradeRecord : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qRegisterMetaType<QVector<UpgradeSession>>(); }
    void init()
    {
        m_data = std::make_unique<QTemporaryDir>();
        qputenv("APPDATA", m_data->path().toUtf8());
    }

    void verdicts_data()
    {
        columns<UpgradeRow, bool, Verdict>("row", "settled", "verdict");
        row("new version", rowAt(Stage::Activated, "1.2.0.623"), false, Verdict::Proved);
        row("failed, and changed all the same", rowAt(Stage::UploadFailed, "1.3"), true,
            Verdict::Proved);
        UpgradeRow unknown = rowAt(Stage::Activated, "1.2.0.623");
        unknown.mac.clear();
        row("nobody knows which box", unknown, true, Verdict::NotProved);
    }
    void verdicts()
    {
        auto [row, settled, verdict] = cells<UpgradeRow, bool, Verdict>();
        row.settled = settled;
        QCOMPARE(int(row.verdict()), int(verdict));
        QCOMPARE(cellsOf(row).at(5), UpgradeText::verdict(verdict));
    }

    void cellsTellWhatHappened()
    {
        UpgradeRow row = rowAt(Stage::Activated, "1.2.0.517");
        row.address = "10.0.0.9";
        row.settled = true;
        row.settings = Settings::SomeFailed;
        row.failedSettings = QStringList{"eParam_NDIName", "eParam_DHCP"};
        row.note = "success"; // no evidence, and would pass for it
        QCOMPARE(
            cellsOf(row).join('|'),
            QString("2026-03-02 09:05:03|10.0.0.5 → 10.0.0.9|02:4B:4F:00:00:01|1.2.0.517|1.2.0.517|"
                    "未证实|2项失败|1.5|eParam_NDIName, eParam_DHCP; 版本没有变化|"
                    "KORA_1.2.0.623.dat|0123456789abcdef0123456789abcdef"));
        row.durationMs = 61500;
        row.stage = Stage::UploadFailed;
        row.failedSettings.clear();
        QCOMPARE(cellsOf(row).mid(7, 2), (QStringList{"61.5", "success"}));
    }

    void noFormulaIsRun_data()
    {
        columns<QString, QString>("note", "cell");
        row("plain", "上传固件 失败", "\"上传固件 失败\"");
        row("equals sign", "=HYPERLINK(\"http://x\")", "\"'=HYPERLINK(\"\"http://x\"\")\"");
        row("plus", "+1", "\"'+1\"");
        row("minus", "-1+cmd|' /C calc'!A0", "\"'-1+cmd|' /C calc'!A0\"");
        row("at", "@SUM(A1)", "\"'@SUM(A1)\"");
        row("full width", "＝1", "\"'＝1\"");
        row("behind blanks", "  =1", "\"'  =1\"");
        row("behind a tab and a line end", "\t\r\n=1", "\"'   =1\"");
        row("sign inside", "a=b", "\"a=b\"");
        row("quote and comma", "a\",b", "\"a\"\",b\"");
        row("quoted equals sign", "\"=1\"", "\"\"\"=1\"\"\"");
        row("lines", "a\r\nb", "\"a  b\"");
    }
    void noFormulaIsRun()
    {
        const auto [note, cell] = cells<QString, QString>();
        UpgradeRow row = rowAt(Stage::UploadFailed);
        row.note = note;
        const QString csv = QString::fromUtf8(UpgradeText::csv(sessionOf(row), row.started));
        QVERIFY2(csv.contains("," + cell + ",\"KORA_1.2.0.623.dat\","), qPrintable(csv));
        // In the clipboard only what has to be is in quotes.
        const QString plain = note.contains('"') ? cell : cell.mid(1, cell.size() - 2);
        QCOMPARE(Csv::clipboardLine({"1", note}), "1\t" + plain);
    }

    void csvHasOneLineABox()
    {
        UpgradeSession session = sessionOf(rowAt(Stage::Activated, "1.2.0.623"));
        session.rows << rowAt(Stage::UploadFailed);
        const QByteArray plain = UpgradeText::csv(session, session.started);
        QVERIFY(plain.startsWith("\xEF\xBB\xBF\"批次\",\"设备\","));
        QCOMPARE(plain.count("\r\n"), 3);
        session.interrupted = true;
        QVERIFY(UpgradeText::csv(session, session.started)
                    .startsWith("\xEF\xBB\xBF\"此批次升级曾被中断\"\r\n\"批次\","));
    }

    void sessionSurvivesItsJson_data()
    {
        columns<int, int>("stage", "settings");
        for (int stage = 0; stage <= int(Stage::Interrupted); ++stage)
            for (int settings = 0; settings <= int(Settings::Ambiguous); ++settings)
                row(qPrintable(QString("%1 %2").arg(stage).arg(settings)), stage, settings);
    }
    void sessionSurvivesItsJson()
    {
        const auto [stage, settings] = cells<int, int>();
        UpgradeRow row = rowAt(Stage(stage), "1.2.0.623");
        row.settings = Settings(settings);
        row.address = "10.0.0.9";
        row.settled = row.dhcpForced = true;
        row.failedSettings = QStringList{"eParam_NDIName"};
        row.saved = {{"eParam_NDIName", "a=b \"名前\"\n"}, {"eParam_NTPServer", ""}};
        row.durationMs = 123456789012;
        row.note = "=1";
        UpgradeSession session = sessionOf(row);
        session.interrupted = true;
        UpgradeSession read;
        QVERIFY(UpgradeSession::fromJson(session.toJson(), &read));
        QCOMPARE(read.toJson(), session.toJson());
        QCOMPARE(read.baseName(), session.baseName());
        QCOMPARE(int(read.rows.first().stage), stage);
        QCOMPARE(int(read.rows.first().settings), settings);
        QCOMPARE(read.rows.first().saved, row.saved);
        QCOMPARE(read.rows.first().failedSettings, row.failedSettings);
        QVERIFY(read.interrupted && read.isSettled() && read.rows.first().dhcpForced);
        QCOMPARE(UpgradeText::csv(read, row.started), UpgradeText::csv(session, row.started));
    }

    void journalOfNumbers()
    {
        UpgradeSession session;
        QVERIFY(UpgradeSession::fromJson(QJsonDocument::fromJson(numbers).object(), &session));
        QCOMPARE(session.rows.size(), 2);
        const UpgradeRow& row = session.rows.first();
        QCOMPARE(row.stage, Stage::Uploading);
        QCOMPARE(row.settings, Settings::Waiting);
        QCOMPARE(row.saved, (QVariantMap{{"eParam_DHCP", "0"}}));
        QCOMPARE(row.address, QString("127.0.0.2"));
        QCOMPARE(session.rows.last().stage, Stage::Interrupted);
        QCOMPARE(session.rows.last().settings, Settings::Dropped);
        // What is written now are words.
        const QByteArray text = QJsonDocument(session.toJson()).toJson(QJsonDocument::Compact);
        for (const char* word :
             {"\"format\":2", "\"stage\":\"Uploading\"", "\"settings\":\"Waiting\"",
              "\"stage\":\"Interrupted\"", "\"settings\":\"Dropped\""})
            QVERIFY2(text.contains(word), word);
        UpgradeSession again;
        QVERIFY(UpgradeSession::fromJson(QJsonDocument::fromJson(text).object(), &again));
        QCOMPARE(again.rows.first().stage, Stage::Uploading);
        QCOMPARE(again.rows.last().settings, Settings::Dropped);
    }

    void journalOfAnEternity()
    {
        QByteArray text = numbers;
        text.replace("\"durationMs\":0", "\"durationMs\":1e300");
        UpgradeSession session;
        QVERIFY(UpgradeSession::fromJson(QJsonDocument::fromJson(text).object(), &session));
        QCOMPARE(session.rows.first().durationMs, 0);
    }

    void journalOfStrangers_data()
    {
        columns<QString, QString, QString>("was", "is", "reason");
        row("a later format", "\"md5\"", "\"format\":3,\"md5\"", "unknown format");
        row("a stage without a meaning", "\"stage\":1", "\"stage\":9", "unknown stage");
        row("a word among numbers", "\"stage\":1", "\"stage\":\"Uploading\"", "unknown stage");
        row("a number among words", "\"md5\"", "\"format\":2,\"md5\"", "unknown stage");
        row("settings without a meaning", "\"settings\":2", "\"settings\":-1",
            "unknown state of settings");
        row("no batch at all", "\"rows\"", "\"lines\"", "no batch");
    }
    /// It is refused as a whole, told, and left where it lies.
    void journalOfStrangers()
    {
        const auto [was, is, reason] = cells<QString, QString, QString>();
        const QString name = "upgrade_20240501_115950_000.json";
        const QString path = m_data->path() + "/Tarn Hub/batches/" + name;
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        QByteArray content = numbers;
        writeFile(path, content.replace(was.toUtf8(), is.toUtf8()));
        QTest::ignoreMessage(QtWarningMsg,
                             qPrintable("journal " + name + " is not read: " + reason));
        QVERIFY(load(*std::make_unique<UpgradeJournal>()).isEmpty());
        QVERIFY(QFile::exists(path));
        // The same file, undisturbed, is taken up, also from where an earlier version left it.
        const QString earlier = m_data->path() + "/Tarn Hub/upgrade/" + name;
        QVERIFY(QDir().mkpath(QFileInfo(earlier).path()) && QFile::remove(path));
        writeFile(earlier, numbers);
        QCOMPARE(load(*std::make_unique<UpgradeJournal>()).size(), 1);
        QVERIFY(QFile::exists(path) && !QFile::exists(earlier));
    }

    void journalIsKeptWhileSomethingIsOpen()
    {
        const QString folder = m_data->path() + "/Tarn Hub/batches/";
        const UpgradeSession session = sessionOf(rowAt(Stage::Uploading));
        const QString file = folder + session.baseName();
        UpgradeJournal(nullptr).save(session, true, [](bool) {});
        QVERIFY(QFile::exists(file + ".json"));
        QCOMPARE(UpgradeJournal::csvPath(session), file + ".csv");
        QVERIFY(readFile(file + ".csv").contains("10.0.0.5"));

        // The next start finds it, unless the name is another batch's.
        writeFile(folder + "upgrade_20260303_000000_000.json", readFile(file + ".json"));
        UpgradeJournal next;
        const QVector<UpgradeSession> found = load(next);
        QCOMPARE(found.size(), 1);
        QCOMPARE(found.first().toJson(), session.toJson());
        next.save(found.first(), false, [](bool) {});
        QTRY_VERIFY(!QFile::exists(file + ".json"));
        QCOMPARE(readFile(file + ".csv").count("\r\n"), 2);
    }

    void journalIsOneProgramsAtATime()
    {
        UpgradeSession session = sessionOf(rowAt(Stage::Uploading));
        const QString journal = QFileInfo(UpgradeJournal::csvPath(session)).completeBaseName();
        auto first = std::make_unique<UpgradeJournal>();
        first->save(session, true, [](bool) {});
        QVERIFY(first->flush(5000));
        // Another program leaves it alone meanwhile.
        UpgradeJournal other;
        QTest::ignoreMessage(
            QtWarningMsg,
            qPrintable("journal " + journal + " is another program's until that has ended"));
        QVERIFY(load(other).isEmpty());
        // It gets what the first one has written last, once, as soon as that is gone.
        QSignalSpy taken(&other, &UpgradeJournal::loaded);
        QTest::qWait(UpgradeJournal::AgainMs * 3 / 2);
        QVERIFY(taken.isEmpty());
        session.rows.first().versionBefore = "what was written last";
        first->save(session, true, [](bool) {});
        first.reset();
        QVERIFY(taken.wait(UpgradeJournal::AgainMs * 2));
        const auto found = taken.first().first().value<QVector<UpgradeSession>>();
        QCOMPARE(found.size(), 1);
        QCOMPARE(found.first().toJson(), session.toJson());
        QVERIFY(!taken.wait(UpgradeJournal::AgainMs * 3 / 2));
        QVERIFY(load(other).isEmpty());
    }

    /// A program that was killed may have left a lock that does not say whose it is, or whose
    /// number is another program's by now.
    void lockThatNobodyHasIsTaken_data()
    {
        columns<QByteArray>("left");
        row("empty", QByteArray());
        row("with the number of one that runs",
            QByteArray::number(QCoreApplication::applicationPid()) + "\n" +
                QFileInfo(QCoreApplication::applicationFilePath()).fileName().toUtf8() + "\n" +
                QSysInfo::machineHostName().toUtf8() + "\n");
    }
    void lockThatNobodyHasIsTaken()
    {
        QFETCH(QByteArray, left);
        const UpgradeSession session = sessionOf(rowAt(Stage::Uploading));
        UpgradeJournal(nullptr).save(session, true, [](bool) {});
        const QString path = UpgradeJournal::csvPath(session).replace(".csv", ".lock");
        writeFile(path, left);
        UpgradeJournal next;
        QSignalSpy loaded(&next, &UpgradeJournal::loaded);
        next.load();
        // The one that makes a lock has not said who it is for a moment: then nobody takes it.
        QVERIFY(loaded.wait());
        QCOMPARE(loaded.takeFirst().first().value<QVector<UpgradeSession>>().size(), 0);
        QVERIFY(loaded.wait(UpgradeJournal::AgainMs * 3));
        QCOMPARE(loaded.first().first().value<QVector<UpgradeSession>>().size(), 1);
    }

    void versionsInNames_data()
    {
        columns<QString, QString>("name", "version");
        row("as they are called", "KORA_1.2.0.623", "1.2.0.623");
        row("with other numbers", "2 KORA 固件 v3 1.2.0.623 (2024.05)", "1.2.0.623");
        row("none", "firmware_12", "");
    }
    void versionsInNames()
    {
        QFETCH(QString, name);
        QTEST(UpgradeJudgement::versionIn(name), "version");
    }

    void proof_data()
    {
        columns<QString, QString, QString, QString, bool, bool, QString>(
            "before", "expected", "after", "seen", "changed", "proved", "doubt");
        const char* old = "1.2.0.517";
        const char* next = "1.2.0.623";
        row("the package's, never away", old, next, next, "", true, true, "");
        row("the package's in other words", old, next, "V1.2.0.623 (build 7)", "", true, true, "");
        row("another one, never away", old, next, "1.2.0.555", "", false, false,
            "版本与固件包不符");
        row("another one", old, next, "1.2.0.555", "away", true, false, "版本与固件包不符");
        row("another one, the name tells none", old, "", "1.2.0.555", "away", true, true, "");
        row("the same, never away, no name", old, "", "1.2.0.555", "", false, false,
            "版本与固件包不符");
        row("older", old, next, "1.1.9.999", "away", true, false, "版本退回到更旧的版本");
        row("as before", old, next, old, "away", false, false, "版本没有变化");
        row("unknown before", "", next, next, "away", false, false, "升级前版本未知，无法证实");
        row("silent", old, next, "", "away", false, false, "升级后未再回应");
        row("told by two boxes", old, next, next, "away twins", true, false,
            "网络中有两台设备的MAC地址相同，无法证实");
    }
    void proof()
    {
        const auto [before, expected, after, seen, changed, proved] =
            cells<QString, QString, QString, QString, bool, bool>();
        UpgradeRow row = rowAt(Stage::Activated);
        row.versionBefore = before;
        row.expected = expected;
        row.wasAway = seen.contains("away");
        row.ambiguous = seen.contains("twins");
        QCOMPARE(UpgradeJudgement::hasChangedOver(row, after, row.wasAway), changed);
        row.versionAfter = after;
        QCOMPARE(row.isProved(), proved);
        if (!proved)
            QTEST(UpgradeJudgement::doubt(row), "doubt");
    }

    void interruptedRows_data()
    {
        columns<Stage, bool, int, Stage, Settings, int>("stage", "ended", "daysAgo", "stageNow",
                                                        "settingsNow", "underWay");
        row("uploading", Stage::Uploading, false, 0, Stage::Interrupted, Settings::Waiting, 2);
        row("changing over", Stage::Activated, false, 0, Stage::Activated, Settings::Waiting, 2);
        row("its batch had ended", Stage::Activated, true, 0, Stage::Activated, Settings::Waiting,
            0);
        row("failed", Stage::UploadFailed, false, 7, Stage::UploadFailed, Settings::Waiting, 0);
        row("stale", Stage::Activated, true, 8, Stage::Activated, Settings::Dropped, 0);
    }
    void interruptedRows()
    {
        const auto [stage, ended, daysAgo, stageNow, settingsNow, underWay] =
            cells<Stage, bool, int, Stage, Settings, int>();
        UpgradeRow row = rowAt(stage);
        UpgradeSession session = sessionOf(row);
        session.ended = ended;
        row.settings = Settings::Waiting;
        UpgradeRow elsewhere = row;
        elsewhere.address = "http://example.org/";
        session.rows = {row, elsewhere};
        QCOMPARE(markInterrupted(session, session.started.addDays(daysAgo)), underWay);
        QCOMPARE(session.interrupted, underWay > 0);
        QCOMPARE(session.rows[0].stage, stageNow);
        QCOMPARE(session.rows[0].settings, settingsNow);
        // Nothing but an address is ever asked.
        QCOMPARE(session.rows[0].address, row.address);
        QCOMPARE(session.rows[1].address, QString());
    }

private:
    static QVector<UpgradeSession> load(UpgradeJournal& journal)
    {
        QSignalSpy loaded(&journal, &UpgradeJournal::loaded);
        journal.load();
        [&] { QVERIFY(loaded.wait()); }();
        const auto found = loaded.value(0).value(0).value<QVector<UpgradeSession>>();
        return found;
    }

    std::unique_ptr<QTemporaryDir> m_data;
};

QTEST_GUILESS_MAIN(tst_UpgradeRecord)
#include "tst_upgrade_record.moc"

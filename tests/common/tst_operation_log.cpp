// SPDX-License-Identifier: MIT
#include "common/data_path.h"
#include "common/operation_log.h"

#include <QDate>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

class tst_OperationLog : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void dataFolder();
    void recordHasItsForm();
    void noRecordIsLost_data();
    void noRecordIsLost();
    void writersWorkAtTheSameTime();
    void keyNamesNoOtherFolder();
    void unwritableFolderIsSilent();

private:
    QString logFile(const QString& key, const QString& ending) const;
    static QStringList lines(const QString& path);

    QTemporaryDir m_root;
};

void tst_OperationLog::initTestCase()
{
    QVERIFY(m_root.isValid());
    // As Windows writes it.
    qputenv("APPDATA", QString(m_root.path()).replace('/', '\\').toUtf8());
}

QString tst_OperationLog::logFile(const QString& key, const QString& ending) const
{
    return m_root.path() + "/Tarn Hub/log/" + QDate::currentDate().toString("yyyy-MM-dd") + "---" +
           key + ending;
}

QStringList tst_OperationLog::lines(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts);
}

void tst_OperationLog::dataFolder()
{
    QCOMPARE(dataPath(QString()), m_root.path() + "/Tarn Hub/");
    QCOMPARE(dataPath("a//b/c/"), m_root.path() + "/Tarn Hub/a/b/c/");
    QVERIFY(QDir(m_root.path() + "/Tarn Hub/a/b/c").exists());
}

void tst_OperationLog::recordHasItsForm()
{
    writeLog("10.0.0.1",
             logLine("123  执行Curl   curl %1 \"x\"", "src/a.cpp", 7, "Item::execCurl"));
    const QString path = logFile("10.0.0.1", "_tarn_hub.txt");
    QTRY_COMPARE(lines(path).size(), 1);
    const QRegularExpression form(
        "^\\[ID\\]\\d+ \\[\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d:\\d{3}\\]"
        "\\[123  执行Curl   curl %1 \"x\"\\]\\[src/a\\.cpp:7:Item::execCurl\\]\\[\\]"
        "\\[iThreadCnt\\]\\d+$");
    QVERIFY2(form.match(lines(path).first()).hasMatch(), qPrintable(lines(path).first()));
}

void tst_OperationLog::noRecordIsLost_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<int>("count");
    QTest::newRow("one pool full") << "burst-30" << 30;
    QTest::newRow("far more than the pool") << "burst-3000" << 3000;
}

void tst_OperationLog::noRecordIsLost()
{
    QFETCH(QString, key);
    QFETCH(int, count);
    const QString filler(500, QChar(u'长'));
    for (int i = 0; i < count; ++i)
        writeLog(key, QString("<%1 %2>").arg(i).arg(filler));

    const auto records = [&] {
        return lines(logFile(key, "_tarn_hub.txt")) + lines(logFile(key, "_tarn_hub_overtake.txt"));
    };
    QTRY_COMPARE_WITH_TIMEOUT(records().size(), count, 20000);
    QSet<int> seen;
    const QRegularExpression form("^(?:\\[ID\\]\\d+ )?<(\\d+) 长{500}>"
                                  "(?:\\[iThreadCnt\\]\\d+|线程数0)$");
    const QStringList all = records();
    for (const QString& record : all) {
        const auto match = form.match(record);
        QVERIFY2(match.hasMatch(), qPrintable("torn: " + record.left(80)));
        seen << match.captured(1).toInt();
    }
    QCOMPARE(seen.size(), count);
}

void tst_OperationLog::writersWorkAtTheSameTime()
{
    // Thirty writers are held up by one that cannot finish: the caller is not.
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 30; ++i)
        writeLog("10.0.0.2", QString(200000, 'x'));
    const qint64 elapsed = clock.elapsed();
    QVERIFY2(elapsed < 1000, qPrintable(QString::number(elapsed)));
    QTRY_COMPARE_WITH_TIMEOUT(lines(logFile("10.0.0.2", "_tarn_hub.txt")).size() +
                                  lines(logFile("10.0.0.2", "_tarn_hub_overtake.txt")).size(),
                              30, 20000);
}

void tst_OperationLog::keyNamesNoOtherFolder()
{
    writeLog("http-../../evil", "x");
    QTRY_COMPARE(lines(logFile("http-.._.._evil", "_tarn_hub.txt")).size(), 1);
}

void tst_OperationLog::unwritableFolderIsSilent()
{
    appendToFile(m_root.path() + "/no/such/folder/log.txt", "x", QIODevice::Append);
    QVERIFY(!QDir(m_root.path() + "/no").exists());
}

QTEST_GUILESS_MAIN(tst_OperationLog)
#include "tst_operation_log.moc"

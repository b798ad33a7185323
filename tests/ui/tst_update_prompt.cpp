// SPDX-License-Identifier: MIT
#include "tests/ui/window_fixture.h"

#include "common/spark_http.h"
#include "simulator/update_server.h"

#include <QDir>

/// The question about a new version of the program, and the mark of newer firmware.
class tst_UpdatePrompt : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { StartUp::dress(*qApp); }
    void init();
    void cleanup();
    void newerFirmwareIsMarked();
    void refusalStartsNothing();
    void consentStartsTheUpdaterAndQuits();
    void swappedInstallerIsNotStarted();
    void upgradeGoesFirst();

private:
    static QString updater() { return QCoreApplication::applicationDirPath() + "/Upgrade.exe"; }
    QString started() const;
    void open(const QString& latest);

    std::unique_ptr<WindowFixture> m_fixture;
    std::unique_ptr<sim::UpdateServer> m_server;
};

void tst_UpdatePrompt::init()
{
    m_fixture = std::make_unique<WindowFixture>("127.77.37");
    m_fixture->addBox(7);
    m_server = std::make_unique<sim::UpdateServer>(m_fixture->ip(2));
    QVERIFY(m_server->start());
    // In the place of the real one: it tells what it was started with.
    QFile script(updater());
    QVERIFY(script.open(QIODevice::WriteOnly));
    script.write("#!/bin/sh\nprintf '%s\\n' \"$PWD\" \"$@\" >\"" +
                 m_fixture->dataFolder().toUtf8() + "started.part\"\nmv \"" +
                 m_fixture->dataFolder().toUtf8() + "started.part\" \"" +
                 m_fixture->dataFolder().toUtf8() + "started\"\n");
    script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

void tst_UpdatePrompt::cleanup()
{
    if (QWidget* left = QApplication::activeModalWidget())
        left->close();
    m_fixture->close();
    QFile::remove(updater());
}

QString tst_UpdatePrompt::started() const
{
    QFile file(m_fixture->dataFolder() + "started");
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

void tst_UpdatePrompt::open(const QString& latest)
{
    m_server->furnish(latest);
    m_server->set("/Tarn_Hub_setup.exe", sim::UpdateServer::file("installer"));
    m_fixture->open(1000, m_server->url());
}

void tst_UpdatePrompt::newerFirmwareIsMarked()
{
    open("1.0.0.10");
    QTRY_VERIFY_WITH_TIMEOUT(m_fixture->item(7) && m_fixture->item(7)->hasNewerFirmware(), 12000);
    const QString path = m_fixture->window().property("otaFilepath").toString();
    QCOMPARE(path, m_fixture->dataFolder() + "upgradekora/KORA_1.2.0.623.dat");
    QCOMPARE(m_fixture->window().property("otaFile").toString(), QString("KORA_1.2.0.623"));
    QVERIFY(!QApplication::activeModalWidget());
}

void tst_UpdatePrompt::refusalStartsNothing()
{
    DialogAnswerer no(Qt::Key_Escape);
    open("1.0.1");
    QTRY_COMPARE(no.texts().size(), 1);
    QVERIFY(no.texts().first().startsWith("发现新版本,是否立即升级?"));
    QVERIFY(no.texts().first().contains("1.0.1\nTarn_Hub_setup.exe"));
    QTest::qWait(500);
    QCOMPARE(started(), QString());
}

void tst_UpdatePrompt::consentStartsTheUpdaterAndQuits()
{
    DialogAnswerer yes;
    open("1.0.1");
    QTimer::singleShot(10000, qApp, [] { QCoreApplication::exit(7); });
    QCOMPARE(QApplication::exec(), 0);
    QTRY_COMPARE(started(), QCoreApplication::applicationDirPath() + "\nTarn Hub.exe\n" +
                                m_fixture->dataFolder() + "upgrade/Tarn_Hub_setup.exe\n1.0.0.10\n");
}

void tst_UpdatePrompt::swappedInstallerIsNotStarted()
{
    QTimer swap;
    connect(&swap, &QTimer::timeout, this, [&] {
        if (!QApplication::activeModalWidget())
            return;
        QFile file(m_fixture->dataFolder() + "upgrade/Tarn_Hub_setup.exe");
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("another!!");
        file.close();
        swap.stop();
    });
    swap.start(5);
    DialogAnswerer yes;
    open("1.0.1");
    QTRY_COMPARE(yes.texts().size(), 2);
    QCOMPARE(yes.texts().last(), QString("安装文件已被更改,未启动升级."));
    QTest::qWait(500);
    QCOMPARE(started(), QString());
}

void tst_UpdatePrompt::upgradeGoesFirst()
{
    m_server->furnish("1.0.0.10");
    m_fixture->open(1000, m_server->url());
    QTRY_VERIFY_WITH_TIMEOUT(m_fixture->item(7), 12000);
    m_fixture->item(7)->setProperty("upgrading", true);
    m_server->set("/Tarn_Hub_setup.exe", sim::UpdateServer::file("installer"));
    m_server->offerProgram("1.0.1", m_server->url("/Tarn_Hub_setup.exe"));
    DialogAnswerer no(Qt::Key_Escape);
    Spark_Http::instance()->get("toupgrade", m_server->url(sim::UpdateServer::programPath()),
                                false);
    QTest::qWait(1500);
    QCOMPARE(no.texts(), QStringList());
    m_fixture->item(7)->setProperty("upgrading", false);
    QTRY_COMPARE_WITH_TIMEOUT(no.texts().size(), 1, 8000);
}

QTEST_MAIN(tst_UpdatePrompt)
#include "tst_update_prompt.moc"

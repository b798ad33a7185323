// SPDX-License-Identifier: MIT
#include "common/platform.h"
#include "simulator/update_server.h"
#include "tests/support/files.h"
#include "tests/support/table.h"
#include "tests/support/window_fixture.h"

/// The question about a new version of the program, and the mark of newer firmware.
class tst_UpdatePrompt : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_fixture = std::make_unique<WindowFixture>();
        m_fixture->addBox(7);
        m_server = std::make_unique<sim::UpdateServer>(m_fixture->ip(2));
        QVERIFY(m_server->start());
        // In the place of the real one: it tells what it was started with.
        const QByteArray told = "\"" + m_fixture->dataFolder().toUtf8() + "started";
        writeScript(updater(), "printf '%s\\n' \"$PWD\" \"$@\" >" + told + ".part\"\nmv " + told +
                                   ".part\" " + told + "\"\n");
    }
    void cleanup()
    {
        if (QWidget* left = QApplication::activeModalWidget())
            left->close();
        m_fixture->close();
        QFile::remove(updater());
    }

    void newerFirmwareIsMarked()
    {
        open("1.0.0.10");
        QTRY_VERIFY_WITH_TIMEOUT(m_fixture->item(7) && m_fixture->item(7)->hasNewerFirmware(),
                                 12000);
        const QString path = m_fixture->window().property("otaFilepath").toString();
        QCOMPARE(path, m_fixture->dataFolder() + "upgradekora/KORA_1.2.0.623.dat");
        QCOMPARE(m_fixture->window().property("otaFile").toString(), QString("KORA_1.2.0.623"));
        QVERIFY(!QApplication::activeModalWidget());
    }

    void refusalStartsNothing()
    {
        DialogAnswerer no(Qt::Key_Escape);
        open("1.0.1");
        QTRY_COMPARE(no.texts().size(), 1);
        QVERIFY(no.texts().first().startsWith("发现新版本,是否立即升级?"));
        QVERIFY(no.texts().first().endsWith("1.0.1  来自 " + m_fixture->ip(2) +
                                            ":8070\nTarn_Hub_setup.exe"));
        QTest::qWait(500);
        QCOMPARE(started(), QString());
    }

    void consentStartsTheUpdaterAndQuits()
    {
        DialogAnswerer yes;
        open("1.0.1");
        QTimer::singleShot(10000, qApp, [] { QCoreApplication::exit(7); });
        QCOMPARE(QApplication::exec(), 0);
        QTRY_COMPARE(started(), QCoreApplication::applicationDirPath() + "\nTarn Hub.exe\n" +
                                    m_fixture->dataFolder() +
                                    "upgrade/1.0.1_Tarn_Hub_setup.exe\n1.0.0.10\n");
    }

    void updaterMayLieInAPathWithBlanks()
    {
        const QString folder = m_fixture->dataFolder() + "Program Files";
        QVERIFY(QDir().mkpath(folder));
        QVERIFY(QFile::copy(updater(), folder + "/Upgrade.exe"));
        QVERIFY(Platform::startDetached(folder + "/Upgrade.exe", {"a b", "\"c\""}, folder));
        QTRY_COMPARE(started(), folder + "\na b\n\"c\"\n");
    }

    void missingUpdaterIsTold()
    {
        QFile::remove(updater());
        DialogAnswerer yes;
        open("1.0.1");
        QTRY_VERIFY(isTold(yes, "无法启动升级程序。请重新安装本软件。"));
        QVERIFY(m_fixture->window().isEnabled());
    }

    void changedInstallerIsNotStarted_data()
    {
        columns<QString>("content");
        row("another of the same length", "another!!");
        row("gone", "");
    }
    void changedInstallerIsNotStarted()
    {
        QFETCH(QString, content);
        DialogAnswerer yes;
        yes.expect<messageBox>([&](messageBox& question) {
            const QString installer = m_fixture->dataFolder() + "upgrade/1.0.1_Tarn_Hub_setup.exe";
            QVERIFY(QFile::remove(installer));
            if (!content.isEmpty())
                writeFile(installer, content.toUtf8());
            QTest::keyClick(&question, Qt::Key_Return);
        });
        open("1.0.1");
        QTRY_VERIFY(isTold(yes, "安装文件已被更改，未启动升级。请重新启动软件以再次下载。"));
        QTest::qWait(500);
        QCOMPARE(started(), QString());
    }

    void oneQuestionAtATime()
    {
        open("1.0.0.10");
        QTRY_VERIFY_WITH_TIMEOUT(m_fixture->item(7), 12000);
        messageBox other("other", &m_fixture->window());
        other.setModal(true);
        other.show();
        offerNow();
        QCOMPARE(questions(), QStringList("other"));
        other.close();
        QTRY_COMPARE(questions(), QStringList("发现新版本,是否立即升级?"));
        offerNow();
        QCOMPARE(questions().size(), 1);
    }

    void closedWindowStartsNothing()
    {
        open("1.0.1");
        QTRY_COMPARE(questions().size(), 1);
        m_fixture->close();
        QCOMPARE(questions(), QStringList());
        QTest::qWait(500);
        QCOMPARE(started(), QString());
    }

    void runningWorkGoesFirst_data()
    {
        columns<QVariantMap, QVariantMap>("box", "window");
        row("an upgrade", QVariantMap{{"upgrading", true}}, QVariantMap{});
        row("settings to be written back", QVariantMap{},
            QVariantMap{{"needrestore", QStringList("00:11:22:33:44:55")}});
    }
    void runningWorkGoesFirst()
    {
        const auto [box, window] = cells<QVariantMap, QVariantMap>();
        open("1.0.0.10");
        QTRY_VERIFY_WITH_TIMEOUT(m_fixture->item(7), 12000);
        const auto set = [](QObject* object, const QVariantMap& values, bool on) {
            for (auto it = values.begin(); it != values.end(); ++it)
                object->setProperty(it.key().toLatin1(), on ? it.value() : QVariant());
        };
        set(m_fixture->item(7), box, true);
        set(&m_fixture->window(), window, true);
        offerNow();
        QCOMPARE(questions(), QStringList());
        set(m_fixture->item(7), box, false);
        set(&m_fixture->window(), window, false);
        QTRY_COMPARE_WITH_TIMEOUT(questions(), QStringList("发现新版本,是否立即升级?"), 8000);
    }

    /// They are written and wait no longer, but do not count before the box has restarted.
    void restartWithSettingsGoesFirst()
    {
        open("1.0.0.10");
        QTRY_VERIFY_WITH_TIMEOUT(m_fixture->item(7) && WindowFixture::isKnown(*m_fixture->item(7)),
                                 12000);
        sim::VirtualBox* box = m_fixture->lan().find(m_fixture->ip(7));
        box->setRebootTime(4000, 4000);
        const QString mac = m_fixture->item(7)->macAddress();
        Tarn_Hub& window = m_fixture->window();
        window.setProperty(mac.toLatin1(), QVariantMap{{"eParam_NDIName", "kept"}});
        window.setProperty("needrestore", QStringList(mac));
        m_fixture->clickRow(7); // has it asked who it is
        QTRY_COMPARE(box->activity().reboots, 1);
        QCOMPARE(window.property("needrestore").toStringList(), QStringList());
        offerNow();
        const QString question("发现新版本,是否立即升级?");
        QVERIFY(!box->isOn() && !questions().contains(question));
        QTRY_VERIFY_WITH_TIMEOUT(questions().contains(question), 10000);
        QVERIFY(box->isOn());
    }

private:
    static QString updater() { return QCoreApplication::applicationDirPath() + "/Upgrade.exe"; }
    QString started() const { return readFile(m_fixture->dataFolder() + "started"); }

    void open(const QString& latest)
    {
        m_server->furnish(latest);
        m_server->set("/Tarn_Hub_setup.exe", sim::UpdateServer::file("installer"));
        Options options = WindowFixture::options();
        options.updateServer = m_server->url();
        options.upgradeTickMs = 50;
        m_fixture->open(options);
    }

    /// Has a newer version offered to the window that is already open, and waits until it has it.
    void offerNow()
    {
        m_server->set("/Tarn_Hub_setup.exe", sim::UpdateServer::file("installer"));
        m_server->offerProgram("1.0.1", m_server->url("/Tarn_Hub_setup.exe"));
        Spark_Http::instance()->get("toupgrade", m_server->url(sim::UpdateServer::programPath()),
                                    false);
        QTRY_VERIFY(
            QFileInfo::exists(m_fixture->dataFolder() + "upgrade/1.0.1_Tarn_Hub_setup.exe"));
        QTest::qWait(1500); // for what must not come
    }

    /// The texts of all dialogs that are open.
    static QStringList questions()
    {
        QStringList texts;
        for (const QWidget* widget : QApplication::topLevelWidgets())
            if (const auto* box = qobject_cast<const messageBox*>(widget); box && box->isVisible())
                texts << box->text().section('\n', 0, 0);
        return texts;
    }

    /// The text has been shown, whether or not it has been answered already.
    static bool isTold(const DialogAnswerer& answerer, const QString& text)
    {
        return answerer.texts().contains(text) || questions().contains(text);
    }

    std::unique_ptr<WindowFixture> m_fixture;
    std::unique_ptr<sim::UpdateServer> m_server;
};

QTEST_MAIN(tst_UpdatePrompt)
#include "tst_update_prompt.moc"

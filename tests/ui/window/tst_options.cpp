// SPDX-License-Identifier: MIT
#include "tests/support/table.h"
#include "ui/window/options.h"
#include "ui/window/start_up.h"

#include <QProcess>
#include <QRegularExpression>
#include <QThread>

/// How the program is started: what it makes of its command line, without a display.
class tst_Options : public QObject
{
    Q_OBJECT

private slots:
    void wrongOptionsAreNamed_data()
    {
        columns<QStringList, QString>("arguments", "named");
        row("unknown", QStringList{"--colour"}, "colour");
        row("no value", QStringList{"--subnet"}, "subnet");
        row("other mask", QStringList{"--subnet", "10.0.0.0/16"}, "10.0.0.0/16");
        row("host", QStringList{"--subnet", "10.0.0.1"}, "10.0.0.1");
        row("second is wrong", QStringList{"--subnet", "127.77.0.0/24", "--subnet", "x"}, "'x'");
        row("argument", QStringList{"file.dat"}, "file.dat");
        row("server", QStringList{"--update-server", "ftp://x"}, "ftp://x");
    }
    void wrongOptionsAreNamed()
    {
        const auto [arguments, named] = cells<QStringList, QString>();
        const OptionsResult result = readOptions(QStringList{"tarn-hub"} + arguments);
        QCOMPARE(result.outcome, OptionsResult::Error);
        QVERIFY2(result.text.contains(named), qPrintable(result.text));
    }

    void everythingSet()
    {
        const OptionsResult result =
            readOptions({"tarn-hub", "--subnet", "127.77.0.0/24", "--subnet=127.77.1.0/24",
                         "--fping", "/opt/my fping", "--update-server", "http://127.0.0.1:8080/"});
        QCOMPARE(result.outcome, OptionsResult::Run);
        QCOMPARE(result.options.sweep.subnets, (QStringList{"127.77.0.0/24", "127.77.1.0/24"}));
        QCOMPARE(result.options.sweep.fping, QString("/opt/my fping"));
        QCOMPARE(result.options.updateServer, QString("http://127.0.0.1:8080"));
        QVERIFY(readOptions({"tarn-hub"}).options.updateServer.endsWith(".example"));
    }

    void windowSystemOptionsAreLeftAlone()
    {
        const QString added = "-platform offscreen -session 10_1 -reverse -style=fusion --style x"
                              " -qwindowgeometry 800x600+0+0 -qwindowtitle --subnet -psn_0_1 -name";
        const OptionsResult result = readOptions(("tarn-hub " + added + " n -fn x").split(' '));
        QVERIFY2(result.outcome == OptionsResult::Run, qPrintable(result.text));
        QVERIFY(result.options.sweep.subnets.isEmpty());
    }

    void hangingEndEnds()
    {
        QProcess program;
        program.start(QCoreApplication::applicationFilePath(), {"hang"});
        QVERIFY(program.waitForFinished(10000));
        QCOMPARE(program.exitCode(), 7);
    }

    void programAnswersWithoutDisplay_data()
    {
        columns<QStringList, int, QString, QString>("arguments", "exitCode", "output", "error");
        row("help", QStringList{"--help"}, 0, "(?s)--subnet.*--fping.*--update-server", "");
        row("version", QStringList{"--version"}, 0, "^Tarn Hub 1\\.0\\.0\\.10\r?\n$", "");
        row("version, short", QStringList{"-v"}, 0, "^Tarn Hub", "");
        row("unknown option", QStringList{"--sweep"}, 2, "", "sweep");
        row("wrong block", QStringList{"--subnet", "10.0.0.0/8"}, 2, "", "10.0.0.0/8");
    }
    void programAnswersWithoutDisplay()
    {
        const auto [arguments, exitCode, output, error] =
            cells<QStringList, int, QString, QString>();
        QProcess program;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove("DISPLAY");
        environment.remove("WAYLAND_DISPLAY");
        program.setProcessEnvironment(environment);
        program.start(TARN_HUB_PROGRAM, arguments);
        QVERIFY(program.waitForFinished(10000));
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
        QCOMPARE(program.exitCode(), exitCode);
        const QString out = QString::fromUtf8(program.readAllStandardOutput());
        const QString err = QString::fromUtf8(program.readAllStandardError());
        QVERIFY2(output.isEmpty() ? out.isEmpty() : out.contains(QRegularExpression(output)),
                 qPrintable(out));
        QVERIFY2(error.isEmpty() ? err.isEmpty() : err.contains(error), qPrintable(err));
    }
};

int main(int argc, char* argv[])
{
    if (argc == 2 && QString("hang") == argv[1]) {
        StartUp::limitEnd(7, 100);
        for (;;)
            QThread::sleep(60);
    }
    const QCoreApplication application(argc, argv);
    tst_Options test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_options.moc"

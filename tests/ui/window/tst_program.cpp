// SPDX-License-Identifier: MIT
#include "tests/support/table.h"

#include <QProcess>

/// The built program, as a user starts it. Nothing here needs a display.
class tst_Program : public QObject
{
    Q_OBJECT

private slots:
    void answersWithoutDisplay_data();
    void answersWithoutDisplay();
};

void tst_Program::answersWithoutDisplay_data()
{
    columns<QStringList, int, QString, QString>("arguments", "exitCode", "output", "error");
    row("help", QStringList{"--help"}, 0, "--subnet", "");
    row("version", QStringList{"--version"}, 0, "Tarn Hub 1.0.0.10", "");
    row("unknown option", QStringList{"--sweep"}, 2, "", "sweep");
    row("wrong block", QStringList{"--subnet", "10.0.0.0/8"}, 2, "", "10.0.0.0/8");
}

void tst_Program::answersWithoutDisplay()
{
    const auto [arguments, exitCode, output, error] = cells<QStringList, int, QString, QString>();
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
    QVERIFY2(output.isEmpty() ? out.isEmpty() : out.contains(output), qPrintable(out));
    QVERIFY2(error.isEmpty() ? err.isEmpty() : err.contains(error), qPrintable(err));
}

QTEST_GUILESS_MAIN(tst_Program)
#include "tst_program.moc"

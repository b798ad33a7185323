// SPDX-License-Identifier: MIT
#include "common/safe_name.h"
#include "tests/support/table.h"

class tst_SafeName : public QObject
{
    Q_OBJECT

private slots:
    void staysInItsFolder_data()
    {
        columns<QString, QString>("offered", "name");
        row("usual", "KORA_1.2.0.623.dat", "KORA_1.2.0.623.dat");
        row("blank", "my clip.mp4", "my clip.mp4");
        row("other alphabets", "录像.mp4", "录像.mp4");
        row("upwards", "../../x.mp4", "x.mp4");
        row("only upwards", "..", "download");
        row("absolute", "/etc/passwd", "passwd");
        row("windows path", "C:\\Windows\\x.exe", "x.exe");
        row("upwards, with half a letter", QString("../../x") + QChar(0xD800) + ".mp4", "x.mp4");
        row("stream of a file", "a:b?.mp4", "ab.mp4");
        row("hidden", ".bashrc", "bashrc");
        row("reserved", "CON.txt", "_CON.txt");
        row("reserved before a blank", "nul .txt", "_nul .txt");
        row("reserved with a number of ours", "com.mp4", "_com.mp4");
        row("reserved with another digit", QString::fromUtf8("lpt¹.mp4"),
            QString::fromUtf8("_lpt¹.mp4"));
        row("reserved console", "conin$", "_conin$");
        row("control characters", QString("a\n\tb\x7f.mp4"), "ab.mp4");
        row("trailing dot", "x.mp4. ", "x.mp4");
        row("nothing left", "///", "download");
        row("150 letters of three bytes", QString(150, QChar(0x5F55)) + ".mp4",
            QString(65, QChar(0x5F55)) + ".mp4");
        row("letters of four bytes", QString::fromUtf8("\U0001F4F9").repeated(80) + "x.mov",
            QString::fromUtf8("\U0001F4F9").repeated(49) + ".mov");
        row("no suffix", QString(5000, 'a'), QString(200, 'a'));
        row("a suffix of its own length", "x." + QString(5000, 'a'), "x." + QString(198, 'a'));
    }
    void staysInItsFolder()
    {
        QFETCH(QString, offered);
        QTEST(safeFileName(offered), "name");
    }
};

QTEST_GUILESS_MAIN(tst_SafeName)
#include "tst_safe_name.moc"

// SPDX-License-Identifier: MIT
#include "common/package_digest.h"

#include "common/living_folder.h"
#include "tests/support/files.h"
#include "tests/support/held_file.h"
#include "tests/support/stopwatch.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

/// Files that cannot be read, or hang.
class tst_PackageDigest : public QObject
{
    Q_OBJECT

private slots:
    void onlyFilesAreRead()
    {
        writeFile(m_folder.filePath("a.dat"), "abc");
        QDir(m_folder.path()).mkdir("folder.dat");
#ifdef Q_OS_UNIX
        ::mkfifo(m_folder.filePath("pipe.dat").toLocal8Bit().constData(), 0600);
#endif
        for (const char* name : {"a.dat", "folder.dat", "pipe.dat", "none.dat"}) {
            PackageDigest digest(m_folder.filePath(name));
            QSignalSpy ready(&digest, &PackageDigest::ready);
            digest.start();
            QTRY_COMPARE(ready.size(), 1);
            QCOMPARE(digest.digest(), QString("a.dat") == name ? md5Of("abc") : QString());
        }
    }

    void hangingFileHoldsNobodyUp()
    {
        NEED_HELD_FILES();
        const QString path = writeFile(m_folder.filePath("held.dat"), "abc");
        const HeldFile held(path);
        QVERIFY(held.isHeld());
        Stopwatch clock;
        {
            PackageDigest given(path);
            PackageDigest left(path);
            given.setPatience(300);
            QSignalSpy ready(&given, &PackageDigest::ready);
            given.start();
            left.start();
            QTRY_COMPARE(ready.size(), 1);
            QCOMPARE(given.digest(), QString());
        }
        VERIFY_BELOW(clock.elapsed(), 3000);
    }

    void dialogsBeginWhereThereIsAFolder()
    {
        QCOMPARE(livingFolder(m_folder.path()), m_folder.path());
        for (const QString& gone :
             {QString(), m_folder.filePath("none"), m_folder.filePath("a.dat")})
            QCOMPARE(livingFolder(gone), QDir::homePath());
    }

private:
    QTemporaryDir m_folder;
};

QTEST_GUILESS_MAIN(tst_PackageDigest)
#include "tst_package_digest.moc"

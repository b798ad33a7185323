// SPDX-License-Identifier: MIT
#include "media/ffmpeg_widget.h"
#include "media/picture_notice.h"
#include "media/still_picture.h"
#include "tests/support/clips.h"
#include "tests/support/picture_window.h"
#include "tests/support/player.h"
#include "tests/support/stopwatch.h"
#include "tests/support/table.h"
#include "widgets/elided_label.h"

#include <QDialog>
#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>

namespace
{

/// No two neighbours alike: nothing to pack.
QImage noise(const QSize& size)
{
    QImage image(size, QImage::Format_RGB32);
    quint32 state = 1;
    for (int y = 0; y < size.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            state = state * 1664525 + 1013904223;
            line[x] = 0xff000000 | state >> 8;
        }
    }
    return image;
}

} // namespace

/// What the operator keeps of what is shown.
class tst_StillPicture : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
#ifdef Q_OS_WIN
        // The system's own folder of pictures, which only a Windows of the test's own has empty.
        if (!qEnvironmentVariableIsSet("TARN_HOST_DISK_C"))
            QSKIP("it would clear the folder of kept pictures");
        QVERIFY(QDir(StillPicture::folder()).removeRecursively());
#else
        m_home = std::make_unique<QTemporaryDir>();
        qputenv("HOME", m_home->path().toLocal8Bit());
        QVERIFY(StillPicture::folder().startsWith(m_home->path()));
#endif
    }

    void namesAreSafe_data()
    {
        columns<QString, QString>("source", "name");
        row("plain", QString("KORA 1"), QString("KORA 1 2026-11-22 23-05-17.png"));
        row("address", QString("127.0.0.1"), QString("127.0.0.1 2026-11-22 23-05-17.png"));
        row("path", QString("../../etc/a\\b"), QString("-..-etc-a-b 2026-11-22 23-05-17.png"));
        row("windows", QString("a:b*<c>|?\n"), QString("abc 2026-11-22 23-05-17.png"));
        row("device", QString("CON"), QString("_CON 2026-11-22 23-05-17.png"));
        row("long", QString(4000, QChar(0x7535)),
            QString(66, QChar(0x7535)) + " 2026-11-22 23-05-17.png");
    }
    void namesAreSafe()
    {
        const auto [source, name] = cells<QString, QString>();
        const QDateTime time({2026, 11, 22}, {23, 5, 17});
        QCOMPARE(StillPicture::fileName(source, time), name);
    }

    void replacesNothing()
    {
        QVERIFY(QDir().mkpath(StillPicture::folder()));
        const QDateTime now = QDateTime::currentDateTime();
        QStringList taken;
        for (int n = 0; n < 20; ++n) {
            taken << StillPicture::folder() + StillPicture::fileName("box", now.addSecs(n));
            QFile file(taken.last());
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write("mine") == 4);
        }
        const QImage image = noise({64, 48});
        StillPicture still;
        QSignalSpy saved(&still, &StillPicture::saved);
        still.save([image] { return image; }, "box");
        still.save([image] { return image; }, "box");
        QTRY_COMPARE(saved.size(), 2);
        for (const QList<QVariant>& each : saved)
            QCOMPARE(QImage(each.first().toString()).convertToFormat(image.format()), image);
        QVERIFY(saved.first().first() != saved.last().first());
        QVERIFY2(saved.first().first().toString().endsWith(" (2).png"),
                 qPrintable(saved.first().first().toString()));
        for (const QString& path : taken)
            QCOMPARE(QFileInfo(path).size(), 4);
    }

    void leavesNothingHalfWritten()
    {
        const QImage image = noise({1920, 1080});
        {
            StillPicture still;
            still.save([image] { return image; }, "box");
        }
        const QDir folder(StillPicture::folder());
        QTRY_VERIFY(folder.entryList({"*.png"}, QDir::Files).size() == 1);
        QTRY_COMPARE(folder.entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size(), 1);
        QCOMPARE(QImage(folder.filePath(folder.entryList(QDir::Files).first()))
                     .convertToFormat(image.format()),
                 image);
    }

    void fewAreKeptInMemory()
    {
        StillPicture still;
        QSignalSpy saved(&still, &StillPicture::saved);
        QSignalSpy failed(&still, &StillPicture::failed);
        const QImage image = noise({1920, 1080});
        for (int n = 0; n < 20; ++n)
            still.save([image] { return image; }, "box");
        QVERIFY(failed.size() > 10);
        QTRY_COMPARE_WITH_TIMEOUT(saved.size() + failed.size(), 20, 20000);
        QVERIFY(saved.size() >= 3);
    }

    void keySavesWhatIsShown()
    {
        PictureWindow picture({160, 120});
        QVERIFY(picture.isActive);
        auto* const widget = picture.widget;
        auto* const field = picture.field;
        QSignalSpy saved(widget, &FFmpegWidget::stillSaved);
        auto* notice = widget->findChild<PictureNotice*>("video_notice");
        QTest::keyClick(field, Qt::Key_F9);
        widget->setSourceName("KORA/1");
        widget->open(m_clips.two());
        QTRY_VERIFY(!widget->picture().isNull());
        // A dialog has its own keys.
        QDialog dialog(&picture.window);
        dialog.setModal(true);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        QTest::keyClick(&dialog, Qt::Key_F9);
        dialog.close();
        QVERIFY(QTest::qWaitForWindowActive(&picture.window));
        widget->pause();
        QTRY_COMPARE(widget->state(), PictureState::State::Stopped);
        QVERIFY(!notice->isVisible() && saved.isEmpty());

        field->setFocus();
        QTest::keyClick(field, Qt::Key_F9);
        QTRY_COMPARE(saved.size(), 1);
        const QString path = saved.first().first().toString();
        QVERIFY2(QFileInfo(path).fileName().startsWith("KORA-1 2"), qPrintable(path));
        // In full, whatever the size in which it is shown.
        const QImage still(path);
        QCOMPARE(still.size(), QSize(320, 180));
        QVERIFY(widget->picture().width() < 320);
        const QImage small =
            still.scaled(widget->picture().size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        const QByteArray shown(reinterpret_cast<const char*>(widget->picture().constBits()),
                               int(widget->picture().sizeInBytes()));
        VERIFY_BELOW(difference(small, shown, 60), shown.size() / 20);
        QVERIFY(notice->isVisible());
        QVERIFY(notice->findChild<ElidedLabel*>()->text().contains(QFileInfo(path).fileName()));
        QVERIFY(widget->rect().contains(notice->geometry()));

        // The next source is not this box.
        widget->close();
        widget->open(m_clips.two());
        // Until then it is the picture of the source before, which goes.
        QTRY_VERIFY(widget->state() == PictureState::State::Playing ||
                    widget->state() == PictureState::State::Ended);
        widget->saveStill();
        QTRY_COMPARE(saved.size(), 2);
        QVERIFY(QFileInfo(saved.last().first().toString()).fileName().startsWith("two 2"));

        // Why it cannot be saved is said.
        QVERIFY(QDir(StillPicture::folder()).removeRecursively());
        QFile blocker(StillPicture::folder().chopped(1));
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        widget->saveStill();
        QTRY_VERIFY(notice->findChild<ElidedLabel*>()->text().startsWith("无法保存画面："));
        QCOMPARE(saved.size(), 2);
    }

private:
    Clips m_clips;
    std::unique_ptr<QTemporaryDir> m_home;
};

QTEST_MAIN(tst_StillPicture)
#include "tst_still_picture.moc"

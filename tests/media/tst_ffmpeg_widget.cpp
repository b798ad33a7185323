// SPDX-License-Identifier: MIT
#include "media/ffmpeg_widget.h"
#include "tests/support/box_client.h"
#include "tests/support/clips.h"
#include "tests/support/dialog_answerer.h"
#include "tests/support/plugged_box.h"
#include "tests/support/scripted_server.h"
#include "tests/support/stopwatch.h"
#include "tests/support/table.h"
#include "widgets/elided_label.h"

#include <QLabel>
#include <QMenu>
#include <QSignalSpy>
#include <QTextEdit>
#include <QTranslator>

using State = PictureState::State;

namespace
{

/// Says every text in another language.
class Shouting : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char*, const char* text, const char*, int) const override
    {
        return "EN " + QString::fromUtf8(text);
    }
};

QImage oneColour(const QSize& size, const QColor& colour)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

} // namespace

class tst_FFmpegWidget : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_widget = std::make_unique<FFmpegWidget>();
        m_widget->setObjectName("video_widget");
        m_widget->setStyleSheet("FFmpegWidget { background-color: #010203; }");
        m_widget->resize(400, 300);
        m_widget->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_widget.get()));
        QCOMPARE(m_widget->state(), State::Idle);
        QVERIFY(areWordsShown());
    }
    void cleanup() { m_widget.reset(); }

    void pictureIsFittedAndCentred_data()
    {
        columns<QSize, QSize, QRect>("area", "picture", "shown");
        row("wide area", QSize(400, 100), QSize(160, 90), QRect(111, 0, 177, 100));
        row("tall area", QSize(320, 400), QSize(160, 90), QRect(0, 110, 320, 180));
        row("same shape", QSize(320, 180), QSize(160, 90), QRect(0, 0, 320, 180));
        row("smaller", QSize(320, 180), QSize(1920, 1080), QRect(0, 0, 320, 180));
    }
    void pictureIsFittedAndCentred()
    {
        const auto [area, picture, shown] = cells<QSize, QSize, QRect>();
        m_widget->resize(area);
        m_widget->updateImage(oneColour(picture, Qt::red));
        m_widget->findChild<QWidget*>("video_state")->hide();
        const QImage seen = m_widget->grab().toImage();
        for (const QPoint& inside : {shown.topLeft(), shown.bottomRight(), shown.center()})
            QCOMPARE(QColor(seen.pixel(inside)), QColor(Qt::red));
        // The rest is the style sheet's.
        const QPoint before = shown.topLeft() - (shown.left() > 0 ? QPoint(1, 0) : QPoint(0, 1));
        const QPoint after = shown.bottomRight() + (shown.left() > 0 ? QPoint(1, 0) : QPoint(0, 1));
        for (const QPoint& outside : {before, after})
            if (m_widget->rect().contains(outside))
                QCOMPARE(QColor(seen.pixel(outside)), QColor("#010203"));
        m_widget->clear();
        QCOMPARE(QColor(m_widget->grab().toImage().pixel(shown.center())), QColor("#010203"));
    }

    void paintsOncePerPicture()
    {
        class Counter : public QObject
        {
        public:
            int paints = 0;
            bool eventFilter(QObject*, QEvent* event) override
            {
                paints += event->type() == QEvent::Paint ? 1 : 0;
                return false;
            }
        } counter;
        m_widget->open(m_clips.two());
        QTRY_COMPARE(m_widget->state(), State::Playing);
        QTest::qWait(50);
        m_widget->installEventFilter(&counter);
        qint64 key = m_widget->picture().cacheKey();
        int pictures = 0;
        Stopwatch clock;
        while (clock.elapsed() < 1000) {
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
            pictures += m_widget->picture().cacheKey() != key ? 1 : 0;
            key = m_widget->picture().cacheKey();
        }
        QVERIFY2(pictures > 15, qPrintable(QString::number(pictures)));
        QVERIFY2(counter.paints <= pictures + 1, qPrintable(QString::number(counter.paints)));
    }

    void playsARecordingOfABox()
    {
        const auto box = pluggedBox(TEST_BLOCK ".1");
        box->addRecording("a.mp4", readFile(m_clips.two()));
        QSignalSpy statuses(m_widget.get(), &FFmpegWidget::playstatus);
        const QString url = "http://" TEST_BLOCK ".1:8081/media/a.mp4";
        m_widget->open(url);
        QCOMPARE(m_widget->state(), State::Opening);
        QTRY_COMPARE(m_widget->state(), State::Playing);
        QVERIFY(!areWordsShown());
        QCOMPARE(statuses.size(), 1);
        QCOMPARE(statuses.first(), QVariantList({1, url}));
        // As large as it is shown.
        QCOMPARE(m_widget->picture().size(), QSize(400, 225));
        // Nobody takes the last picture for a live one.
        QTRY_COMPARE_WITH_TIMEOUT(m_widget->state(), State::Ended, 6000);
        QVERIFY(areWordsShown());
        QVERIFY(!m_widget->picture().isNull());
        QCOMPARE(statuses.size(), 1);
    }

    void playsALiveStream()
    {
        const auto box = pluggedBox(TEST_BLOCK ".2");
        const QString url = command(TEST_BLOCK ".2", "stream_on&stream_url='rtmp://h/app'")
                                .json()
                                .value("pull_url")
                                .toString();
        m_widget->open(url);
        QTRY_COMPARE_WITH_TIMEOUT(m_widget->state(), State::Playing, 10000);
        box->unplug();
        QTRY_COMPARE_WITH_TIMEOUT(m_widget->state(), State::Silent, 6000);
    }

    void saysThatItCannotPlay()
    {
        QSignalSpy statuses(m_widget.get(), &FFmpegWidget::playstatus);
        m_widget->open("http://user:secret@" TEST_BLOCK ".3:9/x");
        QTRY_COMPARE(m_widget->state(), State::Failed);
        QVERIFY(areWordsShown());
        QCOMPARE(statuses.size(), 1);
        QCOMPARE(statuses.first(), QVariantList({0, "http://user:secret@" TEST_BLOCK ".3:9/x"}));
        const QString shown = m_widget->findChild<QLabel*>("video_state_detail")->text();
        QVERIFY2(shown.contains(TEST_BLOCK ".3") && !shown.contains("secret"), qPrintable(shown));
        // It may come later, unless nobody wants it any more.
        QTRY_VERIFY_WITH_TIMEOUT(tries() > 0, 4000);
        QCOMPARE(m_widget->state(), State::Failed); // no picture that could be missed
        DialogAnswerer answers;
        answers.expect<QMenu>([](QMenu& menu) {
            QVERIFY(menu.actions().last()->isEnabled());
            menu.setActiveAction(menu.actions().last());
            QTest::keyClick(&menu, Qt::Key_Return);
        });
        emit m_widget->customContextMenuRequested(QPoint(5, 5));
        QCOMPARE(m_widget->state(), State::Idle);
        QTRY_COMPARE(statuses.size(), 2);
        QCOMPARE(statuses.last().first().toInt(), 2);
    }

    /// What has been told as failed, and tried again, is not told a second time.
    void saysThatItHasGivenUp()
    {
        ScriptedServer server(TEST_BLOCK ".6", httpReply("text/plain", "not yet"),
                              ScriptedServer::Closes);
        m_widget->open(server.url("http", "list.m3u8"));
        QTRY_VERIFY_WITH_TIMEOUT(tries() > 0, 6000);
        server.setReply(httpReply("application/vnd.apple.mpegurl",
                                  "#EXTM3U\n" + QByteArray("#EXTINF:1,\na.ts\n").repeated(20000)));
        QTRY_COMPARE_WITH_TIMEOUT(tries(), 0, 6000);
        const int asked = server.asked();
        QTest::qWait(2500);
        QCOMPARE(server.asked(), asked);
        QCOMPARE(m_widget->state(), State::Failed);
    }

    void slideShowIsNoLostSignal()
    {
        m_widget->open(m_clips.make("slides.mp4",
                                    "-f lavfi -i testsrc2=size=320x180:rate=1/4 -t 16 "
                                    "-c:v libx264 -bf 0 -tune zerolatency"));
        QTRY_COMPARE(m_widget->state(), State::Playing);
        const auto* state = m_widget->findChild<PictureState*>("video_state");
        for (int n = 0; n < 50; ++n) {
            QTest::qWait(100);
            QVERIFY(!state->isVisible());
        }
    }

    void saysThatTheSignalIsLost()
    {
        const QByteArray ts = readFile(m_clips.live());
        ScriptedServer server(TEST_BLOCK ".4", httpReply("video/mp2t", ts));
        m_widget->open(server.url("http"));
        QTRY_COMPARE_WITH_TIMEOUT(m_widget->state(), State::Playing, 10000);
        QTRY_COMPARE_WITH_TIMEOUT(m_widget->state(), State::Silent, 9000);
        QVERIFY(areWordsShown());
        QVERIFY(!m_widget->picture().isNull());
        server.send(ts);
        QTRY_COMPARE_WITH_TIMEOUT(m_widget->state(), State::Playing, 3000);
        QVERIFY(!areWordsShown());
    }

    void closingWipesThePicture()
    {
        QSignalSpy statuses(m_widget.get(), &FFmpegWidget::playstatus);
        m_widget->open(m_clips.two());
        QTRY_COMPARE(m_widget->state(), State::Playing);
        // Pictures are under way while nobody serves events.
        QThread::msleep(150);
        m_widget->close();
        QCOMPARE(m_widget->state(), State::Idle);
        QTRY_VERIFY(m_widget->picture().isNull());
        QTest::qWait(100);
        QVERIFY(m_widget->picture().isNull());
        QCOMPARE(statuses.size(), 2);
        QCOMPARE(statuses.last(), QVariantList({2, m_clips.two()}));
        m_widget->close();
        QTest::qWait(20);
        QCOMPARE(statuses.size(), 2);
    }

    void closedWhileOpeningNeverPlays()
    {
        QSignalSpy statuses(m_widget.get(), &FFmpegWidget::playstatus);
        for (int n = 0; n < 200; ++n) {
            m_widget->open(m_clips.two());
            QThread::usleep(static_cast<unsigned long>(n * 100));
            m_widget->close();
            statuses.clear();
            QTRY_VERIFY(!statuses.isEmpty());
            QCOMPARE(statuses.size(), 1);
            QCOMPARE(statuses.first(), QVariantList({2, m_clips.two()}));
            QCOMPARE(m_widget->state(), State::Idle);
        }
        // Nor is the one before left playing by who opens another one at once.
        m_widget->open(m_clips.two());
        QTRY_COMPARE(statuses.size(), 2);
        m_widget->open(m_clips.live());
        QTRY_COMPARE(statuses.size(), 4);
        QCOMPARE(statuses.at(2), QVariantList({2, m_clips.two()}));
        QCOMPARE(statuses.at(3), QVariantList({1, m_clips.live()}));
    }

    void closingHoldsNobodyUp()
    {
        ScriptedServer server(TEST_BLOCK ".4");
        qint64 longest = 0;
        for (int n = 1; n <= 8; ++n) {
            m_widget->open(server.url("http"));
            QTRY_COMPARE_WITH_TIMEOUT(server.asked(), n, 5000);
            QElapsedTimer clock;
            clock.start();
            m_widget->close();
            longest = qMax(longest, clock.elapsed());
        }
        VERIFY_BELOW(longest, 50);
    }

    void pausingKeepsAMarkedPicture()
    {
        QSignalSpy statuses(m_widget.get(), &FFmpegWidget::playstatus);
        m_widget->pause();
        QVERIFY(statuses.isEmpty());
        m_widget->open(m_clips.two());
        QTRY_COMPARE(m_widget->state(), State::Playing);
        m_widget->pause();
        QTRY_COMPARE(m_widget->state(), State::Stopped);
        QVERIFY(areWordsShown());
        QCOMPARE(statuses.last(), QVariantList({2, m_clips.two()}));
        QTest::qWait(100);
        QVERIFY(!m_widget->picture().isNull());
        QCOMPARE(m_widget->state(), State::Stopped);
        m_widget->close();
        QTRY_VERIFY(m_widget->picture().isNull());
    }

    void anotherSourceLeavesNothingOfTheFirst()
    {
        const QString other =
            m_clips.make("other.png", "-f lavfi -i color=blue:size=64x64 -frames:v 1");
        for (int n = 0; n < 20; ++n) {
            m_widget->close();
            m_widget->open(m_clips.two());
            QTRY_COMPARE(m_widget->state(), State::Playing);
            QThread::msleep(50);
            m_widget->close();
            m_widget->open(other);
            // Its one picture comes while the old ones are still under way.
            QThread::msleep(50);
            QTRY_COMPARE(m_widget->picture().size(), QSize(300, 300));
            QTest::qWait(10);
            QCOMPARE(m_widget->picture().size(), QSize(300, 300));
        }
    }

    void menuPlaysAFile()
    {
        QSignalSpy statuses(m_widget.get(), &FFmpegWidget::playstatus);
        choose<QFileDialog>(0, [this](QFileDialog& dialog) {
            QCOMPARE(dialog.fileMode(), QFileDialog::ExistingFile);
            QCOMPARE(dialog.windowTitle(), QString("选择视频文件"));
            QCOMPARE(dialog.labelText(QFileDialog::Accept), QString("选择视频文件"));
            QCOMPARE(dialog.labelText(QFileDialog::Reject), QString("取消"));
            QCOMPARE(dialog.nameFilters(),
                     QStringList({"视频文件 (*.mov *.mp4 *.m4a *.3gp *.3gp *.3g2 *.mj2)", "*.mov",
                                  "*.mp4", "*.m4a", "*.3gp", "*.3gp", "*.3g2", "*.mj2"}));
            choosePath(dialog, m_clips.two());
        });
        QTRY_COMPARE(m_widget->state(), State::Playing);
        QCOMPARE(statuses.last(), QVariantList({1, m_clips.two()}));
        // Cancelling changes nothing.
        choose<QFileDialog>(0, [](QFileDialog& dialog) { dialog.reject(); });
        QTest::qWait(20);
        QCOMPARE(m_widget->state(), State::Playing);
        QCOMPARE(statuses.size(), 1);
    }

    void menuPlaysAnAddress()
    {
        const auto enter = [this](const QString& text) {
            choose<messageBox>(1, [text](messageBox& box) {
                box.findChild<QTextEdit*>("contentEdit")->setPlainText(text);
                box.done(messageBox::Confirmed);
            });
        };
        QSignalSpy statuses(m_widget.get(), &FFmpegWidget::playstatus);
        enter(m_clips.two());
        QTRY_COMPARE(m_widget->state(), State::Playing);
        enter(QString());
        QTest::qWait(20);
        QCOMPARE(m_widget->state(), State::Playing);
        QCOMPARE(statuses.size(), 1);
        enter("http://" TEST_BLOCK ".5:9/");
        QTRY_COMPARE(m_widget->state(), State::Failed);
        QCOMPARE(statuses.size(), 3);
        QCOMPARE(statuses.at(1).first().toInt(), 2);
        QCOMPARE(statuses.at(2), QVariantList({0, "http://" TEST_BLOCK ".5:9/"}));
    }

    void outsideTextStaysText()
    {
        const QString hostile = "/nowhere/<b>bold</b>\n" + QString(5000, 'x') + "%1%2%s";
        m_widget->open(hostile);
        QTRY_COMPARE(m_widget->state(), State::Failed);
        auto* detail = m_widget->findChild<ElidedLabel*>("video_state_detail");
        QCOMPARE(detail->text(), hostile);
        QCOMPARE(detail->textFormat(), Qt::PlainText);
        QVERIFY(
            m_widget->rect().contains(m_widget->findChild<QWidget*>("video_state")->geometry()));
    }

    void hintIsReadWholeInANarrowWindow()
    {
        m_widget->resize(200, 400);
        const auto* hint = m_widget->findChild<QLabel*>("video_state_hint");
        const auto* box = m_widget->findChild<QWidget*>("video_state");
        QTRY_VERIFY(hint->isVisible() && hint->height() >= hint->heightForWidth(hint->width()));
        QVERIFY(hint->height() > hint->fontMetrics().lineSpacing());
        QVERIFY(m_widget->rect().contains(box->geometry()));
        QVERIFY(box->rect().contains(hint->geometry()));
    }

    void languageChanges()
    {
        const QString before = words();
        Shouting language;
        QApplication::installTranslator(&language);
        QCoreApplication::processEvents();
        QCOMPARE(words(), "EN " + before);
        QStringList actions;
        DialogAnswerer answers;
        answers.expect<QMenu>([&](QMenu& menu) {
            for (const QAction* action : menu.actions())
                actions << action->text();
            menu.close();
        });
        emit m_widget->customContextMenuRequested(QPoint(5, 5));
        QCOMPARE(actions, QStringList({"EN 播放本地文件", "EN 网络拉流地址", "EN 保存当前画面",
                                       "EN 显示播放信息", "EN 停止播放"}));
        QApplication::removeTranslator(&language);
        QCoreApplication::processEvents();
        QCOMPARE(words(), before);
    }

private:
    int tries() const { return m_widget->findChild<PictureState*>("video_state")->tries(); }
    QString words() const { return m_widget->findChild<QLabel*>("video_state_title")->text(); }
    bool areWordsShown() const { return m_widget->findChild<QWidget*>("video_state")->isVisible(); }
    /// Opens the context menu and chooses its action there, then does `act` in the dialog.
    template <class Dialog> void choose(int position, const std::function<void(Dialog&)>& act)
    {
        DialogAnswerer answers;
        answers.expect<QMenu>([=](QMenu& menu) {
            QCOMPARE(menu.actions().at(position)->data().toInt(), position + 1);
            menu.setActiveAction(menu.actions().at(position));
            QTest::keyClick(&menu, Qt::Key_Return);
        });
        answers.expect<Dialog>(act);
        emit m_widget->customContextMenuRequested(QPoint(5, 5));
        QVERIFY(answers.isDone());
    }

    Clips m_clips;
    std::unique_ptr<FFmpegWidget> m_widget;
};

QTEST_MAIN(tst_FFmpegWidget)
#include "tst_ffmpeg_widget.moc"

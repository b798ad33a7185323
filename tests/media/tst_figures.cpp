// SPDX-License-Identifier: MIT
#include "media/ffmpeg_widget.h"
#include "media/figures_meter.h"
#include "media/figures_view.h"
#include "media/level_meter.h"
#include "tests/support/clips.h"
#include "tests/support/picture_window.h"
#include "tests/support/player.h"
#include "tests/support/table.h"
#include "widgets/elided_label.h"

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/samplefmt.h>
}

#include <cmath>
#include <limits>
#include <memory>

namespace
{

/// A film with sound of that shape.
QString filmWith(const QString& sound)
{
    return Small + " -f lavfi -i aevalsrc=" + sound + " -t 1.5 -c:v libx264 -tune zerolatency";
}

const QString twoTones = "0.5*sin(6283*t)|0.05*sin(6283*t)";

struct Sound {
    Sound(AVSampleFormat format, int channels, int samples)
        : frame(av_frame_alloc(), [](AVFrame* each) { av_frame_free(&each); })
    {
        frame->format = format;
        frame->nb_samples = samples;
        frame->sample_rate = 48000;
        av_channel_layout_default(&frame->ch_layout, channels);
        av_frame_get_buffer(frame.get(), 0);
        av_samples_set_silence(frame->extended_data, 0, samples, channels, format);
    }
    std::shared_ptr<AVFrame> frame;
};

bool isNear(float level, double expected, double tolerance)
{
    return std::abs(double(level) - expected) <= tolerance;
}

} // namespace

/// What the operator is told of a source: levels, rates, and how they look.
class tst_Figures : public QObject
{
    Q_OBJECT

private slots:
    void levelsOfEveryFormat_data()
    {
        columns<QString, double>("codec", "tolerance");
        row("u8", QString("-c:a pcm_u8"), 1.5);
        row("s16", QString("-c:a pcm_s16le"), 0.1);
        row("s16 planar", QString("-c:a wavpack -sample_fmt s16p"), 0.1);
        row("s32", QString("-c:a pcm_s24le"), 0.1);
        row("s32 planar", QString("-c:a wavpack -sample_fmt s32p"), 0.1);
        row("flt", QString("-c:a pcm_f32le"), 0.1);
        row("flt planar", QString("-c:a aac -b:a 256k"), 1.5);
        row("dbl", QString("-c:a pcm_f64le"), 0.1);
    }
    void levelsOfEveryFormat()
    {
        const auto [codec, tolerance] = cells<QString, double>();
        const QString name = QString(QTest::currentDataTag()).replace(' ', '-') + ".mkv";
        Player player(m_clips.make(name, filmWith(twoTones) + ' ' + codec));
        QTRY_COMPARE(player.thread.figures().soundLevels.size(), 2);
        // Nobody has asked for them yet.
        QCOMPARE(player.thread.figures().soundLevels.first(), SoundLevel::Floor);
        player.thread.setSoundMeasured(true);
        const auto isRight = [&, near = tolerance] {
            const QVector<float> levels = player.thread.figures().soundLevels;
            return isNear(levels.at(0), -6.02, near) && isNear(levels.at(1), -26.02, near);
        };
        QTRY_VERIFY(isRight());
    }

    void onlyTheFirstChannels()
    {
        QStringList tones;
        for (int n = 0; n < 16; ++n)
            tones << QString("%1*sin(6283*t)").arg(std::pow(10.0, -n / 20.0));
        Player player(m_clips.make("16.mkv", filmWith(tones.join('|') + ":c=hexadecagonal") +
                                                 " -c:a pcm_s16le"));
        player.thread.setSoundMeasured(true);
        const auto isRight = [&] {
            const QVector<float> levels = player.thread.figures().soundLevels;
            for (int n = 0; n < levels.size(); ++n) {
                if (!isNear(levels.at(n), -n, 0.1))
                    return false;
            }
            return levels.size() == SoundLevel::MostChannels;
        };
        QTRY_VERIFY(isRight());
        // The film is over, and so is its sound.
        QTRY_COMPARE_WITH_TIMEOUT(player.thread.figures().soundLevels.first(), SoundLevel::Floor,
                                  8000);
    }

    void levelsFallAndSurviveNonsense()
    {
        SoundLevel level;
        const Sound loud(AV_SAMPLE_FMT_FLT, 2, 480);
        auto* samples = reinterpret_cast<float*>(loud.frame->data[0]);
        samples[10] = std::numeric_limits<float>::quiet_NaN();
        samples[12] = 0.5F;
        samples[13] = std::numeric_limits<float>::infinity();
        level.add(*loud.frame);
        QVERIFY(isNear(level.peaks().at(0), -6.02, 0.01));
        QCOMPARE(level.peaks().at(1), 0.0F);
        // Half a second of silence, at 20 dB a second.
        level.add(*Sound(AV_SAMPLE_FMT_FLT, 2, 24000).frame);
        QVERIFY(isNear(level.peaks().at(0), -16.02, 0.01));
        QVERIFY(isNear(level.peaks().at(1), -10, 0.01));
        loud.frame->sample_rate = 0;
        loud.frame->format = 999;
        level.add(*loud.frame);
        QVERIFY(isNear(level.peaks().at(1), -10, 0.01));
        level.fall(100);
        QCOMPARE(level.peaks(), QVector<float>({SoundLevel::Floor, SoundLevel::Floor}));
    }

    void ratesFollowWhatComes()
    {
        RateMeter meter;
        QCOMPARE(meter.perSecond(0), 0.0);
        qint64 now = 0;
        for (int n = 0; n < 200; ++n)
            meter.add(now += 40000, 1000);
        QCOMPARE(meter.perSecond(now), 25000.0);
        for (int n = 0; n < 200; ++n)
            meter.add(now += 20000, 1000);
        QCOMPARE(meter.perSecond(now), 50000.0);
        // A source that stands still sinks to nothing; what comes in one go is no more than that.
        QVERIFY(meter.perSecond(now + 1500000) < 30000);
        QCOMPARE(meter.perSecond(now + 4000000), 0.0);
        meter.add(now += 4000000, 1000);
        meter.add(now += 77, 1000);
        QCOMPARE(meter.perSecond(now), 10000.0);
        for (int n = 0; n < 100000; ++n)
            meter.add(now += 1, 1);
        QVERIFY(meter.perSecond(now) <= 1e6);
    }

    void metersKeepTheLoudest()
    {
        LevelMeter meter;
        meter.setLevels({-10, -50});
        meter.setLevels({-30, -40});
        QCOMPARE(meter.marks(), QVector<float>({-10, -40}));
        meter.resize(meter.sizeHint());
        QImage shown(meter.size(), QImage::Format_RGB32);
        shown.fill(Qt::black);
        meter.render(&shown, QPoint(), QRegion(), QWidget::RenderFlags());
        const auto at = [&](float level, int y) {
            return QColor(shown.pixel(int((level + 60) / 60 * float(shown.width())) - 1, y));
        };
        QVERIFY(at(-31, 3).green() > 150);  // sounding
        QVERIFY(at(-22, 3).green() < 100);  // silent
        QVERIFY(at(-10, 3).red() > 200);    // the mark
        QVERIFY(at(-3, 3).red() < 150);     // silent
        QVERIFY(at(-45, 13).green() > 150); // the second channel
        QTRY_COMPARE_WITH_TIMEOUT((meter.setLevels({-30, -40}), meter.marks().first()), -30.0F,
                                  3000);
    }

    void keyShowsFigures()
    {
        PictureWindow shown({640, 420});
        QVERIFY(shown.isActive);
        auto* const widget = shown.widget;
        auto* const field = shown.field;
        auto* view = widget->findChild<FiguresView*>("video_figures");
        QTest::keyClick(field, Qt::Key_F8);
        // There is nothing to tell yet.
        QVERIFY(!view->isVisible());
        widget->open(m_clips.make("keys.mkv", filmWith(twoTones) + " -c:a pcm_s16le"));
        QVERIFY(view->isVisible());
        QTRY_VERIFY(words(*view).contains("320 × 180"));
        QTRY_VERIFY(!words(*view).contains("fps: 0") && view->findChild<LevelMeter*>());
        const QString text = words(*view);
        for (const char* part : {"h264 (", "320 × 180", " fps", "bit/s", "软件，1 个线程", "2 个"})
            QVERIFY2(text.contains(part), qPrintable(text));
        QTRY_VERIFY(view->findChild<LevelMeter*>()->marks().value(0) > -7);

        // It makes way for what the picture's state is.
        auto* state = widget->findChild<PictureState*>("video_state");
        const QRect alone = view->geometry();
        QCOMPARE(alone.topLeft(), QPoint(12, 12));
        widget->pause();
        QTRY_VERIFY(state->isVisible());
        QVERIFY(!view->geometry().intersects(state->geometry()));
        for (const QSize& size : {QSize(300, 420), QSize(200, 100), QSize(40, 20)}) {
            widget->resize(size);
            QVERIFY(view->width() <= qMax(0, size.width() - 24) || size.width() < 50);
            QVERIFY(size.height() < 400 || !view->geometry().intersects(state->geometry()));
        }
        QTest::keyClick(field, Qt::Key_F8);
        QVERIFY(!view->isVisible());
        QTest::keyClick(field, Qt::Key_F8);
        QVERIFY(view->isVisible());
        widget->close();
        QVERIFY(!view->isVisible());
    }

    void longNamesStayInside()
    {
        QWidget area;
        QWidget other(&area);
        FiguresView view(&area, &other);
        area.resize(640, 480);
        view.show();
        PictureFigures figures;
        figures.codec = "<b>" + QString(5000, 'x');
        figures.size = QSize(8192, 4608);
        figures.bitsPerSecond = std::numeric_limits<qint64>::max();
        figures.soundLevels.fill(0, 8);
        view.setFigures(figures);
        area.show();
        QVERIFY(area.rect().contains(view.geometry()));
        for (const QLabel* label : view.findChildren<QLabel*>())
            QCOMPARE(label->textFormat(), Qt::PlainText);
    }

private:
    static QString words(const FiguresView& view)
    {
        QStringList texts;
        for (const QLabel* label : view.findChildren<QLabel*>())
            texts << label->text();
        return texts.join('\n');
    }

    Clips m_clips;
};

QTEST_MAIN(tst_Figures)
#include "tst_figures.moc"

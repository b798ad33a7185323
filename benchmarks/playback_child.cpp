// SPDX-License-Identifier: MIT
#include "benchmarks/playback_child.h"

#include "benchmarks/bench_support.h"
#include "media/ffmpeg_widget.h"

#include <QApplication>
#include <QFile>
#include <QSocketNotifier>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <unistd.h>

namespace
{

constexpr int memoryPeriodMs = 1000;
constexpr int settledAfter = 10; // periods

qint64 residentKb()
{
    QFile file("/proc/self/statm");
    return file.open(QIODevice::ReadOnly) ? file.readAll().split(' ').at(1).toLongLong() * 4 : 0;
}

/// Looks at the pictures that reach the screen.
class Counter : public QObject
{
public:
    explicit Counter(FFmpegWidget* widget) : m_widget(widget) { widget->installEventFilter(this); }

    int pictures = 0;

    /// Gaps count from now on.
    void startGaps()
    {
        m_longestNs = 0;
        m_clock.start();
    }
    double longestGapMs() const { return double(m_longestNs) / 1e6; }

    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint && m_widget->picture().cacheKey() != m_last) {
            m_last = m_widget->picture().cacheKey();
            ++pictures;
            if (m_clock.isValid())
                m_longestNs = std::max(m_longestNs, m_clock.nsecsElapsed());
            m_clock.start();
        }
        return false;
    }

private:
    FFmpegWidget* m_widget;
    qint64 m_last = QImage().cacheKey();
    QElapsedTimer m_clock;
    qint64 m_longestNs = 0;
};

/// Notes what the player says that it does, and when its window stands still.
class StateNotes
{
public:
    explicit StateNotes(const FFmpegWidget* widget) : m_widget(widget)
    {
        QObject::connect(&m_timer, &QTimer::timeout, [this] { look(); });
        m_clock.start();
        m_timer.start(lookMs);
    }

private:
    static constexpr int lookMs = 20;
    static constexpr int longMs = 200;

    void look()
    {
        const qint64 ms = m_clock.restart();
        if (ms > longMs)
            note(QString("player: the window stood still for %1 ms").arg(ms));
        const auto state = m_widget->state();
        if (m_state != state) {
            note(QString("player: state %1, %2 pictures dropped")
                     .arg(int(state))
                     .arg(m_widget->droppedPictures()));
        }
        m_state = state;
    }

    const FFmpegWidget* m_widget;
    std::optional<PictureState::State> m_state;
    QElapsedTimer m_clock;
    QTimer m_timer;
};

class Child
{
public:
    Child()
    {
        QFile style(":/qss/spark.qss");
        if (style.open(QIODevice::ReadOnly))
            qApp->setStyleSheet(QString::fromUtf8(style.readAll()));
        widget.setWindowFlag(Qt::FramelessWindowHint);
        widget.setGeometry(0, 0, 1280, 720);
        widget.show();
    }
    FFmpegWidget widget;
};

} // namespace

int playOnce(const QString& source, bool report)
{
    Child child;
    Counter counter(&child.widget);
    GapMeter gaps;
    QVector<qint64> memory;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (child.widget.state() == PictureState::State::Ended ||
            child.widget.state() == PictureState::State::Failed)
            qApp->quit();
    });
    watch.start(50);
    StateNotes notes(&child.widget);
    QTimer sampler;
    QObject::connect(&sampler, &QTimer::timeout, [&] { memory << residentKb(); });
    if (report) {
        sampler.start(memoryPeriodMs);
        // Opening the window and the first picture are not playing.
        QTimer::singleShot(1000, [&] {
            gaps.start();
            counter.startGaps();
        });
    }
    child.widget.open(source);
    QApplication::exec();
    const qint64 settled = memory.value(settledAfter);
    const qint64 most =
        settled == 0 ? 0 : *std::max_element(memory.begin() + settledAfter, memory.end());
    std::printf("pictures %d dropped %d\n", counter.pictures, child.widget.droppedPictures());
    if (report)
        std::printf("longest-picture-gap %.1f longest-loop-gap %.1f memory-grown %lld\n",
                    counter.longestGapMs(), gaps.longestMs(), most - settled);
    return counter.pictures > 0 ? 0 : 1;
}

int playOnDemand()
{
    Child child;
    QFile input;
    if (!input.open(STDIN_FILENO, QIODevice::ReadOnly | QIODevice::Unbuffered))
        return 1;
    QSocketNotifier notifier(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, [&] {
        const QByteArray line = input.readLine().trimmed();
        if (line.isEmpty())
            qApp->quit();
        else if (line == "close")
            child.widget.close();
        else
            child.widget.open(QString::fromUtf8(line.mid(int(qstrlen("open ")))));
    });
    return QApplication::exec();
}

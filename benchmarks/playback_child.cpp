// SPDX-License-Identifier: MIT
#include "benchmarks/playback_child.h"

#include "benchmarks/bench_support.h"
#include "media/ffmpeg_widget.h"

#include <QApplication>
#include <QFile>
#include <QSocketNotifier>

#include <algorithm>
#include <cstdio>
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

/// Counts the pictures that reach the screen.
class Counter : public QObject
{
public:
    explicit Counter(FFmpegWidget* widget) : m_widget(widget) { widget->installEventFilter(this); }
    int pictures = 0;

    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint && m_widget->picture().cacheKey() != m_last) {
            m_last = m_widget->picture().cacheKey();
            ++pictures;
        }
        return false;
    }

private:
    FFmpegWidget* m_widget;
    qint64 m_last = QImage().cacheKey();
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

int playOnce(const QString& file, bool report)
{
    Child child;
    Counter counter(&child.widget);
    GapMeter gaps;
    QVector<qint64> memory;
    int dropped = 0;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (child.widget.state() == PictureState::State::Ended ||
            child.widget.state() == PictureState::State::Failed)
            qApp->quit();
    });
    watch.start(50);
    QTimer sampler;
    QObject::connect(&sampler, &QTimer::timeout, [&] { memory << residentKb(); });
    if (report) {
        sampler.start(memoryPeriodMs);
        // Opening the window and the first picture are not playing.
        QTimer::singleShot(1000, [&] { gaps.start(); });
    }
    child.widget.open(file);
    QApplication::exec();
    dropped = child.widget.droppedPictures();
    if (report && memory.size() > settledAfter)
        std::printf("pictures %d dropped %d gaps %d %.1f memory %lld %lld %lld\n", counter.pictures,
                    dropped, gaps.gapsOver(30), gaps.longestMs(), memory.at(settledAfter),
                    memory.last(), *std::max_element(memory.begin(), memory.end()));
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

// SPDX-License-Identifier: MIT
// Starts the program and another one in turns and compares how long each takes until its window
// shows something, and what it keeps in memory without a web-managed box.
#include "benchmarks/bench_support.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QNetworkInterface>
#include <QStandardPaths>
#include <QThread>

#include <xcb/xcb.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace
{

constexpr int limitMs = 20000;
constexpr int settleMs = 2000;
constexpr double wantedRatio = 0.8;
constexpr double wantedMb = 90;

template <class Reply> using Answer = std::unique_ptr<Reply, decltype(&std::free)>;

/// Watches the display for windows of programs.
class Display
{
public:
    Display() : m_connection(xcb_connect(nullptr, nullptr))
    {
        if (xcb_connection_has_error(m_connection))
            qFatal("no X display");
        m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
        const uint32_t wanted = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_change_window_attributes(m_connection, m_root, XCB_CW_EVENT_MASK, &wanted);
        xcb_flush(m_connection);
    }
    ~Display() { xcb_disconnect(m_connection); }
    Q_DISABLE_COPY(Display)

    void forgetWindows()
    {
        while (nextEvent()) {
        }
        m_window = 0;
    }

    /// True once a window of a program has appeared and holds more than a plain area.
    bool showsSomething()
    {
        while (!m_window) {
            const auto event = nextEvent();
            if (!event)
                return false;
            if ((event->response_type & 0x7f) == XCB_MAP_NOTIFY)
                take(reinterpret_cast<xcb_map_notify_event_t*>(event.get())->window);
        }
        constexpr int rows = 8;
        constexpr int manyEdges = 20;
        int edges = 0;
        for (int row = 1; row < rows; ++row)
            edges += edgesInRow(int16_t(m_height * row / rows));
        return edges > manyEdges;
    }

private:
    Answer<xcb_generic_event_t> nextEvent()
    {
        return {xcb_poll_for_event(m_connection), &std::free};
    }

    /// Not what programs hide in windows of a few pixels.
    void take(xcb_window_t window)
    {
        const Answer<xcb_get_geometry_reply_t> size(
            xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, window), nullptr),
            &std::free);
        if (!size || size->width < 300 || size->height < 200)
            return;
        m_window = window;
        m_width = size->width;
        m_height = size->height;
    }

    int edgesInRow(int16_t y)
    {
        const Answer<xcb_get_image_reply_t> image(
            xcb_get_image_reply(m_connection,
                                xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_window, 0,
                                              y, m_width, 1, ~0U),
                                nullptr),
            &std::free);
        if (!image)
            return 0;
        const auto* pixels = reinterpret_cast<const uint32_t*>(xcb_get_image_data(image.get()));
        const int count = xcb_get_image_data_length(image.get()) / int(sizeof(uint32_t));
        int edges = 0;
        for (int n = 1; n < count; ++n)
            edges += ((pixels[n] ^ pixels[n - 1]) & 0xffffff) != 0;
        return edges;
    }

    xcb_connection_t* m_connection;
    xcb_window_t m_root = 0;
    xcb_window_t m_window = 0;
    uint16_t m_width = 0;
    uint16_t m_height = 0;
};

struct Program {
    const char* name;
    QStringList command;
    QVector<double> ms;
    QVector<double> residentMb;
    QVector<double> shareMb; // what it shares with others counted in part
};

double median(QVector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.value(values.size() / 2);
}

double memoryMb(qint64 pid, const QByteArray& field)
{
    QFile file(QStringLiteral("/proc/%1/smaps_rollup").arg(pid));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : file.readAll().split('\n')) {
        if (line.startsWith(field + ':'))
            return line.simplified().split(' ').value(1).toDouble() / 1024;
    }
    return 0;
}

void startOnce(Program& program, Display& display)
{
    display.forgetWindows();
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    QElapsedTimer clock;
    clock.start();
    process.start(program.command.first(), program.command.mid(1));
    while (!display.showsSomething()) {
        if (clock.elapsed() > limitMs || process.waitForFinished(0))
            qFatal("no window of %s", program.name);
        QThread::usleep(1000);
    }
    program.ms << double(clock.nsecsElapsed()) / 1e6;
    QThread::msleep(settleMs);
    program.residentMb << memoryMb(process.processId(), "Rss");
    program.shareMb << memoryMb(process.processId(), "Pss");
    process.terminate();
    if (!process.waitForFinished(5000)) {
        process.kill();
        process.waitForFinished();
    }
}

/// Nothing here may reach a real network, and the other program might want to.
bool onLoopbackOnly()
{
    const auto all = QNetworkInterface::allInterfaces();
    return std::all_of(all.begin(), all.end(), [](const QNetworkInterface& one) {
        return one.flags() & QNetworkInterface::IsLoopBack;
    });
}

/// A first start of both, without questions.
void useFolders(const QString& folder)
{
    for (const char* name : {"HOME", "APPDATA", "XDG_DATA_HOME", "XDG_CACHE_HOME",
                             "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME"})
        qputenv(name, folder.toUtf8());
    QDir(folder).mkpath("qBittorrent");
    QFile agreed(folder + "/qBittorrent/qBittorrent.conf");
    if (agreed.open(QIODevice::WriteOnly))
        agreed.write("[LegalNotice]\nAccepted=true\n");
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    if (!onLoopbackOnly()) {
        std::fputs("Run this where there is loopback only: unshare -rn sh -c 'ip link set lo up; "
                   "exec xvfb-run -a build/benchmarks/bench_start'\n",
                   stderr);
        return 2;
    }
    QStringList peer = QCoreApplication::arguments().mid(1);
    const int runs = peer.isEmpty() ? 5 : qBound(1, peer.takeFirst().toInt(), 50);
    if (peer.isEmpty())
        peer << "qbittorrent";
    if (QStandardPaths::findExecutable(peer.first()).isEmpty())
        qFatal("%s is not installed", qPrintable(peer.first()));
    const QTemporaryDir folder;
    useFolders(folder.path());

    Program own{"Tarn Hub",
                {TARN_HUB_PROGRAM, "--subnet", "127.77.54.0/24", "--fping", LAN_FPING,
                 "--update-server", "http://127.77.54.254:9"},
                {},
                {},
                {}};
    const QByteArray peerName = peer.first().toUtf8();
    Program other{peerName.constData(), peer, {}, {}, {}};
    Display display;
    // The first start of each reads files that are in memory from then on, and writes its settings.
    for (int n = 0; n <= runs; ++n) {
        for (Program* program : {&own, &other}) {
            startOnce(*program, display);
            if (n == 0)
                *program = {program->name, program->command, {}, {}, {}};
        }
    }
    for (const Program* program : {&own, &other}) {
        std::printf("%s, median of %d\n", program->name, runs);
        report("  start until the window shows something", median(program->ms), "ms", "-");
        report("  resident memory", median(program->residentMb), "MB",
               program == &own ? "< 90" : "-");
        report("  of it, shared memory counted in part", median(program->shareMb), "MB", "-");
    }
    const double ratio = median(own.ms) / median(other.ms);
    report("time of Tarn Hub, in those of the other", ratio, "", "< 0.8");
    return ratio <= wantedRatio && median(own.residentMb) < wantedMb ? 0 : 1;
}

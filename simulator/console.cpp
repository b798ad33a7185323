// SPDX-License-Identifier: MIT
#include "simulator/console.h"

#include <QCoreApplication>
#include <QTimer>

#include <array>
#include <memory>

#ifdef _WIN32
#include <thread>

#include <windows.h>
#else
#include <QSocketNotifier>

#include <csignal>

#include <sys/socket.h>
#include <unistd.h>
#endif

namespace sim::console
{
namespace
{

constexpr int parentCheckMs = 500;

void checkOften(std::function<bool()> isThere, QCoreApplication* app)
{
    auto* const timer = new QTimer(app);
    QObject::connect(timer, &QTimer::timeout, app, [isThere = std::move(isThere), app] {
        if (!isThere())
            app->quit();
    });
    timer->start(parentCheckMs);
}

/// Adds what was read to what is open, and hands the whole lines over.
void takePiece(QByteArray* open, const QByteArray& piece,
               const std::function<void(const QByteArray&)>& take)
{
    open->append(piece);
    for (int end = open->indexOf('\n'); end >= 0; end = open->indexOf('\n')) {
        const QByteArray line = open->left(end);
        open->remove(0, end + 1);
        take(line);
    }
}

} // namespace

#ifdef _WIN32

void quitWhenAsked(QCoreApplication*)
{
    SetConsoleCtrlHandler(
        [](DWORD) -> BOOL {
            QMetaObject::invokeMethod(QCoreApplication::instance(), &QCoreApplication::quit,
                                      Qt::QueuedConnection);
            return TRUE;
        },
        TRUE);
}

void quitWith(qint64 process, QCoreApplication* app)
{
    const HANDLE handle = OpenProcess(SYNCHRONIZE, FALSE, DWORD(process));
    checkOften([handle] { return handle && WaitForSingleObject(handle, 0) == WAIT_TIMEOUT; }, app);
}

void readLines(std::function<void(const QByteArray&)> take, QCoreApplication* app)
{
    // A pipe cannot be watched here, only read: on a thread, which ends with the program.
    std::thread([take = std::move(take), app] {
        const auto open = std::make_shared<QByteArray>();
        std::array<char, 4096> buffer;
        DWORD got = 0;
        while (ReadFile(GetStdHandle(STD_INPUT_HANDLE), buffer.data(), DWORD(buffer.size()), &got,
                        nullptr) &&
               got > 0) {
            QMetaObject::invokeMethod(
                app,
                [open, take, piece = QByteArray(buffer.data(), int(got))] {
                    takePiece(open.get(), piece, take);
                },
                Qt::QueuedConnection);
        }
    }).detach();
}

QByteArray userName()
{
    return qgetenv("USERNAME");
}

#else

namespace
{

int signalPipe[2]; // a signal handler may do little more than write

} // namespace

void quitWhenAsked(QCoreApplication* app)
{
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, signalPipe) != 0)
        return;
    auto* const notifier = new QSocketNotifier(signalPipe[1], QSocketNotifier::Read, app);
    QObject::connect(notifier, &QSocketNotifier::activated, app, &QCoreApplication::quit);
    const auto handler = [](int) {
        const char byte = 0;
        [[maybe_unused]] const auto written = write(signalPipe[0], &byte, 1);
    };
    std::signal(SIGTERM, handler);
    std::signal(SIGINT, handler);
    std::signal(SIGPIPE, SIG_IGN); // who listens to us may go first
}

void quitWith(qint64 process, QCoreApplication* app)
{
    checkOften([process] { return kill(pid_t(process), 0) == 0; }, app);
}

void readLines(std::function<void(const QByteArray&)> take, QCoreApplication* app)
{
    auto* const notifier = new QSocketNotifier(STDIN_FILENO, QSocketNotifier::Read, app);
    const auto open = std::make_shared<QByteArray>();
    QObject::connect(notifier, &QSocketNotifier::activated, app,
                     [notifier, open, take = std::move(take)] {
                         std::array<char, 4096> buffer;
                         const ssize_t got = read(STDIN_FILENO, buffer.data(), buffer.size());
                         if (got <= 0)
                             notifier->setEnabled(false);
                         else
                             takePiece(open.get(), QByteArray(buffer.data(), int(got)), take);
                     });
}

QByteArray userName()
{
    return QByteArray::number(getuid());
}

#endif

} // namespace sim::console

// SPDX-License-Identifier: MIT
// lan-fping for Windows; elsewhere the script of that name does it, which tells more.
#include "simulator/child_process.h"
#include "simulator/virtual_lan.h"

#include <QCoreApplication>
#include <QFile>
#include <QSet>

#include <cstdio>

namespace
{

constexpr int exitFailed = 4;

QSet<QByteArray> pluggedBoxes()
{
    QFile file(qEnvironmentVariable(qPrintable(sim::VirtualLan::runVariable())) +
               QStringLiteral("/plugged"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QList<QByteArray> lines = file.readAll().split('\n');
    return {lines.begin(), lines.end()};
}

void letThrough(QIODevice* pings, const QSet<QByteArray>& plugged)
{
    while (pings->canReadLine()) {
        const QByteArray line = pings->readLine();
        if (plugged.contains(line.trimmed()))
            std::fwrite(line.data(), 1, size_t(line.size()), stdout);
    }
    std::fflush(stdout);
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    const QSet<QByteArray> plugged = pluggedBoxes();
    sim::ChildProcess pings;
    QObject::connect(&pings, &QProcess::readyReadStandardOutput, &app,
                     [&] { letThrough(&pings, plugged); });
    QObject::connect(&pings, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), &app,
                     &QCoreApplication::exit);
    QObject::connect(&pings, &QProcess::errorOccurred, &app,
                     [] { QCoreApplication::exit(exitFailed); });
    pings.setStandardErrorFile(QProcess::nullDevice());
    pings.start(
        qEnvironmentVariable("KORA_LAN_FPING", QCoreApplication::applicationDirPath() +
                                                   QStringLiteral("/fping/fping_x64/fping.exe")),
        QCoreApplication::arguments().mid(1), QIODevice::ReadOnly);
    return QCoreApplication::exec();
}

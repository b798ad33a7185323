// SPDX-License-Identifier: MIT
#include "common/living_folder.h"

#include "common/loose_thread.h"

#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QTimer>

QString livingFolder(const QString& wanted)
{
    constexpr int limitMs = 500;
    QString found;
    if (!wanted.isEmpty()) {
        QEventLoop loop;
        LooseThread look(QStringLiteral("folder"), [wanted](const std::atomic<bool>&) {
            return QFileInfo(wanted).isDir() ? wanted : QString();
        });
        QObject::connect(&look, &LooseThread::done, &loop, [&](const QString& folder) {
            found = folder;
            loop.quit();
        });
        QTimer::singleShot(limitMs, &loop, &QEventLoop::quit);
        look.start();
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    }
    return found.isEmpty() ? QDir::homePath() : found;
}

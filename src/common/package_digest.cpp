// SPDX-License-Identifier: MIT
#include "common/package_digest.h"

#include "common/file_digest.h"
#include "crash/crash_handler.h"

#include <QThread>

PackageDigest::PackageDigest(QString path, QObject* parent)
    : QObject(parent), m_path(std::move(path))
{
}

PackageDigest::~PackageDigest()
{
    m_stop = true;
    if (m_thread)
        m_thread->wait();
}

void PackageDigest::start()
{
    m_thread.reset(QThread::create([this] {
        CrashHandler::coverThread();
        const QString md5 = fileMd5(m_path, &m_stop);
        QMetaObject::invokeMethod(this, [this, md5] {
            m_md5 = md5;
            emit ready();
        });
    }));
    m_thread->setObjectName(QStringLiteral("digest"));
    m_thread->start();
}

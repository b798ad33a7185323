// SPDX-License-Identifier: MIT
#include "ui/window/one_instance.h"

#include "common/platform.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDebug>
#include <QDir>
#include <QFileInfo>
#include <QLocalSocket>
#include <QThread>
#include <QTimer>

namespace
{

constexpr unsigned long betweenTriesMs = 50;
constexpr int mostCallers = 4;
constexpr int nameDigits = 32;
/// Milliseconds for a caller to go; he has been told all there is.
constexpr int callerMs = 1000;

} // namespace

OneInstance::OneInstance(QString folder)
    : m_folder(std::move(folder)), m_lock(m_folder + QStringLiteral("instance.lock"))
{
    // However old: a show may take days.
    m_lock.setStaleLockTime(0);
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    m_server.setMaxPendingConnections(mostCallers);
    connect(&m_server, &QLocalServer::newConnection, this, &OneInstance::answer);
}

QStringList OneInstance::names() const
{
    const QString folder = QFileInfo(m_folder).canonicalFilePath();
    const QByteArray whose = QDir::homePath().toUtf8() + '\n' + folder.toUtf8();
    const QByteArray digest = QCryptographicHash::hash(whose, QCryptographicHash::Sha256).toHex();
    return Platform::serverNames(folder, QStringLiteral("tarn-hub-") +
                                             QString::fromLatin1(digest.left(nameDigits)));
}

OneInstance::Outcome OneInstance::claim(int patienceMs)
{
    const QDeadlineTimer patience(patienceMs);
    while (!m_lock.tryLock(0)) {
        if (m_lock.error() != QLockFile::LockFailedError) {
            qWarning().noquote() << "no lock in" << m_folder << "; it may have several users";
            return Outcome::First;
        }
        if (call(int(patience.remainingTime())))
            return Outcome::Told;
        // By its number the program that made the lock may seem to run: in a container each start
        // has the same one. While it does run, the system does not let the lock be removed.
        if (m_lock.removeStaleLockFile())
            continue;
        if (patience.hasExpired())
            return Outcome::Stuck;
        QThread::msleep(betweenTriesMs);
    }
    listen();
    return Outcome::First;
}

void OneInstance::listen()
{
    const QStringList places = names();
    for (const QString& name : places) {
        // Left by a killed program: this one has the lock.
        QLocalServer::removeServer(name);
        if (m_server.listen(name))
            return;
    }
    qWarning().noquote() << "nobody can call this program:" << m_server.errorString();
}

/// What a caller says is not read: to come is all that there is to say.
void OneInstance::answer()
{
    while (QLocalSocket* caller = m_server.nextPendingConnection()) {
        caller->setReadBufferSize(1);
        QTimer::singleShot(callerMs, caller, &QObject::deleteLater);
        emit called();
        caller->write("1");
        caller->disconnectFromServer();
    }
}

/// True when the first one has said that it comes.
bool OneInstance::call(int patienceMs) const
{
    const QDeadlineTimer patience(patienceMs);
    const QStringList places = names();
    for (const QString& name : places) {
        QLocalSocket first;
        Platform::letOthersToFront();
        first.connectToServer(name);
        if (first.waitForConnected(int(patience.remainingTime())) &&
            (first.bytesAvailable() > 0 || first.waitForReadyRead(int(patience.remainingTime()))))
            return true;
    }
    return false;
}

// SPDX-License-Identifier: MIT
#include "common/package_digest.h"

#include "common/file_digest.h"
#include "common/loose_thread.h"

PackageDigest::PackageDigest(QString path, QCryptographicHash::Algorithm algorithm)
    : m_path(std::move(path))
    , m_algorithm(algorithm)
    , m_pieces(std::make_shared<std::atomic<int>>(0))
{
    constexpr int patienceMs = 20000;
    setPatience(patienceMs);
    connect(&m_patience, &QTimer::timeout, this, &PackageDigest::checkProgress);
}

PackageDigest::~PackageDigest() = default;

void PackageDigest::start()
{
    m_thread = std::make_unique<LooseThread>(
        QStringLiteral("digest"),
        [path = m_path, algorithm = m_algorithm, pieces = m_pieces](const std::atomic<bool>& stop) {
            return fileDigest(path, algorithm, &stop, pieces.get());
        });
    connect(m_thread.get(), &LooseThread::done, this, &PackageDigest::finish);
    m_thread->start();
    m_patience.start();
}

void PackageDigest::checkProgress()
{
    const int pieces = *m_pieces;
    if (pieces != m_seen) {
        m_seen = pieces;
        return;
    }
    m_thread.reset();
    finish(QString());
}

void PackageDigest::finish(const QString& digest)
{
    m_patience.stop();
    m_digest = digest;
    emit ready();
}

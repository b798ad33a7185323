// SPDX-License-Identifier: MIT
#include "media/still_picture.h"

#include "common/safe_name.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QImageWriter>
#include <QSaveFile>
#include <QStandardPaths>

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace
{

/// Pictures in memory that the disk has not taken; the largest have 150 MB.
constexpr int mostUnwritten = 3;
constexpr std::chrono::seconds endWait(1);
/// Of 100 the least packed; a large picture is to be there soon.
constexpr int pngQuality = 80;
/// So many pictures of one source in a second are not made.
constexpr int mostNumbers = 1000;

struct Written {
    QString path;   // empty: not written
    QString reason; // of the system
};

/// The first of `folder`'s names of this kind that no file has; empty when all have.
QString freeStill(const QString& folder, const QString& name)
{
    const QFileInfo wanted(folder + name);
    for (int n = 1; n < mostNumbers; ++n) {
        const QString number = n == 1 ? QString() : QStringLiteral(" (%1)").arg(n);
        const QString path =
            folder + wanted.completeBaseName() + number + QLatin1Char('.') + wanted.suffix();
        const QFileInfo file(path);
        if (!file.exists() && !file.isSymLink())
            return path;
    }
    return QString();
}

Written write(const QImage& image, const QString& folder, const QString& name)
{
    QDir().mkpath(folder);
    const QString path = freeStill(folder, name);
    QSaveFile file(path);
    if (path.isEmpty() || !file.open(QIODevice::WriteOnly))
        return {QString(), file.errorString()};
    QImageWriter writer(&file, "png");
    writer.setQuality(pngQuality);
    if (!writer.write(image)) {
        file.cancelWriting();
        return {QString(),
                file.error() == QFileDevice::NoError ? writer.errorString() : file.errorString()};
    }
    return file.commit() ? Written{path, QString()} : Written{QString(), file.errorString()};
}

} // namespace

class StillPicture::Unwritten
{
public:
    /// False when there are enough.
    bool begin()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_count >= mostUnwritten)
            return false;
        ++m_count;
        return true;
    }
    void end()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        --m_count;
        m_changed.notify_all();
    }
    void waitForAll()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_changed.wait_for(lock, endWait, [this] { return m_count == 0; });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_count = 0; // guarded by m_mutex
};

StillPicture::StillPicture(QObject* parent)
    : QObject(parent)
    , m_unwritten(std::make_shared<Unwritten>())
    , m_disk(QStringLiteral("still picture"))
{
}

StillPicture::~StillPicture()
{
    m_unwritten->waitForAll();
}

QString StillPicture::folder()
{
    const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    return (pictures.isEmpty() ? QDir::homePath() : pictures) + QStringLiteral("/Tarn Hub/");
}

QString StillPicture::fileName(const QString& source, const QDateTime& time)
{
    // A name with a separator is one name, not a path.
    QString name = source;
    name.replace(QLatin1Char('/'), QLatin1Char('-')).replace(QLatin1Char('\\'), QLatin1Char('-'));
    return safeFileName(name) + time.toString(QStringLiteral(" yyyy-MM-dd HH-mm-ss")) +
           QStringLiteral(".png");
}

void StillPicture::save(std::function<QImage()> picture, const QString& source)
{
    if (!m_unwritten->begin()) {
        emit failed(tr("前面的画面还没有写完"));
        return;
    }
    const auto result = std::make_shared<Written>();
    const auto work = [result, unwritten = m_unwritten, picture = std::move(picture),
                       name = fileName(source, QDateTime::currentDateTime())] {
        *result = write(picture(), folder(), name);
        unwritten->end();
    };
    m_disk.add(work, [this, result] {
        if (result->path.isEmpty())
            emit failed(result->reason);
        else
            emit saved(result->path);
    });
}

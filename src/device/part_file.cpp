// SPDX-License-Identifier: MIT
#include "device/part_file.h"

#include "common/data_path.h"
#include "common/json_map.h"
#include "common/safe_name.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

namespace
{

constexpr int mostRecordBytes = 64 * 1024;

QString recordFolder()
{
    return dataPath(QStringLiteral("download"));
}

/// What a record tells; nothing of it is believed that the part and the box do not bear out.
struct PartRecord {
    QString part;
    RecordingSource source;
    qint64 length = -1;
};

PartRecord readRecord(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QVariantMap map = jsonToMap(file.read(mostRecordBytes));
    const auto text = [&map](const char* key) { return map.value(QLatin1String(key)).toString(); };
    bool isNumber = false;
    const qint64 length = text("length").toLongLong(&isNumber);
    return {
        text("part"), {text("address"), text("mac"), text("name")}, isNumber ? length : qint64(-1)};
}

} // namespace

bool RecordingSource::isSame(const RecordingSource& other) const
{
    // Boxes change their addresses, not who they are.
    const bool sameBox = mac.isEmpty() || other.mac.isEmpty()
                             ? address == other.address
                             : mac.compare(other.mac, Qt::CaseInsensitive) == 0;
    return sameBox && name == other.name;
}

PartFile::PartFile(const QString& folder, RecordingSource source)
    : m_folder(folder), m_name(safeFileName(source.name)), m_source(std::move(source))
{
}

PartFile::~PartFile()
{
    if (!m_part.isEmpty() && size() == 0)
        discard();
}

qint64 PartFile::size() const
{
    return QFileInfo(m_part).size();
}

bool PartFile::open()
{
    return findKept() || makeNew();
}

bool PartFile::findKept()
{
    const QDir records(recordFolder());
    const QStringList names = records.entryList({QStringLiteral("*.json")}, QDir::Files);
    for (const QString& name : names) {
        const PartRecord record = readRecord(records.filePath(name));
        // Its place first: a folder that is not asked for may be one that no longer answers.
        const QString suffix = partSuffix();
        if (!record.part.startsWith(m_folder) || !record.part.endsWith(suffix) ||
            record.part.indexOf(QLatin1Char('/'), m_folder.size()) >= 0 ||
            !record.source.isSame(m_source))
            continue;
        m_part = record.part;
        const bool fits = size() > 0 && size() <= record.length;
        if (fits && records.filePath(name) == recordPath() && lock()) {
            m_path = record.part.chopped(suffix.size());
            m_length = record.length;
            return true;
        }
    }
    m_part.clear();
    return false;
}

bool PartFile::makeNew()
{
    m_path = freePath(m_folder, m_name);
    m_length = -1;
    QFile file(m_path + partSuffix());
    if (!file.open(QIODevice::NewOnly | QIODevice::WriteOnly))
        return false;
    m_part = file.fileName();
    forget(); // what was there under this name before
    lock();
    return true;
}

/// One that has died holds no lock; time alone ends none, a download may take hours.
bool PartFile::lock()
{
    m_lock = std::make_unique<QLockFile>(recordPath() + QStringLiteral(".lock"));
    m_lock->setStaleLockTime(0);
    return m_lock->tryLock(0);
}

void PartFile::setLength(qint64 length)
{
    m_length = length;
    const QJsonObject record{
        {QStringLiteral("part"), m_part},
        {QStringLiteral("address"), m_source.address},
        {QStringLiteral("mac"), m_source.mac},
        {QStringLiteral("name"), m_source.name},
        // As text: a number of JSON is no integer.
        {QStringLiteral("length"), QString::number(length)},
    };
    QSaveFile file(recordPath());
    if (file.open(QIODevice::WriteOnly)) {
        file.write(QJsonDocument(record).toJson());
        file.commit();
    }
}

bool PartFile::startOver(qint64 good)
{
    forget();
    if (m_length < 0 || good != m_length) {
        m_length = -1;
        return QFile::resize(m_part, 0);
    }
    return QFile::resize(m_part, good) && giveName() && makeNew();
}

/// Renaming never replaces a file; one that came in the meantime makes us take another name.
bool PartFile::giveName()
{
    constexpr int attempts = 3;
    for (int n = 0; n < attempts; ++n) {
        const QString record = recordPath();
        if (QFile::rename(m_part, m_path)) {
            QFile::remove(record);
            m_lock.reset();
            m_part.clear();
            return true;
        }
        m_path = freePath(m_folder, m_name);
    }
    return false;
}

void PartFile::discard()
{
    QFile::remove(m_part);
    forget();
    m_lock.reset();
    m_part.clear();
}

void PartFile::forget()
{
    QFile::remove(recordPath());
}

QString PartFile::recordPath() const
{
    const QByteArray digest =
        QCryptographicHash::hash(m_part.toUtf8(), QCryptographicHash::Md5).toHex();
    return recordFolder() + QString::fromLatin1(digest) + QStringLiteral(".json");
}

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
#include <QStorageInfo>

namespace
{

/// To take a name that nobody takes in the same moment.
constexpr int attempts = 5;

/// Where the record of the part at `path` lies.
QString recordPath(const QString& path)
{
    const QByteArray digest = QCryptographicHash::hash(path.toUtf8(), QCryptographicHash::Md5);
    return dataPath(QStringLiteral("download")) + QString::fromLatin1(digest.toHex()) +
           QStringLiteral(".json");
}

std::unique_ptr<QLockFile> lockOf(const QString& path)
{
    auto lock = std::make_unique<QLockFile>(recordPath(path) + QStringLiteral(".lock"));
    // A program that has died holds none; time alone ends none, a download may take hours.
    lock->setStaleLockTime(0);
    return lock;
}

/// What a record tells; nothing of it is believed that the part and the box do not bear out.
struct PartRecord {
    QString part;
    KeptPart what;
};

PartRecord readRecord(const QString& path)
{
    constexpr int mostBytes = 64 * 1024;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QVariantMap map = jsonToMap(file.read(mostBytes));
    const auto text = [&map](const char* key) { return map.value(QLatin1String(key)).toString(); };
    bool isNumber = false;
    const qint64 length = text("length").toLongLong(&isNumber);
    const QString part = text("part");
    return {part,
            {part.left(part.lastIndexOf(QLatin1Char('/')) + 1),
             {text("address"), text("mac"), text("name")},
             isNumber ? length : qint64(-1)}};
}

QVector<PartRecord> allRecords()
{
    const QDir folder(dataPath(QStringLiteral("download")));
    const QStringList names = folder.entryList({QStringLiteral("*.json")}, QDir::Files, QDir::Time);
    QVector<PartRecord> records;
    for (const QString& name : names) {
        const PartRecord record = readRecord(folder.filePath(name));
        const bool isOurs = record.part.endsWith(partSuffix()) && record.what.length > 0 &&
                            recordPath(record.part) == folder.filePath(name);
        if (isOurs)
            records << record;
    }
    return records;
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
    if (m_isAbandoned)
        discard();
    letGo();
}

qint64 PartFile::size() const
{
    return QFileInfo(m_part).size();
}

bool PartFile::open()
{
    return findKept() || makeNew();
}

QVector<KeptPart> PartFile::kept()
{
    QVector<KeptPart> parts;
    const QVector<PartRecord> records = allRecords();
    for (const PartRecord& record : records) {
        if (lockOf(record.part)->tryLock(0))
            parts << record.what;
    }
    return parts;
}

void PartFile::removeKept(const QString& folder, const RecordingSource& source)
{
    PartFile part(folder, source);
    if (part.findKept())
        part.discard();
}

bool PartFile::findKept()
{
    const QVector<PartRecord> records = allRecords();
    for (const PartRecord& record : records) {
        // Its place first: a folder that is not asked for may be one that no longer answers.
        if (record.what.folder != m_folder || !record.what.source.isSame(m_source))
            continue;
        m_part = record.part;
        if (size() > 0 && size() <= record.what.length && lock()) {
            m_path = m_part.chopped(partSuffix().size());
            m_length = record.what.length;
            return true;
        }
    }
    m_part.clear();
    return false;
}

bool PartFile::makeNew()
{
    m_length = -1;
    // Another download may take the free name first.
    for (int n = 0; n < attempts; ++n) {
        m_path = freePath(m_folder, m_name);
        QFile file(m_path + partSuffix());
        if (file.open(QIODevice::NewOnly | QIODevice::WriteOnly)) {
            m_part = file.fileName();
            forget(); // what was there under this name before
            lock();
            return true;
        }
    }
    return false;
}

bool PartFile::lock()
{
    m_lock = lockOf(m_part);
    return m_lock->tryLock(0);
}

bool PartFile::isWorthKeeping() const
{
    return m_length >= 0 && (size() > 0 || !QFileInfo::exists(m_part));
}

bool PartFile::hasRoom(qint64 reserve) const
{
    const QStorageInfo disk(m_folder);
    return !disk.isValid() || disk.bytesAvailable() > reserve ||
           (m_length >= 0 && m_length - size() < disk.bytesAvailable() / 2);
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
    QSaveFile file(recordPath(m_part));
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
    for (int n = 0; n < attempts; ++n) {
        const QString record = recordPath(m_part);
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
    if (!m_part.isEmpty()) {
        QFile::remove(m_part);
        forget();
    }
    m_lock.reset();
    m_part.clear();
}

void PartFile::letGo()
{
    if (!m_part.isEmpty() && size() == 0 && !isWorthKeeping())
        discard();
    m_part.clear();
    m_lock.reset();
}

void PartFile::forget()
{
    QFile::remove(recordPath(m_part));
}

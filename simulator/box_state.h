// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

#include <mutex>

namespace sim
{

/// One request as a box received it.
struct BoxRequest {
    qint64 time = 0;     ///< ms since the epoch
    QByteArray method;   ///< "GET", "POST", …
    QByteArray path;     ///< "/config"
    QByteArray query;    ///< what stood after "?", not decoded
    QByteArray body;     ///< as received, not decoded; of an upload: its file name
    qint64 bodySize = 0; ///< bytes; of an upload: the size of the file
};

/// Something that may never happen to a box while its firmware changes.
struct BoxBreach {
    QString what;
    qint64 afterMs = 0; ///< since it was told to change over
};

/// A change of firmware.
struct BoxChange {
    qint64 at = 0; ///< ms since the epoch
    QString version;
};

/// What a box is doing.
struct BoxActivity {
    bool fullEncoder = false;       ///< switched by ndienc_on, ndienc_off
    bool compressedEncoder = false; ///< switched by hxenc_on, hxenc_off
    QString decodeSource;           ///< source being decoded, empty: none
    QString streamTarget;           ///< address it pushes to, or the id of an SRT listener
    QString recordingFile;          ///< file being recorded, empty: none
    int reboots = 0;                ///< since it was made, by command, firmware change or reboot()
    int restarts = 0;               ///< of its software only
    bool changingFirmware = false;  ///< took the order and has not gone yet ("ota-slow")
    int brokenChanges = 0;          ///< changes of firmware that a restart or power cut ended
    qint64 changeOrderedAt = 0;     ///< ms since the epoch
    QVector<BoxChange> changes;     ///< to a package, as it was told
    bool unapplied = false;         ///< something was written since its last start
    QVector<BoxBreach> breaches;
};

/// A recording on a box.
struct Recording {
    QString name;
    QString path; ///< file on this computer; empty: a sample clip, made when first asked for
};

/// What a box remembers: settings, recordings, firmware, and what it was asked. Every function
/// may be called from any thread.
class BoxState
{
public:
    BoxState(int number, const QString& address);

    QString parameter(const QString& name) const; ///< empty when there is none
    bool hasParameter(const QString& name) const;
    void setParameter(const QString& name, const QString& value);
    QMap<QString, QString> parameters() const;
    /// Forgets every change made since the box left the factory; version and MAC address stay.
    void loseSettings();
    /// Forgets the changes of these settings only.
    void resetSettings(const QStringList& names);

    QStringList decodeSources() const;
    void setDecodeSources(const QStringList& sources);

    QVector<Recording> recordings() const; ///< newest first
    void addRecording(const Recording& recording);
    /// Takes a recording out and gives it back; an empty name when there is none.
    Recording takeRecording(const QString& name);

    BoxActivity activity() const;
    /// `change` gets the activity under the lock.
    template <typename Change> void changeActivity(Change change)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        change(m_activity);
    }

    /// Notes `what` as a breach while its firmware changes.
    void noteInChange(const QString& what);

    QString uploadedVersion() const; ///< of the last firmware file; empty: none came
    void setUploadedVersion(const QString& version);

    void log(const BoxRequest& request); ///< the oldest of 20,000 are dropped
    QVector<BoxRequest> requests() const;
    void clearRequests();

private:
    mutable std::mutex m_mutex;
    // All guarded by m_mutex.
    const QMap<QString, QString> m_factory;
    QMap<QString, QString> m_parameters;
    QStringList m_decodeSources;
    QVector<Recording> m_recordings;
    BoxActivity m_activity;
    QString m_uploadedVersion;
    QVector<BoxRequest> m_requests;
};

} // namespace sim

// SPDX-License-Identifier: MIT
#pragma once

#include <QLockFile>
#include <QString>
#include <QVector>

#include <atomic>
#include <memory>

/// Which recording on which box. The MAC address may be unknown (empty): then the box is told by
/// its address.
struct RecordingSource {
    QString address;
    QString mac;
    QString name; ///< as the box has it

    bool isSame(const RecordingSource& other) const;
};

/// A part that an earlier download has left.
struct KeptPart {
    QString folder; ///< ends in "/"
    RecordingSource source;
    qint64 length = -1; ///< of the whole recording
};

/// What a look at a part has shown.
struct PartState {
    QString path;     ///< the name it will have, or has
    QString partPath; ///< where the data goes
    qint64 size = 0;
    qint64 length = -1;          ///< of the whole recording; -1 while unknown
    bool isWorthKeeping = false; ///< something of it is there, or its disk is away for a moment

    bool isWhole() const { return length >= 0 && size == length; }
};

/// The file of one download while its data comes: "<name>.part", which gets its name once it is
/// whole. No file that was there before is touched. A part that is not whole stays when this object
/// goes, with a record in the data folder of what it is a part of, so that a later download of the
/// same recording into the same folder goes on with it. Nobody else uses it meanwhile.
///
/// All of it touches the disk, and hangs with it: not for the GUI thread.
class PartFile
{
    Q_DISABLE_COPY(PartFile)

public:
    /// `folder` ends in "/".
    PartFile(const QString& folder, RecordingSource source);
    ~PartFile();

    /// All that the records in the data folder tell of and nobody uses; whether the files are there
    /// is not looked at.
    static QVector<KeptPart> kept();
    /// Removes what an earlier download of the recording has left in `folder`.
    static void removeKept(const QString& folder, const RecordingSource& source);

    /// Finds the part of an earlier download or makes an empty one; false when the folder takes no
    /// files. To be called once.
    bool open();
    /// Where the data goes.
    QString partPath() const { return m_part; }
    /// The name it will have, unless another file takes it meanwhile.
    QString path() const { return m_path; }
    qint64 size() const;
    /// Something of the recording is there, or its disk is away for a moment.
    bool isWorthKeeping() const;

    /// How long the whole recording is, as the box said when the part began; -1 while unknown.
    qint64 length() const { return m_length; }
    /// Whether its disk has more than `reserve` bytes, or twice of what is still to come.
    bool hasRoom(qint64 reserve) const;
    /// Writes the record.
    void setLength(qint64 length);
    PartState state() const { return {m_path, m_part, size(), m_length, isWorthKeeping()}; }

    /// What the part has is of no use for what the box has now: goes on with an empty one. The
    /// first `good` bytes are of the recording as it was; were they all of it, they get their name.
    bool startOver(qint64 good);
    /// Gives the file its name; false leaves the part.
    bool giveName();
    /// Removes the part.
    void discard();
    /// Has the part removed when this object goes. From any thread.
    void abandon() { m_isAbandoned = true; }
    /// Ends the use of the part: another download may go on with it. An empty one goes.
    void letGo();

private:
    bool findKept();
    bool makeNew();
    bool lock();
    void forget();

    const QString m_folder;
    const QString m_name; ///< safe on this computer
    const RecordingSource m_source;
    QString m_path;
    QString m_part;
    qint64 m_length = -1;
    std::unique_ptr<QLockFile> m_lock;
    std::atomic<bool> m_isAbandoned{false};
};

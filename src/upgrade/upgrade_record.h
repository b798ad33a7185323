// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QJsonObject>
#include <QObject>
#include <QString>
#include <QVariantMap>
#include <QVector>

/// What is known of one box's upgrade. Plain data: UpgradeReport fills it, files keep it.
struct UpgradeRow {
    Q_GADGET

public:
    // The names of both are words in the journals on disk: a changed name makes them unreadable.
    enum class Stage {
        Preparing,    ///< nothing has been sent yet
        Uploading,    ///< the package is on its way, for the first or a later time
        Activated,    ///< the box has been told to change over
        UploadFailed, ///< the batch ended without the box confirming the package
        Interrupted,  ///< the program ended in the middle; what the box did is not known
    };
    Q_ENUM(Stage)
    enum class Settings {
        NotKept,    ///< nobody asked for it
        NotSaved,   ///< asked for, but they could not be read whole: nothing is written back
        Waiting,    ///< saved, to be written back when the box is seen again
        Restored,   ///< written back, and read from the box as they were
        Unverified, ///< written back; the box did not let them be read again
        SomeFailed, ///< written back twice; `failedSettings` did not take
        Dropped,    ///< the operator did not want them back
        Unchanged,  ///< saved, but the box did not change: there was nothing to write back
        HandedOver, ///< a later upgrade of the same box has taken them over
        Ambiguous,  ///< two boxes tell this MAC address: they were not written to either
    };
    Q_ENUM(Settings)
    enum class Verdict { UnderWay, Proved, NotProved, Failed, Interrupted };

    /// The longest version of a box that is taken.
    static constexpr int LongestVersion = 64;

    /// What the box reports decides; what it was told does not.
    Verdict verdict() const;
    /// The box has changed over to the package, beyond doubt.
    bool isProved() const;

    QString mac; ///< empty when the box never told it: then nothing is proved
    QString addressBefore;
    QString address; ///< where it was last seen
    QString versionBefore;
    QString versionAfter; ///< empty until the box has reported one after its activation
    Stage stage = Stage::Preparing;
    /// Nothing more is expected of the box: it has proved itself or failed, and has its settings
    /// back if it should; or it has run out of time.
    bool settled = false;
    Settings settings = Settings::NotKept;
    QStringList failedSettings;
    QVariantMap saved;       ///< the settings to be written back
    bool lastTry = false;    ///< they failed once, the next time is the last
    bool ambiguous = false;  ///< another box tells the same MAC address
    bool wasAway = false;    ///< it stopped answering after it was told to change over
    QString expected;        ///< the version that the package's name tells, empty: none
    bool dhcpForced = false; ///< it had a fixed address and was switched to an assigned one
    QDateTime started;
    qint64 durationMs = 0; ///< from the start until the verdict; 0 until then
    QString aftermath;     ///< what is worth telling of the time after its settings were written
    QStringList absent;    ///< settings that it said it does not have, when it was read to be kept
    QString stopped;       ///< what a check that must never fail has found
    QString note;          ///< the last thing worth telling, as the box or the program put it
};

/// One batch: the package and its boxes.
struct UpgradeSession {
    QDateTime started;
    QString package; ///< file name without folder
    QString md5;     ///< lower-case hex
    QVector<UpgradeRow> rows;
    bool ended = false;       ///< its boxes had all been told, or given up
    bool interrupted = false; ///< the program ended before that

    bool isSettled() const;
    bool hasWaitingSettings() const;
    /// The name of its files, without folder and suffix.
    QString baseName() const;

    QJsonObject toJson() const;
    /// False when `json` is not what toJson() writes, or wrote when stages were numbers, or holds a
    /// word that is not known here; `problem` is why. Other texts are taken as they are.
    static bool fromJson(const QJsonObject& json, UpgradeSession* session,
                         QString* problem = nullptr);
};

namespace UpgradeText
{
QStringList headers();
/// One text per header; `now` for a row that is still under way.
QStringList cells(const UpgradeSession& session, const UpgradeRow& row, const QDateTime& now);
QString verdict(UpgradeRow::Verdict verdict);
/// The whole report as a spreadsheet opens it: UTF-8 with byte order mark, every cell quoted, and
/// no cell that a spreadsheet would take for a formula.
QByteArray csv(const UpgradeSession& session, const QDateTime& now);
} // namespace UpgradeText

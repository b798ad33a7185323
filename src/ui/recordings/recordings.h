// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/hub.h"

#include <QList>
#include <QObject>
#include <QStringList>
#include <QTimer>

#include <memory>
#include <vector>

class FFmpegWidget;
class Item;
class ListWidget;
class StorageHint;
class QAbstractButton;
class QLabel;
class QListWidgetItem;
struct HttpResult;

/// The recordings on the selected box: listed, played in the monitor, deleted.
class Recordings : public QObject
{
    Q_OBJECT

public:
    /// Where recordings are played: the monitor's picture and the controls below it.
    struct Player {
        FFmpegWidget& video;
        QAbstractButton& play; ///< checked while something plays
        QLabel& address;       ///< of what plays
    };

    /// `list` and what `player` points at outlive this object.
    Recordings(const Hub& hub, ListWidget& list, const Player& player);
    ~Recordings() override;

    ListWidget& list() const { return m_list; }

    /// Reads the names of the recordings on the selected box.
    void getDeviceRecordList();
    /// Another box has been selected: what is listed of the one before would be taken for its.
    void showBox(const QString& ip);
    /// The box at `ip` has told who it is: what is listed of another one there goes.
    void noteMac(const QString& ip, const QString& mac);
    /// The names of the recordings on a box have arrived.
    void handleReply(const HttpResult& result);

    // These block, serving events, when they have something to tell.
    /// The play button: plays the first selected recording, or stops.
    void playSelected(bool on);
    /// Plays `recording`, or stops when it is the one playing. Null is ignored.
    void playOrStop(const Item* recording);
    /// Plays what is listed above (-1) or below (+1) the recording that plays.
    void playNeighbour(int step);
    /// Plays the recording of the box at `ip` whose name holds `name`, or, while none is listed,
    /// the one of that name.
    void playNamed(const QString& ip, const QString& name);
    /// What the video widget says of its session; `status` as FFmpegThread::playstatus.
    void showStatus(int status, const QString& url);

    /// Asks, then deletes the recordings of `rows` on their box, except one that plays. The
    /// question blocks, serving events.
    void remove(const QList<QListWidgetItem*>& rows);

private:
    void play(const Item& recording);
    void playUrl(const QString& url);
    void markPlaying(const QString& url);
    bool isFree(const QString& ip) const;
    void startDelete(std::unique_ptr<Item> recording);
    void noteNotDeleted(const QString& name);
    void noteDeleted(Item* recording, bool succeeded);
    void tellFailedDeletes();

    const Hub m_hub;
    ListWidget& m_list;
    StorageHint& m_hint; ///< of the list
    const Player m_player;
    QString m_playing; ///< the address that plays, empty: none
    QString m_listedIp;
    std::vector<std::unique_ptr<Item>> m_deleting;
    QStringList m_failedDeletes;
    QTimer m_tellFailedDeletes;
};

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
class ParameterPanel;
class QListWidgetItem;
struct HttpResult;
namespace Ui
{
class MonitorArea;
class StorageArea;
} // namespace Ui

/// The recordings on the selected box: listed, played in the monitor, deleted.
class Recordings : public QObject
{
    Q_OBJECT

public:
    Recordings(const Hub& hub, Ui::StorageArea& storage, Ui::MonitorArea& monitor,
               ParameterPanel& panel);
    ~Recordings() override;

    ListWidget& list() const { return m_list; }

    /// Another box has been selected: what is listed of the one before would be taken for its.
    void showBox(const QString& ip);
    /// The names of the recordings on a box have arrived.
    void handleReply(const HttpResult& result);

    /// The play button: plays the first selected recording, or stops.
    void playSelected(bool on);
    /// Plays `recording`, or stops when it is the one playing. Null is ignored.
    void playOrStop(const Item* recording);
    /// Plays what is listed above (-1) or below (+1) the recording that plays.
    void playNeighbour(int step);
    /// Plays the recording of the box at `ip` whose name holds `name`, once it is listed.
    void playWhenListed(const QString& ip, const QString& name);
    /// What the video widget says of its session; `status` as FFmpegThread::playstatus.
    void showStatus(int status, const QString& url);

    /// Asks, then deletes the recordings of `rows` on their box, except one that plays.
    void remove(const QList<QListWidgetItem*>& rows);

private:
    void play(const Item& recording);
    void markPlaying(const QString& url);
    void playAwaited();
    void startDelete(std::unique_ptr<Item> recording);
    void noteDeleted(Item* recording, bool succeeded);
    void tellFailedDeletes();

    const Hub m_hub;
    ListWidget& m_list;
    Ui::MonitorArea& m_monitor;
    FFmpegWidget& m_player;
    ParameterPanel& m_panel;
    QString m_playing; ///< the address that plays, empty: none
    QString m_listedIp;
    QString m_awaitedIp;
    QString m_awaitedName; ///< to be played once it is listed
    std::vector<std::unique_ptr<Item>> m_deleting;
    QStringList m_failedDeletes;
    QTimer m_tellFailedDeletes;
};

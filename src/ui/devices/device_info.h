// SPDX-License-Identifier: MIT
#pragma once

#include "common/box_protocol.h"
#include "ui/hub/hub.h"

#include <QHash>
#include <QObject>
#include <QStringList>
#include <QTimer>
#include <QVector>

class TreeView;
struct HttpResult;

/// A line below what a box says about itself.
struct InfoNote {
    QString caption;
    QString content;
    bool isFault = false; ///< it says what is wrong

    bool operator==(const InfoNote& other) const
    {
        return caption == other.caption && content == other.content && isFault == other.isFault;
    }
};

/// The information list: what the selected box says about itself, one row per parameter; a dash for
/// one that it says it does not have. Below that, what others have to say of it.
class DeviceInfo : public QObject
{
    Q_OBJECT

public:
    DeviceInfo(const Hub& hub, TreeView* infoView);

    /// Reads the information of the box at `ip`. Empty, or the selected box: the list is cleared
    /// and filled anew. Another box: only what its row in the device list needs.
    void getDeviceinfo(const QString& ip);
    /// One parameter has arrived.
    void handleReply(const HttpResult& result);
    /// What stands below the rows of the selected box, in place of what stood there.
    void setNotes(const QVector<InfoNote>& notes);
    /// Nothing is selected: what stood there would be taken for the state of now.
    void clear();
    /// Captions in the language of now; notes stay as they are.
    void retranslate();

signals:
    /// Something that the box's row in the device list shows has changed.
    void deviceChanged();
    /// The box at `ip` has told its MAC address.
    void macReported(const QString& ip, const QString& mac);

private:
    /// What a box has still to tell of who it is.
    struct Unknown {
        QStringList unanswered{BoxProtocol::FirmVersion, BoxProtocol::MACAddress};
        int questions = 1;
        bool hasFailed = false; ///< the last of them
    };

    void expectAnswers(const QString& ip);
    void askAgain();
    /// True when the box has now told who it is, and not at the first question.
    bool noteAnswer(const HttpResult& result);
    void read(const QString& ip, const QString& parameter);
    void showRow(const QString& parameter, const QString& content);
    void showNotes();
    void updateDevice(const HttpResult& result, const QString& value);

    const Hub m_hub;
    TreeView* m_view;
    QVector<InfoNote> m_notes;
    QHash<QString, Unknown> m_unknown; // by address
    QTimer m_again;
};

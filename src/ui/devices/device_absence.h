// SPDX-License-Identifier: MIT
#pragma once

#include "ui/devices/device_info.h"
#include "ui/devices/interface_check.h"
#include "ui/hub/hub.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QHash>
#include <QMap>
#include <QObject>
#include <QTimer>

class TreeView;

/// Why a box does not answer: since when, at which step (ping, port, reply, event feed), and
/// whether this computer's own addresses explain it. Said in the tooltip of its row and, of the
/// selected KORA box, below the information list, until the box is back.
///
/// It decides nothing: whether a box is online is told by the check alone. It asks the interface
/// only of a box that somebody looks at, the selected one when something is wrong with it or the
/// one under the mouse, and never of one that an upgrade has.
class DeviceAbsence : public QObject
{
    Q_OBJECT

public:
    /// Between two questions to the same box, in milliseconds; and while it is selected and its
    /// interface answers, though something else does not.
    static constexpr int PauseMs = 5000;
    static constexpr int LongPauseMs = 60000;
    /// How long the mouse rests on a row before its box is asked.
    static constexpr int RestMs = 300;
    /// How long a feed may be gone before it is worth a line: they come back by themselves.
    static constexpr int FeedPatienceMs = 5000;

    /// `view` is the device list. It and `info` outlive this object.
    DeviceAbsence(const Hub& hub, TreeView& view, DeviceInfo& info);

    /// The selected KORA box's event feed at `port` stands, or is gone.
    void noteFeed(quint16 port, bool isConnected);
    /// What is said, in the language of now.
    void retranslate() { tell(); }

signals:
    /// What keeps the selected KORA box from answering, in one line; empty when it answers.
    void troubleTold(const QString& text);

private:
    struct Known {
        InterfaceFinding finding;
        bool wasOnline = false; ///< when that was found
        QElapsedTimer asked;
    };

    const Item* selectedBox() const;
    const Item* findBox(const QString& ip) const;
    /// What is still true of what was found last.
    InterfaceFinding findingOf(const Item& box) const;
    QVector<InfoNote> notes(const Item& box) const;
    QVector<InfoNote> feedNotes(const Item& box) const;

    void select(const Item& box);
    void ask(const QString& ip);
    void handleFinding(const QString& ip, const InterfaceFinding& finding);
    /// What a read of the selected box brought back shows whether its interface answers.
    void hear(const QVariantMap& map);
    void handleChange();
    void tell();
    QString troubleOf(const Item& box) const;

    const Hub m_hub;
    TreeView& m_view;
    DeviceInfo& m_info;
    InterfaceCheck m_check;
    QHash<QString, Known> m_known; // by address
    QString m_hovered;
    QTimer m_rest;
    QTimer m_again; ///< the selected box is asked
    QString m_feedIp;
    QMap<quint16, QDateTime> m_lostFeeds; // by port: since when
    QTimer m_patience;
};

// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/virtual_box.h"

#include <QObject>
#include <QStringList>

#include <memory>
#include <vector>

namespace sim
{

class PluggedFile;

/// An ordinary set of boxes.
struct LanPlan {
    QString subnet = QStringLiteral("127.77.0.0/24"); ///< "a.b.c.0/24"
    int first = 11;  ///< last number of the first KORA box's address; the others follow
    int boxes = 12;  ///< KORA boxes
    bool web = true; ///< then one box of each web-managed model
    int rebootMs = 10000;
    int restartMs = 2000;
    quint16 webPort = 80;
    bool anyAddress = false; ///< see BoxSetup
};

/// A network full of virtual boxes. With a run directory it keeps the file "plugged" there, for
/// lan-fping: the addresses that answer ping, one a line.
class VirtualLan : public QObject
{
    Q_OBJECT

public:
    /// `runDir` is made when missing; empty: no file is kept.
    explicit VirtualLan(const QString& runDir = {}, QObject* parent = nullptr);
    ~VirtualLan() override;

    /// Adds a box, unplugged, and owns it. Null when the address is taken.
    VirtualBox* add(const BoxSetup& setup);
    /// Adds the boxes of a plan, with recordings and decode sources. False when the plan does not
    /// fit into the subnet or an address is taken; errorString() tells.
    bool populate(const LanPlan& plan);
    /// How the last plan makes a box at this address; the ordinary way when there was none.
    BoxSetup ordinarySetup(const QString& address) const;
    /// Plugs in every box but those at the addresses `except`. False when one of them cannot;
    /// errorString() tells.
    bool plugInAll(const QStringList& except = {});

    /// The box with this address at present, or null.
    VirtualBox* find(const QString& address) const;
    QVector<VirtualBox*> boxes() const; ///< in the order in which they were added
    QString runDir() const { return m_runDir; }
    QString errorString() const { return m_error; }

    /// The environment variable in which lan-fping looks for the run directory.
    static QString runVariable() { return QStringLiteral("KORA_LAN_RUN"); }

private:
    bool addPlanned(const QString& base, int host, BoxModel model);

    const QString m_runDir;
    QString m_error;
    LanPlan m_plan; // the last one
    std::unique_ptr<PluggedFile> m_plugged;
    std::vector<std::unique_ptr<VirtualBox>> m_boxes; // go before m_plugged, which they report to
};

} // namespace sim

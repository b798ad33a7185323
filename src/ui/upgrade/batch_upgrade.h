// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/hub.h"

#include <QObject>
#include <QPointer>

#include <memory>
#include <vector>

class ConfigurationRestore;
class Item;
class PackageDigest;
class TreeView;
class UpgradeReport;
class WindowFrame;
namespace Ui
{
class MonitorArea;
}

/// Upgrades the selected boxes with one firmware package and supervises them, once a second, until
/// each has succeeded or run out of time. A batch that is started while one runs joins it.
class BatchUpgrade : public QObject
{
    Q_OBJECT

public:
    BatchUpgrade(const Hub& hub, TreeView* deviceView, Ui::MonitorArea& monitor, WindowFrame& frame,
                 ConfigurationRestore& restore, UpgradeReport& report);
    ~BatchUpgrade() override;

    /// Lets the operator choose a package, then starts.
    void choosePackage();
    void startBatchUpgrade(const QStringList& files);
    /// Starts with the package that the update check has fetched.
    void startWithFetchedPackage();
    /// The supervision, after each tick of the device list.
    void step();
    /// The box at `ip` has told its MAC address: it may be one that came back elsewhere.
    void handleMac(const QString& ip, const QString& mac);

private:
    /// Boxes that wait for the digest of their package.
    struct Pending {
        std::unique_ptr<PackageDigest> digest;
        QList<QPointer<Item>> boxes;
        bool keep = false;
    };
    QList<Item*> selectedIdleBoxes() const;
    void prepare(const QList<QPointer<Item>>& boxes, const QString& file, bool keep);
    void digestReady(const PackageDigest* digest);
    void giveUp(const Pending& pending);
    void startTick();
    void finish(int successful, int unknown);
    void showWaitingPage();
    Item* shownBox() const;

    const Hub m_hub;
    TreeView* m_view;
    Ui::MonitorArea& m_monitor;
    WindowFrame& m_frame;
    ConfigurationRestore& m_restore;
    UpgradeReport& m_report;
    bool m_asking = false;
    std::vector<Pending> m_pending;
};

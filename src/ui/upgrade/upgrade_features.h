// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/hub.h"
#include "ui/upgrade/batch_start.h"
#include "ui/upgrade/md5_tool.h"
#include "ui/upgrade/window_settings.h"
#include "upgrade/upgrade_engine.h"

#include <QPointer>

class DropAreas;
class QAbstractButton;
class QLabel;
class QProgressBar;
class QScrollArea;
class TreeView;
class UpgradeReportDialog;

/// The widgets of other areas that an upgrade shows itself in.
struct UpgradeWidgets {
    TreeView* deviceView;
    QAbstractButton* report; ///< opens the report; hidden while there is none
    // The waiting page.
    QProgressBar* progress;
    QLabel* status;
    QLabel* tip;
    QScrollArea* tipScroll; ///< around `tip`
};

/// Firmware upgrades as the operator sees them: asks, shows how far they are, tells how they ended.
class UpgradeFeatures : public QObject
{
    Q_OBJECT

public:
    UpgradeFeatures(const Hub& hub, const UpgradeWidgets& widgets, const DropAreas& dropAreas,
                    int tickMs);

    /// Looks for upgrades that the end of the program cut short, and tells.
    void loadInterrupted() { m_engine.loadInterrupted(); }
    /// The box at `ip` has told its MAC address.
    void noteMac(const QString& ip, const QString& mac) { m_engine.fleet.heard(ip, mac); }
    /// The update check has fetched a firmware package, which lies at `path`.
    void noteFetchedPackage(const QString& path);
    /// Lets the operator choose a package for the selected boxes, and upgrades them. Blocks and
    /// serves events; so does the next.
    void choosePackage() { m_start.choosePackage(); }
    void showMd5() { m_md5.run(); }

    /// What the next start of the program has to know is on the disk within `ms`, or may not be.
    void keep(int ms) { m_engine.keep(ms); }
    /// No box is being upgraded or waits for its settings.
    bool isIdle() const;
    /// False while boxes are being upgraded: the operator is told so. While boxes wait for their
    /// settings he is asked. Both block and serve events.
    bool mayClose();
    /// No box is being upgraded; some may wait for their settings.
    bool isBatchOver() const;
    /// Tells that boxes are being upgraded, and waits for nobody.
    void tellNotToEnd();

signals:
    /// The selected box is being upgraded from now on.
    void waitingWanted();
    /// The box at `ip` has told its MAC address, and its row has it.
    void boxIdentified(const QString& ip, const QString& mac);
    /// No box is being upgraded any more.
    void monitorWanted();
    /// The selected box is not upgraded after all; its panes are to be shown again.
    void koraWanted(const Item& box);

private:
    void registerWords();
    void connectEngine();
    void showUpload(const QString& ip, int percent);
    void showPrepared();
    void showStarted(const UpgradeCounts& counts);
    void showProgress(const UpgradeCounts& counts);
    void showEnd(const UpgradeCounts& counts);
    void tellUnreadable();
    void tellInterrupted(int boxes);
    void offerSettings(const QMap<QString, QVariantMap>& saved, const QDateTime& when);
    void showReport();

    const Hub m_hub;
    const UpgradeWidgets m_widgets;
    WindowSettings m_settings;
    UpgradeEngine m_engine;
    BatchStart m_start;
    Md5Tool m_md5;
    QPointer<UpgradeReportDialog> m_dialog;
};

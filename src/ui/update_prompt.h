// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub.h"
#include "update/update_check.h"

#include <QObject>
#include <QTimer>

/// Offers a downloaded new version of the program; on consent starts its installation and ends the
/// program. Waits while firmware of boxes is being upgraded.
class UpdatePrompt : public QObject
{
    Q_OBJECT

public:
    /// `version` is that of this program; `folder` is where it and the updater lie.
    UpdatePrompt(const Hub& hub, QString version, QString folder);

    void offer(const Installer& installer);

private:
    bool isUpgrading() const;
    void ask();
    void install(const Installer& installer);

    const Hub m_hub;
    const QString m_version;
    const QString m_folder;
    Installer m_offered; ///< not asked yet; an empty path: none
    QTimer m_later;
};

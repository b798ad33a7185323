// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/hub.h"
#include "update/update_check.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>

class PackageDigest;
class messageBox;

/// Offers a downloaded new version of the program; on consent starts its installation and ends the
/// program. Waits with the question while the program may not end or another question is open.
///
/// Nothing here waits for an answer in an event loop of its own: what the window was doing when the
/// question came up goes on behind it.
class UpdatePrompt : public QObject
{
    Q_OBJECT

public:
    /// Hears what `check` finds; `check` outlives this object. `version` is that of this program;
    /// `folder` is where it and the updater lie; `isBusy` tells whether something runs that the end
    /// of the program would break off.
    UpdatePrompt(const Hub& hub, UpdateCheck& check, QString version, QString folder,
                 std::function<bool()> isBusy);
    ~UpdatePrompt() override;

private:
    /// The first offer counts.
    void offer(const Installer& installer);

    void ask();
    void check();
    void install();
    messageBox* show(const QString& text);

    const Hub m_hub;
    const QString m_version;
    const QString m_folder;
    const std::function<bool()> m_isBusy;
    Installer m_offered; ///< an empty path: none
    QTimer m_later;
    std::unique_ptr<PackageDigest> m_digest;
};

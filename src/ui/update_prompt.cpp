// SPDX-License-Identifier: MIT
#include "ui/update_prompt.h"

#include "common/background.h"
#include "common/file_digest.h"
#include "common/platform.h"
#include "device/device_registry.h"
#include "device/item.h"
#include "widgets/message_box.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QPointer>

namespace
{

constexpr int retryMs = 5000;
/// The updater gets this long to start before the program makes room for it.
constexpr int handOverMs = 200;
constexpr int longestVersion = 40;

} // namespace

UpdatePrompt::UpdatePrompt(const Hub& hub, QString version, QString folder)
    : QObject(nullptr), m_hub(hub), m_version(std::move(version)), m_folder(std::move(folder))
{
    m_later.setSingleShot(true);
    m_later.setInterval(retryMs);
    connect(&m_later, &QTimer::timeout, this, &UpdatePrompt::ask);
}

void UpdatePrompt::offer(const Installer& installer)
{
    if (!m_offered.path.isEmpty())
        return;
    m_offered = installer;
    ask();
}

bool UpdatePrompt::isUpgrading() const
{
    return !m_hub.devices.upgradeCounts(koraFamily()).allEnded();
}

void UpdatePrompt::ask()
{
    if (isUpgrading()) {
        m_later.start();
        return;
    }
    const Installer installer = m_offered;
    const QPointer<UpdatePrompt> self(this);
    // What is agreed to is this version and this file.
    const QString question = tr("发现新版本,是否立即升级?") + QStringLiteral("\n\n") +
                             installer.version.simplified().left(longestVersion) +
                             QStringLiteral("\n") + QFileInfo(installer.path).fileName();
    const int answer = messageBox::ask(question, m_hub.window);
    if (self && answer == messageBox::Confirmed)
        install(installer);
}

void UpdatePrompt::install(const Installer& installer)
{
    const QPointer<UpdatePrompt> self(this);
    QString digest;
    runInBackground([&] { digest = fileMd5(installer.path); });
    if (!self)
        return;
    if (digest != installer.digest) {
        messageBox::ask(tr("安装文件已被更改,未启动升级."), m_hub.window);
        return;
    }
    // A batch that began while the question was open goes first.
    if (isUpgrading()) {
        m_later.start();
        return;
    }
    if (!Platform::startDetached(m_folder + QStringLiteral("/Upgrade.exe"),
                                 {QStringLiteral("Tarn Hub.exe"), installer.path, m_version},
                                 m_folder)) {
        messageBox::ask(tr("无法启动升级程序."), m_hub.window);
        return;
    }
    QTimer::singleShot(handOverMs, qApp, [] { QCoreApplication::exit(0); });
}

// SPDX-License-Identifier: MIT
#include "ui/window/update_prompt.h"

#include "common/package_digest.h"
#include "common/platform.h"
#include "ui/hub/exchange.h"
#include "widgets/message_box.h"

#include <QApplication>

namespace
{

constexpr int retryMs = 1000;
/// The updater gets this long to start before the program makes room for it.
constexpr int handOverMs = 200;

/// A question or menu that the operator has to deal with first.
bool isAskedSomething()
{
    return QApplication::activeModalWidget() || QApplication::activePopupWidget();
}

} // namespace

UpdatePrompt::UpdatePrompt(const Hub& hub, UpdateCheck& check, QString version, QString folder,
                           std::function<bool()> isBusy)
    : QObject(nullptr)
    , m_hub(hub)
    , m_version(std::move(version))
    , m_folder(std::move(folder))
    , m_isBusy(std::move(isBusy))
{
    m_later.setSingleShot(true);
    m_later.setInterval(retryMs);
    connect(&m_later, &QTimer::timeout, this, &UpdatePrompt::ask);
    hub.exchange.onResult(UpdateCheck::programWord(),
                          [&check](const HttpResult& result) { check.handleProgram(result.body); });
    hub.exchange.onResult(UpdateCheck::firmwareWord(), [&check](const HttpResult& result) {
        check.handleFirmware(result.body);
    });
    connect(&check, &UpdateCheck::installerReady, this, &UpdatePrompt::offer);
}

UpdatePrompt::~UpdatePrompt() = default;

void UpdatePrompt::offer(const Installer& installer)
{
    if (!m_offered.path.isEmpty())
        return;
    m_offered = installer;
    ask();
}

void UpdatePrompt::ask()
{
    if (m_isBusy() || isAskedSomething()) {
        m_later.start();
        return;
    }
    // What is agreed to is this version, this file and who it comes from.
    // The name, of which the server decides how long it is, stands behind all else.
    const messageBox* box =
        show(tr("发现新版本,是否立即升级?") + QStringLiteral("\n\n") + m_offered.version +
             QStringLiteral("  ") + tr("来自 %1").arg(m_offered.host) + QLatin1Char('\n') +
             m_offered.name);
    connect(box, &QDialog::finished, this, [this](int answer) {
        if (answer == messageBox::Confirmed)
            check();
    });
}

/// Reads the file once more: it may have changed since it was offered.
void UpdatePrompt::check()
{
    m_digest = std::make_unique<PackageDigest>(m_offered.path, QCryptographicHash::Sha256);
    connect(m_digest.get(), &PackageDigest::ready, this, &UpdatePrompt::install);
    m_digest->start();
}

void UpdatePrompt::install()
{
    if (m_digest->digest() != m_offered.digest) {
        show(tr("安装文件已被更改，未启动升级。请重新启动软件以再次下载。"));
        return;
    }
    // What began meanwhile goes first; the question comes again after it.
    if (m_isBusy()) {
        m_later.start();
        return;
    }
    if (!Platform::startDetached(m_folder + QStringLiteral("/Upgrade.exe"),
                                 {QStringLiteral("Tarn Hub.exe"), m_offered.path, m_version},
                                 m_folder)) {
        show(tr("无法启动升级程序。请重新安装本软件。"));
        return;
    }
    // Nothing may begin any more.
    m_hub.window->setEnabled(false);
    QTimer::singleShot(handOverMs, qApp, [] { QCoreApplication::exit(0); });
}

/// A message that the operator has to answer; it belongs to the window and deletes itself.
messageBox* UpdatePrompt::show(const QString& text)
{
    auto* box = new messageBox(text, m_hub.window);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setModal(true);
    box->show();
    return box;
}

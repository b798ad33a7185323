// SPDX-License-Identifier: MIT
#include "ui/upgrade/md5_tool.h"

#include "common/package_digest.h"
#include "ui/upgrade/package_dialog.h"
#include "widgets/message_box.h"

#include <QFileInfo>
#include <QPointer>
#include <QWidget>

Md5Tool::Md5Tool(QWidget* window) : QObject(nullptr), m_window(window) {}

Md5Tool::~Md5Tool() = default;

void Md5Tool::run()
{
    if (m_choosing)
        return;
    m_choosing = true;
    const QPointer<QWidget> window = m_window;
    const QString file = chooseFirmwarePackage(m_window);
    if (!window)
        return;
    m_choosing = false;
    if (file.isEmpty())
        return;
    // A second choice replaces the first.
    m_digest = std::make_unique<PackageDigest>(file);
    connect(m_digest.get(), &PackageDigest::ready, this, &Md5Tool::show, Qt::QueuedConnection);
    m_digest->start();
}

void Md5Tool::show()
{
    if (!m_digest)
        return;
    const QString md5 = m_digest->digest();
    const QString name = QFileInfo(m_digest->path()).fileName();
    m_digest.reset();
    messageBox::notify(
        md5.isEmpty() ? tr("文件打开失败! ") : name + QStringLiteral("\nMD5: ") + md5, m_window);
}

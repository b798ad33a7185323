// SPDX-License-Identifier: MIT
#include "ui/devices/device_menu.h"

#include "common/box_protocol.h"
#include "common/csv.h"
#include "common/living_folder.h"
#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_model.h"
#include "device/tree_view.h"
#include "widgets/message_box.h"

#include <QClipboard>
#include <QDateTime>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMenu>
#include <QPointer>
#include <QSaveFile>
#include <QStandardPaths>
#include <QUrl>

#include <memory>

namespace
{

/// The reason when it could not be written.
QString write(const QString& path, const QByteArray& text)
{
    QSaveFile file(path);
    const bool isWritten =
        file.open(QIODevice::WriteOnly) && file.write(text) == qint64(text.size()) && file.commit();
    return isWritten ? QString() : file.errorString();
}

QString suggestedPath()
{
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const QString name =
        QStringLiteral("Tarn Hub %1.csv")
            .arg(QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH-mm")));
    return livingFolder(documents) + QLatin1Char('/') + name;
}

} // namespace

DeviceMenu::DeviceMenu(const Hub& hub, TreeView& view)
    : QObject(&view), m_hub(hub), m_disk(QStringLiteral("inventory"))
{
    connect(&view, &TreeView::menuWanted, this, [this](QMenu* menu, Item* item) {
        if (item->isGroup() || item->isDevice())
            extend(*menu, *item);
    });
}

void DeviceMenu::extend(QMenu& menu, const Item& item)
{
    if (!item.name().isEmpty()) {
        menu.addAction(tr("复制名称"), this,
                       [name = item.name()] { QGuiApplication::clipboard()->setText(name); });
    }
    if (item.isDevice()) {
        const QUrl page(item.isKora() ? QStringLiteral("http://%1/").arg(item.address())
                                      : BoxProtocol::dashboardUrl(item.address()));
        menu.addAction(tr("在浏览器中打开"), this, [page] { QDesktopServices::openUrl(page); });
    }
    menu.addSeparator();
    // Later: the dialog must not stand inside the menu's own event loop.
    connect(menu.addAction(tr("导出设备清单…")), &QAction::triggered, this,
            &DeviceMenu::exportInventory, Qt::QueuedConnection);
}

QByteArray DeviceMenu::inventory(const TreeModel& model)
{
    QByteArray text = Csv::Beginning;
    text += Csv::line({tr("名称"), tr("地址"), tr("MAC地址"), tr("类型"), tr("固件版本"),
                       tr("状态"), tr("最后在线")});
    const QList<Item*> items = model.items();
    for (const Item* box : items) {
        if (!box->isDevice())
            continue;
        text +=
            Csv::line({box->name(), box->address(), box->macAddress(), box->parentItem()->title(),
                       box->firmwareVersion(), box->isOnline() ? tr("在线") : tr("离线"),
                       box->lastSeen().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"))});
    }
    return text;
}

void DeviceMenu::exportInventory()
{
    if (m_isChoosing)
        return;
    m_isChoosing = true;
    const QPointer<DeviceMenu> self(this);
    const QString path = suggestedPath();
    if (!self)
        return;
    auto* dialog = new QFileDialog(m_hub.window, tr("导出设备清单"), QFileInfo(path).path());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setNameFilter(tr("表格 (%1)").arg(QStringLiteral("*.csv")));
    dialog->setDefaultSuffix(QStringLiteral("csv"));
    dialog->selectFile(QFileInfo(path).fileName());
    connect(dialog, &QFileDialog::fileSelected, this, &DeviceMenu::save);
    connect(dialog, &QDialog::finished, this, [this, dialog] {
        m_isChoosing = false;
        dialog->setDirectory(QDir::homePath());
    });
    dialog->open();
}

void DeviceMenu::save(const QString& path)
{
    const auto reason = std::make_shared<QString>();
    const auto work = [reason, path, text = inventory(m_hub.devices.model())] {
        *reason = write(path, text);
    };
    m_disk.add(work, [this, reason, path] {
        const QString text = reason->isEmpty() ? tr("设备清单已保存到%1").arg(path)
                                               : tr("无法保存设备清单：%1").arg(*reason);
        messageBox::notify(text, m_hub.window);
    });
}

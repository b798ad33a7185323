// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/files.h"
#include "tests/support/window_fixture.h"

#include <QTableWidget>

/// The rows of the open report by the first address of the box: header to text.
inline QMap<QString, QMap<QString, QString>> reportRows(const WindowFixture& fixture)
{
    auto* table = fixture.child<QTableWidget>("upgradeReportTable");
    QMap<QString, QMap<QString, QString>> rows;
    for (int row = 0; row < table->rowCount(); ++row) {
        QMap<QString, QString> cells;
        for (int column = 0; column < table->columnCount(); ++column)
            cells[table->horizontalHeaderItem(column)->text()] = table->item(row, column)->text();
        rows[cells["设备"].section(' ', 0, 0)] = cells;
    }
    return rows;
}

/// The content of the newest CSV report, without the byte order mark; empty when there is none.
inline QByteArray newestCsv(const WindowFixture& fixture)
{
    const QDir folder(fixture.dataFolder() + "batches");
    const QStringList files = folder.entryList({"*.csv"}, QDir::Files, QDir::Name | QDir::Reversed);
    const QByteArray content = readFile(folder.filePath(files.value(0, "none")));
    if (content.isEmpty() || content.startsWith("\xEF\xBB\xBF"))
        return content.mid(3);
    return "no byte order mark";
}

/// The window on boxes 1, 2, 3…, and an operator who upgrades some of them.
class UpgradeFixture
{
protected:
    void begin()
    {
        m_fixture = std::make_unique<WindowFixture>();
        m_package = writePackage(m_fixture->appData() + "/KORA_1.2.0.623.dat", 100000);
    }
    void end()
    {
        m_fixture.reset();
        m_boxes.clear();
    }

    /// The upgrade's second lasts so long.
    static Options quickUpgrades(int tickMs = 50)
    {
        Options options = WindowFixture::options();
        options.upgradeTickMs = tickMs;
        return options;
    }
    static QString question(int boxes)
    {
        return QString("即将对您选择的%1个KORA进行升级固件操作,是否确认?").arg(boxes);
    }

    void makeBoxes(int count)
    {
        for (int host = 1; host <= count; ++host)
            m_boxes[host] = m_fixture->addBox(host);
    }
    void addBoxes(int count, int tickMs = 50)
    {
        makeBoxes(count);
        m_fixture->openKnowing(m_boxes.keys(), quickUpgrades(tickMs));
    }
    void select(const QList<int>& hosts)
    {
        TreeView* view = m_fixture->deviceView();
        view->clearSelection();
        for (int host : hosts)
            view->selectionModel()->select(view->treeModel()->indexOf(m_fixture->item(host)),
                                           QItemSelectionModel::Select);
    }
    void drop(const QStringList& files)
    {
        WindowFixture::drop(m_fixture->child<QWidget>("device_list"), files);
    }
    QStringList told(int host) const { return WindowFixture::told(*m_boxes[host]); }
    /// As if box 1 had answered a request of this type.
    void deliver(const QString& type, const QString& parameter, const QString& value)
    {
        m_fixture->window().R_finished(
            {{"type", type},
             {"deviceip", m_fixture->ip(1)},
             {"body", QString("{\"param_name\":\"%1\",\"value\":\"%2\"}").arg(parameter, value)}});
    }
    /// These settings of box 1 wait in the window's list; as soon as it is heard they are written.
    void leaveWaiting(const QVariantMap& settings)
    {
        const QString mac = m_fixture->item(1)->macAddress();
        m_fixture->window().setProperty(mac.toLatin1(), settings);
        m_fixture->window().setProperty("needrestore", QStringList{mac});
        m_boxes[1]->clearRequests();
    }
    void hearBox()
    {
        deliver("getDeviceinfo", "eParam_MACAddress", m_fixture->item(1)->macAddress());
    }

    std::unique_ptr<WindowFixture> m_fixture;
    QMap<int, sim::VirtualBox*> m_boxes;
    QString m_package;
};

// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/report_look.h"

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

// SPDX-License-Identifier: MIT
#pragma once

#include "device/item.h"
#include "device/tree_model.h"
#include "device/tree_view.h"
#include "simulator/virtual_lan.h"
#include "ui/window/options.h"
#include "ui/window/start_up.h"
#include "ui/window/tarn_hub.h"

#include <QApplication>
#include <QPointer>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <memory>

/// The real window on a network of virtual boxes, and the ways of an operator.
class WindowFixture
{
public:
    /// `block` is the first three numbers of this test's addresses, e.g. "127.77.24".
    explicit WindowFixture(const QString& block) : m_block(block), m_lan(m_folder.path() + "/run")
    {
        qputenv("APPDATA", m_folder.path().toUtf8());
        qputenv("KORA_LAN_RUN", m_lan.runDir().toUtf8());
    }

    sim::VirtualLan& lan() { return m_lan; }
    QString ip(int host) const { return m_block + "." + QString::number(host); }
    QString dataFolder() const { return m_folder.path() + "/Tarn Hub/"; }

    sim::VirtualBox* addBox(int host, sim::BoxModel model = sim::BoxModel::Kora)
    {
        sim::BoxSetup setup;
        setup.address = ip(host);
        setup.model = model;
        setup.rebootMs = 1500;
        sim::VirtualBox* box = m_lan.add(setup);
        if (!box || !box->plugIn())
            qFatal("no box at %s: %s", qPrintable(ip(host)),
                   box ? qPrintable(box->errorString()) : "taken");
        return box;
    }

    QString appData() const { return m_folder.path(); }

    /// `updateServer`: where to look for newer versions; empty: nowhere.
    void open(int upgradeTickMs = 1000, const QString& updateServer = {})
    {
        Options options;
        options.upgradeTickMs = upgradeTickMs;
        options.sweep.fping = LAN_FPING;
        options.sweep.subnets = QStringList{m_block + ".0/24"};
        options.updateServer = updateServer.isEmpty() ? "http://" + ip(250) + ":9" : updateServer;
        m_window = std::make_unique<Tarn_Hub>(options);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    }
    bool isOpen() const { return m_window != nullptr; }
    void close() { m_window.reset(); }

    Tarn_Hub& window() { return *m_window; }
    template <class T> T* child(const char* name) const
    {
        T* found = m_window->findChild<T*>(name);
        if (!found)
            qFatal("no widget %s", name);
        return found;
    }
    TreeView* deviceView() const { return child<TreeView>("deviceView"); }
    Item* item(int host) const { return deviceView()->treeModel()->find(ip(host)); }

    /// Clicks the row of a box, `fromRight` pixels from its right edge, or on its title.
    void clickRow(int host, int fromRight = 0)
    {
        TreeView* view = deviceView();
        const QModelIndex index = view->treeModel()->indexOf(item(host));
        view->scrollTo(index);
        const QRect row = view->visualRect(index);
        const QPoint spot(fromRight ? row.right() - fromRight : row.left() + 90, row.center().y());
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, spot);
    }

    /// "caption=value" for each row of the information list.
    QStringList information() const
    {
        QStringList rows;
        const auto items = child<TreeView>("infoView")->treeModel()->items();
        for (const Item* row : items)
            rows << row->title() + "=" + row->content();
        return rows;
    }

private:
    QTemporaryDir m_folder;
    const QString m_block;
    sim::VirtualLan m_lan;
    std::unique_ptr<Tarn_Hub> m_window;
};

/// Answers the modal dialogs that come up, one after the other, and remembers what they said.
class DialogAnswerer : public QObject
{
public:
    /// `key` is pressed in each dialog: Return confirms, Escape cancels.
    explicit DialogAnswerer(Qt::Key key = Qt::Key_Return) : m_key(key)
    {
        connect(&m_timer, &QTimer::timeout, this, [this] { answer(); });
        m_timer.start(20);
    }

    const QStringList& texts() const { return m_texts; }

private:
    void answer()
    {
        QWidget* dialog = QApplication::activeModalWidget();
        // Keys reach a dialog only once it is the active window.
        // A key presses its button for a moment before it counts.
        if (!dialog || dialog->objectName() != "messageBox" || !dialog->isActiveWindow() ||
            dialog == m_answered)
            return;
        m_answered = dialog;
        auto* text = dialog->findChild<QWidget*>("m_tipContent");
        m_texts << (text ? text->property("plainText").toString() : QString());
        QTest::keyClick(dialog, m_key);
    }

    QTimer m_timer;
    const Qt::Key m_key;
    QPointer<QWidget> m_answered;
    QStringList m_texts;
};

// SPDX-License-Identifier: MIT
#pragma once

#include "common/spark_http.h"
#include "device/item.h"
#include "device/tree_model.h"
#include "device/tree_view.h"
#include "simulator/virtual_lan.h"
#include "tests/support/dialog_answerer.h"
#include "ui/window/options.h"
#include "ui/window/start_up.h"
#include "ui/window/tarn_hub.h"
#include "widgets/input_ui.h"
#include "widgets/ip_address.h"

#include <QDropEvent>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QTemporaryDir>
#include <QUrl>

#include <memory>

/// The real window on a network of virtual boxes of its own, and the ways of an operator.
class WindowFixture
{
public:
    WindowFixture() : m_lan(m_folder.path() + "/run")
    {
        qputenv("APPDATA", m_folder.path().toUtf8());
        qputenv("KORA_LAN_RUN", m_lan.runDir().toUtf8());
        // Those of the system cannot be driven by a test.
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        static const bool dressed = (StartUp::dress(*qApp), true);
        (void)dressed;
    }

    static QString ip(int host) { return TEST_BLOCK "." + QString::number(host); }
    /// The program's options for this network, and no server to look for newer versions.
    static Options options()
    {
        Options options;
        options.sweep.fping = LAN_FPING;
        options.sweep.subnets = QStringList{ip(0) + "/24"};
        options.updateServer = "http://" + ip(250) + ":9";
        return options;
    }

    sim::VirtualLan& lan() { return m_lan; }
    QString appData() const { return m_folder.path(); }
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

    void open(const Options& with = options())
    {
        m_window = std::make_unique<Tarn_Hub>(with);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        // The second stage of the start-up hides what needs a selected box.
        QTRY_VERIFY(child<QWidget>("right_widget")->isHidden());
    }
    /// Opens the window and waits until it shows these boxes.
    void openWith(const QList<int>& hosts, const Options& with = options())
    {
        open(with);
        for (int host : hosts)
            QTRY_VERIFY_WITH_TIMEOUT(item(host), 15000);
    }
    /// The same for KORA boxes, until they have told what the program asks a new one.
    void openKnowing(const QList<int>& hosts, const Options& with = options())
    {
        openWith(hosts, with);
        for (int host : hosts)
            QTRY_VERIFY(isKnown(*item(host)));
    }
    static bool isKnown(const Item& box)
    {
        return !box.macAddress().isEmpty() && box.property("FirmVersion").isValid();
    }
    void close() { m_window.reset(); }

    Tarn_Hub& window() { return *m_window; }
    template <class T> T* child(const char* name) const
    {
        T* found = m_window->findChild<T*>(name);
        if (!found)
            qFatal("no widget %s", name);
        return found;
    }
    void click(const char* name) const { QTest::mouseClick(child<QWidget>(name), Qt::LeftButton); }
    /// By the menu: 1 Chinese, 2 English, 3 Korean, which has no entry of its own.
    void chooseLanguage(int choice)
    {
        // On a busy computer the display still tells late that another window has lost the keys,
        // and a menu closes on that.
        bool isChosen = false;
        for (int tries = 0; tries < 3 && !isChosen; ++tries) {
            window().activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(&window()));
            DialogAnswerer answers;
            answers.expect<QMenu>([choice, &isChosen](QMenu& menu) {
                QAction* entry = menu.actions().at(choice == 1 ? 0 : 1);
                entry->setData(choice);
                isChosen = true;
                QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(entry).center());
            });
            click("language");
            QVERIFY(answers.isDone());
        }
        QVERIFY(isChosen);
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
    /// Settings that nobody takes for those of a new box.
    static QStringList settings()
    {
        return QString("NDIName=Stage Left|NDIHXQuality=3|HXEncProfile=main|HXControlRate=CBR|"
                       "NDIHXGopLength=60|NDIHXBitRate=8000|DHCP=0|IPAddress=10.1.2.3|"
                       "NetMask=255.255.255.0|NTPServer=ntp.example|NDIHDR=0|NDIEncMode=0|"
                       "NDIHXFormat=2|SDIVolume=20|LineinVolume=11|LineinDelay=341")
            .split('|');
    }
    /// Gives a KORA box these settings, "name=value" without "eParam_", selects it and waits until
    /// everything read from it has been dealt with; what it was asked so far is forgotten.
    sim::VirtualBox* select(int host, const QStringList& with = {})
    {
        sim::VirtualBox* box = m_lan.find(ip(host));
        for (const QString& setting : with)
            box->setParameter("eParam_" + setting.section('=', 0, 0), setting.section('=', 1));
        readAfter(host, [&] { clickRow(host); });
        box->clearRequests();
        return box;
    }
    /// What was being read of a box that nobody looks at any more stays "being read".
    bool isReading() const
    {
        return child<QWidget>("right_widget")->isVisible() &&
               child<QLabel>("config_state")
                   ->text()
                   .startsWith(QCoreApplication::translate("ParameterPanel", "正在读取…"));
    }
    /// Does what makes the program read all of a KORA box, and waits for the end of that.
    void readAfter(int host, const std::function<void()>& act) const
    {
        constexpr int reads = 24;
        int answers = 0;
        QObject context;
        QObject::connect(
            Spark_Http::instance(), &Spark_Http::S_finished, &context, [&](const QVariantMap& map) {
                const QString type = map.value("type").toString();
                const bool counts = !type.startsWith("findDevice") && !type.endsWith("Identity") &&
                                    type != "interfaceCheck";
                answers += map.value("deviceip") == ip(host) && counts ? 1 : 0;
            });
        // Two readings at a time have fewer answers than two after each other.
        QTRY_VERIFY_WITH_TIMEOUT(!isReading(), 20000);
        act();
        QTRY_VERIFY2_WITH_TIMEOUT(answers >= reads, qPrintable(QString::number(answers)), 20000);
        QCoreApplication::processEvents();
        // Values show once it is known whose they are.
        QTRY_VERIFY_WITH_TIMEOUT(!isReading(), 20000);
    }

    /// Saves the configuration; the operator is told this, and nothing else.
    void save(const QString& message) const
    {
        const DialogAnswerer notices;
        click("save");
        QTRY_COMPARE(notices.texts(), QStringList{message});
    }

    /// Drops files on an area.
    static void drop(QWidget* area, const QStringList& paths)
    {
        QMimeData files;
        QList<QUrl> urls;
        for (const QString& path : paths)
            urls << QUrl::fromLocalFile(path);
        files.setUrls(urls);
        // The application delivers a drop to the widget that the drag has entered.
        QDragEnterEvent enter({5, 5}, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(area, &enter);
        QDropEvent drop({5, 5}, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(area, &drop);
    }

    /// What a field or button shows: its text, "on" or "off".
    QString shown(const QString& name) const
    {
        auto* found = child<QWidget>(name.toUtf8().constData());
        if (auto* address = qobject_cast<IPAddress*>(found))
            return address->getIP();
        if (auto* button = qobject_cast<QAbstractButton*>(found))
            return button->isChecked() ? "on" : "off";
        if (auto* input = qobject_cast<Inputui*>(found))
            return input->text();
        return found->property("text").toString(); // of a spin box as well
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

    /// What the box was told, in order: "name=value" without "eParam_", "action…", or the name of
    /// an uploaded file.
    static QStringList told(const sim::VirtualBox& box)
    {
        QStringList list;
        const auto requests = box.requests();
        for (const sim::BoxRequest& request : requests) {
            if (request.method == "POST")
                list << QString::fromUtf8(request.body)
                            .replace("action=set&param_name=eParam_", "")
                            .replace("&value=", "=")
                            .replace("action=", "");
        }
        return list;
    }

private:
    QTemporaryDir m_folder;
    sim::VirtualLan m_lan;
    std::unique_ptr<Tarn_Hub> m_window;
};

// SPDX-License-Identifier: MIT
#include "ui/window/hub_features.h"

#include "common/spark_http.h"
#include "crash/crash_handler.h"
#include "device/item.h"
#include "device/tree_view.h"
#include "ui/configuration/configuration_parameters.h"
#include "ui/control/control_parameters.h"
#include "ui/hub/access.h"
#include "ui/hub/availability.h"
#include "ui/window/options.h"

#include <QCoreApplication>

namespace
{

/// The form must exist before anything that takes one of its widgets.
Ui::Tarn_Hub builtForm(Tarn_Hub* window)
{
    Ui::Tarn_Hub form;
    form.setupUi(window);
    return form;
}

std::unique_ptr<DeviceRegistry> makeRegistry(Tarn_Hub* window, const Ui::Tarn_Hub& form,
                                             const Options& options)
{
    return std::make_unique<DeviceRegistry>(
        *form.device_list->ui.deviceView->treeModel(), *Spark_Http::instance(), options.sweep,
        [window](Spark_Thread* thread) {
            QObject::connect(thread, &Spark_Thread::S_findDeviceIP, window,
                             &Tarn_Hub::R_findDeviceIP, Qt::QueuedConnection);
            QObject::connect(thread, &Spark_Thread::S_refreshDeviceIP, window,
                             &Tarn_Hub::R_refreshDeviceIP, Qt::QueuedConnection);
        });
}

UpgradeWidgets upgradeWidgets(const Ui::Tarn_Hub& form)
{
    const Ui::DeviceArea& devices = form.device_list->ui;
    const Ui::MonitorArea& monitor = form.monitor_top->ui;
    return {devices.deviceView,     devices.upgradeReport, monitor.upgrade_progress,
            monitor.upgrade_status, monitor.tip,           monitor.tip_scroll};
}

} // namespace

Tarn_Hub::Features::Features(Tarn_Hub* window, const Options& options)
    : form(builtForm(window))
    , state(window)
    , runner(QStringLiteral("Tarn_Hub"),
             [window](QProcess* process) {
                 CommandRunner::limit(process, CommandRunner::OrderLimitMs);
                 QObject::connect(process, &QProcess::readyReadStandardOutput, window,
                                  &Tarn_Hub::R_readyReadStandardOutput);
                 QObject::connect(process, &QProcess::stateChanged, window,
                                  &Tarn_Hub::R_stateChanged);
             })
    , devices(makeRegistry(window, form, options))
    , orders({*devices, runner, *Spark_Http::instance(), exchange, *window})
    , hub{state, *devices, orders, *Spark_Http::instance(), exchange, window}
    , language(nullptr)
    , frame(form, window)
    , localAddresses(form.device_list->ui.localip)
    , crashNotice(new CrashNotice(form.device_list->ui.layout1))
    , toolNotice(new ToolNotice(form.device_list->ui.layout1, options.sweep.fping))
    , dropAreas({form.device_list, form.monitor_top->ui.page_video},
                form.device_list->ui.deviceView, nullptr)
    , wheelGuard({form.config_area, form.control_area})
    , deviceList(hub, form.device_list->ui)
    , deviceFilter(hub, form.device_list->ui)
    , deviceHint(new DeviceHint(form.device_list->ui.deviceView, options.sweep))
    , deviceMenu(new DeviceMenu(hub, *form.device_list->ui.deviceView))
    , deviceInfo(hub, form.device_info->ui.infoView)
    , deviceAbsence(hub, *form.device_list->ui.deviceView, deviceInfo)
    , panel(hub,
            configurationParameters(form.config_area->ui, state) +
                controlParameters(form.control_area->ui, state),
            *form.config_area->ui.config_state, *form.config_area->ui.config_warning)
    , save(hub, form.config_area->ui, panel)
    , controlBusy(form.control_area->ui.busy_control, {form.control_area->ui.control_body})
    , encoder(hub, form.control_area->ui, controlBusy)
    , audio(hub, form.control_area->ui)
    , decode(hub, encoder, controlBusy)
    , live(hub)
    , recordings(hub, *form.monitor_bottom->ui.storageWidget,
                 {*form.monitor_top->ui.video_widget, *form.monitor_top->ui.video_play,
                  *form.monitor_top->ui.decodeaddress})
    , downloads(hub, recordings.list(), *form.monitor_bottom->ui.downloads)
    , record(hub,
             {*form.control_area->ui.group_record, *form.control_area->ui.recode,
              *form.control_area->ui.recodemp4},
             recordings)
    , selection(hub)
    , monitor(hub, form.monitor_top->ui)
    , upgrade(hub, upgradeWidgets(form), dropAreas, options.upgradeTickMs)
    , updateCheck(*Spark_Http::instance(), {options.updateServer, options.updateKey},
                  applicationVersion())
    , updatePrompt(hub, updateCheck, applicationVersion(), QCoreApplication::applicationDirPath(),
                   [this] { return mustNotEnd(); })
    , closing([this] { return isCommanding(); }, *window)
    , endings({[this] { return isCommanding(); }, [this] { return !upgrade.isBatchOver(); },
               [this] { upgrade.tellNotToEnd(); }, [this](int ms) { upgrade.keep(ms); }},
              *window)
{
    Access::addMenuKey(*window);
}

void Tarn_Hub::Features::connectRooms()
{
    QObject::connect(&selection, &DeviceSelection::nothingSelected, &frame,
                     &WindowFrame::showNothingSelected);
    QObject::connect(&selection, &DeviceSelection::nothingSelected, &deviceInfo,
                     &DeviceInfo::clear);
    QObject::connect(&selection, &DeviceSelection::webBoxSelected, &frame,
                     &WindowFrame::showWebPage);
    QObject::connect(&state, &HubState::koraSelected, &frame, &WindowFrame::showKora);
    QObject::connect(&monitor, &Monitor::fullScreenWanted, &frame, &WindowFrame::setFullScreen);
    QObject::connect(&monitor, &Monitor::recordTime, form.control_area->ui.recodeTime,
                     &QLabel::setText);
    QObject::connect(&monitor, &Monitor::recordClock, &record.watch(), &RecordWatch::hear);
    QObject::connect(&monitor, &Monitor::streamLost, &record.watch(), &RecordWatch::lose);
    QObject::connect(&monitor, &Monitor::feedChanged, &deviceAbsence, &DeviceAbsence::noteFeed);
    QObject::connect(&deviceAbsence, &DeviceAbsence::troubleTold, &panel,
                     &ParameterPanel::setTrouble);
    QObject::connect(&panel, &ParameterPanel::hindered, &save,
                     [this](const QString& why, bool mayObey) { hinder(why, mayObey); });
    QObject::connect(&deviceInfo, &DeviceInfo::deviceChanged, &deviceFilter,
                     &DeviceFilter::lookAgain);
    QObject::connect(&deviceInfo, &DeviceInfo::macReported, &deviceFilter,
                     &DeviceFilter::lookAgain);
    QObject::connect(&language, &Language::chosen, &deviceFilter, &DeviceFilter::lookAgain);
    QObject::connect(&deviceFilter, &DeviceFilter::applied, deviceHint, &DeviceHint::refresh);
    QObject::connect(&deviceInfo, &DeviceInfo::deviceChanged, &deviceList, &DeviceList::repaint);
    // The engine corrects the row first, and hears from boxes by itself.
    QObject::connect(&deviceInfo, &DeviceInfo::macReported, &upgrade, &UpgradeFeatures::noteMac);
    QObject::connect(&upgrade, &UpgradeFeatures::boxIdentified, &panel, &ParameterPanel::noteMac);
    QObject::connect(&upgrade, &UpgradeFeatures::boxIdentified, &recordings, &Recordings::noteMac);
    QObject::connect(&upgrade, &UpgradeFeatures::boxIdentified, &record, &RecordControl::noteMac);
    QObject::connect(&upgrade, &UpgradeFeatures::waitingWanted, &frame, &WindowFrame::showWaiting);
    QObject::connect(&upgrade, &UpgradeFeatures::monitorWanted, &frame,
                     &WindowFrame::showMonitorPage);
    QObject::connect(&upgrade, &UpgradeFeatures::koraWanted, &frame, &WindowFrame::showKora);
    QObject::connect(&updateCheck, &UpdateCheck::firmwareReady, &upgrade,
                     &UpgradeFeatures::noteFetchedPackage);
}

/// What needs no values of the box, a recording above all, is not withheld only because none have
/// been read.
void Tarn_Hub::Features::hinder(const QString& why, bool mayObey)
{
    save.setHindrance(why);
    Availability::set(*form.control_area->ui.pushButton_hxdec_on, "unread", why);
    const QString lasting = mayObey ? QString() : why;
    Availability::set(*form.control_area->ui.pushButton_live_on, "unread", lasting);
    record.setHindrance(lasting);
}

void Tarn_Hub::Features::start()
{
    frame.sizePanes();
    frame.showStart();
    language.chooseSystemLanguage();
    updateCheck.start();
    crashNotice->start(CrashHandler::instance().dumpFolder());
    toolNotice->start();
    localAddresses.refresh();
    upgrade.loadInterrupted();
    downloads.showKept();
    devices->startSearch();
    devices->checkStates();
    frame.showNothingSelected();
    form.device_list->ui.deviceView->setFocus();
}

bool Tarn_Hub::Features::isCommanding() const
{
    return orders.isUnderWay() || audio.isWaiting();
}

bool Tarn_Hub::Features::mustNotEnd() const
{
    return !upgrade.isIdle() || orders.isUnderWay() || !downloads.isIdle();
}
